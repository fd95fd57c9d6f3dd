#pragma once

// Points, sizes and rectangles, in points, with the origin at the top left and y growing
// downward: the screens' global coordinates (origin at the top left of the main display),
// as window bounds come in, and the drawings' coordinates. Plain values.

#include <algorithm>
#include <optional>

namespace scrimlet {

struct Point {
    double x = 0;
    double y = 0;

    friend Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
    friend Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    double width = 0;
    double height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    static Rect of(Size size) { return {0, 0, size.width, size.height}; }

    double minX() const { return x; }
    double midX() const { return x + width * 0.5; }
    double maxX() const { return x + width; }
    double minY() const { return y; }
    double midY() const { return y + height * 0.5; }
    double maxY() const { return y + height; }
    Point origin() const { return {x, y}; }
    Point center() const { return {midX(), midY()}; }
    Size size() const { return {width, height}; }
    /// The point at (u, v) in unit coordinates of this rectangle.
    Point unit(double u, double v) const { return {x + width * u, y + height * v}; }
    Rect insetBy(double dx, double dy) const {
        return {x + dx, y + dy, width - 2 * dx, height - 2 * dy};
    }
    Rect offsetBy(double dx, double dy) const { return {x + dx, y + dy, width, height}; }
    bool contains(Point p) const { return p.x >= x && p.x < maxX() && p.y >= y && p.y < maxY(); }
    /// A rectangle of `size` centred on this one's centre.
    Rect centered(Size size) const {
        return {midX() - size.width * 0.5, midY() - size.height * 0.5, size.width, size.height};
    }
    /// The overlap of two rectangles; nothing when they do not overlap.
    std::optional<Rect> intersection(const Rect& other) const {
        const double left = std::max(x, other.x);
        const double top = std::max(y, other.y);
        const double right = std::min(maxX(), other.maxX());
        const double bottom = std::min(maxY(), other.maxY());
        if (!(right > left) || !(bottom > top)) {
            return std::nullopt;
        }
        return Rect{left, top, right - left, bottom - top};
    }
    bool intersects(const Rect& other) const { return intersection(other).has_value(); }
    bool isEmpty() const { return !(width > 0) || !(height > 0); }

    friend bool operator==(const Rect&, const Rect&) = default;
};

} // namespace scrimlet
