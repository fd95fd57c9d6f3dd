#include "Renderer.hpp"

#include "BackdropView.hpp"
#include "Curtain.hpp"
#include "ImageFillView.hpp"
#include "MenuGlyph.hpp"
#include "SceneCards.hpp"
#include "SpotlightView.hpp"

#include "AtomicFile.hpp"
#include "DrawingPrinters.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

namespace scrimlet {
namespace {

using render::Pixel;
using render::rasterize;
using testing::TempDir;

void PrintTo(const Pixel& p, std::ostream* out) {
    *out << "rgba(" << int(p.red) << ", " << int(p.green) << ", " << int(p.blue) << ", "
         << int(p.alpha) << ")";
}

// Within two steps on every channel: gradients and blending round.
::testing::AssertionResult near(const Pixel& actual, const Pixel& expected, int tolerance = 2) {
    const auto off = [&](int a, int b) { return std::abs(a - b) > tolerance; };
    if (off(actual.red, expected.red) || off(actual.green, expected.green) ||
        off(actual.blue, expected.blue) || off(actual.alpha, expected.alpha)) {
        std::ostringstream text;
        PrintTo(actual, &text);
        text << " is not ";
        PrintTo(expected, &text);
        return ::testing::AssertionFailure() << text.str();
    }
    return ::testing::AssertionSuccess();
}

Pixel opaque(const Color& c) {
    return {static_cast<std::uint8_t>(std::lround(c.red * 255)),
            static_cast<std::uint8_t>(std::lround(c.green * 255)),
            static_cast<std::uint8_t>(std::lround(c.blue * 255)), 255};
}

BackdropStyle style(BackdropStyle::Kind kind, std::vector<std::uint32_t> colors, double angle = 0) {
    BackdropStyle s;
    s.kind = kind;
    s.colors = std::move(colors);
    s.angle = angle;
    return s;
}

TEST(Render, BackdropsShowTheirColoursAndDirections) {
    const Size size{160, 100};
    const auto color = rasterize(
        BackdropView{style(BackdropStyle::Kind::color, {0x3366CC}), {}, {}}.drawing(size));
    EXPECT_EQ(color.width(), 160);
    EXPECT_EQ(color.height(), 100);
    for (const Point p : {Point{0, 0}, Point{80, 50}, Point{159, 99}}) {
        EXPECT_TRUE(near(color.atPoint(p), {0x33, 0x66, 0xCC, 255}));
    }
    // No colours at all: the dark canvas.
    EXPECT_TRUE(
        near(rasterize(BackdropView{style(BackdropStyle::Kind::color, {}), {}, {}}.drawing(size))
                 .atPoint({80, 50}),
             {21, 16, 13, 255}));

    // One colour, angle 0: from that colour at the left edge to 21, 16, 13 at the right.
    const auto gradient = rasterize(
        BackdropView{style(BackdropStyle::Kind::gradient, {0xFF0000}, 0), {}, {}}.drawing(size));
    EXPECT_TRUE(near(gradient.atPoint({0, 50}), {254, 0, 0, 255}, 3));
    EXPECT_TRUE(near(gradient.atPoint({159.5, 50}), {21, 16, 13, 255}, 3));
    int previous = 256;
    for (double x = 0; x < 160; x += 10) {
        const Pixel p = gradient.atPoint({x, 50});
        EXPECT_LT(p.red, previous) << x;
        previous = p.red;
        EXPECT_EQ(p, gradient.atPoint({x, 5})) << "no change from top to bottom at angle 0";
    }
    // Angle 90: the first colour at the bottom.
    const auto upward = rasterize(BackdropView{
        style(BackdropStyle::Kind::gradient, {0xFFFFFF, 0x000000}, 90),
        {},
        {}}.drawing(size));
    EXPECT_GT(upward.atPoint({80, 99}).red, 250);
    EXPECT_LT(upward.atPoint({80, 0}).red, 5);

    // The mesh: each corner glow leans toward its colour, the bottom glow near the left.
    const auto mesh = rasterize(BackdropView{
        style(BackdropStyle::Kind::mesh, {0x000000, 0xFF0000, 0x00FF00, 0x0000FF}),
        {},
        {}}.drawing(size));
    const Pixel topTrailing = mesh.atPoint({159, 0});
    const Pixel topLeading = mesh.atPoint({0, 0});
    const Pixel bottom = mesh.atPoint({24, 99});
    EXPECT_GT(topTrailing.red, topTrailing.blue);
    EXPECT_GT(topLeading.blue, 200);
    EXPECT_GT(bottom.green, bottom.red);
    EXPECT_GT(bottom.green, 150);
}

TEST(Render, PicturesFillTheirBoundsUnderTheDim) {
    TempDir dir;
    // A picture twice as wide as high: blue on the left half, green on the right.
    Canvas canvas({200, 100});
    canvas.fill(Rect{0, 0, 100, 100}, Color::hex(0x0000FF));
    canvas.fill(Rect{100, 0, 100, 100}, Color::hex(0x00FF00));
    const auto path = (dir / "halves.png").string();
    ASSERT_TRUE(render::writePng(canvas.finish(), path));
    const auto picture = render::loadImage(path);
    ASSERT_TRUE(picture.has_value());
    EXPECT_EQ(picture->size, (Size{200, 100}));
    EXPECT_EQ(render::loadImage((dir / "missing.png").string()), std::nullopt);
    files::writeAtomically(dir / "text.png", "not a picture");
    EXPECT_EQ(render::loadImage((dir / "text.png").string()), std::nullopt);

    // In a square the middle of the picture shows, cut at both sides.
    const auto cover =
        rasterize(ImageFillView{picture, ImageFillView::coverFallback}.drawing({100, 100}));
    EXPECT_TRUE(near(cover.atPoint({10, 50}), {0, 0, 255, 255}));
    EXPECT_TRUE(near(cover.atPoint({90, 50}), {0, 255, 0, 255}));
    EXPECT_TRUE(near(cover.atPoint({49, 99}), {0, 0, 255, 255}));
    // A picture named but unreadable: the fallback colour.
    const auto plain = rasterize(ImageFillView{ImageRef{(dir / "missing.png").string(), {10, 10}},
                                               ImageFillView::coverFallback}
                                     .drawing({100, 100}));
    EXPECT_TRUE(near(plain.atPoint({50, 50}), {21, 16, 13, 255}));

    BackdropStyle dimmed = style(BackdropStyle::Kind::picture, {});
    dimmed.picturePath = path;
    dimmed.dim = 0.5;
    const auto backdrop = rasterize(BackdropView{dimmed, {}, picture}.drawing({100, 100}));
    EXPECT_TRUE(near(backdrop.atPoint({10, 50}), {0, 0, 128, 255}));
}

TEST(Render, SpotlightIsClearAtThePointerAndDimElsewhere) {
    const Size screen{400, 300};
    // The pointer at (100, 200) global, y up: (100, 100) in the view.
    const SpotlightView view{60, 0.55, {0, 0}, {100, 200}};
    const auto spot = rasterize(view.drawing(screen));
    const std::uint8_t dim = 140; // 0.55 of 255
    EXPECT_EQ(spot.atPoint({100, 100}).alpha, 0);
    EXPECT_EQ(spot.atPoint({100 + 60 * 0.8, 100}).alpha, 0);
    for (const Point corner : {Point{0, 0}, Point{399, 0}, Point{0, 299}, Point{399, 299}}) {
        EXPECT_TRUE(near(spot.atPoint(corner), {0, 0, 0, dim}));
    }
    // The soft edge climbs from clear to the darkness within the outer 18 percent.
    const int middle = spot.atPoint({100 + 60 * 0.91, 100}).alpha;
    EXPECT_GT(middle, 30);
    EXPECT_LT(middle, 110);
    EXPECT_TRUE(near(spot.atPoint({100 + 61, 100}), {0, 0, 0, dim}));

    // The screen beside it, where the pointer is not: dark all over.
    const auto beside = rasterize(SpotlightView{60, 0.55, {400, 0}, {100, 200}}.drawing(screen));
    EXPECT_TRUE(near(beside.atPoint({0, 100}), {0, 0, 0, dim}));
    // Near the shared edge, each screen draws its part of the disc.
    const auto left = rasterize(SpotlightView{60, 0.55, {0, 0}, {395, 150}}.drawing(screen));
    const auto right = rasterize(SpotlightView{60, 0.55, {400, 0}, {395, 150}}.drawing(screen));
    EXPECT_EQ(left.atPoint({399, 150}).alpha, 0);
    EXPECT_EQ(right.atPoint({20, 150}).alpha, 0);
    EXPECT_TRUE(near(right.atPoint({100, 150}), {0, 0, 0, dim}));
}

TEST(Render, GlyphsShowTheirCurtainAndLamp) {
    const double scale = 8;
    const auto live = rasterize(MenuGlyph::drawing(true, false, Appearance::light), scale);
    EXPECT_EQ(live.width(), 22 * 8);
    EXPECT_EQ(live.height(), 16 * 8);
    EXPECT_TRUE(near(live.atPoint({19.25, 3.75}), opaque(Theme::onAir)));
    // Drawn back: the middle of the stage is open.
    EXPECT_EQ(live.atPoint({9, 8}).alpha, 0);

    const auto dark = rasterize(MenuGlyph::drawing(false, false, Appearance::light), scale);
    const auto standby = rasterize(MenuGlyph::drawing(false, true, Appearance::light), scale);
    EXPECT_EQ(dark.width(), 18 * 8);
    // The drape left of centre: closed when dark, open in standby.
    EXPECT_EQ(dark.atPoint({7.5, 8}).alpha, 255);
    EXPECT_EQ(standby.atPoint({7.5, 8}).alpha, 0);
    EXPECT_EQ(dark.atPoint({9, 8}).alpha, 0); // the thin gap itself
    // No lamp, and nothing red, unless live.
    EXPECT_EQ(dark.atPoint({17.5, 3}).alpha, 0);
    // As shown on a dark menu bar, a template glyph is white.
    const auto shown = rasterize(MenuGlyph::asShown(false, false, Appearance::dark), scale);
    EXPECT_TRUE(near(shown.atPoint({5, 8}), {255, 255, 255, 255}));
}

TEST(Render, CurtainOpensToItsEdgeStrips) {
    const auto curtain = [](double open) {
        return rasterize(Proscenium{open, open, 148, {}, {}}.drawing(360, Appearance::dark));
    };
    const auto isVelvet = [](Pixel p) { return p.red > p.green + 40 && p.red > 60; };
    const auto closed = curtain(0);
    const auto open = curtain(1);
    EXPECT_TRUE(isVelvet(closed.atPoint({180, 100})));
    EXPECT_TRUE(isVelvet(closed.atPoint({20, 100})));
    EXPECT_FALSE(isVelvet(open.atPoint({180, 100})));
    // The strips hang at both edges, 36 wide at this width; the waist tie pulls the inner
    // edge in, so probe near the outer edge.
    EXPECT_TRUE(isVelvet(open.atPoint({8, 100})));
    EXPECT_TRUE(isVelvet(open.atPoint({352, 100})));
    EXPECT_FALSE(isVelvet(open.atPoint({60, 100})));
    // The valance spans the top; the rounded corners are clear.
    EXPECT_TRUE(isVelvet(open.atPoint({180, 10})));
    EXPECT_EQ(open.atPoint({0, 0}).alpha, 0);
    // Lit footlights glow warm; unlit ones barely show.
    const Rect lamp = Footlights{true}.lampRects({0, 148 - 8, 360, 3})[4];
    const Pixel litLamp = open.atPoint(lamp.center());
    const Pixel darkLamp = curtain(0.5).atPoint(lamp.center());
    EXPECT_GT(litLamp.red, 240);
    EXPECT_LT(darkLamp.red, 120);
}

TEST(Render, CardsAndShadows) {
    const auto count = rasterize(CountdownCard{3}.drawing());
    EXPECT_EQ(count.atPoint({5, 5}).alpha, 0);
    EXPECT_TRUE(near(count.atPoint({40, 150}), {14, 10, 8, 235}));
    // Somewhere in the number's line, the digit glows in lightGlow.
    bool glowing = false;
    for (double x = 110; x < 190 && !glowing; x += 1) {
        glowing = near(count.atPoint({x, 150}), opaque(Theme::lightGlow), 6);
    }
    EXPECT_TRUE(glowing);

    const Size screen{800, 500};
    const auto other = rasterize(LockCard{false}.layout(screen, render::measureText).drawing);
    EXPECT_TRUE(near(other.atPoint({400, 250}), {0, 0, 0, 158}));
    const auto layout = LockCard{true}.layout(screen, render::measureText);
    const auto main = rasterize(layout.drawing);
    ASSERT_TRUE(layout.doneButton.has_value());
    EXPECT_TRUE(near(main.atPoint({layout.doneButton->x + 3, layout.doneButton->midY()}),
                     opaque(Theme::lightFill)));
    EXPECT_TRUE(near(main.atPoint({10, 10}), {0, 0, 0, 158}));

    // A shadowed group casts a soft shadow beside it, moved by its offset.
    Canvas canvas({100, 60});
    canvas.beginGroup(1, Shadow{Color::black(1), 6, {10, 0}});
    canvas.fill(Rect{20, 20, 20, 20}, Color::white());
    canvas.endGroup();
    const auto shadowed = rasterize(canvas.finish());
    EXPECT_TRUE(near(shadowed.atPoint({30, 30}), {255, 255, 255, 255}));
    EXPECT_GT(shadowed.atPoint({45, 30}).alpha, 200);
    EXPECT_LT(shadowed.atPoint({15, 30}).alpha, 40);
    EXPECT_EQ(shadowed.atPoint({70, 30}).alpha, 0);
    const int edge = shadowed.atPoint({51, 30}).alpha;
    EXPECT_GT(edge, 40);
    EXPECT_LT(edge, 220);
}

TEST(Render, TextMeasuresAsItDrawsAndPngsAreWritten) {
    const Font body = Theme::Typo::body;
    const Size plain = render::measureText("Done cleaning", body);
    EXPECT_GT(plain.width, 50);
    EXPECT_LT(plain.width, 130);
    EXPECT_GT(plain.height, 12);
    // Tracking widens every gap between the 13 characters.
    const double tracked = render::measureText("Done cleaning", body.tracked(2)).width;
    EXPECT_GE(tracked, plain.width + 12 * 2 - 0.01);
    EXPECT_LE(tracked, plain.width + 13 * 2 + 0.01);
    EXPECT_LT(
        render::measureText("KEYBOARD", Font::system(24, FontWeight::heavy, FontWidth::condensed))
            .width,
        render::measureText("KEYBOARD", Font::system(24, FontWeight::heavy)).width);

    TempDir dir;
    const auto file = dir / "deep" / "glyph.png";
    ASSERT_TRUE(render::writePng(MenuGlyph::drawing(true, false, Appearance::dark), file, 4));
    const auto bytes = files::read(file);
    ASSERT_TRUE(bytes.has_value());
    EXPECT_EQ(bytes->substr(1, 3), "PNG");
    EXPECT_EQ(render::loadImage(file.string())->size, (Size{88, 64}));
    EXPECT_FALSE(render::writePng(MenuGlyph::drawing(true, false, Appearance::dark), dir.path()));
}

} // namespace
} // namespace scrimlet
