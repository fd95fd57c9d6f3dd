// Whole shows on the simulated Mac, with a manual clock and the journal on disk: how each
// way of starting and ending one plays out, what the run sheet says, and what the Mac
// looks like afterwards.

#include "Show.hpp"

#include "DemoCapture.hpp"
#include "StageRig.hpp"
#include "SwitchBoard.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace scrimlet {
namespace {

using testing::num;
using testing::off;
using testing::on;
using testing::StageRig;
using Case = CueOutcome::Case;
using Change = CaptureWatcher::Change;

const CaptureSource zoom{"us.zoom.xos", "Zoom", CaptureKind::callShare};
const CaptureSource chrome{"com.google.Chrome", "Chrome", CaptureKind::browserShare};
const EffectKey alerts{EffectKind::alertVolume};
const EffectKey dock{EffectKind::dockAutohide};
const EffectKey darkMode{EffectKind::darkMode};
const EffectKey display1{EffectKind::displayMode, "1"};

// A show on the rig's director that records every call of its two callbacks, in order.
struct Stage {
    StageRig rig;
    std::shared_ptr<Director> director = rig.shareDirector();
    Show show{director, StageSettings{}, {}, ManualClock::reading(rig.clock)};
    int changes = 0;
    std::vector<RunSheet> ended;
    std::vector<std::string> events;

    Stage() {
        show.onChange = [this] {
            ++changes;
            events.push_back("change");
        };
        show.onEnded = [this](const RunSheet& sheet) {
            ended.push_back(sheet);
            events.push_back("ended");
        };
    }

