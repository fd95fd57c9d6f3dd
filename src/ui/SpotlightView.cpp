#include "SpotlightView.hpp"

namespace scrimlet {

Point SpotlightView::center(Size bounds) const {
    const Point local = pointer - screenOrigin;
    return {local.x, bounds.height - local.y};
}

Drawing SpotlightView::drawing(Size bounds) const {
    Canvas canvas(bounds);
    const Point c = center(bounds);
    const double r = radius;
    const Rect disc{c.x - r, c.y - r, 2 * r, 2 * r};
    const Color dark = Color::black(dim);

    Path shade = Path::rect(canvas.bounds());
    shade.addOval(disc);
    canvas.fill(shade, dark, FillRule::evenOdd);

    // The outer part of the disc fades into the darkness; inside it, nothing is painted.
    canvas.save();
    canvas.clip(Path::oval(disc));
    canvas.fill(
        disc,
        RadialGradient{
            c, r * (1 - softEdge), r, {{0, Color::black(0)}, {1, dark}}, GradientExtend::none});
    canvas.restore();
    return canvas.finish();
}

bool PointerWatch::moved(Point now) {
    if (now == last_) {
        return false;
    }
    last_ = now;
    return true;
}

} // namespace scrimlet
