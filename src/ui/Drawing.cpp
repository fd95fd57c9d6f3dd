#include "Drawing.hpp"

#include "Overloaded.hpp"

#include <cassert>
#include <utility>

namespace scrimlet {

namespace {

Paint moved(const Paint& paint, Point by) {
    return std::visit(Overloaded{
                          [](const Color& color) -> Paint { return color; },
                          [&](LinearGradient gradient) -> Paint {
                              gradient.start = gradient.start + by;
                              gradient.end = gradient.end + by;
                              return gradient;
                          },
                          [&](RadialGradient gradient) -> Paint {
                              gradient.center = gradient.center + by;
                              return gradient;
                          },
                      },
                      paint);
}

Color tinted(const Color& color, const Color& tint) {
    return tint.withAlpha(color.alpha * tint.alpha);
}

Paint tinted(const Paint& paint, const Color& tint) {
    const auto stops = [&](std::vector<GradientStop> list) {
        for (GradientStop& stop : list) {
            stop.color = tinted(stop.color, tint);
        }
        return list;
    };
    return std::visit(Overloaded{
                          [&](const Color& color) -> Paint { return tinted(color, tint); },
                          [&](LinearGradient gradient) -> Paint {
                              gradient.stops = stops(gradient.stops);
                              return gradient;
                          },
                          [&](RadialGradient gradient) -> Paint {
                              gradient.stops = stops(gradient.stops);
                              return gradient;
                          },
                      },
                      paint);
}

} // namespace

std::vector<GradientStop> evenStops(const std::vector<Color>& colors) {
    std::vector<GradientStop> stops;
    for (size_t i = 0; i < colors.size(); ++i) {
        const double location =
            colors.size() > 1 ? static_cast<double>(i) / static_cast<double>(colors.size() - 1)
                              : 0.0;
        stops.push_back({location, colors[i]});
    }
    return stops;
}

Drawing translated(const Drawing& drawing, Point by) {
    const AxisTransform move = AxisTransform::translation(by.x, by.y);
    Drawing out{drawing.size, {}};
    for (const DrawOp& op : drawing.ops) {
        out.ops.push_back(std::visit(Overloaded{
                                         [&](FillOp fill) -> DrawOp {
                                             fill.path = fill.path.transformed(move);
                                             fill.paint = moved(fill.paint, by);
                                             return fill;
                                         },
                                         [&](StrokeOp stroke) -> DrawOp {
                                             stroke.path = stroke.path.transformed(move);
                                             stroke.paint = moved(stroke.paint, by);
                                             return stroke;
                                         },
                                         [&](ImageOp image) -> DrawOp {
                                             image.rect = move.apply(image.rect);
                                             return image;
                                         },
                                         [&](TextOp text) -> DrawOp {
                                             text.frame = move.apply(text.frame);
                                             return text;
                                         },
                                         [&](SymbolOp symbol) -> DrawOp {
                                             symbol.frame = move.apply(symbol.frame);
                                             symbol.fallback = symbol.fallback.transformed(move);
                                             return symbol;
                                         },
                                         [&](ClipOp clip) -> DrawOp {
                                             clip.path = clip.path.transformed(move);
                                             return clip;
                                         },
                                         [](const auto& unchanged) -> DrawOp { return unchanged; },
                                     },
                                     op));
    }
    return out;
}

Drawing templateTinted(const Drawing& drawing, const Color& tint) {
    Drawing out{drawing.size, {}};
    for (const DrawOp& op : drawing.ops) {
        out.ops.push_back(std::visit(Overloaded{
                                         [&](FillOp fill) -> DrawOp {
                                             fill.paint = tinted(fill.paint, tint);
                                             return fill;
                                         },
                                         [&](StrokeOp stroke) -> DrawOp {
                                             stroke.paint = tinted(stroke.paint, tint);
                                             return stroke;
                                         },
                                         [&](TextOp text) -> DrawOp {
                                             text.color = tinted(text.color, tint);
                                             return text;
                                         },
                                         [&](SymbolOp symbol) -> DrawOp {
                                             symbol.color = tinted(symbol.color, tint);
                                             return symbol;
                                         },
                                         [&](BeginGroupOp group) -> DrawOp {
                                             if (group.shadow) {
                                                 group.shadow->color =
                                                     tinted(group.shadow->color, tint);
                                             }
                                             return group;
                                         },
                                         [](const auto& unchanged) -> DrawOp { return unchanged; },
                                     },
                                     op));
    }
    return out;
}

Canvas::Canvas(Size size)
    : drawing_{size, {}} {}

void Canvas::add(DrawOp op) {
    drawing_.ops.push_back(std::move(op));
}

void Canvas::fill(const Path& path, const Paint& paint, FillRule rule) {
    add(FillOp{path, paint, rule});
}

void Canvas::fill(const Rect& rect, const Paint& paint) {
    fill(Path::rect(rect), paint);
}

void Canvas::stroke(const Path& path, const Paint& paint, double width, LineCap cap,
                    LineJoin join) {
    add(StrokeOp{path, paint, width, cap, join});
}

void Canvas::image(const std::string& name, const Rect& rect, double opacity) {
    add(ImageOp{name, rect, opacity});
}

void Canvas::text(const std::string& text, const Font& font, const Color& color, const Rect& frame,
                  TextAlign align) {
    add(TextOp{text, font, color, frame, align});
}

void Canvas::symbol(const SymbolOp& symbol) {
    add(symbol);
}

void Canvas::save() {
    openGroups_.push_back(false);
    add(SaveOp{});
}

void Canvas::clip(const Path& path, FillRule rule) {
    assert(!openGroups_.empty() && "a clip outside a save could never be undone");
    add(ClipOp{path, rule});
}

void Canvas::restore() {
    assert(!openGroups_.empty() && !openGroups_.back() && "restore without its save");
    openGroups_.pop_back();
    add(RestoreOp{});
}

void Canvas::beginGroup(double opacity, const std::optional<Shadow>& shadow) {
    openGroups_.push_back(true);
    add(BeginGroupOp{opacity, shadow});
}

void Canvas::endGroup() {
    assert(!openGroups_.empty() && openGroups_.back() && "end of a group never begun");
    openGroups_.pop_back();
    add(EndGroupOp{});
}

void Canvas::draw(const Drawing& other, Point origin) {
    const Drawing moved = translated(other, origin);
    drawing_.ops.insert(drawing_.ops.end(), moved.ops.begin(), moved.ops.end());
}

Drawing Canvas::finish() {
    assert(openGroups_.empty() && "a save or a group left open");
    return std::move(drawing_);
}

} // namespace scrimlet
