#pragma once

// The system font as the drawings ask for it: a size, a weight, a width, a design and a
// tracking. Each platform maps it to its own system font. Plain values.

#include "Geometry.hpp"

#include <functional>
#include <string>
#include <string_view>

namespace scrimlet {

enum class FontWeight { ultraLight, thin, light, regular, medium, semibold, bold, heavy, black };
enum class FontWidth { standard, condensed };
enum class FontDesign { standard, monospaced };

struct Font {
    double size = 13;
    FontWeight weight = FontWeight::regular;
    FontWidth width = FontWidth::standard;
    FontDesign design = FontDesign::standard;
    /// Digits of equal advance in an otherwise proportional font, so that a count does not
    /// jitter as it changes.
    bool monospacedDigits = false;
    /// Extra space after each character, in points.
    double tracking = 0;

    static constexpr Font system(double size, FontWeight weight = FontWeight::regular,
                                 FontWidth width = FontWidth::standard) {
        return {size, weight, width, FontDesign::standard, false, 0};
    }
    constexpr Font tracked(double points) const {
        Font copy = *this;
        copy.tracking = points;
        return copy;
    }
    constexpr Font withMonospacedDigits() const {
        Font copy = *this;
        copy.monospacedDigits = true;
        return copy;
    }
    /// The height of one line of the system font: its ascent plus its descent.
    constexpr double lineHeight() const { return size * 1.19; }

    friend bool operator==(const Font&, const Font&) = default;
};

std::string_view rawValue(FontWeight weight);

/// The size one line of text takes in a font. Each platform measures with its own text
/// engine; layouts that must fit text around it take one of these.
using TextMeasurer = std::function<Size(std::string_view text, const Font& font)>;

/// A measurer that needs no text engine: an average advance per character of the system
/// font, good to a few percent on Latin text. For tests and for platforms without fonts.
Size estimateTextSize(std::string_view text, const Font& font);

} // namespace scrimlet
