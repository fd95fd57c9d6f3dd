#pragma once

// The one look of the interface, a theatre: its palette, type, spacing, radii and motion,
// named once for every view. Nothing here holds state.

#include "Color.hpp"
#include "Font.hpp"

#include <optional>

namespace scrimlet {

namespace Theme {

// Adaptive colours, resolved for the appearance they are drawn in.
inline constexpr AdaptiveColor canvas = AdaptiveColor::of(0x15100D, 1, 0xF3ECE1, 1);
inline constexpr AdaptiveColor panel = AdaptiveColor::of(0x1F1814, 1, 0xFFFBF4, 1);
inline constexpr AdaptiveColor well = AdaptiveColor::of(0x2A211B, 1, 0xEAE1D3, 1);
inline constexpr AdaptiveColor ink = AdaptiveColor::of(0xF3E8D8, 1, 0x231A14, 1);
inline constexpr AdaptiveColor ink2 = AdaptiveColor::of(0xF3E8D8, 0.7, 0x231A14, 0.68);
inline constexpr AdaptiveColor ink3 = AdaptiveColor::of(0xF3E8D8, 0.44, 0x231A14, 0.44);
inline constexpr AdaptiveColor rule = AdaptiveColor::of(0xF3E8D8, 0.1, 0x231A14, 0.1);
inline constexpr AdaptiveColor ruleStrong = AdaptiveColor::of(0xF3E8D8, 0.22, 0x231A14, 0.2);
inline constexpr AdaptiveColor wash = AdaptiveColor::of(0xF3E8D8, 0.06, 0x231A14, 0.045);
inline constexpr AdaptiveColor light = AdaptiveColor::of(0xF5B451, 1, 0xA9600C, 1);
inline constexpr AdaptiveColor lightSoft = AdaptiveColor::of(0xF5B451, 0.16, 0xF5B451, 0.2);
inline constexpr AdaptiveColor velvet = AdaptiveColor::of(0xD65A6A, 1, 0x8C1C2B, 1);
inline constexpr AdaptiveColor velvetSoft = AdaptiveColor::of(0xD65A6A, 0.14, 0x8C1C2B, 0.1);
inline constexpr AdaptiveColor sage = AdaptiveColor::of(0x8CCB9E, 1, 0x3E7350, 1);

// Fixed colours, the same in both appearances.
inline constexpr Color lightFill = Color::rgb255(245, 180, 81);
inline constexpr Color brandLight = lightFill;
inline constexpr Color lightGlow = Color::rgb255(255, 226, 168);
inline constexpr Color onLight = Color::rgb255(35, 26, 20);
inline constexpr Color velvetDeep = Color::rgb255(110, 18, 32);
inline constexpr Color velvetMid = Color::rgb255(155, 34, 52);
inline constexpr Color velvetHi = Color::rgb255(194, 65, 79);
inline constexpr Color onAir = Color::rgb255(229, 72, 77);
inline constexpr Color stageBlack = Color::rgb255(14, 10, 8);
inline constexpr Color boards = Color::rgb255(58, 42, 31);
inline constexpr Color brandVelvet = Color::rgb255(122, 20, 38);

/// The type of the interface, all in the system font.
namespace Typo {
inline constexpr Font titleSmall = Font::system(15, FontWeight::semibold);
inline constexpr Font body = Font::system(13);
inline constexpr Font bodyStrong = Font::system(13, FontWeight::semibold);
inline constexpr Font small = Font::system(11.5);
inline constexpr Font smallStrong = Font::system(11.5, FontWeight::semibold);
inline constexpr Font kicker = Font::system(10, FontWeight::bold, FontWidth::condensed);
inline constexpr Font cue = {10, FontWeight::semibold, FontWidth::standard, FontDesign::monospaced};
} // namespace Typo

namespace Space {
inline constexpr double s = 8;
inline constexpr double m = 12;
inline constexpr double l = 16;
inline constexpr double xl = 24;
inline constexpr double xxl = 32;
} // namespace Space

namespace Radius {
inline constexpr double chip = 6;
inline constexpr double tile = 8;
inline constexpr double card = 12;
} // namespace Radius

inline constexpr double popoverWidth = 360;

} // namespace Theme

/// One way a change may be animated: a spring, or an ease in and out over a duration.
struct Animation {
    enum class Curve { spring, easeInOut };

    Curve curve = Curve::easeInOut;
    /// Spring: the time of one undamped oscillation, in seconds.
    double response = 0;
    /// Spring: 1 stops without overshoot; less bounces.
    double dampingFraction = 0;
    double blendDuration = 0;
    /// Ease in and out: seconds.
    double duration = 0;

    static constexpr Animation spring(double response, double dampingFraction,
                                      double blendDuration = 0) {
        return {Curve::spring, response, dampingFraction, blendDuration, 0};
    }
    static constexpr Animation easeInOut(double duration) {
        return {Curve::easeInOut, 0, 0, 0, duration};
    }

    friend bool operator==(const Animation&, const Animation&) = default;
};

/// A spring as a physical system of unit mass, the form a platform's spring animation takes.
struct SpringParameters {
    double mass = 1;
    double stiffness = 0;
    double damping = 0;

    friend bool operator==(const SpringParameters&, const SpringParameters&) = default;
};

namespace Motion {

inline constexpr Animation snappy = Animation::spring(0.24, 0.85);
inline constexpr Animation fade = Animation::easeInOut(0.18);
inline constexpr Animation curtain = Animation::spring(0.9, 0.9);

/// What a view animates with: its own animation, or a plain fade when the user asked the
/// system to reduce motion.
Animation forView(const Animation& wanted, bool reduceMotion);
/// The curtain moves with `curtain`, and not at all when motion is reduced: a fade of a
/// curtain would still be a moving curtain.
std::optional<Animation> forCurtain(bool reduceMotion);
/// The stiffness and damping of a unit mass that oscillate with the spring's response and
/// die away with its damping fraction.
SpringParameters springParameters(const Animation& spring);

} // namespace Motion

} // namespace scrimlet