    Date now() const { return rig.clock->now; }
    void advance(double seconds) { rig.clock->advance(seconds); }
    bool hidden(const std::string& bundleID) const { return rig.sys->app(bundleID)->isHidden; }
    bool journalOnDisk() const { return std::filesystem::exists(rig.journalPath()); }
    void startNow(const std::string& how = "Menu bar") { show.start(how, false); }
};

std::vector<Case> outcomes(const std::vector<CueRecord>& records) {
    std::vector<Case> out;
    for (const auto& record : records) {
        out.push_back(record.outcome.kind());
    }
    return out;
}

std::vector<EffectKey> keys(const std::vector<CueRecord>& records) {
    std::vector<EffectKey> out;
    for (const auto& record : records) {
        out.push_back(record.key);
    }
    return out;
}

TEST(Show, AnAutomaticShowFollowsAZoomShareFromItsStartToItsEnd) {
    Stage s;
    const auto before = s.rig.sys->state(false);
    CaptureWatcher watcher(s.show.settings.detection);
    // What the store does once a second: look, report a change, tick.
    const auto look = [&](const CaptureSnapshot& snapshot) {
        if (const auto change = watcher.observe(snapshot, s.now())) {
            s.show.captureChanged(*change);
        }
        s.show.tick();
        s.advance(1);
    };

    look(DemoCapture::zoomSharing());
    look(DemoCapture::zoomSharing());
    EXPECT_TRUE(s.show.isDark());
    const Date wentLive = s.now();
    look(DemoCapture::zoomSharing());
    ASSERT_TRUE(s.show.isLive());
    EXPECT_FALSE(s.show.manual());
    EXPECT_EQ(s.show.source(), zoom);
    EXPECT_EQ(s.show.startedAt(), wentLive);
    EXPECT_EQ(s.show.endsAt(), std::nullopt);

    // The share itself, the one in front, this app and the recorders stay on screen;
    // QuickTime Player is only a player here.
    const auto& kept = s.show.kept();
    EXPECT_TRUE(std::is_sorted(kept.begin(), kept.end()));
    for (const char* id :
         {"us.zoom.xos", "com.apple.Keynote", "app.vantrel.scrimlet", "app.vantrel.takeloom"}) {
        EXPECT_TRUE(std::count(kept.begin(), kept.end(), id)) << id;
        EXPECT_FALSE(s.hidden(id)) << id;
    }
    EXPECT_FALSE(std::count(kept.begin(), kept.end(), "com.apple.QuickTimePlayerX"));
    for (const char* id : {"com.apple.Safari", "com.apple.mail", "com.tinyspeck.slackmacgap",
                           "com.apple.MobileSMS", "com.apple.finder", "com.apple.Notes"}) {
        EXPECT_TRUE(s.hidden(id)) << id;
    }

    ASSERT_TRUE(s.show.current());
    const RunSheet running = *s.show.current();
    EXPECT_EQ(running.how, "Zoom is sharing your screen");
    EXPECT_EQ(running.source, zoom);
    EXPECT_EQ(running.cues.size(), 11u);
    EXPECT_EQ(outcomes(running.cues), std::vector<Case>(11, Case::applied));
    EXPECT_TRUE(s.journalOnDisk());

    for (int i = 0; i < 12; ++i) {
        look(DemoCapture::zoomSharing());
    }
    look(DemoCapture::idle());
    look(DemoCapture::idle());
    EXPECT_TRUE(s.show.isLive()) << "a share must be gone 3 seconds before it ends";
    EXPECT_EQ(s.show.current()->cues, running.cues) << "nothing was changed by hand";

    s.events.clear();
    look(DemoCapture::idle());
    ASSERT_TRUE(s.show.isDark());
    EXPECT_EQ(s.events, (std::vector<std::string>{"ended", "change"}));
    ASSERT_EQ(s.ended.size(), 1u);
    const RunSheet& sheet = s.ended[0];
    EXPECT_EQ(sheet, s.show.sheets().front());
    EXPECT_EQ(sheet.id, running.id);
    EXPECT_EQ(sheet.reason, EndReason::captureEnded);
    EXPECT_EQ(sheet.duration(), 15);
    EXPECT_EQ(outcomes(sheet.strike), std::vector<Case>(11, Case::restored));
    auto undone = keys(sheet.cues);
    std::reverse(undone.begin(), undone.end());
    EXPECT_EQ(keys(sheet.strike), undone);
    EXPECT_EQ(sheet.problems(), 0);

    EXPECT_EQ(s.rig.sys->state(false), before);
    EXPECT_FALSE(s.journalOnDisk());
    EXPECT_EQ(s.show.source(), std::nullopt);
    EXPECT_EQ(s.show.current(), std::nullopt);
    EXPECT_TRUE(s.show.kept().empty());
    EXPECT_EQ(s.show.elapsed(), std::nullopt);
    EXPECT_EQ(s.show.dismissed(), std::nullopt);
}

TEST(Show, CallbacksComeExactlyWhereSomethingVisibleChanged) {
    Stage s;
    s.show.stop(EndReason::stopped);
    s.show.tick();
    s.show.extend(15);
    s.show.wake(std::nullopt);
    s.show.captureChanged(Change::ended(zoom));
    s.show.settings.autoStart = false;
    s.show.captureChanged(Change::started(zoom));
    EXPECT_EQ(s.changes, 0);
    EXPECT_TRUE(s.show.isDark());

    s.show.clearLimit();
    EXPECT_EQ(s.changes, 1);
    s.show.start("Menu bar");
    EXPECT_EQ(s.changes, 2);
    s.show.extend(15);
    EXPECT_EQ(s.changes, 2);
    s.show.tick();
    EXPECT_EQ(s.changes, 3);
    s.advance(3);
    s.show.tick();
    EXPECT_TRUE(s.show.isLive());
    EXPECT_EQ(s.changes, 4);
    s.show.start("Hotkey");
    EXPECT_EQ(s.changes, 5);
    s.show.captureChanged(Change::ended(zoom)); // not the show's source
    EXPECT_EQ(s.changes, 5);
    s.show.stop(EndReason::stopped);
    EXPECT_EQ(s.changes, 6);
    EXPECT_EQ(s.ended.size(), 1u);
    s.show.clearSheets();
    EXPECT_EQ(s.changes, 7);
    s.show.restoreSheets({});
    EXPECT_EQ(s.changes, 8);
    EXPECT_EQ(s.ended.size(), 1u);
}

TEST(Show, AManualShowCountsDownAndASecondCueSkipsTheCountdown) {
    Stage s;
    const Date cued = s.now();
    s.show.start("Menu bar");
    EXPECT_EQ(s.show.phase(), ShowPhase::standby(cued + 3));
    EXPECT_TRUE(s.show.manual());
    EXPECT_EQ(s.rig.sys->writeCount(), 0);
    EXPECT_FALSE(s.journalOnDisk());
    EXPECT_EQ(s.show.countdownRemaining(), 3);
    s.advance(0.5);
    EXPECT_EQ(s.show.countdownRemaining(), 3);
    s.advance(1.9);
    EXPECT_EQ(s.show.countdownRemaining(), 1);
    s.show.tick();
    EXPECT_FALSE(s.show.isLive());

    const Date skipped = s.now();
    s.show.start("Hotkey");
    ASSERT_TRUE(s.show.isLive());
    EXPECT_EQ(s.show.startedAt(), skipped);
    EXPECT_EQ(s.show.countdownRemaining(), std::nullopt);
    EXPECT_EQ(s.show.current()->how, "Menu bar");
    EXPECT_TRUE(s.journalOnDisk());
    s.show.stop(EndReason::stopped);
    EXPECT_EQ(s.show.dismissed(), std::nullopt) << "a manual show has no capture to dismiss";

    // Left alone, the countdown goes live at exactly its end.
    s.show.start("Link");
    s.advance(2.5);
    s.show.tick();
    EXPECT_EQ(s.show.countdownRemaining(), 1);
    s.advance(0.5);
    s.show.tick();
    EXPECT_TRUE(s.show.isLive());
    EXPECT_EQ(s.show.current()->how, "Link");
    s.show.stop(EndReason::stopped);

    // The caller can skip or ask for the countdown against the settings.
    s.show.start("Notification", false);
    EXPECT_TRUE(s.show.isLive());
    s.show.stop(EndReason::stopped);
    s.show.settings.countdown = false;
    s.show.start("", true);
    EXPECT_EQ(s.show.phase().kind(), ShowPhase::Case::standby);

    // Stopping in the countdown files nothing: nothing was applied.
    const auto sheets = s.show.sheets().size();
    s.show.stop(EndReason::stopped);
    EXPECT_TRUE(s.show.isDark());
    EXPECT_FALSE(s.show.manual());
    EXPECT_EQ(s.show.pendingHow(), "");
    EXPECT_EQ(s.show.sheets().size(), sheets);

    s.show.start("", false);
    EXPECT_EQ(s.show.current()->how, "Started");
}

TEST(Show, ACaptureDuringTheCountdownGoesLiveAndTheManualShowOutlivesIt) {
    Stage s;
    s.show.start("Hotkey");
    s.advance(1);
    s.show.captureChanged(Change::started(zoom));
    ASSERT_TRUE(s.show.isLive());
    EXPECT_TRUE(s.show.manual());
    EXPECT_EQ(s.show.source(), zoom);
    EXPECT_EQ(s.show.current()->how, "Hotkey");
    EXPECT_EQ(s.show.current()->source, zoom);

    s.show.captureChanged(Change::ended(zoom));
    EXPECT_TRUE(s.show.isLive());
    EXPECT_EQ(s.show.source(), std::nullopt);
    s.show.stop(EndReason::stopped);
    EXPECT_EQ(s.show.dismissed(), std::nullopt);
    EXPECT_EQ(s.show.sheets().front().source, zoom);

    // A cue by hand adopts an automatic show, which then outlives its capture too.
    s.show.captureChanged(Change::started(chrome));
    EXPECT_FALSE(s.show.manual());
    s.show.start("Menu bar");
    EXPECT_TRUE(s.show.manual());
    s.show.captureChanged(Change::switched(chrome, zoom));
    EXPECT_EQ(s.show.source(), zoom);
    s.show.captureChanged(Change::ended(zoom));
    EXPECT_TRUE(s.show.isLive());
    EXPECT_EQ(s.show.current()->how, "Chrome is sharing your screen");
    s.show.stop(EndReason::stopped);

    // QuickTime Player stays on screen when it is what records.
    s.show.captureChanged(Change::started(CaptureSource{
        "com.apple.screencaptureui", "Screen recording", CaptureKind::systemRecording}));
    const auto& kept = s.show.kept();
    EXPECT_TRUE(std::count(kept.begin(), kept.end(), "com.apple.QuickTimePlayerX"));
}

TEST(Show, AShowTheUserStopsIsNotRestartedByTheSameShare) {
    Stage s;
    s.show.captureChanged(Change::started(zoom));
    ASSERT_TRUE(s.show.isLive());
    s.show.stop(EndReason::stopped);
    EXPECT_EQ(s.show.dismissed(), zoom);
    EXPECT_EQ(s.show.sheets().front().reason, EndReason::stopped);

    const int changes = s.changes;
    s.show.captureChanged(Change::started(zoom));
    s.show.captureChanged(Change::switched(chrome, zoom));
    s.show.tick();
    EXPECT_TRUE(s.show.isDark());
    EXPECT_EQ(s.changes, changes);
    EXPECT_EQ(s.rig.sys->writeCount(), 22);

    // Once that share has ended, the next one starts a show as usual.
    s.show.captureChanged(Change::ended(zoom));
    EXPECT_EQ(s.show.dismissed(), std::nullopt);
    EXPECT_EQ(s.changes, changes);
    s.show.captureChanged(Change::started(zoom));
    EXPECT_TRUE(s.show.isLive());

    // Moving away from the dismissed share counts as its end.
    s.show.stop(EndReason::stopped);
    s.show.captureChanged(Change::switched(zoom, chrome));
    EXPECT_TRUE(s.show.isLive());
    EXPECT_EQ(s.show.source(), chrome);
    EXPECT_EQ(s.show.dismissed(), std::nullopt);

    // Only the user's own stop dismisses a share.
    s.show.stop(EndReason::quit);
    EXPECT_EQ(s.show.dismissed(), std::nullopt);
}

TEST(Show, ATimeLimitEndsTheShowAtExactlyItsEndAndCanBeMoved) {
    Stage s;
    s.show.settings.timeLimitMinutes = 1;
    const Date t0 = s.now();
    s.startNow();
    EXPECT_EQ(s.show.endsAt(), t0 + 60);
    s.advance(59.5);
    s.show.tick();
    EXPECT_TRUE(s.show.isLive());
    EXPECT_EQ(s.show.remaining(), 0.5);
    s.advance(0.5);
    s.show.tick();
    ASSERT_TRUE(s.show.isDark());
    EXPECT_EQ(s.ended.back().reason, EndReason::timeLimit);
    EXPECT_EQ(s.show.endsAt(), std::nullopt);

    s.show.extend(15);
    EXPECT_EQ(s.show.endsAt(), std::nullopt);
    s.show.start("Menu bar");
    s.show.extend(15);
    EXPECT_EQ(s.show.endsAt(), std::nullopt) << "no extension in the countdown";

    s.show.start("Menu bar");
    const Date t1 = s.now();
    s.show.extend(15);
    s.show.extend(15);
    EXPECT_EQ(s.show.endsAt(), t1 + 60 + 30 * 60);
    s.show.clearLimit();
    EXPECT_EQ(s.show.remaining(), std::nullopt);
    s.advance(100);
    s.show.extend(15);
    EXPECT_EQ(s.show.endsAt(), t1 + 100 + 15 * 60);
    s.advance(15 * 60 + 0.5);
    EXPECT_EQ(s.show.remaining(), 0) << "never below zero before the tick";
    s.show.tick();
    EXPECT_EQ(s.ended.back().reason, EndReason::timeLimit);
}

TEST(Show, AWakeWithNoShareEndsAnAutomaticShowButNotAManualOne) {
    Stage s;
    s.show.captureChanged(Change::started(zoom));
    s.show.wake(zoom);
    EXPECT_TRUE(s.show.isLive());
    s.show.wake(std::nullopt);
    ASSERT_TRUE(s.show.isDark());
    EXPECT_EQ(s.ended.back().reason, EndReason::captureEnded);
    EXPECT_EQ(s.show.dismissed(), std::nullopt);

    s.show.settings.timeLimitMinutes = 60;
    s.startNow();
    const auto wentLive = s.now();
    // Changed by hand past the settle time but before the next regular look: the wake
    // looks at once.
    s.advance(4);
    s.rig.sys->userSet(alerts, num(0.4));
    const int changes = s.changes;
    s.show.wake(std::nullopt);
    ASSERT_TRUE(s.show.isLive());
    EXPECT_EQ(s.changes, changes + 1);
    EXPECT_EQ(s.show.current()->cues.back().key, alerts);
    EXPECT_EQ(s.show.current()->cues.back().outcome, CueOutcome::leftAlone());
    EXPECT_EQ(s.show.lastReconcile(), wentLive) << "a wake does not push the next regular look";

    // The limit ran out in sleep.
    s.advance(3600);
    s.show.wake(zoom);
    ASSERT_TRUE(s.show.isDark());
    EXPECT_EQ(s.ended.back().reason, EndReason::timeLimit);
    EXPECT_EQ(s.rig.sys->read(alerts), num(0.4));

    const int dark = s.changes;
    s.show.wake(std::nullopt);
    EXPECT_EQ(s.changes, dark);
}

TEST(Show, AChangeByHandMidShowIsMarkedYoursNowAndLeftAloneAtTheEnd) {
    Stage s;
    const auto before = s.rig.sys->state(false);
    s.startNow();
    const auto opening = s.show.current()->cues.size();
    const EffectKey mail = EffectKey::app(*s.rig.sys->app("com.apple.mail"));
    s.advance(2);
    s.rig.sys->userSet(alerts, num(0.4));
    s.show.tick();
    s.advance(2.5);
    s.show.tick();
    EXPECT_EQ(s.show.current()->cues.size(), opening) << "looks at most every 5 seconds";
    s.advance(0.5);
    s.show.tick();
    ASSERT_EQ(s.show.current()->cues.size(), opening + 1);
    const CueRecord noticed = s.show.current()->cues.back();
    EXPECT_EQ(noticed.key, alerts);
    EXPECT_EQ(noticed.outcome.shortLabel(), "Yours now");

    // An app that quits mid-show is gone from the sheet and from the undo.
    std::erase_if(s.rig.sys->apps, [](const AppInfo& app) { return app.name == "Mail"; });
    s.advance(5);
    s.show.tick();
    EXPECT_EQ(s.show.current()->cues.back().key, mail);
    EXPECT_EQ(s.show.current()->cues.back().outcome, CueOutcome::gone());

    s.show.stop(EndReason::stopped);
    const RunSheet& sheet = s.ended.back();
    const auto alertsUndo = std::find_if(sheet.strike.begin(), sheet.strike.end(),
                                         [](const CueRecord& r) { return r.key == alerts; });
    ASSERT_NE(alertsUndo, sheet.strike.end());
    EXPECT_EQ(alertsUndo->outcome.label(), "Left alone — you changed it");
    const auto undone = keys(sheet.strike);
    EXPECT_EQ(std::count(undone.begin(), undone.end(), mail), 0);
    EXPECT_EQ(sheet.leftAlone(), 1);
    EXPECT_EQ(sheet.problems(), 0);
    EXPECT_EQ(s.rig.sys->read(alerts), num(0.4));

    auto expected = before;
    expected[alerts.description()] = "0.40";
    expected.erase("app:com.apple.mail#504");
    EXPECT_EQ(s.rig.sys->state(false), expected);
    EXPECT_FALSE(s.journalOnDisk());
}

TEST(Show, ASwitchOnBeforeTheShowIsStillOnAfterIt) {
    Stage s;
    SwitchBoard board(s.director, s.show.settings, ManualClock::reading(s.rig.clock));
    s.show.settings.plan.darkMode = true;
    const auto before = s.rig.sys->state(false);
    board.turnOn(SwitchKind::darkMode);
    board.turnOn(SwitchKind::hideDock);
    EXPECT_EQ(s.rig.sys->read(darkMode), on());

    s.startNow();
    const auto& cues = s.show.current()->cues;
    const auto joined = std::find_if(cues.begin(), cues.end(),
                                     [](const CueRecord& r) { return r.key == darkMode; });
    ASSERT_NE(joined, cues.end());
    EXPECT_EQ(joined->outcome.label(), "Already on");

    // The switch let go mid-show: the show still holds the Dock and puts it back.
    EXPECT_EQ(outcomes(board.turnOff(SwitchKind::hideDock)), std::vector<Case>{Case::stillHeld});
    EXPECT_EQ(s.rig.sys->read(dock), on());

    s.show.stop(EndReason::stopped);
    const auto& strike = s.ended.back().strike;
    const auto kept = std::find_if(strike.begin(), strike.end(),
                                   [](const CueRecord& r) { return r.key == darkMode; });
    ASSERT_NE(kept, strike.end());
    EXPECT_EQ(kept->outcome.label(), "Kept — a switch holds it");
    EXPECT_EQ(s.rig.sys->read(darkMode), on());
    EXPECT_EQ(s.rig.sys->read(dock), off());
    EXPECT_TRUE(board.isOn(SwitchKind::darkMode));
    EXPECT_TRUE(s.journalOnDisk());

    EXPECT_EQ(outcomes(board.turnOff(SwitchKind::darkMode)), std::vector<Case>{Case::restored});
    EXPECT_EQ(s.rig.sys->state(false), before);
    EXPECT_FALSE(s.journalOnDisk());
}

TEST(Show, AResolutionTheDisplayLacksEndsTheCuesWithAHandMadeLine) {
    Stage s;
    s.show.settings.plan.resolution = ResolutionPreset{1280, 800};
    s.startNow();
    const auto& cues = s.show.current()->cues;
    ASSERT_EQ(cues.size(), 13u);
    const CueRecord& line = cues.back();
    EXPECT_EQ(line.title, "Resolution · display ");
    EXPECT_EQ(line.key, EffectKey(EffectKind::displayMode));
    EXPECT_EQ(line.outcome, CueOutcome::skipped("this display has no 1280 × 800 mode"));
    EXPECT_EQ(line.at, s.now());
    EXPECT_EQ(s.director->entry(display1), std::nullopt);
    EXPECT_EQ(s.director->log().size(), 12u) << "the line never goes through the director";
    EXPECT_EQ(s.rig.sys->read(display1), num(20));
    EXPECT_EQ(s.show.current()->problems(), 1);
    s.show.stop(EndReason::stopped);

    // A size the display offers is a real cue: the last one in, the first one undone.
    s.show.settings.plan.resolution = ResolutionPreset{1920, 1080};
    s.startNow();
    EXPECT_EQ(s.show.current()->cues.back().key, display1);
    EXPECT_EQ(s.show.current()->cues.back().outcome, CueOutcome::applied());
    EXPECT_EQ(s.rig.sys->read(display1), num(13));
    s.show.stop(EndReason::stopped);
    EXPECT_EQ(s.ended.back().strike.front().key, display1);
    EXPECT_EQ(s.rig.sys->read(display1), num(20));

    // With no display at all the user learns the same.
    s.rig.sys->displayList.clear();
    s.startNow();
    EXPECT_EQ(s.show.current()->cues.back().outcome.text(), "this display has no 1920 × 1080 mode");
}

TEST(Show, TheThirtyFirstSheetPushesOutTheOldest) {
    StageRig rig;
    std::vector<RunSheet> past;
    for (int i = 0; i < 30; ++i) {
        past.emplace_back(rig.clock->now - 3600.0 * (i + 1), "Show " + std::to_string(i));
    }
    Show show(rig.shareDirector(), StageSettings{}, past, ManualClock::reading(rig.clock));
    show.start("Menu bar", false);
    show.stop(EndReason::stopped);
    ASSERT_EQ(show.sheets().size(), 30u);
    EXPECT_EQ(show.sheets().front().how, "Menu bar");
    EXPECT_EQ(show.sheets()[1].how, "Show 0");
    EXPECT_EQ(show.sheets().back().how, "Show 28");

    past.emplace_back(rig.clock->now, "Show 30");
    past.emplace_back(rig.clock->now, "Show 31");
    show.restoreSheets(past);
    ASSERT_EQ(show.sheets().size(), 30u);
    EXPECT_EQ(show.sheets().back().how, "Show 29");
}

TEST(Show, RecoveryOfEffectsThatDiedWithTheProcessFilesNoSheet) {
    StageRig rig;
    rig.director->claim(EffectKey(EffectKind::keepAwake), on(), Show::owner);
    rig.director->claim(EffectKey(EffectKind::backdrop), on(), Show::owner);
    ASSERT_TRUE(std::filesystem::exists(rig.journalPath()));
    rig.sys->processDied();

    Show show(rig.relaunch(), StageSettings{}, {}, ManualClock::reading(rig.clock));
    int changes = 0;
    show.onChange = [&] { ++changes; };
    EXPECT_EQ(show.recoverAtLaunch(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(rig.journalPath()));
    EXPECT_FALSE(show.director().hasOutstanding());
    EXPECT_TRUE(show.sheets().empty());
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(show.recoverAtLaunch(), std::nullopt) << "an empty journal has nothing to heal";
}

TEST(Show, ADisplayModePutBackLateBelongsToTheShowThatChangedIt) {
    Stage s;
    s.show.settings.plan = StagePlan{false, false, false, false, false,
                                     false, false, false, false, ResolutionPreset{1440, 900}};
    s.startNow();
    s.rig.sys->displayList.clear();
    s.show.stop(EndReason::stopped);
    EXPECT_EQ(outcomes(s.ended.back().strike), std::vector<Case>{Case::deferred});
    EXPECT_EQ(s.ended.back().problems(), 1);
    EXPECT_TRUE(s.journalOnDisk());

    int changes = s.changes;
    s.show.displaysChanged();
    EXPECT_EQ(s.changes, changes + 1);
    EXPECT_EQ(s.show.sheets().front().strike.size(), 1u);

    s.rig.sys->displayList = {1};
    s.show.displaysChanged();
    EXPECT_EQ(outcomes(s.show.sheets().front().strike),
              (std::vector<Case>{Case::deferred, Case::restored}));
    EXPECT_EQ(s.rig.sys->read(display1), num(20));
    EXPECT_FALSE(s.journalOnDisk());

    // With no sheet to take them, the records stay in the director's log only.
    s.startNow();
    s.rig.sys->displayList.clear();
    s.show.stop(EndReason::stopped);
    s.show.clearSheets();
    s.rig.sys->displayList = {1};
    changes = s.changes;
    s.show.displaysChanged();
    EXPECT_EQ(s.changes, changes + 1);
    EXPECT_TRUE(s.show.sheets().empty());
    EXPECT_EQ(s.director->log().back().key, display1);
    EXPECT_EQ(s.director->log().back().outcome, CueOutcome::restored());
    EXPECT_FALSE(s.journalOnDisk());
}

} // namespace
} // namespace scrimlet
