#include "Path.hpp"

#include "Overloaded.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace scrimlet {

namespace {

// The distance of a cubic's control points from the ends of a quarter circle of radius 1.
constexpr double kappa = 0.5522847498307936;

Point quadPoint(Point a, Point c, Point b, double t) {
    const double u = 1 - t;
    return {u * u * a.x + 2 * u * t * c.x + t * t * b.x,
            u * u * a.y + 2 * u * t * c.y + t * t * b.y};
}

Point cubicPoint(Point a, Point c1, Point c2, Point b, double t) {
    const double u = 1 - t;
    const double w0 = u * u * u;
    const double w1 = 3 * u * u * t;
    const double w2 = 3 * u * t * t;
    const double w3 = t * t * t;
    return {w0 * a.x + w1 * c1.x + w2 * c2.x + w3 * b.x,
            w0 * a.y + w1 * c1.y + w2 * c2.y + w3 * b.y};
}

// A quarter of an ellipse from `from` to `to` around `center`, as the renderers draw it.
void addQuarter(std::vector<Point>& out, Point center, Point from, Point to, int steps) {
    const Point c1 = from + Point{(to.x - center.x) * kappa, (to.y - center.y) * kappa};
    const Point c2 = to + Point{(from.x - center.x) * kappa, (from.y - center.y) * kappa};
    for (int i = 1; i <= steps; ++i) {
        out.push_back(cubicPoint(from, c1, c2, to, static_cast<double>(i) / steps));
    }
}

std::vector<Point> roundedPolygon(const Rect& r, double radius, int steps) {
    const double rx = std::clamp(radius, 0.0, std::min(r.width, r.height) * 0.5);
    std::vector<Point> out;
    out.push_back({r.minX() + rx, r.minY()});
    out.push_back({r.maxX() - rx, r.minY()});
    addQuarter(out, {r.maxX() - rx, r.minY() + rx}, {r.maxX() - rx, r.minY()},
               {r.maxX(), r.minY() + rx}, steps);
    out.push_back({r.maxX(), r.maxY() - rx});
    addQuarter(out, {r.maxX() - rx, r.maxY() - rx}, {r.maxX(), r.maxY() - rx},
               {r.maxX() - rx, r.maxY()}, steps);
    out.push_back({r.minX() + rx, r.maxY()});
    addQuarter(out, {r.minX() + rx, r.maxY() - rx}, {r.minX() + rx, r.maxY()},
               {r.minX(), r.maxY() - rx}, steps);
    out.push_back({r.minX(), r.minY() + rx});
    addQuarter(out, {r.minX() + rx, r.minY() + rx}, {r.minX(), r.minY() + rx},
               {r.minX() + rx, r.minY()}, steps);
    return out;
}

std::vector<Point> ovalPolygon(const Rect& r, int steps) {
    const Point c = r.center();
    std::vector<Point> out{{r.maxX(), c.y}};
    addQuarter(out, c, {r.maxX(), c.y}, {c.x, r.maxY()}, steps);
    addQuarter(out, c, {c.x, r.maxY()}, {r.minX(), c.y}, steps);
    addQuarter(out, c, {r.minX(), c.y}, {c.x, r.minY()}, steps);
    addQuarter(out, c, {c.x, r.minY()}, {r.maxX(), c.y}, steps);
    return out;
}

} // namespace

Rect AxisTransform::apply(const Rect& r) const {
    const Point a = apply(r.origin());
    const Point b = apply(Point{r.maxX(), r.maxY()});
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::abs(b.x - a.x), std::abs(b.y - a.y)};
}

Path Path::rect(const Rect& rect) {
    return Path().addRect(rect);
}

Path Path::oval(const Rect& rect) {
    return Path().addOval(rect);
}

Path Path::roundedRect(const Rect& rect, double radius) {
    return Path().addRoundedRect(rect, radius);
}

Path& Path::move(Point to) {
    elements_.emplace_back(MoveTo{to});
    return *this;
}

Path& Path::line(Point to) {
    elements_.emplace_back(LineTo{to});
    return *this;
}

Path& Path::quad(Point control, Point to) {
    elements_.emplace_back(QuadTo{control, to});
    return *this;
}

Path& Path::cubic(Point control1, Point control2, Point to) {
    elements_.emplace_back(CubicTo{control1, control2, to});
    return *this;
}

Path& Path::close() {
    elements_.emplace_back(ClosePath{});
    return *this;
}

Path& Path::addRect(const Rect& rect) {
    return move(rect.origin())
        .line({rect.maxX(), rect.minY()})
        .line({rect.maxX(), rect.maxY()})
        .line({rect.minX(), rect.maxY()})
        .close();
}

Path& Path::addOval(const Rect& rect) {
    elements_.emplace_back(Oval{rect});
    return *this;
}

