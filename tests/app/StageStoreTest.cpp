#include "StageStore.hpp"

#include "AtomicFile.hpp"
#include "DemoCapture.hpp"
#include "RunSheetFile.hpp"
#include "SettingsFile.hpp"
#include "StoreRig.hpp"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

namespace scrimlet {
namespace {

using testing::StoreRig;

std::vector<std::string> without(std::vector<std::string> calls, const std::string& noise) {
    std::erase(calls, noise);
    return calls;
}

TEST(StageStore, StartsLiveInOrderAndHealsACrashBeforeTheFirstTick) {
    StoreRig rig;
    // A show that died with its process: Dark Mode on and the journal still on disk.
    {
        auto crashed = rig.open({});
        crashed->show().start("Started from the menu", false);
        ASSERT_TRUE(std::filesystem::exists(rig.dir / "journal.json"));
    }
    // Saves that a kill cut short left their temporary files; those of a process that still
    // runs are its own business, and other names are no business at all.
    const pid_t dead = fork();
    if (dead == 0) {
        _exit(0);
    }
    waitpid(dead, nullptr, 0);
    const std::string deadTag = std::to_string(dead) + "-17";
    const std::string ownTag = std::to_string(getpid()) + "-4";
    const std::vector<std::string> leftovers = {
        ".journal.json.tmp-" + deadTag, ".journal.json.tmp-" + ownTag,
        ".runsheets.json.tmp-" + deadTag, ".settings.json.tmp-" + deadTag};
    const std::vector<std::string> kept = {".journal.json.tmp-" + std::to_string(getppid()) + "-9",
                                           ".journal.json.tmp-x-1", ".notes.json.tmp-" + deadTag,
                                           "journal.json.tmp-" + deadTag};
    for (const auto& name : leftovers) {
        files::writeAtomically(rig.dir / name, "{\"version\": 1, \"entr");
    }
    for (const auto& name : kept) {
        files::writeAtomically(rig.dir / name, "");
    }
    rig.platform->calls.clear();
    auto store = rig.open({});
    store->startLive();
    for (const auto& name : leftovers) {
        EXPECT_FALSE(std::filesystem::exists(rig.dir / name)) << name;
    }
    for (const auto& name : kept) {
        EXPECT_TRUE(std::filesystem::exists(rig.dir / name)) << name;
    }
    EXPECT_EQ(without(rig.platform->calls, "updateStatusItem"),
              (std::vector<std::string>{"startFrontTracker", "installSceneryHooks",
                                        "setMenuBarDividerInstalled off", "installStatusItem",
                                        "hideCountdown", "registerHotkeys 1",
                                        "observeNotifications", "startTimer 1.000000 0.150000"}));
    ASSERT_TRUE(store->recovered);
    EXPECT_EQ(store->recovered->how, "Scrimlet quit unexpectedly");
    EXPECT_EQ(store->recovered->reason, EndReason::recovered);
    const auto onDisk = RunSheetFile::load(rig.dir / "runsheets.json");
    ASSERT_EQ(onDisk.size(), 1u);
    EXPECT_EQ(onDisk[0].id, store->recovered->id);
    EXPECT_FALSE(std::filesystem::exists(rig.dir / "journal.json"));
    EXPECT_EQ(rig.sys->read(EffectKey(EffectKind::dockAutohide)), JournalValue::boolean(false));
    EXPECT_EQ(store->hotkeyProblem(), std::nullopt);

    // The timer drives the tick; shutting down stops it.
    rig.clock->advance(1);
    rig.platform->timer();
    EXPECT_EQ(store->now(), rig.clock->now);
    store->shutdown();
    EXPECT_EQ(rig.platform->timer, nullptr);
}

TEST(StageStore, AZoomShareRaisesAndLowersTheCurtainThroughTheTick) {
    StoreRig rig;
    const auto before = rig.sys->state(false);
    rig.platform->snapshot = DemoCapture::zoomSharing();
    rig.seconds(2);
    EXPECT_TRUE(rig.store->show().isDark()) << "the watcher wants 1.5 s of sharing";
    rig.second();
    EXPECT_TRUE(rig.store->phase() == ShowPhase::live());
    EXPECT_EQ(rig.store->detecting()->name, "Zoom");
    EXPECT_EQ(rig.store->show().current()->how, "Zoom is sharing your screen");
    EXPECT_TRUE(std::filesystem::exists(rig.dir / "journal.json"));
    EXPECT_TRUE(rig.sys->app("com.apple.mail")->isHidden);
    EXPECT_FALSE(rig.sys->app("us.zoom.xos")->isHidden) << "the sharing app stays";

    rig.platform->snapshot = DemoCapture::idle();
    rig.seconds(2);
    EXPECT_TRUE(rig.store->show().isLive());
    rig.second();
    EXPECT_TRUE(rig.store->show().isDark());
    EXPECT_EQ(rig.sys->state(false), before);
    EXPECT_FALSE(std::filesystem::exists(rig.dir / "journal.json"));
    ASSERT_TRUE(rig.store->justEnded);
    EXPECT_EQ(rig.store->justEnded->reason, EndReason::captureEnded);
    EXPECT_EQ(RunSheetFile::load(rig.dir / "runsheets.json").size(), 1u);
}

TEST(StageStore, WithAutomaticStartsOffTheTickTakesNoSnapshotButSwitchesStillExpire) {
    StageSettings settings;
    settings.autoStart = false;
    settings.setPrefs(SwitchKind::keepAwake, SwitchPrefs{true, 1, std::nullopt});
    StoreRig rig(settings);
    rig.store->setSwitch(SwitchKind::keepAwake, true);
    EXPECT_TRUE(rig.store->board().isOn(SwitchKind::keepAwake));
    rig.seconds(60);
    EXPECT_EQ(rig.platform->snapshots, 0);
    EXPECT_FALSE(rig.store->board().isOn(SwitchKind::keepAwake));

    // A show by hand turns detection back on, for the countdown too.
    rig.store->startShow("Started from the menu");
    EXPECT_EQ(rig.platform->count("closePopover"), 1u);
    EXPECT_EQ(rig.platform->count("animateCurtain"), 1u);
    EXPECT_EQ(rig.platform->calls.back(), "updateStatusItem");
    EXPECT_GE(rig.platform->count("showCountdown 3"), 1u);
    rig.second();
    EXPECT_EQ(rig.platform->snapshots, 1);
}

TEST(StageStore, SettingsAreSavedOnceAndOnlyWhenTheyChange) {
    StoreRig rig;
    const auto file = rig.dir / "settings.json";
    rig.store->setSettings(rig.store->settings());
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_TRUE(rig.platform->calls.empty());

    StageSettings changed = rig.store->settings();
    changed.keepVisible = {"com.apple.Notes"};
    rig.store->setSettings(changed);
    EXPECT_EQ(SettingsFile::load(file), changed);
    EXPECT_EQ(rig.store->show().settings, changed);
    EXPECT_EQ(rig.store->board().settings, changed);
    EXPECT_EQ(rig.platform->calls, std::vector<std::string>{"updateStatusItem"});

    std::filesystem::remove(file);
    rig.store->setSettings(changed);
    EXPECT_FALSE(std::filesystem::exists(file)) << "an equal value writes nothing";
}

TEST(StageStore, SettingsChangesReachThePlatformInOrder) {
    StoreRig rig;
    StageSettings settings = rig.store->settings();
    settings.menuBarDivider = true;
    rig.store->setSettings(settings);
    rig.store->setSwitch(SwitchKind::tidyMenuBar, true);
    ASSERT_TRUE(rig.store->board().isOn(SwitchKind::tidyMenuBar));
    rig.platform->calls.clear();
    rig.platform->backdropOnScreen = true;
    rig.platform->loginItemFailure = "Operation not permitted";

    settings.stageHotkey.reset();
    settings.menuBarDivider = false;
    settings.backdropStyle.kind = BackdropStyle::Kind::color;
    settings.launchAtLogin = true;
    settings.focusOffShortcut = "Quiet Off";
    settings.detection.watchBrowsers = false;
    rig.store->setSettings(settings);
    EXPECT_EQ(without(without(rig.platform->calls, "updateStatusItem"), "hideCountdown"),
              (std::vector<std::string>{"registerHotkeys 0", "setMenuBarDividerInstalled off",
                                        "restyleBackdrop", "setLoginItem on"}));
    EXPECT_EQ(rig.platform->calls.back(), "updateStatusItem");
    EXPECT_FALSE(rig.store->board().isOn(SwitchKind::tidyMenuBar))
        << "the tidy goes off before its divider";
    EXPECT_EQ(rig.store->loginItemError(), "Operation not permitted");
    EXPECT_FALSE(rig.store->watcher().options.watchBrowsers);

    // Outside an application bundle the login item cannot be had, and the setting stays.
    rig.platform->fromAppBundle = false;
    settings.launchAtLogin = false;
    rig.store->setSettings(settings);
    EXPECT_EQ(rig.store->loginItemError(), "Available in the installed app.");
    EXPECT_FALSE(rig.store->settings().launchAtLogin);
}

TEST(StageStore, TogglePlanFlipsTheItemBehindEachEffect) {
    StoreRig rig;
    const auto flags = [](const StagePlan& p) {
        return std::vector<bool>{p.hideDesktopIcons, p.hideDock,   p.hideOtherApps,
                                 p.tidyMenuBar,      p.backdrop,   p.darkMode,
                                 p.doNotDisturb,     p.muteAlerts, p.keepAwake};
    };
    const std::vector<std::pair<EffectKind, size_t>> items = {
        {EffectKind::desktopIcons, 0}, {EffectKind::dockAutohide, 1}, {EffectKind::appHidden, 2},
        {EffectKind::menuBarTidy, 3},  {EffectKind::backdrop, 4},     {EffectKind::darkMode, 5},
        {EffectKind::doNotDisturb, 6}, {EffectKind::alertVolume, 7},  {EffectKind::keepAwake, 8},
    };
    for (const auto& [kind, index] : items) {
        auto expected = flags(rig.store->settings().plan);
        expected[index] = !expected[index];
        rig.store->togglePlan(kind);
        EXPECT_EQ(flags(rig.store->settings().plan), expected) << rawValue(kind);
        EXPECT_EQ(SettingsFile::load(rig.dir / "settings.json"), rig.store->settings());
    }
    std::filesystem::remove(rig.dir / "settings.json");
    for (const auto kind : {EffectKind::micMute, EffectKind::spotlight, EffectKind::keyboardLock}) {
        rig.store->togglePlan(kind);
    }
    EXPECT_FALSE(std::filesystem::exists(rig.dir / "settings.json"));

    StageSettings settings = rig.store->settings();
    settings.plan.resolution = ResolutionPreset{1920, 1080};
    rig.store->setSettings(settings);
    EXPECT_EQ(rig.store->plannedCues().size(), 10u);
    EXPECT_EQ(rig.store->plannedCues().back().title, "Resolution 1920 × 1080");
    rig.store->togglePlan(EffectKind::displayMode);
    EXPECT_EQ(rig.store->plannedCues().size(), 9u);
    const auto unchanged = rig.store->settings();
    rig.store->togglePlan(EffectKind::displayMode);
    EXPECT_EQ(rig.store->settings(), unchanged);
    EXPECT_EQ(rig.store->plannedCues()[2].title, "Backdrop · mesh");
}

TEST(StageStore, AFinishedShowStaysFreshForTenMinutes) {
    StoreRig rig;
    rig.store->startShow("Started from the menu", false);
    rig.store->stopShow();
    ASSERT_TRUE(rig.store->justEnded);
    EXPECT_EQ(rig.store->justEnded->reason, EndReason::stopped);
    rig.clock->advance(600);
    rig.store->tick();
    rig.store->route = StageStore::PopoverRoute::switches;
    rig.store->popoverWillOpen();
    EXPECT_TRUE(rig.store->justEnded) << "exactly 600 seconds is still fresh";
    EXPECT_EQ(rig.store->route, StageStore::PopoverRoute::home);
    rig.second();
    rig.store->popoverWillOpen();
    EXPECT_FALSE(rig.store->justEnded);

    rig.store->startShow("Started from the menu", false);
    EXPECT_FALSE(rig.store->justEnded) << "a new show drops the old note at once";
}

TEST(StageStore, KeptAppNamesNameOnlyRunningAppsButThisOne) {
    StageSettings settings;
    settings.keepVisible = {"com.example.notRunning", "com.apple.Notes"};
    StoreRig rig(settings);
    rig.store->startShow("x", false);
    EXPECT_EQ(rig.store->keptAppNames(),
              (std::vector<std::string>{"Takeloom", "Keynote", "Notes — 📝 ideas"}))
        << "in the order of the kept identifiers";
}

TEST(StageStore, WakeEndsAnAutomaticShowWhoseShareIsGone) {
    StoreRig rig;
    rig.platform->snapshot = DemoCapture::zoomSharing();
    rig.seconds(3);
    ASSERT_TRUE(rig.store->show().isLive());
    // Still sharing after the sleep: the show goes on and knows its source again.
    rig.store->didWake();
    EXPECT_TRUE(rig.store->show().isLive());
    EXPECT_EQ(rig.store->show().source()->bundleID, "us.zoom.xos");
    rig.platform->snapshot = CaptureSnapshot{};
    rig.platform->handlers = {};
    rig.store->startLive();
    rig.platform->handlers.onWake();
    EXPECT_TRUE(rig.store->show().isDark());
    EXPECT_EQ(rig.store->justEnded->reason, EndReason::captureEnded);
}

TEST(StageStore, ShutdownPutsEverythingBackAndFilesTheSheet) {
    StoreRig rig;
    const auto before = rig.sys->state(false);
    rig.store->startShow("Started from the menu", false);
    rig.store->setSwitch(SwitchKind::muteMic, true);
    rig.store->setSwitch(SwitchKind::darkMode, true);
    rig.store->shutdown();
    EXPECT_EQ(rig.sys->state(false), before);
    EXPECT_FALSE(rig.store->board().onCount());
    const auto sheets = RunSheetFile::load(rig.dir / "runsheets.json");
    ASSERT_EQ(sheets.size(), 1u);
    EXPECT_EQ(sheets[0].reason, EndReason::quit);
    EXPECT_EQ(rig.platform->calls.back(), "hideCountdown");
}

TEST(StageStore, ADisplayChangeRetriesDeferredUndosAndMovesTheScenery) {
    StageSettings settings;
    settings.plan.resolution = ResolutionPreset{1920, 1080};
    StoreRig rig(settings);
    rig.store->startLive();
    rig.store->startShow("x", false);
    rig.sys->displayList.clear();
    rig.store->stopShow();
    EXPECT_EQ(rig.store->show().sheets()[0].strike.front().outcome, CueOutcome::deferred());
    rig.sys->displayList = {1};
    rig.platform->handlers.onScreensChanged();
    EXPECT_EQ(rig.platform->count("screensChanged"), 1u);
    EXPECT_EQ(rig.store->show().sheets()[0].strike.back().outcome, CueOutcome::restored());
    EXPECT_EQ(RunSheetFile::load(rig.dir / "runsheets.json")[0].strike.size(),
              rig.store->show().sheets()[0].strike.size());
}

} // namespace
} // namespace scrimlet
