// Whole shows on the simulated Mac, with a manual clock and the journal on disk: how each
// way of starting and ending one plays out, what the run sheet says, and what the Mac
// looks like afterwards.

#include "Show.hpp"

#include "DemoCapture.hpp"
#include "StageRig.hpp"
#include "SwitchBoard.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace scrimlet {
namespace {

using namespace testing;
using Case = CueOutcome::Case;
using Change = CaptureWatcher::Change;

const CaptureSource zoom{"us.zoom.xos", "Zoom", CaptureKind::callShare};
const CaptureSource chrome{"com.google.Chrome", "Chrome", CaptureKind::browserShare};

// A show on the rig's director that counts its callbacks.
struct Stage {
    StageRig rig;
    std::shared_ptr<Director> director = rig.shareDirector();
    Show show{director, StageSettings{}, {}, ManualClock::reading(rig.clock)};
    int changes = 0;
    std::vector<RunSheet> ended;
    // The change count when the last sheet was filed.
    int changesAtEnd = -1;

    Stage() {
        show.onChange = [this] { ++changes; };
        show.onEnded = [this](const RunSheet& sheet) {
            ended.push_back(sheet);
            changesAtEnd = changes;
        };
    }

    Date now() const { return rig.clock->now; }
    void advance(double seconds) { rig.clock->advance(seconds); }
    bool journalOnDisk() const { return std::filesystem::exists(rig.journalPath()); }
    void startNow(const std::string& how = "Menu bar") { show.start(how, false); }
    const CueRecord& lastCue() const { return show.current()->cues.back(); }
    int changesOf(const std::function<void()>& action) {
        const int before = changes;
        action();
        return changes - before;
    }
};

std::optional<std::string> labelOf(const std::vector<CueRecord>& records, const EffectKey& key) {
    const auto found = std::find_if(records.begin(), records.end(),
                                    [&](const CueRecord& record) { return record.key == key; });
    return found == records.end() ? std::nullopt : std::optional(found->outcome.label());
}

bool keeps(const Show& show, const std::string& bundleID) {
    return std::count(show.kept().begin(), show.kept().end(), bundleID) > 0;
}

TEST(Show, AnAutomaticShowFollowsAZoomShareFromItsStartToItsEnd) {
    Stage s;
    s.show.settings.keepVisible = {"com.apple.Notes"};
    const auto before = s.rig.sys->state(false);
    CaptureWatcher watcher(s.show.settings.detection);
    // What the store does once a second: look, report a change, tick.
    const auto look = [&](const CaptureSnapshot& snapshot, int seconds) {
        for (int i = 0; i < seconds; ++i) {
            if (const auto change = watcher.observe(snapshot, s.now())) {
                s.show.captureChanged(*change);
            }
            s.show.tick();
            s.advance(1);
        }
    };

    look(DemoCapture::zoomSharing(), 3);
    ASSERT_TRUE(s.show.isLive());

    // The share, the app in front, this app, the recorders and the user's own list stay
    // on screen; QuickTime Player is only a player here.
    for (const char* id : {"us.zoom.xos", "com.apple.Keynote", "app.vantrel.scrimlet",
                           "app.vantrel.takeloom", "com.apple.Notes"}) {
        EXPECT_TRUE(keeps(s.show, id)) << id;
    }
    EXPECT_FALSE(keeps(s.show, "com.apple.QuickTimePlayerX"));
    for (const auto& app : s.rig.sys->apps) {
        EXPECT_EQ(app.isHidden, !keeps(s.show, app.bundleID)) << app.bundleID;
    }
    const RunSheet running = *s.show.current();
    EXPECT_EQ(running.how, "Zoom is sharing your screen");
    EXPECT_EQ(running.source, zoom);
    EXPECT_EQ(outcomes(running.cues), std::vector<Case>(10, Case::applied));

    look(DemoCapture::zoomSharing(), 12);
    look(DemoCapture::idle(), 2);
    EXPECT_TRUE(s.show.isLive()) << "a share must be gone 3 seconds before it ends";
    EXPECT_EQ(s.show.current()->cues, running.cues) << "nothing was changed by hand";

    look(DemoCapture::idle(), 1);
    ASSERT_EQ(s.ended.size(), 1u);
    EXPECT_EQ(s.changesAtEnd, s.changes - 1) << "the sheet is filed before the change is told";
    const RunSheet& sheet = s.ended[0];
    EXPECT_EQ(sheet, s.show.sheets().front());
    EXPECT_EQ(sheet.id, running.id);
    EXPECT_EQ(sheet.reason, EndReason::captureEnded);
    EXPECT_EQ(sheet.duration(), 15);
    EXPECT_EQ(outcomes(sheet.strike), std::vector<Case>(10, Case::restored));
    EXPECT_TRUE(std::equal(sheet.strike.begin(), sheet.strike.end(), sheet.cues.rbegin(),
                           sheet.cues.rend(),
                           [](const auto& a, const auto& b) { return a.key == b.key; }))
        << "undone in the reverse order";
    EXPECT_EQ(s.rig.sys->state(false), before);
    EXPECT_FALSE(s.journalOnDisk());
    EXPECT_TRUE(!s.show.source() && !s.show.current() && !s.show.elapsed() && s.show.kept().empty())
        << "an ended show leaves nothing behind";
}

TEST(Show, CallbacksComeExactlyWhereSomethingVisibleChanged) {
    Stage s;
    // Nothing changes while the curtain is down.
    s.show.settings.autoStart = false;
    s.show.stop(EndReason::stopped);
    s.show.tick();
    s.show.extend(15);
    s.show.wake(std::nullopt);
    s.show.captureChanged(Change::ended(zoom));
    s.show.captureChanged(Change::started(zoom));
    EXPECT_EQ(s.changes, 0);

    EXPECT_EQ(s.changesOf([&] { s.show.clearLimit(); }), 1);
    EXPECT_EQ(s.changesOf([&] { s.show.start("Menu bar"); }), 1);
    EXPECT_EQ(s.changesOf([&] { s.show.extend(15); }), 0);
    EXPECT_EQ(s.changesOf([&] { s.show.tick(); }), 1);
    s.advance(3);
    EXPECT_EQ(s.changesOf([&] { s.show.tick(); }), 1);
    EXPECT_TRUE(s.show.isLive()) << "the countdown ends to the second";
    EXPECT_EQ(s.changesOf([&] { s.show.start("Hotkey"); }), 1);
    EXPECT_EQ(s.changesOf([&] { s.show.captureChanged(Change::ended(zoom)); }), 0)
        << "not the show's source";
    EXPECT_EQ(s.changesOf([&] { s.show.stop(EndReason::stopped); }), 1);
    EXPECT_EQ(s.changesOf([&] { s.show.clearSheets(); }), 1);
    EXPECT_EQ(s.changesOf([&] { s.show.restoreSheets({}); }), 1);
    EXPECT_EQ(s.ended.size(), 1u);
}

TEST(Show, AManualShowCountsDownAndASecondCueSkipsTheCountdown) {
    Stage s;
    s.show.start("Menu bar");
    EXPECT_EQ(s.show.countdownRemaining(), 3);
    s.advance(0.5);
    EXPECT_EQ(s.show.countdownRemaining(), 3);
    s.advance(1.9);
    s.show.tick();
    EXPECT_EQ(s.show.countdownRemaining(), 1);
    s.show.start("Hotkey");
    ASSERT_TRUE(s.show.isLive());
    EXPECT_EQ(s.show.startedAt(), s.now());
    EXPECT_EQ(s.show.current()->how, "Menu bar");
    s.show.stop(EndReason::stopped);

    // A capture makes the countdown pointless; the manual show then outlives it.
    s.show.start("Hotkey");
    s.show.captureChanged(Change::started(zoom));
    ASSERT_TRUE(s.show.isLive());
    EXPECT_EQ(s.show.current()->how, "Hotkey");
    s.show.captureChanged(Change::ended(zoom));
    EXPECT_TRUE(s.show.isLive());
    EXPECT_EQ(s.show.source(), std::nullopt);
    s.show.stop(EndReason::stopped);
    EXPECT_EQ(s.show.dismissed(), std::nullopt) << "its capture is over";

    // A cue by hand adopts an automatic show, which then outlives its capture too.
    s.show.captureChanged(Change::started(chrome));
    s.show.start("Menu bar");
    s.show.captureChanged(Change::switched(chrome, zoom));
    EXPECT_EQ(s.show.source(), zoom);
    s.show.captureChanged(Change::ended(zoom));
    EXPECT_TRUE(s.show.isLive());
    EXPECT_EQ(s.show.current()->how, "Chrome is sharing your screen");
    s.show.stop(EndReason::stopped);

    // The caller can ask for the countdown against the settings; a stop in the countdown
    // files nothing, as nothing was applied.
    s.show.settings.countdown = false;
    s.show.start("Hotkey", true);
    EXPECT_EQ(s.show.phase().kind(), ShowPhase::Case::standby);
    const auto sheets = s.show.sheets().size();
    s.show.stop(EndReason::stopped);
    EXPECT_TRUE(s.show.isDark());
    EXPECT_FALSE(s.show.manual());
    EXPECT_EQ(s.show.pendingHow(), "");
    EXPECT_EQ(s.show.sheets().size(), sheets);
    s.show.start("", false);
    EXPECT_EQ(s.show.current()->how, "Started");
}

TEST(Show, AShowTheUserStopsIsNotRestartedByTheSameShare) {
    Stage s;
    s.show.captureChanged(Change::started(zoom));
    s.show.stop(EndReason::stopped);
    EXPECT_EQ(s.show.dismissed(), zoom);
    s.show.captureChanged(Change::started(zoom));
    s.show.captureChanged(Change::switched(chrome, zoom));
    s.show.tick();
    // Once that share has ended, the next one starts a show as usual.
    s.show.captureChanged(Change::ended(zoom));
    EXPECT_EQ(s.changes, 2);
    EXPECT_EQ(s.rig.sys->writeCount(), 22);
    s.show.captureChanged(Change::started(zoom));
    EXPECT_TRUE(s.show.isLive());

    // Moving away from the dismissed share counts as its end.
    s.show.stop(EndReason::stopped);
    s.show.captureChanged(Change::switched(zoom, chrome));
    EXPECT_EQ(s.show.source(), chrome);

    // Only the user's own stop dismisses a share.
    s.show.stop(EndReason::quit);
    EXPECT_EQ(s.show.dismissed(), std::nullopt);
}

TEST(Show, ATimeLimitEndsTheShowAtExactlyItsEndAndCanBeMoved) {
    Stage s;
    s.show.settings.timeLimitMinutes = 1;
    s.startNow();
    s.advance(59.5);
    s.show.tick();
    EXPECT_EQ(s.show.remaining(), 0.5);
    s.advance(0.5);
    s.show.tick();
    ASSERT_TRUE(s.show.isDark());
    EXPECT_EQ(s.ended.back().reason, EndReason::timeLimit);

    // No extension while dark or counting down.
    s.show.extend(15);
    s.show.start("Menu bar");
    s.show.extend(15);
    EXPECT_EQ(s.show.endsAt(), std::nullopt);

    s.show.start("Menu bar");
    const Date t1 = s.now();
    s.show.extend(15);
    EXPECT_EQ(s.show.endsAt(), t1 + 60 + 15 * 60);
    s.show.clearLimit();
    s.advance(100);
    s.show.extend(15);
    EXPECT_EQ(s.show.endsAt(), t1 + 100 + 15 * 60) << "a show without a limit gains one";
    s.advance(15 * 60 + 0.5);
    EXPECT_EQ(s.show.remaining(), 0) << "never below zero before the tick";
    s.show.tick();
    EXPECT_TRUE(s.show.isDark());
}

TEST(Show, AWakeWithNoShareEndsAnAutomaticShowButNotAManualOne) {
    Stage s;
    const CaptureSource recording{"com.apple.screencaptureui", "Screen recording",
                                  CaptureKind::systemRecording};
    s.show.captureChanged(Change::started(recording));
    EXPECT_TRUE(keeps(s.show, "com.apple.QuickTimePlayerX")) << "it may be what records";
    s.show.wake(recording);
    EXPECT_TRUE(s.show.isLive());
    s.show.wake(std::nullopt);
    ASSERT_TRUE(s.show.isDark());
    EXPECT_EQ(s.ended.back().reason, EndReason::captureEnded);

    s.show.settings.timeLimitMinutes = 60;
    s.startNow();
    const auto wentLive = s.now();
    // Changed by hand before the next regular look: a wake looks at once.
    s.advance(4);
    s.rig.sys->userSet(alerts, num(0.4));
    EXPECT_EQ(s.changesOf([&] { s.show.wake(std::nullopt); }), 1);
    ASSERT_TRUE(s.show.isLive());
    EXPECT_EQ(s.lastCue().outcome, CueOutcome::leftAlone());
    EXPECT_EQ(s.show.lastReconcile(), wentLive) << "a wake does not push the next regular look";

    // The limit ran out in sleep, to the second.
    s.advance(3596);
    s.show.wake(zoom);
    ASSERT_TRUE(s.show.isDark());
    EXPECT_EQ(s.ended.back().reason, EndReason::timeLimit);
}

TEST(Show, AChangeByHandAndASwitchOnBeforeTheShowBothOutlastIt) {
    Stage s;
    SwitchBoard board(s.director, s.show.settings, ManualClock::reading(s.rig.clock));
    s.show.settings.plan.darkMode = true;
    const auto before = s.rig.sys->state(false);
    board.turnOn(SwitchKind::darkMode);
    board.turnOn(SwitchKind::hideDock);
    s.startNow();
    EXPECT_EQ(labelOf(s.show.current()->cues, darkMode), "Already on");
    // The switch lets go mid-show: the show still holds the Dock and puts it back.
    EXPECT_EQ(outcomes(board.turnOff(SwitchKind::hideDock)), std::vector<Case>{Case::stillHeld});
    EXPECT_EQ(s.rig.sys->read(dock), on());

    const auto opening = s.show.current()->cues.size();
    s.advance(2);
    s.rig.sys->userSet(alerts, num(0.4));
    s.show.tick();
    s.advance(2.5);
    s.show.tick();
    EXPECT_EQ(s.show.current()->cues.size(), opening) << "looks at most every 5 seconds";
    s.advance(0.5);
    s.show.tick();
    EXPECT_EQ(s.lastCue().key, alerts);
    EXPECT_EQ(s.lastCue().outcome.shortLabel(), "Yours now");

    s.show.stop(EndReason::stopped);
    const auto& strike = s.ended.back().strike;
    EXPECT_EQ(labelOf(strike, alerts), "Left alone — you changed it");
    EXPECT_EQ(labelOf(strike, darkMode), "Kept — a switch holds it");
    EXPECT_EQ(s.rig.sys->read(darkMode), on());
    EXPECT_EQ(s.rig.sys->read(dock), off());
    EXPECT_EQ(outcomes(board.turnOff(SwitchKind::darkMode)), std::vector<Case>{Case::restored});
    auto expected = before;
    expected[alerts.description()] = "0.40";
    EXPECT_EQ(s.rig.sys->state(false), expected);
    EXPECT_FALSE(s.journalOnDisk());
}

TEST(Show, NoMoreThanThirtySheetsAreKept) {
    StageRig rig;
    rig.director->claim(dock, on(), Show::owner);
    rig.sys->processDied();
    std::vector<RunSheet> past;
    for (int i = 0; i < 32; ++i) {
        past.emplace_back(rig.clock->now - 3600.0 * (i + 1), "Show " + std::to_string(i));
    }
    Show show(rig.relaunch(), StageSettings{}, {past.begin(), past.begin() + 30},
              ManualClock::reading(rig.clock));

    // A sheet recovered at launch joins the past ones; the next show trims them.
    ASSERT_TRUE(show.recoverAtLaunch());
    EXPECT_EQ(show.sheets().size(), 31u);
    show.start("Menu bar", false);
    show.stop(EndReason::stopped);
    ASSERT_EQ(show.sheets().size(), 30u);
    EXPECT_EQ(show.sheets()[1].how, "Scrimlet quit unexpectedly");
    EXPECT_EQ(show.sheets().back().how, "Show 27");

    show.restoreSheets(past);
    ASSERT_EQ(show.sheets().size(), 30u);
    EXPECT_EQ(show.sheets().back().how, "Show 29");
}

TEST(Show, TheDisplayModeComesLastAndMayBePutBackLate) {
    Stage s;
    s.show.settings.plan.resolution = ResolutionPreset{1280, 800};
    s.startNow();
    EXPECT_EQ(s.lastCue().key, EffectKey(EffectKind::displayMode));
    EXPECT_EQ(s.lastCue().outcome, CueOutcome::skipped("this display has no 1280 × 800 mode"));
    EXPECT_EQ(s.director->log().size(), 12u) << "the line never goes through the director";
    s.show.stop(EndReason::stopped);

    // A size the display offers is a real cue; if the display goes away mid-show, its mode
    // is put back when a display comes, on the sheet of the show that changed it.
    s.show.settings.plan = StagePlan{false, false, false, false, false,
                                     false, false, false, false, ResolutionPreset{1920, 1080}};
    const auto playWithoutDisplay = [&] {
        s.startNow();
        EXPECT_EQ(outcomes(s.show.current()->cues), std::vector<Case>{Case::applied});
        s.rig.sys->displayList.clear();
        s.show.stop(EndReason::stopped);
    };
    playWithoutDisplay();
    EXPECT_EQ(outcomes(s.ended.back().strike), std::vector<Case>{Case::deferred});
    EXPECT_EQ(s.changesOf([&] { s.show.displaysChanged(); }), 1);
    s.rig.sys->displayList = {1};
    s.show.displaysChanged();
    EXPECT_EQ(outcomes(s.show.sheets().front().strike),
              (std::vector<Case>{Case::deferred, Case::restored}));
    EXPECT_EQ(s.rig.sys->read(display1), num(20));
    EXPECT_FALSE(s.journalOnDisk());

    // With no sheet to take them, the records stay in the director's log only.
    playWithoutDisplay();
    s.show.clearSheets();
    s.rig.sys->displayList = {1};
    s.show.displaysChanged();
    EXPECT_TRUE(s.show.sheets().empty());
    EXPECT_EQ(s.director->log().back().outcome, CueOutcome::restored());
}

} // namespace
} // namespace scrimlet
