#pragma once

// Colours as the drawings carry them: sRGB components and an opacity, each from 0 to 1,
// never premultiplied. Plain values.

#include <cstdint>
#include <string_view>

namespace scrimlet {

/// The two looks of the system. Everything adaptive has one value for each.
enum class Appearance { light, dark };

/// Which look to draw with, from the name of the system's best match among the dark and
/// the light aqua appearances ("NSAppearanceNameDarkAqua" means dark; anything else, or no
/// match at all, means light).
Appearance appearanceFromBestMatch(std::string_view name);

std::string_view rawValue(Appearance appearance);

struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    /// 0xRRGGBB.
    static constexpr Color hex(std::uint32_t rgb, double alpha = 1) {
        return rgb255(static_cast<int>((rgb >> 16) & 0xFF), static_cast<int>((rgb >> 8) & 0xFF),
                      static_cast<int>(rgb & 0xFF), alpha);
    }
    /// Components over 255.
    static constexpr Color rgb255(int red, int green, int blue, double alpha = 1) {
        return {red / 255.0, green / 255.0, blue / 255.0, alpha};
    }
    static constexpr Color white(double alpha = 1) { return {1, 1, 1, alpha}; }
    static constexpr Color black(double alpha = 1) { return {0, 0, 0, alpha}; }
    static constexpr Color clear() { return {0, 0, 0, 0}; }

    /// The same colour with its opacity replaced.
    constexpr Color withAlpha(double value) const { return {red, green, blue, value}; }
    /// The same colour with its opacity multiplied, as a view's opacity does.
    constexpr Color opacity(double factor) const { return {red, green, blue, alpha * factor}; }

    friend bool operator==(const Color&, const Color&) = default;
};

/// A colour with a value for each appearance, resolved when it is drawn.
struct AdaptiveColor {
    Color light;
    Color dark;

    /// From hexadecimal sRGB values and the opacity of each side.
    static constexpr AdaptiveColor of(std::uint32_t dark, double darkAlpha, std::uint32_t light,
                                      double lightAlpha) {
        return {Color::hex(light, lightAlpha), Color::hex(dark, darkAlpha)};
    }

    constexpr Color resolve(Appearance appearance) const {
        return appearance == Appearance::dark ? dark : light;
    }

    friend bool operator==(const AdaptiveColor&, const AdaptiveColor&) = default;
};

} // namespace scrimlet
