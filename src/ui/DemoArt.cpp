#include "DemoArt.hpp"

#include "Theme.hpp"

#include <algorithm>

namespace scrimlet::DemoArt {

namespace {

/// A ridge of soft hills across the whole width: `crests` gives the height of each hilltop
/// and each dip between them, as fractions of the picture's height, evenly spaced from the
/// left edge to the right. The shape runs down to the bottom corners.
Path ridge(Size size, const std::vector<double>& crests) {
    const double w = size.width;
    const double h = size.height;
    const double step = w / static_cast<double>(crests.size() - 1);
    Path path;
    path.move({0, h}).line({0, crests.front() * h});
    for (std::size_t i = 1; i < crests.size(); ++i) {
        const double x0 = step * static_cast<double>(i - 1);
        const double x1 = step * static_cast<double>(i);
        // Level tangents at every top and dip make the hills round rather than pointed.
        path.cubic({x0 + step * 0.5, crests[i - 1] * h}, {x1 - step * 0.5, crests[i] * h},
                   {x1, crests[i] * h});
    }
    path.line({w, h}).close();
    return path;
}

/// The system's arrow, 12 by 19.5 points, its tip at the origin.
Path arrow() {
    Path path;
    path.move({0, 0})
        .line({0, 17})
        .line({4, 13.2})
        .line({6.8, 19.5})
        .line({9.4, 18.4})
        .line({6.7, 12.2})
        .line({12, 12.2})
        .close();
    return path;
}

} // namespace

Drawing wallpaper(Size size) {
    Canvas canvas(size);
    const Rect bounds = canvas.bounds();
    canvas.fill(bounds, LinearGradient{
                            {0, 0}, {0, size.height}, evenStops({skyTop, skyMiddle, skyBottom})});
    canvas.fill(ridge(size, {0.70, 0.64, 0.73, 0.66, 0.71}), farHills);
    canvas.fill(ridge(size, {0.80, 0.86, 0.77, 0.84, 0.79, 0.83}), nearHills);
    return canvas.finish();
}

Drawing filmBackdrop(Size size, const std::vector<Color>& colors) {
    Canvas canvas(size);
    const Rect bounds = canvas.bounds();
    if (colors.empty()) {
        canvas.fill(bounds, Color::black());
    } else if (colors.size() == 1) {
        canvas.fill(bounds, colors.front());
    } else {
        canvas.fill(bounds, LinearGradient{{0, 0}, {0, size.height}, evenStops(colors)});
    }
    return canvas.finish();
}

Drawing cursor(Size size, Point tip, double scale, std::optional<double> clickRing) {
    Canvas canvas(size);
    if (clickRing && *clickRing >= 0 && *clickRing < 1) {
        // The ring grows out of the tip and fades as it goes.
        const double t = *clickRing;
        const double radius = (8 + 16 * t) * scale;
        canvas.stroke(Path::oval({tip.x - radius, tip.y - radius, radius * 2, radius * 2}),
                      Theme::lightFill.opacity(0.85 * (1 - t)), 2.5 * scale);
    }
    const Path shape = arrow().transformed({scale, tip.x, scale, tip.y});
    canvas.beginGroup(1, Shadow{Color::black(0.35), 2 * scale, {0, 1.5 * scale}});
    canvas.fill(shape, Color::white());
    canvas.stroke(shape, Color::black(), std::max(1.0, scale), LineCap::round, LineJoin::round);
    canvas.endGroup();
    return canvas.finish();
}

} // namespace scrimlet::DemoArt
