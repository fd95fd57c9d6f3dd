#include "BackdropView.hpp"
#include "Curtain.hpp"
#include "ImageFillView.hpp"
#include "MenuGlyph.hpp"
#include "SceneCards.hpp"
#include "SpotlightView.hpp"

#include "DrawingPrinters.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace scrimlet {
namespace {

using Kind = BackdropStyle::Kind;

BackdropStyle style(Kind kind, std::vector<std::uint32_t> colors, double angle = 135) {
    BackdropStyle s;
    s.kind = kind;
    s.colors = std::move(colors);
    s.angle = angle;
    s.dim = 0.3;
    return s;
}

TEST(MenuGlyph, DrawsTheGivenGeometryForEachPhase) {
    EXPECT_EQ(MenuGlyph::size(true), (Size{22, 16}));
    EXPECT_EQ(MenuGlyph::size(false), (Size{18, 16}));
    EXPECT_TRUE(MenuGlyph::isTemplate(false));
    EXPECT_FALSE(MenuGlyph::isTemplate(true));
    EXPECT_EQ(MenuGlyph::accessibilityDescription(true), "Scrimlet: on stage");
    EXPECT_EQ(MenuGlyph::accessibilityDescription(false), "Scrimlet");

    // The gap between the drapes, measured in the middle of the arch (y 8 up, 8 down).
    const auto gap = [](bool standby) {
        const auto fills = MenuGlyph::drawing(false, standby, Appearance::light).all<FillOp>();
        EXPECT_EQ(fills.size(), 3u); // floor, two drapes
        return fills[2].path.controlBounds().minX() - fills[1].path.controlBounds().maxX();
    };
    EXPECT_NEAR(gap(false), 0.8, 1e-9);
    EXPECT_NEAR(gap(true), 4.4, 1e-9);

    // Drawn y downward: the floor lies at the bottom, the arch's top near the top edge.
    const Drawing dark = MenuGlyph::drawing(false, false, Appearance::dark);
    const Rect floor = dark.all<FillOp>()[0].path.controlBounds();
    EXPECT_NEAR(floor.y, 13.6, 1e-9);
    EXPECT_NEAR(floor.maxY(), 15, 1e-9);
    EXPECT_EQ(floor.width, 16);
    EXPECT_EQ(dark.all<StrokeOp>()[0].width, 1.4);
    EXPECT_EQ(std::get<Color>(dark.all<FillOp>()[1].paint), Color::black());

    // Live: the drapes are tied back, the ink follows the label colour, the lamp is on air.
    const Drawing live = MenuGlyph::drawing(true, false, Appearance::dark);
    const auto fills = live.all<FillOp>();
    ASSERT_EQ(fills.size(), 4u);
    EXPECT_EQ(fills[3].path, Path::oval({16.5, 1, 5.5, 5.5}));
    EXPECT_EQ(std::get<Color>(fills[3].paint), Theme::onAir);
    EXPECT_EQ(std::get<Color>(fills[1].paint), Color::white(0.85));
    EXPECT_FALSE(fills[1].path.contains({6, 12})); // drawn back at the bottom
    EXPECT_TRUE(fills[1].path.contains({4, 12}));
    // The drapes are clipped to the inside of the arch.
    EXPECT_EQ(live.all<ClipOp>().size(), 1u);

    // A template takes the bar's colour; the live glyph is shown as it is.
    const auto shownInk = [](Appearance appearance) {
        return std::get<Color>(MenuGlyph::asShown(false, true, appearance).all<FillOp>()[1].paint);
    };
    EXPECT_EQ(shownInk(Appearance::dark), Color::white());
    EXPECT_EQ(shownInk(Appearance::light), Color::black());
    EXPECT_EQ(MenuGlyph::asShown(true, false, Appearance::light),
              MenuGlyph::drawing(true, false, Appearance::light));
}

TEST(Curtain, OpensToStripsThatNeverVanish) {
    // Open, each curtain keeps a fifth of half the width, and never less than 26.
    EXPECT_DOUBLE_EQ(Proscenium::curtainWidth(360, 0), 180);
    EXPECT_DOUBLE_EQ(Proscenium::curtainWidth(360, 1), 36);
    EXPECT_DOUBLE_EQ(Proscenium::curtainWidth(360, 0.5), 108);
    EXPECT_DOUBLE_EQ(Proscenium::curtainWidth(200, 1), 26);
    EXPECT_DOUBLE_EQ(Proscenium::curtainWidth(40, 0), 26);

    Canvas marker({360, 148});
    marker.fill(Rect{170, 60, 20, 20}, Color::white());
    const Drawing content = marker.finish();
    const auto shows = [&](double open) {
        Proscenium p{open, 1, 148, content, content};
        const auto fills = p.drawing(360, Appearance::dark).all<FillOp>();
        return std::count(fills.begin(), fills.end(), content.all<FillOp>()[0]);
    };
    // The stage content appears above 0.3, the front content below 0.05: never both.
    EXPECT_EQ(shows(0), 1);
    EXPECT_EQ(shows(0.05), 0);
    EXPECT_EQ(shows(0.3), 0);
    EXPECT_EQ(shows(0.31), 1);
    EXPECT_EQ(shows(1), 1);

    // Footlights light above 0.9: a lit row casts a shadow, an unlit one is faint.
    const auto footlightShadows = [](double open) {
        int count = 0;
        for (const auto& group :
             Proscenium{open, 0, 148, {}, {}}.drawing(360, Appearance::light).all<BeginGroupOp>()) {
            count += group.shadow && group.shadow->color.red == Theme::lightFill.red;
        }
        return count;
    };
    EXPECT_EQ(footlightShadows(0.9), 0);
    EXPECT_EQ(footlightShadows(0.95), 1);

    // The two curtains: the leading one at the left edge, the trailing at the right, each
    // casting its shadow toward the stage.
    const Drawing open = Proscenium{1, 1, 148, {}, {}}.drawing(360, Appearance::dark);
    std::vector<Shadow> velvetShadows;
    for (const auto& group : open.all<BeginGroupOp>()) {
        if (group.shadow && group.shadow->color == Color::black(0.5)) {
            velvetShadows.push_back(*group.shadow);
        }
    }
    ASSERT_EQ(velvetShadows.size(), 2u);
    EXPECT_EQ(velvetShadows[0].offset, (Point{2, 0}));
    EXPECT_EQ(velvetShadows[1].offset, (Point{-2, 0}));
    const auto clips = open.all<ClipOp>();
    EXPECT_NEAR(clips[1].path.controlBounds().minX(), 0, 1e-9);
    EXPECT_NEAR(clips[1].path.controlBounds().maxX(), 36, 1e-9);
    EXPECT_NEAR(clips[2].path.controlBounds().minX(), 324, 1e-9);
    EXPECT_NEAR(clips[2].path.controlBounds().maxX(), 360, 1e-9);
}

TEST(Curtain, VelvetFoldsAndTieBacks) {
    const auto stops = Velvet::foldStops(13);
    ASSERT_EQ(stops.size(), 65u);
    EXPECT_EQ(stops[0].color, Theme::velvetDeep);
    EXPECT_EQ(stops[2].color, Theme::velvetHi);
    EXPECT_DOUBLE_EQ(stops[2].location, 0.55 / 13);
    EXPECT_DOUBLE_EQ(stops[5].location, 1.0 / 13);
    EXPECT_DOUBLE_EQ(stops.back().location, 1);
    for (size_t i = 1; i < stops.size(); ++i) {
        EXPECT_LE(stops[i - 1].location, stops[i].location);
    }

    // Gathered, the inner edge is drawn in at the waist and flares out toward the floor.
    const Rect rect{0, 0, 100, 200};
    const Path loose = TieBack{0, false}.path(rect);
    const Path tied = TieBack{1, false}.path(rect);
    EXPECT_TRUE(loose.contains({95, 110}));
    EXPECT_FALSE(tied.contains({95, 110}));
    EXPECT_TRUE(tied.contains({40, 110}));
    EXPECT_TRUE(tied.contains({95, 2})); // the top stays straight and full
    EXPECT_TRUE(tied.contains({65, 198}));
    // The trailing curtain is its mirror image.
    const Path trailing = TieBack{1, true}.path(rect);
    EXPECT_FALSE(trailing.contains({5, 110}));
    EXPECT_TRUE(trailing.contains({60, 110}));

    // The swags hang as many loops as asked, their lowest points on the bottom edge.
    const Path swags = Swags{4}.path({0, 0, 200, 40});
    EXPECT_TRUE(swags.contains({25, 39}));
    EXPECT_FALSE(swags.contains({50, 35}));
    EXPECT_NEAR(swags.controlBounds().maxY(), 52, 1e-9);
}

TEST(Backdrop, ColourRulesOfEachKind) {
    const Color pad = Color::rgb255(21, 16, 13);
    const Size size{400, 300};

    // An empty colour list fills with 21, 16, 13.
    const Drawing empty = BackdropView{style(Kind::color, {}), {}, {}}.drawing(size);
    ASSERT_EQ(empty.ops.size(), 1u);
    EXPECT_EQ(std::get<Color>(empty.all<FillOp>()[0].paint), pad);
    EXPECT_EQ(BackdropView::colors(style(Kind::color, {0xFF123456})).front(), Color::hex(0x123456));

    // A one-colour gradient ends in 21, 16, 13; six colours use only the first two.
    const auto linear = [&](std::vector<std::uint32_t> colors, double angle) {
        const Drawing d = BackdropView{style(Kind::gradient, colors, angle), {}, {}}.drawing(size);
        EXPECT_EQ(d.ops.size(), 1u);
        return std::get<LinearGradient>(d.all<FillOp>()[0].paint);
    };
    const auto one = linear({0xFF0000}, 0);
    EXPECT_EQ(one.stops, evenStops({Color::hex(0xFF0000), pad}));
    const auto six = linear({1, 2, 3, 4, 5, 6}, 0);
    EXPECT_EQ(six.stops, evenStops({Color::hex(1), Color::hex(2)}));

    // Angle 0 runs from the left edge's centre to the right's; 90 from the bottom up.
    EXPECT_NEAR(one.start.x, 0, 1e-9);
    EXPECT_NEAR(one.start.y, 150, 1e-9);
    EXPECT_NEAR(one.end.x, 400, 1e-9);
    EXPECT_NEAR(one.end.y, 150, 1e-9);
    const auto up = BackdropView::gradientPoints(90);
    EXPECT_NEAR(up.first.x, 0.5, 1e-9);
    EXPECT_NEAR(up.first.y, 1, 1e-9);
    EXPECT_NEAR(up.second.y, 0, 1e-9);
    const auto diagonal = BackdropView::gradientPoints(135);
    EXPECT_NEAR(diagonal.first.x, 0.5 + 0.5 * std::sqrt(0.5), 1e-9);
    EXPECT_NEAR(diagonal.second.y, 0.5 - 0.5 * std::sqrt(0.5), 1e-9);

    // Six colours of mesh: the ground and three glows of the next three, fading to clear.
    const Drawing mesh =
        BackdropView{style(Kind::mesh, {1, 2, 3, 4, 5, 6}), {}, {}}.drawing({1000, 600});
    const auto fills = mesh.all<FillOp>();
    ASSERT_EQ(fills.size(), 4u);
    EXPECT_EQ(std::get<Color>(fills[0].paint), Color::hex(1));
    const auto glow = [&](int i) { return std::get<RadialGradient>(fills[i].paint); };
    EXPECT_EQ(glow(1).center, (Point{1000, 0}));
    EXPECT_DOUBLE_EQ(glow(1).endRadius, 950);
    EXPECT_EQ(glow(1).stops.front().color, Color::hex(2));
    EXPECT_EQ(glow(1).stops.back().color, Color::hex(2, 0));
    EXPECT_EQ(glow(2).center, (Point{150, 630}));
    EXPECT_DOUBLE_EQ(glow(2).endRadius, 950 * 0.9);
    EXPECT_EQ(glow(3).center, (Point{0, 0}));
    EXPECT_DOUBLE_EQ(glow(3).endRadius, 950 * 0.7);
    EXPECT_EQ(glow(3).stops.front().color, Color::hex(4));

    // Dim darkens pictures and wallpapers only, fallbacks included.
    const auto lastFill = [&](const BackdropView& view) {
        return view.drawing(size).all<FillOp>().back();
    };
    EXPECT_EQ(std::get<Color>(lastFill({style(Kind::picture, {1, 2, 3, 4}), {}, {}}).paint),
              Color::black(0.3));
    const BackdropView noPath{style(Kind::picture, {1, 2, 3, 4}), {}, ImageRef{"a.png", {8, 8}}};
    EXPECT_EQ(noPath.drawing(size).all<ImageOp>().size(), 0u); // no path, no picture
    EXPECT_EQ(noPath.drawing(size).all<FillOp>().size(), 5u);  // the mesh and the dim
    for (const Kind kind : {Kind::color, Kind::gradient, Kind::mesh}) {
        for (const FillOp& fill :
             BackdropView{style(kind, {1}), {}, {}}.drawing(size).all<FillOp>()) {
            EXPECT_NE(fill.paint, Paint(Color::black(0.3)));
        }
    }
}

TEST(Backdrop, PicturesAndWallpapersFillTheScreenOrFallBack) {
    const Size size{400, 300};
    BackdropStyle picture = style(Kind::picture, {});
    picture.picturePath = "/pictures/beach.png";
    const ImageRef beach{"/pictures/beach.png", {800, 400}};
    const Drawing withPicture = BackdropView{picture, {}, beach}.drawing(size);
    const auto images = withPicture.all<ImageOp>();
    ASSERT_EQ(images.size(), 1u);
    EXPECT_EQ(images[0].rect, (Rect{-100, 0, 600, 300}));
    EXPECT_EQ(withPicture.all<ClipOp>()[0].path, Path::rect({0, 0, 400, 300}));
    // An unreadable picture (none handed over) shows the mesh.
    EXPECT_EQ((BackdropView{picture, {}, {}}.drawing(size).all<FillOp>().size()), 5u);

    const BackdropStyle wallpaper = style(Kind::wallpaper, {});
    const Drawing blurred =
        BackdropView{wallpaper, ImageRef{"wallpaper", {1600, 1000}}, {}}.drawing(size);
    EXPECT_EQ(blurred.all<ImageOp>()[0].image, "wallpaper");
    // No wallpaper, or one without area: the grey-blue fallback from top to bottom.
    for (const auto& none : {std::optional<ImageRef>{}, std::optional<ImageRef>{{"w", {0, 0}}}}) {
        const auto fills = BackdropView{wallpaper, none, {}}.drawing(size).all<FillOp>();
        ASSERT_EQ(fills.size(), 2u);
        const auto gradient = std::get<LinearGradient>(fills[0].paint);
        EXPECT_EQ(gradient.start, (Point{200, 0}));
        EXPECT_EQ(gradient.end, (Point{200, 300}));
        EXPECT_EQ(gradient.stops.front().color, Color::rgb255(58, 58, 68));
        EXPECT_EQ(gradient.stops.back().color, Color::rgb255(23, 23, 28));
    }

    EXPECT_EQ(BackdropPreview::accessibilityLabel(BackdropStyle{}),
              "Backdrop preview: Mesh · Footlights");
    const Drawing preview =
        BackdropPreview{BackdropStyle{}, {}, {}}.drawing({480, 300}, Appearance::dark);
    EXPECT_EQ(preview.size, (Size{480, 300}));
    EXPECT_EQ(preview.all<StrokeOp>().back().paint, Paint(Theme::rule.dark));
}

TEST(Scenery, CoverFillsAndTheBlurShrinksFirst) {
    const Rect screen{0, 0, 1440, 900};
    // Aspect fill: the larger ratio wins, the picture is centred and overflows one way.
    EXPECT_EQ(ImageFillView::aspectFillRect({1000, 1000}, screen), (Rect{0, -270, 1440, 1440}));
    EXPECT_EQ(ImageFillView::aspectFillRect({2880, 1800}, screen), screen);
    EXPECT_EQ(ImageFillView::aspectFillRect({100, 400}, screen), (Rect{0, -2430, 1440, 5760}));
    EXPECT_EQ(ImageFillView::aspectFillRect({0, 0}, screen), std::nullopt);
    EXPECT_EQ(ImageFillView::aspectFillRect({100, -1}, screen), std::nullopt);

    // An image of no size draws only the fallback; no image at all, the same.
    const ImageFillView cover{ImageRef{"desktop.heic", {0, 0}}, ImageFillView::coverFallback};
    const Drawing plain = cover.drawing(screen.size());
    ASSERT_EQ(plain.ops.size(), 1u);
    EXPECT_EQ(std::get<Color>(plain.all<FillOp>()[0].paint), Color::rgb255(21, 16, 13));
    EXPECT_EQ(ImageFillView{}.drawing(screen.size()).all<FillOp>()[0].paint, Paint(Color::black()));
    const Drawing pictured =
        ImageFillView{ImageRef{"desktop.heic", {3000, 2000}}, ImageFillView::coverFallback}.drawing(
            screen.size());
    EXPECT_EQ(pictured.all<ImageOp>()[0].rect, (Rect{0, -30, 1440, 960}));

    // 1000 × 500 at most 1600: as it is. 3200 × 1600: halved, and radius 40 becomes 20.
    EXPECT_EQ(Wallpaper::blurPlan({0, 0, 1000, 500}, 40, 1600),
              (Wallpaper::BlurPlan{1, 40, {0, 0, 1000, 500}}));
    EXPECT_EQ(Wallpaper::blurPlan({0, 0, 3200, 1600}, 40, 1600),
              (Wallpaper::BlurPlan{0.5, 20, {0, 0, 1600, 800}}));
    EXPECT_EQ(Wallpaper::blurPlan({0, 0, 1600, 1600}, 40, 1600).scale, 1);
    EXPECT_EQ(Wallpaper::blurPlan({0, 0, 0, 0}, 40, 1600),
              (Wallpaper::BlurPlan{1, 40, {0, 0, 0, 0}}));
}

TEST(Scenery, SpotlightDiscFollowsThePointerAcrossScreens) {
    // Two screens side by side, the main one at the origin, in global coordinates, y up.
    const Size main{1440, 900};
    SpotlightView left{120, 0.55, {0, 0}, {1430, 850}};
    SpotlightView right{120, 0.55, {1440, 0}, {1430, 850}};
    EXPECT_EQ(left.center(main), (Point{1430, 50}));
    EXPECT_EQ(right.center(main), (Point{-10, 50}));
    // A screen above the main one, its origin at y 900.
    EXPECT_EQ((SpotlightView{120, 0.55, {0, 900}, {200, 1700}}.center(main)), (Point{200, 100}));

    const Drawing drawing = left.drawing(main);
    const auto fills = drawing.all<FillOp>();
    ASSERT_EQ(fills.size(), 2u);
    EXPECT_EQ(fills[0].rule, FillRule::evenOdd);
    EXPECT_FALSE(fills[0].path.contains({1430, 50}, fills[0].rule));
    EXPECT_TRUE(fills[0].path.contains({10, 890}, fills[0].rule));
    EXPECT_EQ(std::get<Color>(fills[0].paint), Color::black(0.55));
    const auto soft = std::get<RadialGradient>(fills[1].paint);
    EXPECT_EQ(soft.center, (Point{1430, 50}));
    EXPECT_DOUBLE_EQ(soft.startRadius, 120 * 0.82);
    EXPECT_DOUBLE_EQ(soft.endRadius, 120);
    EXPECT_EQ(soft.extend, GradientExtend::none);
    EXPECT_EQ(soft.stops.back().color, Color::black(0.55));
    EXPECT_EQ(drawing.all<ClipOp>()[0].path, Path::oval({1310, -70, 240, 240}));
}

TEST(Scenery, CountdownAndLockCards) {
    EXPECT_EQ(CountdownCard::accessibilityLabel(3), "Standby, 3");
    EXPECT_EQ(CountdownCard::valueAnimation(false), Animation::spring(0.5, 0.85, 0));
    EXPECT_EQ(CountdownCard::valueAnimation(true), Motion::fade);

    const Drawing count = CountdownCard{2}.drawing();
    EXPECT_EQ(count.size, (Size{300, 300}));
    auto texts = count.all<TextOp>();
    ASSERT_EQ(texts.size(), 3u);
    std::sort(texts.begin(), texts.end(),
              [](const TextOp& a, const TextOp& b) { return a.frame.y < b.frame.y; });
    EXPECT_EQ(texts[0].text, "STANDBY");
    EXPECT_EQ(texts[1].text, "2");
    EXPECT_EQ(texts[1].font.size, 120);
    EXPECT_TRUE(texts[1].font.monospacedDigits);
    EXPECT_EQ(texts[1].frame, CountdownCard::numberFrame());
    EXPECT_EQ(texts[2].text, "Scrimlet");
    // The stack is centred in the card, the number casting its glow.
    EXPECT_NEAR(texts[0].frame.minY() - 30, 270 - texts[2].frame.maxY(), 1e-9);
    EXPECT_EQ(count.all<BeginGroupOp>()[0].shadow->radius, 24);
    EXPECT_EQ(count.all<FillOp>()[0].path, Path::roundedRect({30, 30, 240, 240}, 28));
    // The number changes apart from the card: the background has no number in it.
    EXPECT_EQ(CountdownCard{2}.background().all<TextOp>().size(), 2u);
    EXPECT_EQ(CountdownCard{2}.number().size, CountdownCard::numberFrame().size());
    // The panel stands centred on the main screen, wherever that screen is.
    EXPECT_EQ(CountdownCard::panelOrigin({0, 0, 1440, 900}), (Point{570, 300}));
    EXPECT_EQ(CountdownCard::panelOrigin({-1920, 200, 1920, 1080}), (Point{-1110, 590}));

    // Other screens: only the darkness. The main screen: the card, centred, with its button.
    const Size screen{1440, 900};
    const auto other = LockCard{false}.layout(screen);
    EXPECT_EQ(other.doneButton, std::nullopt);
    ASSERT_EQ(other.drawing.ops.size(), 1u);
    EXPECT_EQ(std::get<Color>(other.drawing.all<FillOp>()[0].paint), Color::black(0.62));

    const auto main = LockCard{true}.layout(screen);
    ASSERT_TRUE(main.doneButton.has_value());
    EXPECT_NEAR(main.doneButton->midX(), 720, 1e-9);
    const auto card = main.drawing.all<FillOp>()[1].path.controlBounds();
    EXPECT_NEAR(card.midX(), 720, 1e-9);
    EXPECT_NEAR(card.midY(), 450, 1e-9);
    EXPECT_NEAR(main.doneButton->maxY(), card.maxY() - 32, 1e-9);
    const auto words = main.drawing.all<TextOp>();
    ASSERT_EQ(words.size(), 3u);
    EXPECT_EQ(words[0].text, "KEYBOARD LOCKED");
    EXPECT_EQ(words[1].text, "Wipe away. Every key is ignored until you click Done.");
    EXPECT_EQ(words[2].text, "Done cleaning");
    EXPECT_EQ(main.drawing.all<SymbolOp>()[0].name, "keyboard");
    // The card is as wide as its widest line, as the platform measures it, plus padding.
    const auto wide = LockCard{true}.layout(screen, [](std::string_view text, const Font& font) {
        return Size{text.size() * 10.0, font.lineHeight()};
    });
    const auto wideCard = wide.drawing.all<FillOp>()[1].path.controlBounds();
    EXPECT_NEAR(wideCard.width, LockCard::message.size() * 10.0 + 64, 1e-9);
}

} // namespace
} // namespace scrimlet
