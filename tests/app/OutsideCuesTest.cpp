#include "StageStore.hpp"

#include "StoreRig.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using testing::StoreRig;

StageSettings noCountdown() {
    StageSettings settings;
    settings.countdown = false;
    return settings;
}

TEST(OutsideCues, LinksStartStopAndToggleTheShowWhateverTheirCase) {
    StoreRig rig(noCountdown());
    auto& store = *rig.store;
    store.handle("scrimlet://START");
    ASSERT_TRUE(store.show().isLive());
    EXPECT_EQ(store.show().current()->how, "Started from a Shortcut or link");
    store.handle("scrimlet://bogus");
    EXPECT_TRUE(store.show().isDark()) << "an unknown verb toggles";
    store.handle("SCRIMLET://start");
    EXPECT_TRUE(store.show().isLive());
    store.handle("scrimlet://stop");
    EXPECT_TRUE(store.show().isDark());

    for (const char* ignored : {"notscrimlet://start", "scrimlet://", "scrimlet:", "start",
                                "scrimlet://st art", "scrimlet://%zz"}) {
        store.handle(ignored);
        EXPECT_TRUE(store.show().isDark()) << ignored;
    }
    store.handle("scrimlet://switch/nonsense/on");
    EXPECT_TRUE(store.show().isLive()) << "a switch that names no kind toggles the show";
    store.handle("scrimlet://switch");
    EXPECT_TRUE(store.show().isDark());

    // "extend" with no show adds nothing, but still publishes.
    int syncs = 0;
    store.onWillChange = [&] { ++syncs; };
    store.handle("scrimlet://extend");
    EXPECT_EQ(syncs, 1);
    EXPECT_FALSE(store.show().endsAt());
    store.handle("scrimlet:start");
    store.handle("scrimlet://extend?by=ignored");
    ASSERT_TRUE(store.show().endsAt());
    EXPECT_EQ(*store.show().endsAt() - rig.clock->now, 15 * 60);
}

TEST(OutsideCues, SwitchLinksReachTheirSwitchByAnyForm) {
    StoreRig rig;
    auto& store = *rig.store;
    store.handle("scrimlet:///SWITCH/HideDock/ON");
    EXPECT_TRUE(store.board().isOn(SwitchKind::hideDock));
    store.handle("scrimlet:/switch/hidedock/on");
    EXPECT_TRUE(store.board().isOn(SwitchKind::hideDock)) << "on stays on";
    store.handle("scrimlet://switch/hidedock/banana");
    EXPECT_FALSE(store.board().isOn(SwitchKind::hideDock));
    store.handle("scrimlet://switch/hidedock");
    EXPECT_TRUE(store.board().isOn(SwitchKind::hideDock));
    store.handle("scrimlet://switch/hidedock/off");
    EXPECT_FALSE(store.board().isOn(SwitchKind::hideDock));

    store.handle("scrimlet://switch/screensaver/on");
    store.handle("scrimlet://switch/screensaver/on");
    EXPECT_EQ(rig.sys->screenSaverStarts(), 2);
    EXPECT_EQ(rig.platform->count("closePopover"), 2u);
    store.handle("scrimlet://switch/screensaver/off");
    store.toggleSwitch(SwitchKind::screenSaver);
    EXPECT_EQ(rig.sys->screenSaverStarts(), 3) << "an action fires again instead of going off";
    EXPECT_TRUE(store.show().isDark());
}

TEST(OutsideCues, TheNotificationAndTheHotkeysCueWithTheirOwnWords) {
    StageSettings settings = noCountdown();
    settings.setPrefs(SwitchKind::darkMode,
                      SwitchPrefs{true, std::nullopt, Hotkey{2, Hotkey::control, "D"}});
    settings.setPrefs(SwitchKind::screenSaver,
                      SwitchPrefs{false, std::nullopt, Hotkey{3, Hotkey::control, "F"}});
    StoreRig rig(settings);
    rig.platform->taken = {1};
    rig.store->startLive();
    ASSERT_EQ(rig.platform->hotkeys.size(), 3u);
    EXPECT_EQ(rig.platform->hotkeys[1].identifier, 105u);
    EXPECT_EQ(rig.platform->hotkeys[2].identifier, 112u);
    EXPECT_EQ(rig.store->hotkeyProblem(), "A hotkey is already used by another app.");

    rig.platform->handlers.onCue(std::nullopt);
    ASSERT_TRUE(rig.store->show().isLive());
    EXPECT_EQ(rig.store->show().current()->how, "Cued by another app");
    rig.platform->handlers.onCue("STOP");
    EXPECT_TRUE(rig.store->show().isDark());

    rig.platform->hotkeys[0].action();
    EXPECT_EQ(rig.store->show().current()->how, "Started with ⌃⌥⌘S");
    rig.platform->hotkeys[0].action();
    EXPECT_TRUE(rig.store->show().isDark());
    rig.platform->hotkeys[1].action();
    EXPECT_TRUE(rig.store->board().isOn(SwitchKind::darkMode));

    rig.platform->taken = {1, 105};
    rig.store->registerHotkeys();
    EXPECT_EQ(rig.store->hotkeyProblem(), "Some hotkeys are already used by another app.");
    rig.platform->taken.clear();
    StageSettings moved = rig.store->settings();
    moved.stageHotkey = Hotkey{1, Hotkey::cmd | Hotkey::shift, "S"};
    rig.store->setSettings(moved);
    EXPECT_EQ(rig.store->hotkeyProblem(), std::nullopt);

    // A store that is gone ignores the keys it registered.
    const auto action = rig.platform->hotkeys[0].action;
    rig.store.reset();
    action();
}

TEST(OutsideCues, AStartWhileAShowRunsIsTheShowsToDecide) {
    StoreRig rig;
    rig.store->cue("start", "Started from a Shortcut or link");
    ASSERT_EQ(rig.store->show().phase().kind(), ShowPhase::Case::standby);
    rig.store->cue("Start", "Cued by another app");
    EXPECT_TRUE(rig.store->show().isLive()) << "a second cue skips the countdown";
    EXPECT_EQ(rig.store->show().current()->how, "Started from a Shortcut or link");
    EXPECT_EQ(rig.platform->count("animateCurtain"), 1u);
}

} // namespace
} // namespace scrimlet