Path& Path::addRoundedRect(const Rect& rect, double radius) {
    elements_.emplace_back(RoundedRect{rect, radius});
    return *this;
}

Path& Path::addPath(const Path& other) {
    elements_.insert(elements_.end(), other.elements_.begin(), other.elements_.end());
    return *this;
}

Path Path::transformed(const AxisTransform& t) const {
    Path out;
    for (const PathElement& element : elements_) {
        out.elements_.push_back(std::visit(
            Overloaded{
                [&](const MoveTo& e) -> PathElement { return MoveTo{t.apply(e.to)}; },
                [&](const LineTo& e) -> PathElement { return LineTo{t.apply(e.to)}; },
                [&](const QuadTo& e) -> PathElement {
                    return QuadTo{t.apply(e.control), t.apply(e.to)};
                },
                [&](const CubicTo& e) -> PathElement {
                    return CubicTo{t.apply(e.control1), t.apply(e.control2), t.apply(e.to)};
                },
                [&](const ClosePath& e) -> PathElement { return e; },
                [&](const Oval& e) -> PathElement { return Oval{t.apply(e.rect)}; },
                [&](const RoundedRect& e) -> PathElement {
                    // Radii follow the scale; mirrors and flips keep them.
                    return RoundedRect{t.apply(e.rect),
                                       e.radius * std::min(std::abs(t.scaleX), std::abs(t.scaleY))};
                },
            },
            element));
    }
    return out;
}

Rect Path::controlBounds() const {
    double left = std::numeric_limits<double>::infinity();
    double top = left;
    double right = -left;
    double bottom = -left;
    const auto add = [&](Point p) {
        left = std::min(left, p.x);
        top = std::min(top, p.y);
        right = std::max(right, p.x);
        bottom = std::max(bottom, p.y);
    };
    for (const PathElement& element : elements_) {
        std::visit(Overloaded{
                       [&](const MoveTo& e) { add(e.to); },
                       [&](const LineTo& e) { add(e.to); },
                       [&](const QuadTo& e) {
                           add(e.control);
                           add(e.to);
                       },
                       [&](const CubicTo& e) {
                           add(e.control1);
                           add(e.control2);
                           add(e.to);
                       },
                       [](const ClosePath&) {},
                       [&](const Oval& e) {
                           add(e.rect.origin());
                           add({e.rect.maxX(), e.rect.maxY()});
                       },
                       [&](const RoundedRect& e) {
                           add(e.rect.origin());
                           add({e.rect.maxX(), e.rect.maxY()});
                       },
                   },
                   element);
    }
    if (left > right) {
        return {};
    }
    return {left, top, right - left, bottom - top};
}

std::vector<std::vector<Point>> Path::polygons(int steps) const {
    std::vector<std::vector<Point>> out;
    std::vector<Point> current;
    Point start;
    Point last;
    const auto finish = [&] {
        if (current.size() > 1) {
            out.push_back(std::move(current));
        }
        current.clear();
    };
    const auto extend = [&](Point p) {
        if (current.empty()) {
            current.push_back(last);
        }
        current.push_back(p);
        last = p;
    };
    for (const PathElement& element : elements_) {
        std::visit(
            Overloaded{
                [&](const MoveTo& e) {
                    finish();
                    start = last = e.to;
                },
                [&](const LineTo& e) { extend(e.to); },
                [&](const QuadTo& e) {
                    const Point from = last;
                    for (int i = 1; i <= steps; ++i) {
                        extend(quadPoint(from, e.control, e.to, static_cast<double>(i) / steps));
                    }
                },
                [&](const CubicTo& e) {
                    const Point from = last;
                    for (int i = 1; i <= steps; ++i) {
                        extend(cubicPoint(from, e.control1, e.control2, e.to,
                                          static_cast<double>(i) / steps));
                    }
                },
                [&](const ClosePath&) {
                    finish();
                    last = start;
                },
                [&](const Oval& e) {
                    finish();
                    out.push_back(ovalPolygon(e.rect, steps));
                },
                [&](const RoundedRect& e) {
                    finish();
                    out.push_back(roundedPolygon(e.rect, e.radius, steps));
                },
            },
            element);
    }
    finish();
    return out;
}

bool Path::contains(Point p, FillRule rule) const {
    int winding = 0;
    for (const auto& polygon : polygons()) {
        for (size_t i = 0; i < polygon.size(); ++i) {
            const Point a = polygon[i];
            const Point b = polygon[(i + 1) % polygon.size()];
            const double side = (b.x - a.x) * (p.y - a.y) - (p.x - a.x) * (b.y - a.y);
            if (a.y <= p.y && b.y > p.y && side > 0) {
                ++winding;
            } else if (b.y <= p.y && a.y > p.y && side < 0) {
                --winding;
            }
        }
    }
    return rule == FillRule::winding ? winding != 0 : (winding % 2) != 0;
}

} // namespace scrimlet
