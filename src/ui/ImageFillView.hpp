#pragma once

// The desktop cover's view, and the arithmetic of the wallpaper's blur: a picture that fills
// its bounds without distortion, centred, its excess cut off, over a plain colour that shows
// wherever there is no picture.

#include "Drawing.hpp"

#include <optional>

namespace scrimlet {

struct ImageFillView {
    /// The cover's colour where no wallpaper could be read: 21, 16, 13, the dark canvas.
    static constexpr Color coverFallback = Color::rgb255(21, 16, 13);

    std::optional<ImageRef> image;
    Color fallback = Color::black();

    /// Where the picture goes: scaled by the larger of the two ratios of bounds to picture,
    /// and centred. None for a picture without area.
    static std::optional<Rect> aspectFillRect(Size image, const Rect& bounds);
    /// Draws the picture aspect-filled into `bounds`, cut at their edges. False, drawing
    /// nothing, for a picture without area.
    static bool drawPicture(Canvas& canvas, const ImageRef& image, const Rect& bounds);
    void draw(Canvas& canvas, const Rect& bounds) const;
    Drawing drawing(Size bounds) const;
};

namespace Wallpaper {

/// The longest side a backdrop's wallpaper is blurred at.
inline constexpr double backdropMaxSide = 1600;

/// How a picture is blurred: shrunk first, never enlarged, so that the blur's cost is
/// bounded; the radius shrinks with it, so that the look stays the same.
struct BlurPlan {
    double scale = 1;
    double radius = 0;
    /// The picture's extent after the shrink: where the blur is cropped and rendered.
    Rect working;

    friend bool operator==(const BlurPlan&, const BlurPlan&) = default;
};

BlurPlan blurPlan(const Rect& extent, double radius, double maxSide);

} // namespace Wallpaper

} // namespace scrimlet
