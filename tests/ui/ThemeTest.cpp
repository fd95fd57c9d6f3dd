#include "Theme.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace scrimlet {
namespace {

TEST(Theme, AdaptiveColoursFollowTheAppearance) {
    // The system's best match decides; anything but dark aqua, or nothing, is light.
    EXPECT_EQ(appearanceFromBestMatch("NSAppearanceNameDarkAqua"), Appearance::dark);
    for (const char* name : {"NSAppearanceNameAqua", "", "NSAppearanceNameVibrantDark"}) {
        EXPECT_EQ(appearanceFromBestMatch(name), Appearance::light) << name;
    }

    const AdaptiveColor all[] = {
        Theme::canvas,    Theme::panel,  Theme::well,       Theme::ink,  Theme::ink2,
        Theme::ink3,      Theme::rule,   Theme::ruleStrong, Theme::wash, Theme::light,
        Theme::lightSoft, Theme::velvet, Theme::velvetSoft, Theme::sage};
    for (const AdaptiveColor& color : all) {
        EXPECT_NE(color.resolve(Appearance::light), color.resolve(Appearance::dark));
    }
    // The dark canvas is the cover's fallback colour, 21, 16, 13.
    EXPECT_EQ(Theme::canvas.resolve(Appearance::dark), Color::rgb255(21, 16, 13));
    EXPECT_EQ(Theme::canvas.resolve(Appearance::light), Color::hex(0xF3ECE1));
    // Ink and its softer steps share one hue per side and differ only in opacity.
    EXPECT_EQ(Theme::ink2.resolve(Appearance::light), Color::hex(0x231A14, 0.68));
    EXPECT_EQ(Theme::ink2.resolve(Appearance::dark), Color::hex(0xF3E8D8, 0.7));
    EXPECT_EQ(Theme::ruleStrong.resolve(Appearance::light).alpha, 0.2);
    EXPECT_EQ(Theme::ruleStrong.resolve(Appearance::dark).alpha, 0.22);
    // lightSoft keeps the warm light on both sides; only its strength changes.
    EXPECT_EQ(Theme::lightSoft.resolve(Appearance::light), Color::hex(0xF5B451, 0.2));
    EXPECT_EQ(Theme::lightSoft.resolve(Appearance::dark), Color::hex(0xF5B451, 0.16));

    EXPECT_EQ(Theme::onAir, Color::hex(0xE5484D));
    EXPECT_EQ(Theme::brandLight, Theme::lightFill);
    EXPECT_EQ(Theme::Typo::kicker.width, FontWidth::condensed);
    EXPECT_EQ(Theme::Typo::cue.design, FontDesign::monospaced);
}

TEST(Theme, ReducedMotionFadesViewsAndStopsTheCurtain) {
    EXPECT_EQ(Motion::forView(Motion::snappy, false), Motion::snappy);
    EXPECT_EQ(Motion::forView(Motion::snappy, true), Motion::fade);
    EXPECT_EQ(Motion::forView(Motion::curtain, true), Motion::fade);
    EXPECT_EQ(Motion::forCurtain(false), Motion::curtain);
    EXPECT_EQ(Motion::forCurtain(true), std::nullopt);

    // A spring's physical form oscillates with its response and keeps its damping fraction.
    for (const Animation& spring : {Motion::snappy, Motion::curtain}) {
        const SpringParameters p = Motion::springParameters(spring);
        EXPECT_NEAR(2 * std::numbers::pi / std::sqrt(p.stiffness / p.mass), spring.response, 1e-12);
        EXPECT_NEAR(p.damping / (2 * std::sqrt(p.stiffness * p.mass)), spring.dampingFraction,
                    1e-12);
    }
}

TEST(Theme, EstimatedTextCountsCharactersNotBytes) {
    const Font body = Theme::Typo::body;
    EXPECT_EQ(estimateTextSize("Cue › next…", body).width,
              estimateTextSize("Cue > next.", body).width);
    EXPECT_GT(estimateTextSize("STANDBY", body.tracked(4)).width,
              estimateTextSize("STANDBY", body).width);
    EXPECT_LT(estimateTextSize("STANDBY", Theme::Typo::kicker).width,
              estimateTextSize("STANDBY", Font::system(10, FontWeight::bold)).width);
    EXPECT_DOUBLE_EQ(estimateTextSize("", body).width, 0);
    EXPECT_DOUBLE_EQ(estimateTextSize("x", body).height, body.lineHeight());
}

} // namespace
} // namespace scrimlet
