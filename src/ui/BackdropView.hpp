#pragma once

// The surface behind the presenter's front window, one of five kinds, and its miniature on
// the settings page.

#include "BackdropStyle.hpp"
#include "Drawing.hpp"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace scrimlet {

/// Soft light from three corners over a ground colour.
struct MeshBackdrop {
    /// The first four are used; there must be at least four.
    std::vector<Color> colors;

    void draw(Canvas& canvas, const Rect& bounds) const;
};

struct BackdropView {
    /// What pads a short colour list, and what an empty `color` backdrop shows: 21, 16, 13.
    static constexpr Color padColor = Color::rgb255(21, 16, 13);
    /// The gradient a `wallpaper` backdrop shows when there is no wallpaper to show.
    static constexpr Color wallpaperTop = Color::rgb255(58, 58, 68);
    static constexpr Color wallpaperBottom = Color::rgb255(23, 23, 28);

    BackdropStyle style;
    /// The prepared (blurred) wallpaper of this screen, for kind `wallpaper`.
    std::optional<ImageRef> wallpaper;
    /// The picture at `style.picturePath`, for kind `picture`, when it could be read.
    std::optional<ImageRef> picture;

    /// The style's colours, read as 0xRRGGBB and padded to four.
    static std::vector<Color> colors(const BackdropStyle& style);
    /// The start and end of the gradient at `angle` degrees, in unit coordinates of the
    /// view, y downward: 0 runs from the left edge to the right, 90 from the bottom to the top.
    static std::pair<Point, Point> gradientPoints(double angle);

    void draw(Canvas& canvas, const Rect& bounds) const;
    Drawing drawing(Size size) const;
};

/// A miniature screen with a small window on it, over the backdrop the style makes.
struct BackdropPreview {
    static constexpr Size window{280, 150};

    BackdropStyle style;
    std::optional<ImageRef> wallpaper;
    std::optional<ImageRef> picture;

    /// "Backdrop preview: " and the style's summary.
    static std::string accessibilityLabel(const BackdropStyle& style);
    Drawing drawing(Size size, Appearance appearance) const;
};

} // namespace scrimlet
