#include "BackdropView.hpp"

#include "ImageFillView.hpp"
#include "Theme.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace scrimlet {

namespace {

Paint fadeFrom(const Color& color, Point center, double radius) {
    return RadialGradient{center, 0, radius, {{0, color}, {1, color.withAlpha(0)}}};
}

} // namespace

void MeshBackdrop::draw(Canvas& canvas, const Rect& bounds) const {
    const double r = std::max(bounds.width, bounds.height) * 0.95;
    canvas.fill(bounds, colors[0]);
    canvas.fill(bounds, fadeFrom(colors[1], {bounds.maxX(), bounds.minY()}, r));
    canvas.fill(bounds, fadeFrom(colors[2], bounds.unit(0.15, 1.05), r * 0.9));
    canvas.fill(bounds, fadeFrom(colors[3], bounds.origin(), r * 0.7));
}

std::vector<Color> BackdropView::colors(const BackdropStyle& style) {
    std::vector<Color> list;
    for (const std::uint32_t rgb : style.colors) {
        list.push_back(Color::hex(rgb));
    }
    while (list.size() < 4) {
        list.push_back(padColor);
    }
    return list;
}

std::pair<Point, Point> BackdropView::gradientPoints(double angle) {
    const double r = angle * std::numbers::pi / 180;
    const double s = (angle + 180) * std::numbers::pi / 180;
    return {{0.5 + std::cos(s) * 0.5, 0.5 - std::sin(s) * 0.5},
            {0.5 + std::cos(r) * 0.5, 0.5 - std::sin(r) * 0.5}};
}

void BackdropView::draw(Canvas& canvas, const Rect& bounds) const {
    const std::vector<Color> list = colors(style);
    const MeshBackdrop mesh{{list.begin(), list.begin() + 4}};
    const auto imageOr = [&](const std::optional<ImageRef>& image, auto otherwise) {
        if (!image || !ImageFillView::drawPicture(canvas, *image, bounds)) {
            otherwise();
        }
    };
    switch (style.kind) {
    case BackdropStyle::Kind::color:
        canvas.fill(bounds, list[0]);
        break;
    case BackdropStyle::Kind::gradient: {
        const auto [start, end] = gradientPoints(style.angle);
        canvas.fill(bounds, LinearGradient{bounds.unit(start.x, start.y), bounds.unit(end.x, end.y),
                                           evenStops({list[0], list[1]})});
        break;
    }
    case BackdropStyle::Kind::mesh:
        mesh.draw(canvas, bounds);
        break;
    case BackdropStyle::Kind::picture:
        imageOr(style.picturePath ? picture : std::nullopt, [&] { mesh.draw(canvas, bounds); });
        break;
    case BackdropStyle::Kind::wallpaper:
        imageOr(wallpaper, [&] {
            canvas.fill(bounds, LinearGradient{bounds.unit(0.5, 0), bounds.unit(0.5, 1),
                                               evenStops({wallpaperTop, wallpaperBottom})});
        });
        break;
    }
    if (style.kind == BackdropStyle::Kind::picture ||
        style.kind == BackdropStyle::Kind::wallpaper) {
        canvas.fill(bounds, Color::black(style.dim));
    }
}

Drawing BackdropView::drawing(Size size) const {
    Canvas canvas(size);
    draw(canvas, canvas.bounds());
    return canvas.finish();
}

std::string BackdropPreview::accessibilityLabel(const BackdropStyle& style) {
    return "Backdrop preview: " + style.summary();
}

Drawing BackdropPreview::drawing(Size size, Appearance appearance) const {
    Canvas canvas(size);
    const Rect bounds = canvas.bounds();
    const double radius = Theme::Radius::card;
    canvas.save();
    canvas.clip(Path::roundedRect(bounds, radius));
    BackdropView{style, wallpaper, picture}.draw(canvas, bounds);

    // A stylised window in fixed light colours, the same in both appearances.
    const Rect frame = bounds.centered(window);
    const Path outline = Path::roundedRect(frame, 8);
    const Color ink = Color::rgb255(35, 26, 20);
    const double dot = 7;
    const double padding = 7;
    const double titleHeight = dot + padding * 2;
    canvas.beginGroup(1, Shadow{Color::black(0.35), 6, {0, 0}});
    canvas.fill(outline, Color::rgb255(251, 248, 243));
    canvas.endGroup();
    canvas.save();
    canvas.clip(outline);
    canvas.fill(Rect{frame.x, frame.y, frame.width, titleHeight}, Color::rgb255(236, 231, 224));
    canvas.restore();
    const Color dots[] = {Color::hex(0xFF5F57), Color::hex(0xFEBC2E), Color::hex(0x28C840)};
    for (int i = 0; i < 3; ++i) {
        canvas.fill(Path::oval({frame.x + padding + i * (dot + 5), frame.y + padding, dot, dot}),
                    dots[i]);
    }
    const Rect body{frame.x + 12, frame.y + titleHeight + 12, frame.width - 24,
                    frame.height - titleHeight - 24};
    canvas.fill(Path::roundedRect({body.x, body.y, 120, 8}, 2), ink.opacity(0.75));
    const double lines[] = {1.0, 0.92, 0.97, 0.64};
    for (int i = 0; i < 4; ++i) {
        canvas.fill(Path::roundedRect({body.x, body.y + 20 + i * 14, body.width * lines[i], 6}, 2),
                    ink.opacity(0.18));
    }
    canvas.restore();
    canvas.stroke(Path::roundedRect(bounds.insetBy(0.5, 0.5), radius - 0.5),
                  Theme::rule.resolve(appearance), 1);
    return canvas.finish();
}

} // namespace scrimlet
