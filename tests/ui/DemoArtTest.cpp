#include "DemoArt.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace scrimlet {
namespace {

/// The colour a drawing of plain fills paints at `point`: the last fill that covers it, with
/// a linear gradient read off along its axis.
Color paintAt(const Drawing& drawing, Point point) {
    const auto fills = drawing.all<FillOp>();
    for (auto fill = fills.rbegin(); fill != fills.rend(); ++fill) {
        if (!fill->path.contains(point, fill->rule)) {
            continue;
        }
        if (const auto* color = std::get_if<Color>(&fill->paint)) {
            return *color;
        }
        const auto& gradient = std::get<LinearGradient>(fill->paint);
        const Point axis = gradient.end - gradient.start;
        const Point along = point - gradient.start;
        const double t = std::clamp(
            (axis.x * along.x + axis.y * along.y) / (axis.x * axis.x + axis.y * axis.y), 0.0, 1.0);
        const auto& stops = gradient.stops;
        for (std::size_t i = 1; i < stops.size(); ++i) {
            if (t <= stops[i].location) {
                const double u =
                    (t - stops[i - 1].location) / (stops[i].location - stops[i - 1].location);
                const Color& a = stops[i - 1].color;
                const Color& b = stops[i].color;
                return {a.red + (b.red - a.red) * u, a.green + (b.green - a.green) * u,
                        a.blue + (b.blue - a.blue) * u, a.alpha + (b.alpha - a.alpha) * u};
            }
        }
        return stops.back().color;
    }
    return Color::clear();
}

void expectColor(const Color& actual, const Color& expected, const char* where) {
    EXPECT_NEAR(actual.red, expected.red, 0.01) << where;
    EXPECT_NEAR(actual.green, expected.green, 0.01) << where;
    EXPECT_NEAR(actual.blue, expected.blue, 0.01) << where;
}

TEST(DemoArt, TheWallpaperIsASkyOverABandOfHillsAtAnySize) {
    for (const Size size : {Size{1512, 982}, Size{3024, 1964}, Size{600, 1000}}) {
        const Drawing art = DemoArt::wallpaper(size);
        EXPECT_EQ(art.size, size);
        const double w = size.width;
        const double h = size.height;
        // The sky runs straight down through the three colours.
        expectColor(paintAt(art, {w * 0.5, 0.5}), DemoArt::skyTop, "top");
        expectColor(paintAt(art, {w * 0.1, h * 0.5}), DemoArt::skyMiddle, "middle");
        expectColor(paintAt(art, {w * 0.9, h * 0.5}), DemoArt::skyMiddle, "middle right");
        const auto fills = art.all<FillOp>();
        ASSERT_EQ(fills.size(), 3u);
        const auto sky = std::get<LinearGradient>(fills.front().paint);
        EXPECT_EQ(sky.stops.back().color, DemoArt::skyBottom);
        EXPECT_EQ(sky.start.x, sky.end.x);

        // Only the lower band holds hills, near ones at the bottom, reaching both edges.
        for (std::size_t i = 1; i < fills.size(); ++i) {
            const Rect bounds = fills[i].path.controlBounds();
            EXPECT_GE(bounds.minY(), h * DemoArt::hillsTop) << size.width;
            EXPECT_EQ(bounds.minX(), 0);
            EXPECT_EQ(bounds.maxX(), w);
            EXPECT_EQ(bounds.maxY(), h);
        }
        for (const double x : {0.01, 0.25, 0.5, 0.75, 0.99}) {
            expectColor(paintAt(art, {w * x, h - 1}), DemoArt::nearHills, "foot");
            expectColor(paintAt(art, {w * x, h * 0.6}), paintAt(art, {w * 0.5, h * 0.6}), "sky");
        }
        // Somewhere the far hills rise above the near ones.
        bool farSeen = false;
        for (double x = 0; x < w; x += w / 50) {
            farSeen = farSeen || paintAt(art, {x, h * 0.75}) == DemoArt::farHills;
        }
        EXPECT_TRUE(farSeen) << size.width;
    }
    // The same landscape at twice the size.
    const auto small = DemoArt::wallpaper({800, 500}).all<FillOp>()[2].path.controlBounds();
    const auto large = DemoArt::wallpaper({1600, 1000}).all<FillOp>()[2].path.controlBounds();
    EXPECT_EQ(large, (Rect{small.x * 2, small.y * 2, small.width * 2, small.height * 2}));
}

TEST(DemoArt, TheFilmsGroundFollowsItsColours) {
    const Size size{1280, 720};
    const Color velvet = Color::rgb255(122, 20, 38);
    const Color stage = Color::rgb255(14, 10, 8);
    const Drawing two = DemoArt::filmBackdrop(size, {velvet, stage});
    expectColor(paintAt(two, {10, 0}), velvet, "top");
    expectColor(paintAt(two, {1270, 719.9}), stage, "bottom");
    EXPECT_EQ(paintAt(DemoArt::filmBackdrop(size, {velvet}), {640, 360}), velvet);
    EXPECT_EQ(paintAt(DemoArt::filmBackdrop(size, {}), {640, 360}), Color::black());
}

TEST(DemoArt, TheCursorPointsWithItsTipAndAClickRingsAndFades) {
    const Size film{1000, 800};
    const Drawing plain = DemoArt::cursor(film, {300, 200}, 2, std::nullopt);
    const auto body = plain.all<FillOp>();
    ASSERT_EQ(body.size(), 1u);
    const Rect arrow = body[0].path.controlBounds();
    EXPECT_EQ(arrow.origin(), (Point{300, 200}));
    EXPECT_EQ(arrow.size(), (Size{24, 39}));
    EXPECT_TRUE(body[0].path.contains({302, 210}));
    EXPECT_FALSE(body[0].path.contains({299, 210}));
    EXPECT_EQ(body[0].paint, Paint(Color::white()));
    EXPECT_TRUE(plain.all<StrokeOp>().size() == 1 && plain.all<BeginGroupOp>()[0].shadow);

    // The ring grows from the tip and fades; at the end of its life it is gone.
    const auto ring = [&](double t) {
        return DemoArt::cursor(film, {300, 200}, 2, t).all<StrokeOp>().front();
    };
    const StrokeOp early = ring(0.1);
    const StrokeOp late = ring(0.8);
    EXPECT_EQ(early.path.controlBounds().center(), (Point{300, 200}));
    EXPECT_GT(late.path.controlBounds().width, early.path.controlBounds().width);
    EXPECT_GT(std::get<Color>(early.paint).alpha, std::get<Color>(late.paint).alpha);
    EXPECT_EQ(DemoArt::cursor(film, {300, 200}, 2, 1.0).all<StrokeOp>().size(), 1u);
}

} // namespace
} // namespace scrimlet
