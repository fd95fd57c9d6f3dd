#include "Font.hpp"

#include <array>

namespace scrimlet {

std::string_view rawValue(FontWeight weight) {
    static constexpr std::array<std::string_view, 9> names = {
        "ultraLight", "thin", "light", "regular", "medium", "semibold", "bold", "heavy", "black"};
    return names[static_cast<size_t>(weight)];
}

Size estimateTextSize(std::string_view text, const Font& font) {
    // Count characters, not bytes: a "›" or "…" is one advance.
    double characters = 0;
    for (const char c : text) {
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
            characters += 1;
        }
    }
    double advance = font.design == FontDesign::monospaced ? 0.6 : 0.56;
    if (font.width == FontWidth::condensed) {
        advance *= 0.82;
    }
    if (font.weight >= FontWeight::semibold) {
        advance *= 1.06;
    }
    return {characters * (font.size * advance + font.tracking), font.lineHeight()};
}

} // namespace scrimlet
