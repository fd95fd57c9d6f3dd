#pragma once

// The spotlight: a screen dimmed all over but for a soft-edged disc around the pointer.

#include "Drawing.hpp"

namespace scrimlet {

struct SpotlightView {
    /// The part of the disc's radius that fades into the darkness.
    static constexpr double softEdge = 0.18;

    /// The disc's radius in points.
    double radius = 110;
    /// The opacity of the darkness.
    double dim = 0.55;
    /// The origin of this view's screen and the pointer, both in the system's global screen
    /// coordinates as the pointer's location is read: y upward from the bottom left of the
    /// main screen.
    Point screenOrigin;
    Point pointer;

    /// The disc's centre in the view's own coordinates (y downward). On every screen but the
    /// pointer's it lies beyond the bounds, and the whole screen is dark.
    Point center(Size bounds) const;
    Drawing drawing(Size bounds) const;
};

/// The spotlight's tick: the views are drawn anew only when the pointer has moved, so that
/// a resting pointer costs no drawing.
class PointerWatch {
public:
    /// Where nothing has been seen yet.
    static constexpr Point atRest{-1, -1};

    /// Whether `now` differs from the last position seen, in either coordinate; remembers it.
    bool moved(Point now);
    void reset() { last_ = atRest; }
    Point last() const { return last_; }

private:
    Point last_ = atRest;
};

} // namespace scrimlet
