#include "StatusItemRules.hpp"

#include "LiveStoreRig.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using StatusItemRules::Click;
using StatusItemRules::decide;
using StatusItemRules::look;

constexpr std::uint64_t option = 0x80000;
constexpr std::uint64_t command = 0x100000;
constexpr std::uint64_t leftUp = 2;
constexpr std::uint64_t rightUp = 4;

TEST(StatusItem, OnlyAnOptionLeftClickStartsOrStops) {
    EXPECT_EQ(decide(std::nullopt), Click::toggleDropdown);
    EXPECT_EQ(decide(StatusClickEvent{0, leftUp}), Click::toggleDropdown);
    EXPECT_EQ(decide(StatusClickEvent{0, rightUp}), Click::toggleDropdown);
    EXPECT_EQ(decide(StatusClickEvent{option, rightUp}), Click::toggleDropdown)
        << "an option right-click opens the dropdown as a plain click does";
    EXPECT_EQ(decide(StatusClickEvent{command, leftUp}), Click::toggleDropdown);
    EXPECT_EQ(decide(StatusClickEvent{option, leftUp}), Click::startOrStop);
    EXPECT_EQ(decide(StatusClickEvent{option | command | 0x100, leftUp}), Click::startOrStop);
}

TEST(StatusItem, TheLookFollowsTheShowThroughStandbyLiveAndDark) {
    testing::LiveStoreRig<> rig;
    auto& store = *rig.store;
    const StatusItemLook dark = look(store);
    EXPECT_FALSE(dark.live);
    EXPECT_FALSE(dark.standby);
    EXPECT_TRUE(dark.templateImage);
    EXPECT_EQ(dark.glyphDescription, "Scrimlet");
    EXPECT_EQ(dark.title, "");
    EXPECT_EQ(dark.titleFont, std::nullopt);
    EXPECT_EQ(dark.accessibilityValue, "Off");

    // An option-click when dark counts down, and one during standby stops: it isn't dark.
    StatusItemRules::startOrStop(store);
    StatusItemLook standby = look(store);
    EXPECT_TRUE(standby.standby);
    EXPECT_FALSE(standby.live);
    EXPECT_TRUE(standby.templateImage);
    EXPECT_EQ(standby.title, " 3");
    EXPECT_EQ(standby.titleFont, Font::system(12, FontWeight::semibold).withMonospacedDigits());
    EXPECT_EQ(standby.accessibilityValue, "Off") << "standby is not on stage";
    StatusItemRules::startOrStop(store);
    EXPECT_TRUE(store.show().isDark());
    EXPECT_EQ(look(store), dark);

    StatusItemRules::startOrStop(store);
    rig.seconds(1);
    EXPECT_EQ(look(store).title, " 2");
    rig.seconds(2);
    ASSERT_TRUE(store.show().isLive());
    EXPECT_EQ(store.show().current()->how, "Started with ⌥-click");
    rig.seconds(75);
    const StatusItemLook live = look(store);
    EXPECT_TRUE(live.live);
    EXPECT_FALSE(live.standby);
    EXPECT_FALSE(live.templateImage) << "the live glyph keeps its red";
    EXPECT_EQ(live.glyphDescription, "Scrimlet: on stage");
    EXPECT_EQ(live.title, " 1:15") << "without a limit the clock counts up";
    EXPECT_EQ(live.titleFont, Font::system(12, FontWeight::medium).withMonospacedDigits());
    EXPECT_EQ(live.accessibilityValue, "On stage");

    // Without the timer in the menu bar the glyph is live and the title empty.
    StageSettings quiet = store.settings();
    quiet.showTimerInMenuBar = false;
    store.setSettings(quiet);
    EXPECT_TRUE(look(store).live);
    EXPECT_EQ(look(store).title, "");
    EXPECT_EQ(look(store).titleFont, std::nullopt);

    StatusItemRules::startOrStop(store);
    EXPECT_TRUE(store.show().isDark());
    EXPECT_EQ(look(store), dark);
}

TEST(StatusItem, WithATimeLimitTheClockCountsDownToZero) {
    StageSettings settings;
    settings.countdown = false;
    settings.timeLimitMinutes = 2;
    testing::LiveStoreRig<> rig(settings);
    auto& store = *rig.store;
    StatusItemRules::startOrStop(store);
    ASSERT_TRUE(store.show().isLive());
    rig.seconds(30);
    EXPECT_EQ(look(store).title, " 1:30");
    // At the limit, before the tick that ends the show, the clock reads zero, not the
    // elapsed time.
    rig.seconds(89);
    rig.clock->advance(1);
    ASSERT_TRUE(store.show().isLive());
    EXPECT_EQ(look(store).title, " 0:00");
}

} // namespace
} // namespace scrimlet
