#pragma once

// The numbers of the capture rules, in one place, so that the rules and their explanation
// cannot drift apart. Layers are the window server's; lengths are in points.

#include <cstdint>

namespace scrimlet::CaptureLimits {

// Windows that no rule may see: our own panels, invisible windows and slivers.
inline constexpr double minimumAlpha = 0.01;
inline constexpr double minimumSide = 2;

// The system's recording indicator: a small window at the very top of a display.
inline constexpr std::int64_t recordingLayerFrom = 24;
inline constexpr std::int64_t recordingLayerTo = 26;
inline constexpr double recordingMaxHeight = 44;
inline constexpr double recordingMaxWidth = 120;
inline constexpr double recordingBandAbove = 1;
inline constexpr double recordingBandBelow = 8;

// A call app's share frame: above ordinary windows, covering nearly a whole display.
inline constexpr std::int64_t callLayerFrom = 1;
inline constexpr std::int64_t callLayerBelow = 1000;
inline constexpr double callShareOfWidth = 0.9;
inline constexpr double callShareOfHeight = 0.85;

// A browser's "sharing your screen" bar: long, low, near the bottom or top, roughly centred.
inline constexpr std::int64_t browserLayerFrom = 1;
inline constexpr std::int64_t browserLayerBelow = 24;
inline constexpr double browserMinHeight = 20;
inline constexpr double browserMaxHeight = 90;
inline constexpr double browserMinWidth = 120;
inline constexpr double browserMaxWidth = 1100;
inline constexpr double browserMinRatio = 3.5;
inline constexpr double browserBottomBand = 220;
inline constexpr double browserTopBand = 120;
inline constexpr double browserMaxCentreOffset = 0.3;

// The Takeloom recorder: its capture bar, or its square camera overlay.
inline constexpr std::int64_t takeloomBarLayer = 3;
inline constexpr double takeloomBarMinWidth = 400;
inline constexpr double takeloomBarMaxHeight = 120;
inline constexpr std::int64_t takeloomSquareLayerFrom = 1000;
inline constexpr double takeloomSquareSlack = 4;
inline constexpr double takeloomSquareMaxWidth = 400;

} // namespace scrimlet::CaptureLimits
