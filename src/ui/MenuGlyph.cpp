#include "MenuGlyph.hpp"

#include "Theme.hpp"

namespace scrimlet::MenuGlyph {

namespace {

constexpr double height = 16;

} // namespace

Size size(bool live) {
    return {live ? 22.0 : 18.0, height};
}

bool isTemplate(bool live) {
    return !live;
}

std::string_view accessibilityDescription(bool live) {
    return live ? "Scrimlet: on stage" : "Scrimlet";
}

Color labelColor(Appearance appearance) {
    return appearance == Appearance::dark ? Color::white(0.85) : Color::black(0.85);
}

Drawing drawing(bool live, bool standby, Appearance appearance) {
    // The geometry is drawn y upward, as the image's own coordinates run, and flipped once.
    const AxisTransform down = AxisTransform::flipY(height);
    const Color ink = live ? labelColor(appearance) : Color::black();
    Canvas canvas(size(live));

    Path arch;
    arch.move({2, 2}).line({2, 10.5}).cubic({4, 15.5}, {14, 15.5}, {16, 10.5}).line({16, 2});
    canvas.stroke(arch.transformed(down), ink, 1.4);
    canvas.fill(Path::rect({1, 1, 16, 1.4}).transformed(down), ink);

    Path inside;
    inside.move({3, 2.4}).line({3, 10.2}).cubic({4.8, 14.3}, {13.2, 14.3}, {15, 10.2});
    inside.line({15, 2.4}).close();
    canvas.save();
    canvas.clip(inside.transformed(down));

    Path left;
    Path right;
    left.move({3, 14});
    right.move({15, 14});
    if (live) {
        left.line({7.2, 14}).cubic({6.6, 9}, {4.2, 7}, {4.2, 5.6});
        left.cubic({4.2, 4.2}, {5.2, 3.4}, {5.2, 2.4}).line({3, 2.4}).close();
        right.line({10.8, 14}).cubic({11.4, 9}, {13.8, 7}, {13.8, 5.6});
        right.cubic({13.8, 4.2}, {12.8, 3.4}, {12.8, 2.4}).line({15, 2.4}).close();
    } else {
        // Dark and standby differ only by the gap between the drapes: 0.8 or 4.4 wide.
        const double leftEdge = standby ? 6.8 : 8.6;
        const double rightEdge = standby ? 11.2 : 9.4;
        left.line({leftEdge, 14}).line({leftEdge, 2.4}).line({3, 2.4}).close();
        right.line({rightEdge, 14}).line({rightEdge, 2.4}).line({15, 2.4}).close();
    }
    canvas.fill(left.transformed(down), ink);
    canvas.fill(right.transformed(down), ink);
    canvas.restore();

    if (live) {
        canvas.fill(Path::oval({16.5, 9.5, 5.5, 5.5}).transformed(down), Theme::onAir);
    }
    return canvas.finish();
}

Drawing asShown(bool live, bool standby, Appearance appearance) {
    const Drawing glyph = drawing(live, standby, appearance);
    if (!isTemplate(live)) {
        return glyph;
    }
    return templateTinted(glyph, appearance == Appearance::dark ? Color::white() : Color::black());
}

} // namespace scrimlet::MenuGlyph
