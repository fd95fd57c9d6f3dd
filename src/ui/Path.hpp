#pragma once

// An outline made of lines, quadratic and cubic curves, ovals and rounded rectangles, in the
// drawings' coordinates (y downward). A plain value that both platforms turn into their own
// path, element by element.

#include "Geometry.hpp"

#include <variant>
#include <vector>

namespace scrimlet {

/// Which parts of a path with crossings or holes count as inside.
enum class FillRule { winding, evenOdd };

struct MoveTo {
    Point to;
    friend bool operator==(const MoveTo&, const MoveTo&) = default;
};
struct LineTo {
    Point to;
    friend bool operator==(const LineTo&, const LineTo&) = default;
};
struct QuadTo {
    Point control;
    Point to;
    friend bool operator==(const QuadTo&, const QuadTo&) = default;
};
struct CubicTo {
    Point control1;
    Point control2;
    Point to;
    friend bool operator==(const CubicTo&, const CubicTo&) = default;
};
struct ClosePath {
    friend bool operator==(const ClosePath&, const ClosePath&) = default;
};
/// A closed ellipse inscribed in the rectangle, as its own subpath.
struct Oval {
    Rect rect;
    friend bool operator==(const Oval&, const Oval&) = default;
};
/// A closed rectangle with circular corners, as its own subpath. The radius is clamped to
/// half the shorter side.
struct RoundedRect {
    Rect rect;
    double radius = 0;
    friend bool operator==(const RoundedRect&, const RoundedRect&) = default;
};

using PathElement = std::variant<MoveTo, LineTo, QuadTo, CubicTo, ClosePath, Oval, RoundedRect>;

/// x' = scaleX × x + moveX, y' = scaleY × y + moveY: moves, mirrors and flips, which keep
/// ovals ovals and rectangles rectangles.
struct AxisTransform {
    double scaleX = 1;
    double moveX = 0;
    double scaleY = 1;
    double moveY = 0;

    static AxisTransform translation(double dx, double dy) { return {1, dx, 1, dy}; }
    /// Mirrors across the vertical line x = axis.
    static AxisTransform mirrorX(double axis) { return {-1, 2 * axis, 1, 0}; }
    /// Turns y-upward coordinates in a box of `height` into y-downward ones.
    static AxisTransform flipY(double height) { return {1, 0, -1, height}; }

    Point apply(Point p) const { return {scaleX * p.x + moveX, scaleY * p.y + moveY}; }
    Rect apply(const Rect& r) const;

    friend bool operator==(const AxisTransform&, const AxisTransform&) = default;
};

class Path {
public:
    Path() = default;
    static Path rect(const Rect& rect);
    static Path oval(const Rect& rect);
    static Path roundedRect(const Rect& rect, double radius);

    Path& move(Point to);
    Path& line(Point to);
    Path& quad(Point control, Point to);
    Path& cubic(Point control1, Point control2, Point to);
    Path& close();
    Path& addRect(const Rect& rect);
    Path& addOval(const Rect& rect);
    Path& addRoundedRect(const Rect& rect, double radius);
    Path& addPath(const Path& other);

    const std::vector<PathElement>& elements() const { return elements_; }
    bool isEmpty() const { return elements_.empty(); }

    Path transformed(const AxisTransform& transform) const;
    /// The smallest rectangle around every point and control point.
    Rect controlBounds() const;
    /// The outline as closed polygons, curves cut into `steps` straight pieces each. What is
    /// left open is closed back to its start, as a fill does.
    std::vector<std::vector<Point>> polygons(int steps = 24) const;
    /// Whether a fill of the path would cover the point.
    bool contains(Point point, FillRule rule = FillRule::winding) const;

    friend bool operator==(const Path&, const Path&) = default;

private:
    std::vector<PathElement> elements_;
};

} // namespace scrimlet
