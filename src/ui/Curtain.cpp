#include "Curtain.hpp"

#include "Theme.hpp"

#include <algorithm>

namespace scrimlet {

namespace {

constexpr double floorHeight = 18;
constexpr double cornerRadius = Theme::Radius::card;

} // namespace

Path TieBack::path(const Rect& in) const {
    const double g = std::clamp(gather, 0.0, 1.0);
    const double w = in.width;
    const double h = in.height;
    // Drawn for the leading curtain, whose inner edge is on the right, then mirrored.
    const double waistX = in.maxX() - w * g * 0.55;
    const double waistY = in.minY() + h * 0.55;
    const double footX = in.maxX() - w * g * 0.3;
    Path outline;
    outline.move(in.origin()).line({in.maxX(), in.minY()});
    outline.quad({in.maxX(), in.minY() + h * 0.35}, {waistX, waistY});
    outline.quad({waistX, in.minY() + h * 0.85}, {footX, in.maxY()});
    outline.line({in.minX(), in.maxY()}).close();
    return trailingEdge ? outline.transformed(AxisTransform::mirrorX(in.midX())) : outline;
}

namespace {

// The loops from right to left, continuing a path that stands at the right end of the row.
void addLoops(Path& path, const Rect& in, int count) {
    const int n = std::max(count, 1);
    const double depth = in.height * 0.3;
    const double top = in.maxY() - depth;
    const double span = in.width / n;
    for (int i = n - 1; i >= 0; --i) {
        const double left = in.minX() + span * i;
        // A quadratic reaches half way to its control point: the loop's lowest point lies on
        // the bottom edge.
        path.quad({left + span * 0.5, in.maxY() + depth}, {left, top});
    }
}

} // namespace

Path Swags::path(const Rect& in) const {
    Path shape;
    shape.move(in.origin())
        .line({in.maxX(), in.minY()})
        .line({in.maxX(), in.maxY() - in.height * 0.3});
    addLoops(shape, in, count);
    return shape.close();
}

Path Swags::edge(const Rect& in) const {
    Path line;
    line.move({in.maxX(), in.maxY() - in.height * 0.3});
    addLoops(line, in, count);
    return line;
}

std::vector<GradientStop> Velvet::foldStops(int n) {
    static constexpr double positions[] = {0, 0.35, 0.55, 0.75, 1};
    const Color colors[] = {Theme::velvetDeep, Theme::velvetMid, Theme::velvetHi, Theme::velvetMid,
                            Theme::velvetDeep};
    std::vector<GradientStop> stops;
    for (int fold = 0; fold < n; ++fold) {
        for (int i = 0; i < 5; ++i) {
            stops.push_back({(fold + positions[i]) / n, colors[i]});
        }
    }
    return stops;
}

void Velvet::draw(Canvas& canvas, const Rect& rect) const {
    const Path outline = TieBack{gather, trailingEdge}.path(rect);
    canvas.beginGroup(1, Shadow{Color::black(0.5), 4, {trailingEdge ? -2.0 : 2.0, 0}});
    canvas.save();
    canvas.clip(outline);
    canvas.fill(
        rect,
        LinearGradient{{rect.minX(), rect.minY()}, {rect.maxX(), rect.minY()}, foldStops(folds)});
    canvas.fill(
        rect,
        LinearGradient{{rect.minX(), rect.minY()},
                       {rect.minX(), rect.maxY()},
                       {{0, Color::black(0.45)}, {0.5, Color::black(0)}, {1, Color::black(0.35)}}});
    canvas.restore();
    canvas.endGroup();
}

void Valance::draw(Canvas& canvas, const Rect& rect) const {
    const Swags swags{std::max(1, static_cast<int>(rect.width / 48 + 0.5))};
    canvas.fill(swags.path(rect), LinearGradient{{rect.minX(), rect.minY()},
                                                 {rect.minX(), rect.maxY()},
                                                 evenStops({Theme::velvetDeep, Theme::velvetMid})});
    canvas.stroke(swags.edge(rect), Theme::lightFill.opacity(0.55), 1);
}

std::vector<Rect> Footlights::lampRects(const Rect& row) const {
    // Equal spacers before, between and after the lamps.
    const double gap = (row.width - lamp.width * lamps) / (lamps + 1);
    std::vector<Rect> rects;
    for (int i = 0; i < lamps; ++i) {
        rects.push_back({row.minX() + gap * (i + 1) + lamp.width * i,
                         row.midY() - lamp.height * 0.5, lamp.width, lamp.height});
    }
    return rects;
}

void Footlights::draw(Canvas& canvas, const Rect& row) const {
    Path lampsPath;
    for (const Rect& rect : lampRects(row)) {
        lampsPath.addRoundedRect(rect, lamp.height * 0.5);
    }
    if (!lit) {
        canvas.fill(lampsPath, Theme::lightGlow.opacity(0.14));
        return;
    }
    canvas.beginGroup(1, Shadow{Theme::lightFill.opacity(0.9), 4, {0, 0}});
    canvas.fill(lampsPath, Theme::lightGlow);
    canvas.endGroup();
}

double Proscenium::curtainWidth(double width, double open) {
    return std::max(26.0, width * 0.5 * (open * -0.8 + 1));
}

Drawing Proscenium::drawing(double width, Appearance appearance) const {
    const double w = width;
    const double h = height;
    const double o = std::clamp(open, 0.0, 1.0);
    const double l = std::clamp(lit, 0.0, 1.0);
    Canvas canvas({w, h});
    const Rect bounds = canvas.bounds();
    canvas.save();
    canvas.clip(Path::roundedRect(bounds, cornerRadius));

    // The stage: black, lit from above, a pool of light on the boards, and the footlights.
    canvas.fill(bounds, Theme::stageBlack);
    canvas.fill(bounds, RadialGradient{bounds.unit(0.5, 0.05),
                                       0,
                                       w * 0.55,
                                       {{0, Theme::lightGlow.opacity(l * 0.32 + 0.06)},
                                        {1, Theme::lightGlow.opacity(0)}}});
    // The bar of light lies on the boards as a soft pool, as wide as the bar and as high.
    const Rect pool{w * 0.19, h - floorHeight - 13, w * 0.62, 26};
    RadialGradient spill{pool.center(),
                         0,
                         pool.width * 0.5,
                         {{0, Theme::lightGlow.opacity(l * 0.16)},
                          {0.6, Theme::lightGlow.opacity(l * 0.16)},
                          {1, Theme::lightGlow.opacity(0)}},
                         GradientExtend::none};
    spill.verticalScale = pool.height / pool.width;
    canvas.fill(pool, spill);
    canvas.fill(
        Rect{0, h - floorHeight, w, floorHeight},
        LinearGradient{{0, h},
                       {0, h - floorHeight},
                       evenStops({Theme::boards.opacity(0.9), Theme::boards.opacity(0.35)})});
    Footlights{footlightsLit()}.draw(canvas, {0, h - 8, w, Footlights::lamp.height});

    if (stage && showsStage()) {
        canvas.draw(*stage, {0, 0});
    }
    const double curtain = curtainWidth(w, o);
    Velvet{o, false}.draw(canvas, {0, 0, curtain, h});
    Velvet{o, true}.draw(canvas, {w - curtain, 0, curtain, h});
    if (front && showsFront()) {
        canvas.draw(*front, {0, 0});
    }
    Valance{}.draw(canvas, {0, 0, w, Valance::height});
    canvas.restore();

    canvas.stroke(Path::roundedRect(bounds.insetBy(0.5, 0.5), cornerRadius - 0.5),
                  Theme::ruleStrong.resolve(appearance).opacity(0.35), 1);
    return canvas.finish();
}

} // namespace scrimlet
