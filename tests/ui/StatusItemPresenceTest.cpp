#include "StatusItemPresence.hpp"

#include "LiveStoreRig.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using namespace StatusItemPresence;

// A 1512 × 982 laptop as the main display, a 2560 × 1440 display to its right whose top
// sits 200 points higher, and a 1920 × 1080 display below the laptop.
const Rect laptop{0, 0, 1512, 982};
const Rect right{1512, -200, 2560, 1440};
const Rect below{0, 982, 1920, 1080};

TEST(StatusItemPresence, AnItemCountsAsPlacedOnlyInADisplaysMenuBarBand) {
    const std::vector<Rect> displays = {laptop, right};
    EXPECT_EQ(judge(true, Rect{1200, 0, 38, 24}, displays), Placement::placed);
    EXPECT_EQ(judge(true, Rect{1200, 0, 38, 37}, displays), Placement::placed) << "notched";
    EXPECT_EQ(judge(true, Rect{3500, -200, 38, 24}, displays), Placement::placed);
    EXPECT_EQ(judge(true, Rect{1200, -24, 38, 24}, displays), Placement::placed)
        << "a bar that hides itself slides the item above the top";
    // Kept out: the window stays at its birth place, the main display's bottom left.
    EXPECT_EQ(judge(true, Rect{-1, 958, 38, 24}, displays), Placement::notPlaced);
    EXPECT_EQ(judge(true, Rect{1200, 400, 38, 24}, displays), Placement::notPlaced);
    EXPECT_EQ(judge(true, Rect{9000, 0, 38, 24}, displays), Placement::notPlaced)
        << "beside every display";
    // At the top of the right display's height, but not in its band.
    EXPECT_EQ(judge(true, Rect{2000, 0, 38, 24}, {right}), Placement::notPlaced);
    // A display right under the laptop puts its band where a kept-out item waits; the
    // judgement then errs on the quiet side.
    EXPECT_EQ(judge(true, Rect{-1, 958, 38, 24}, {laptop, below}), Placement::placed);

    // Removed by the user: not there, wherever its window says it is.
    EXPECT_EQ(judge(false, Rect{1200, 0, 38, 24}, displays), Placement::notPlaced);
    EXPECT_EQ(judge(false, std::nullopt, {}), Placement::notPlaced);
    // Nothing to judge by.
    EXPECT_EQ(judge(true, std::nullopt, displays), Placement::unknown);
    EXPECT_EQ(judge(true, Rect{0, 0, 0, 0}, displays), Placement::unknown);
    EXPECT_EQ(judge(true, Rect{1200, 0, 38, 24}, {}), Placement::unknown);
}

TEST(StatusItemPresence, TheNoticeComesOncePerAbsenceFromMacOS26On) {
    // Before 26 there is no switch to blame, and nothing is remembered or forgotten.
    EXPECT_EQ(decide(15, Placement::notPlaced, false, false), (Decision{false, false}));
    EXPECT_EQ(decide(15, Placement::placed, true, false), (Decision{false, true}));
    // Kept out: told once.
    Decision now = decide(26, Placement::notPlaced, false, false);
    EXPECT_EQ(now, (Decision{true, true}));
    now = decide(26, Placement::notPlaced, now.noticed, false);
    EXPECT_EQ(now, (Decision{false, true})) << "a relaunch doesn't tell again";
    now = decide(27, Placement::unknown, now.noticed, false);
    EXPECT_EQ(now, (Decision{false, true}));
    // Back in place: forgotten, so that hiding it again is told again.
    now = decide(26, Placement::placed, now.noticed, false);
    EXPECT_EQ(now, (Decision{false, false}));
    EXPECT_EQ(decide(26, Placement::notPlaced, now.noticed, false), (Decision{true, true}));
    EXPECT_EQ(decide(0, Placement::notPlaced, false, false), (Decision{false, false}))
        << "an unknown system is treated as an old one";

    // In front of an audience the notice waits, and nothing is remembered as told; an item
    // seen back in place is still forgotten.
    EXPECT_EQ(decide(26, Placement::notPlaced, false, true), (Decision{false, false}));
    EXPECT_EQ(decide(26, Placement::notPlaced, true, true), (Decision{false, true}));
    EXPECT_EQ(decide(26, Placement::placed, true, true), (Decision{false, false}));
}

TEST(StatusItemPresence, AShowInProgressKeepsTheNoticeBack) {
    testing::LiveStoreRig<> rig;
    EXPECT_FALSE(isBusy(*rig.store));
    rig.store->startShow("Started from the menu");
    EXPECT_TRUE(isBusy(*rig.store)) << "counting down";
    rig.seconds(3);
    ASSERT_TRUE(rig.store->show().isLive());
    EXPECT_TRUE(isBusy(*rig.store));
    rig.store->stopShow();
    EXPECT_FALSE(isBusy(*rig.store));
}

TEST(StatusItemPresence, TheNoticeNamesTheWaysStillOpen) {
    const Notice withKey = notice(Hotkey::defaultStage());
    EXPECT_EQ(withKey.title, "Scrimlet’s menu bar icon is hidden");
    EXPECT_NE(withKey.message.find("System Settings › Menu Bar"), std::string::npos);
    EXPECT_NE(withKey.message.find("⌃⌥⌘S raises and brings down the curtain"), std::string::npos);
    EXPECT_NE(withKey.message.find("scrimlet://toggle"), std::string::npos);
    EXPECT_EQ(withKey.openSystemSettings, "Open System Settings");
    EXPECT_EQ(withKey.openScrimletSettings, "Scrimlet Settings");
    EXPECT_EQ(withKey.dismiss, "OK");

    const Notice withoutKey = notice(std::nullopt);
    EXPECT_EQ(withoutKey.message.find("⌃"), std::string::npos);
    EXPECT_NE(withoutKey.message.find("scrimlet://toggle"), std::string::npos);
    EXPECT_NE(withoutKey.message.find("A hotkey for it can be set"), std::string::npos);
}

} // namespace
} // namespace scrimlet
