#pragma once

// Pictures the scripted runs paint for themselves: a desktop picture where the demo and the
// snapshots need one, and the ground and the cursor of the demo film.

#include "Drawing.hpp"

#include <optional>
#include <vector>

namespace scrimlet::DemoArt {

/// The painted sky, from the top down: night blue, dusk violet, a warm horizon.
inline constexpr Color skyTop = Color::rgb255(27, 35, 64);
inline constexpr Color skyMiddle = Color::rgb255(92, 58, 110);
inline constexpr Color skyBottom = Color::rgb255(227, 154, 107);
/// The hills, the far ones lit by the sky, the near ones in shadow.
inline constexpr Color farHills = Color::rgb255(70, 52, 96);
inline constexpr Color nearHills = Color::rgb255(30, 25, 46);
/// The hills fill the lower part of the picture, from this fraction of its height down.
inline constexpr double hillsTop = 0.62;

/// A desktop picture of any size: a vertical gradient of the three sky colours, and a band
/// of hills below, drawn in proportion so that every size shows the same landscape.
Drawing wallpaper(Size size);

/// The film's ground behind the app's windows: `colors` spread evenly from top to bottom.
/// One colour is a plain ground; none is black.
Drawing filmBackdrop(Size size, const std::vector<Color>& colors);

/// The painted pointer with its tip at `tip`, `scale` times the size of the system's, and
/// under it the ring of a click at `clickRing` of its life (0 just clicked, 1 gone).
Drawing cursor(Size size, Point tip, double scale, std::optional<double> clickRing);

} // namespace scrimlet::DemoArt
