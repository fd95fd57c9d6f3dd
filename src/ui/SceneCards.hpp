#pragma once

// The two cards the scenery shows: the countdown of standby before a show goes live, and
// the keyboard lock's card with its one way out.

#include "Drawing.hpp"
#include "Theme.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace scrimlet {

/// The seconds of standby, on a small dark card seen only by the presenter.
struct CountdownCard {
    /// The panel; the card stands centred in it.
    static constexpr Size size{300, 300};
    static constexpr Size card{240, 240};
    static constexpr double cornerRadius = 28;
    static constexpr double spacing = 6;
    static constexpr Font standbyFont =
        Font::system(15, FontWeight::heavy, FontWidth::condensed).tracked(4);
    static constexpr Font numberFont =
        Font::system(120, FontWeight::heavy, FontWidth::condensed).withMonospacedDigits();

    long long value = 3;

    /// "Standby, 3".
    static std::string accessibilityLabel(long long value);
    /// A change of the number springs, or fades when motion is reduced.
    static Animation valueAnimation(bool reduceMotion);
    /// Where the panel goes: centred on the main screen's frame.
    static Point panelOrigin(const Rect& mainScreen);
    /// Where the number stands in the panel.
    static Rect numberFrame();

    /// The card without its number, which changes apart from it.
    Drawing background() const;
    /// The number alone, in a drawing the size of `numberFrame`, glowing.
    Drawing number() const;
    /// The whole card.
    Drawing drawing() const;
};

/// A screen darkened while the keyboard is locked; on the main screen, a card that says so
/// and offers the button that ends it.
struct LockCard {
    static constexpr std::string_view title = "KEYBOARD LOCKED";
    static constexpr std::string_view message =
        "Wipe away. Every key is ignored until you click Done.";
    static constexpr std::string_view doneTitle = "Done cleaning";
    static constexpr double cornerRadius = 20;
    static constexpr double symbolSize = 34;
    static constexpr Font titleFont =
        Font::system(24, FontWeight::heavy, FontWidth::condensed).tracked(2);
    static constexpr Font buttonFont = Font::system(13, FontWeight::semibold);

    /// True on the main screen, the only one with the card.
    bool isMain = false;

    struct Layout {
        Drawing drawing;
        /// Where a click means "Done cleaning", on the main screen only.
        std::optional<Rect> doneButton;
    };

    /// The screen's picture, its text fitted by `measure`.
    Layout layout(Size screen, const TextMeasurer& measure = estimateTextSize) const;
};

} // namespace scrimlet
