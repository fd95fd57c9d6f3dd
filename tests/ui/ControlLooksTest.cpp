#include "ControlLooks.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

TEST(ControlLooks, TheLampTravelsInsideItsCapsuleAndLightsUp) {
    const LampToggleLook off = LampToggleLook::at(0);
    EXPECT_EQ(off.track, (Rect{0, 0, 34, 18}));
    EXPECT_EQ(off.lamp, (Rect{3, 3, 12, 12}));
    EXPECT_EQ(off.border, Theme::ruleStrong);
    EXPECT_EQ(off.borderWidth, 1);
    EXPECT_EQ(off.lampColor, Theme::ink3);
    EXPECT_FALSE(off.glow);

    const LampToggleLook on = LampToggleLook::at(1);
    EXPECT_EQ(on.lamp, (Rect{19, 3, 12, 12})) << "3 from the far edge too";
    EXPECT_EQ(on.lampColor.dark, Theme::lightFill);
    EXPECT_EQ(on.trackFill, Theme::lightSoft);
    EXPECT_EQ(on.glow, Theme::lightFill.opacity(0.7));

    const LampToggleLook half = LampToggleLook::at(0.5);
    EXPECT_EQ(half.lamp.x, 11);
    EXPECT_GT(half.lampColor.light.red, off.lampColor.light.red);
    EXPECT_LT(half.lampColor.light.red, on.lampColor.light.red + 1e-9);
    EXPECT_EQ(LampToggleLook::at(1.7).lamp, on.lamp) << "a spring's overshoot stays inside";
    EXPECT_EQ(LampToggleLook::at(1, false).opacity, 0.4);
    EXPECT_EQ(mix(Color::black(), Color::white(0), 0.25), (Color{0.25, 0.25, 0.25, 0.75}));
}

TEST(ControlLooks, MotionsStartAtZeroAndComeToRestAtOne) {
    for (const Animation& motion : {Motion::snappy, Motion::fade, Motion::curtain}) {
        EXPECT_EQ(motionProgress(motion, 0), 0);
        EXPECT_EQ(motionProgress(motion, -1), 0);
        const double end = motionDuration(motion);
        EXPECT_GT(end, 0);
        EXPECT_NEAR(motionProgress(motion, end), 1, 1e-3);
        EXPECT_NEAR(motionProgress(motion, end * 3), 1, 1e-6);
    }
    EXPECT_EQ(motionDuration(Motion::fade), 0.18);
    EXPECT_DOUBLE_EQ(motionProgress(Motion::fade, 0.09), 0.5);
    EXPECT_LT(motionProgress(Motion::fade, 0.03), 0.1) << "it eases in";

    // A spring of response 0.9 is past halfway within a quarter of a second, overshoots a
    // little with its damping of 0.9, and settles within about a second and a half.
    EXPECT_GT(motionProgress(Motion::curtain, 0.25), 0.5);
    double peak = 0;
    for (double t = 0; t < 3; t += 0.01) {
        peak = std::max(peak, motionProgress(Motion::curtain, t));
    }
    EXPECT_GT(peak, 1);
    EXPECT_LT(peak, 1.01);
    EXPECT_NEAR(motionDuration(Motion::curtain), 1.1, 0.2);
    EXPECT_LT(motionDuration(Motion::snappy), motionDuration(Motion::curtain));
}

} // namespace
} // namespace scrimlet
