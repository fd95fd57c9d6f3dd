#pragma once

// The curtain of the dropdown's header: a stage behind two velvet curtains that draw back as
// `open` rises, under a valance of swags, with footlights that come on as the show goes live.

#include "Drawing.hpp"

#include <optional>
#include <vector>

namespace scrimlet {

/// The outline of a gathered curtain: a straight top, and an inner edge that curves in to a
/// waist at 0.55 of the height and out again to the bottom. At `gather` 0 it is the whole
/// rectangle.
struct TieBack {
    double gather = 0;
    /// The curtain hanging at the trailing edge, its inner edge on the left.
    bool trailingEdge = false;

    Path path(const Rect& in) const;
};

/// A row of half-loops along the bottom of a rectangle, each spanning width / `count`.
struct Swags {
    int count = 7;

    /// The filled shape: the top of the rectangle down to the loops.
    Path path(const Rect& in) const;
    /// The loops alone, as an open line along the lower edge.
    Path edge(const Rect& in) const;
};

/// One curtain: 13 folds of velvet, shaded from above and below, gathered into a tie-back.
struct Velvet {
    static constexpr int folds = 13;

    double gather = 0;
    bool trailingEdge = false;

    /// For each fold, five colours at 0, 0.35, 0.55, 0.75 and 1 of the fold: deep, mid,
    /// high, mid, deep.
    static std::vector<GradientStop> foldStops(int n);
    void draw(Canvas& canvas, const Rect& rect) const;
};

/// The swags across the top of the stage, edged below with a line of light.
struct Valance {
    static constexpr double height = 46;

    void draw(Canvas& canvas, const Rect& rect) const;
};

/// A row of small lamps spread evenly along the front of the stage.
struct Footlights {
    static constexpr int lamps = 9;
    static constexpr Size lamp{9, 3};

    bool lit = false;

    std::vector<Rect> lampRects(const Rect& row) const;
    void draw(Canvas& canvas, const Rect& row) const;
};

/// The whole header: stage, curtains, content and valance, clipped to a rounded card.
struct Proscenium {
    /// 0 closed, 1 open.
    double open = 0;
    /// 0 to 1: how strongly the stage is lit from above.
    double lit = 0;
    double height = 148;
    /// What stands on the stage, seen once the curtains part (above `open` 0.3).
    std::optional<Drawing> stage;
    /// What is written on the closed curtain (below `open` 0.05).
    std::optional<Drawing> front;

    /// The width of each curtain: half the stage narrowing to a fifth of that as the curtain
    /// opens, but never below 26, so that a strip always hangs at the edges.
    static double curtainWidth(double width, double open);
    bool showsStage() const { return open > 0.3; }
    bool showsFront() const { return open < 0.05; }
    bool footlightsLit() const { return open > 0.9; }

    Drawing drawing(double width, Appearance appearance) const;
};

} // namespace scrimlet
