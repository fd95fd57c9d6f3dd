#include "Drawing.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

TEST(Path, FillRulesDecideWhatAHoleIs) {
    // A rectangle with an oval inside, as a dimmed screen with its clear disc.
    Path path = Path::rect({0, 0, 100, 100});
    path.addOval({30, 30, 40, 40});
    EXPECT_TRUE(path.contains({50, 50}, FillRule::winding));
    EXPECT_FALSE(path.contains({50, 50}, FillRule::evenOdd));
    EXPECT_TRUE(path.contains({5, 5}, FillRule::evenOdd));
    EXPECT_FALSE(path.contains({150, 50}, FillRule::winding));
    // The oval's corners are outside it.
    EXPECT_TRUE(path.contains({32, 32}, FillRule::evenOdd));

    // A curve bulges where its control point pulls; an open outline closes back to its start.
    Path arch;
    arch.move({0, 10}).quad({10, -10}, {20, 10});
    EXPECT_TRUE(arch.contains({10, 5}));
    EXPECT_FALSE(arch.contains({10, -5}));
    EXPECT_EQ(arch.controlBounds(), (Rect{0, -10, 20, 20}));

    // Rounded corners cut the corner itself, and the radius never exceeds half a side.
    const Path rounded = Path::roundedRect({0, 0, 40, 20}, 50);
    EXPECT_FALSE(rounded.contains({0.5, 0.5}));
    EXPECT_TRUE(rounded.contains({20, 10}));
    EXPECT_TRUE(rounded.contains({10, 1}));
}

TEST(Path, MirrorsAndFlipsKeepShapes) {
    Path left;
    left.move({0, 0}).line({10, 0}).cubic({12, 5}, {8, 10}, {10, 20}).line({0, 20}).close();
    left.addOval({1, 1, 4, 2});
    const Path right = left.transformed(AxisTransform::mirrorX(50));
    EXPECT_EQ(right.controlBounds(), (Rect{88, 0, 12, 20}));
    EXPECT_EQ(std::get<Oval>(right.elements().back()).rect, (Rect{95, 1, 4, 2}));
    EXPECT_TRUE(right.contains({95, 10}));
    EXPECT_FALSE(right.contains({85, 10}));

    // y upward in a 16-high box becomes y downward.
    const Path flipped = Path().move({2, 2}).line({2, 10.5}).transformed(AxisTransform::flipY(16));
    EXPECT_EQ(flipped.elements()[0], PathElement(MoveTo{{2, 14}}));
    EXPECT_EQ(flipped.elements()[1], PathElement(LineTo{{2, 5.5}}));
}

TEST(Canvas, NestedDrawingsMoveWithEverythingTheyHold) {
    Canvas inner({20, 10});
    inner.fill(Path::rect({0, 0, 20, 10}),
               LinearGradient{{0, 0}, {20, 0}, evenStops({Color::white(), Color::black()})});
    inner.save();
    inner.clip(Path::oval({0, 0, 20, 10}));
    inner.fill(Path::rect({0, 0, 20, 10}), RadialGradient{{10, 5}, 0, 5, {}, GradientExtend::none});
    inner.restore();
    inner.text("Q1", Font::system(10), Color::black(), {0, 0, 20, 10});
    const Drawing part = inner.finish();

    Canvas outer({100, 100});
    outer.draw(part, {30, 40});
    const Drawing whole = outer.finish();
    ASSERT_EQ(whole.ops.size(), part.ops.size());
    const auto fills = whole.all<FillOp>();
    EXPECT_EQ(fills[0].path.controlBounds(), (Rect{30, 40, 20, 10}));
    const auto& linear = std::get<LinearGradient>(fills[0].paint);
    EXPECT_EQ(linear.start, (Point{30, 40}));
    EXPECT_EQ(linear.end, (Point{50, 40}));
    EXPECT_EQ(std::get<RadialGradient>(fills[1].paint).center, (Point{40, 45}));
    EXPECT_EQ(whole.all<ClipOp>()[0].path, Path::oval({30, 40, 20, 10}));
    EXPECT_EQ(whole.all<TextOp>()[0].frame, (Rect{30, 40, 20, 10}));

    // A template keeps only the opacity of what it draws.
    const Drawing tinted = templateTinted(part, Color::white());
    const auto tintedStops = std::get<LinearGradient>(tinted.all<FillOp>()[0].paint).stops;
    EXPECT_EQ(tintedStops[1].color, Color::white());
    EXPECT_EQ(tinted.all<TextOp>()[0].color, Color::white());
    EXPECT_EQ(templateTinted(part, Color::white(0.5)).all<TextOp>()[0].color, Color::white(0.5));

    EXPECT_EQ(evenStops({Color::black()}).front().location, 0);
    EXPECT_EQ(evenStops({Color::black(), Color::white(), Color::black()})[1].location, 0.5);
}

} // namespace
} // namespace scrimlet
