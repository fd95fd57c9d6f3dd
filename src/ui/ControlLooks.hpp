#pragma once

// How the interface's own small controls look at each moment of their motion, and how far a
// motion has gone after some time: the platform only draws these rectangles and colours and
// steps the clock. Plain functions; main thread only where they are used.

#include "Color.hpp"
#include "Geometry.hpp"
#include "Theme.hpp"

#include <optional>

namespace scrimlet {

/// The mix of two colours, `t` of the way from `a` to `b`, each component and the opacity.
Color mix(const Color& a, const Color& b, double t);
AdaptiveColor mix(const AdaptiveColor& a, const AdaptiveColor& b, double t);

/// The lamp toggle: a capsule 34 by 18 with a 12 by 12 lamp inside a padding of 3.
struct LampToggleLook {
    static constexpr Size size{34, 18};
    static constexpr double padding = 3;
    static constexpr double lampSide = 12;

    Rect track;
    Rect lamp;
    AdaptiveColor trackFill;
    AdaptiveColor border;
    double borderWidth = 1;
    AdaptiveColor lampColor;
    /// The lamp's light, which grows as it comes on.
    std::optional<Color> glow;
    double glowRadius = 0;
    /// Dimmed when the toggle can't be used.
    double opacity = 1;

    /// The toggle `on` of the way from off (0) to on (1).
    static LampToggleLook at(double on, bool enabled = true);
};

/// How far a motion has gone, from 0 to 1 (a spring may pass 1 and come back), `elapsed`
/// seconds after it started.
double motionProgress(const Animation& animation, double elapsed);
/// When a motion has come to rest: a spring within a thousandth of its end, an ease at its
/// duration.
double motionDuration(const Animation& animation);

} // namespace scrimlet
