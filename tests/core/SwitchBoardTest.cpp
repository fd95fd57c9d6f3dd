// The one-click switches on the simulated Mac: what each does when it cannot take, the
// timed auto-off, and how a switch notices that the user has taken its change over.

#include "SwitchBoard.hpp"

#include "Show.hpp"
#include "StageRig.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using testing::num;
using testing::off;
using testing::on;
using testing::StageRig;
using Case = CueOutcome::Case;

const EffectKey alerts{EffectKind::alertVolume};
const EffectKey dock{EffectKind::dockAutohide};
const EffectKey keyboardLock{EffectKind::keyboardLock};

// A board on the rig's director that counts its change callbacks.
struct Board {
    StageRig rig;
    std::shared_ptr<Director> director = rig.shareDirector();
    SwitchBoard board{director, StageSettings{}, ManualClock::reading(rig.clock)};
    int changes = 0;

    Board() {
        board.onChange = [this] { ++changes; };
    }

    Date now() const { return rig.clock->now; }
    void advance(double seconds) { rig.clock->advance(seconds); }
    std::optional<std::string> note(SwitchKind kind) const {
        const auto found = board.notes().find(kind);
        return found == board.notes().end() ? std::nullopt : std::optional(found->second);
    }
};

TEST(SwitchBoard, TheScreenSaverIsAnActionThatIsNeverOn) {
    Board b;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(b.board.toggle(SwitchKind::screenSaver).empty());
    }
    EXPECT_EQ(b.rig.sys->screenSaverStarts(), 3);
    EXPECT_FALSE(b.board.isOn(SwitchKind::screenSaver));
    EXPECT_EQ(b.board.onCount(), 0);
    EXPECT_EQ(b.changes, 3);
    EXPECT_TRUE(b.board.expiries().empty());
    EXPECT_EQ(b.rig.sys->writeCount(), 0);
    EXPECT_FALSE(std::filesystem::exists(b.rig.journalPath()));

    b.rig.sys->failWrites.insert(EffectKind::keepAwake);
    b.board.turnOn(SwitchKind::screenSaver);
    EXPECT_EQ(b.note(SwitchKind::screenSaver), "fake failure");
    EXPECT_EQ(b.changes, 4);
    EXPECT_EQ(b.rig.sys->screenSaverStarts(), 3);

    b.rig.sys->failWrites.clear();
    b.board.turnOn(SwitchKind::screenSaver);
    EXPECT_EQ(b.note(SwitchKind::screenSaver), std::nullopt);
    EXPECT_EQ(b.rig.sys->screenSaverStarts(), 4);
}

TEST(SwitchBoard, ASwitchThatCannotTakeSaysWhyAndStaysOff) {
    Board b;
    b.board.settings.keepVisible = {"com.apple.Keynote"};
    for (auto& app : b.rig.sys->apps) {
        app.isHidden = app.bundleID != "com.apple.Keynote" && app.bundleID != "com.apple.Safari";
    }
    b.rig.sys->front = "com.apple.Safari";
    EXPECT_TRUE(b.board.turnOn(SwitchKind::hideOtherApps).empty());
    EXPECT_EQ(b.note(SwitchKind::hideOtherApps), "Nothing to hide");
    EXPECT_FALSE(b.board.isOn(SwitchKind::hideOtherApps));

    b.rig.sys->inputDevices.clear();
    b.board.turnOn(SwitchKind::muteMic);
    EXPECT_EQ(b.note(SwitchKind::muteMic), "No microphone found");

    b.rig.sys->availabilityOverrides.insert_or_assign(
        EffectKind::darkMode, Availability::needsPermission("Allow Automation of System Events"));
    const auto skipped = b.board.turnOn(SwitchKind::darkMode);
    ASSERT_EQ(skipped.size(), 1u);
    EXPECT_EQ(b.note(SwitchKind::darkMode), "Skipped · Allow Automation of System Events");

    // A keyboard lock that fails sets no timer.
    b.rig.sys->failWrites.insert(EffectKind::keyboardLock);
    b.board.turnOn(SwitchKind::lockKeyboard);
    EXPECT_EQ(b.note(SwitchKind::lockKeyboard), "Failed · fake failure");
    EXPECT_FALSE(b.board.isOn(SwitchKind::lockKeyboard));
    EXPECT_EQ(b.board.remaining(SwitchKind::lockKeyboard), std::nullopt);
    EXPECT_EQ(b.changes, 4);

    // A note lasts through `turnOff` and goes at the next `turnOn`.
    b.board.turnOff(SwitchKind::lockKeyboard);
    EXPECT_EQ(b.note(SwitchKind::lockKeyboard), "Failed · fake failure");
    b.rig.sys->failWrites.clear();
    b.board.turnOn(SwitchKind::lockKeyboard);
    EXPECT_EQ(b.note(SwitchKind::lockKeyboard), std::nullopt);
    EXPECT_TRUE(b.board.isOn(SwitchKind::lockKeyboard));
    EXPECT_EQ(b.board.notes().size(), 3u);
    EXPECT_EQ(b.director->entries().size(), 1u) << "failed and skipped switches hold nothing";
}

TEST(SwitchBoard, TheKeyboardLockComesBackByItselfAfterTwoMinutes) {
    Board b;
    const Date t0 = b.now();
    b.board.turnOn(SwitchKind::lockKeyboard);
    EXPECT_EQ(b.rig.sys->read(keyboardLock), on());
    EXPECT_EQ(b.board.remaining(SwitchKind::lockKeyboard), 120);
    EXPECT_EQ(b.board.expiries().at(SwitchKind::lockKeyboard), t0 + 120);

    b.advance(119.5);
    EXPECT_TRUE(b.board.tick().empty());
    EXPECT_EQ(b.board.remaining(SwitchKind::lockKeyboard), 0.5);
    const int changes = b.changes;
    b.advance(0.5);
    EXPECT_EQ(b.board.tick(), std::vector<SwitchKind>{SwitchKind::lockKeyboard});
    EXPECT_EQ(b.changes, changes + 1);
    EXPECT_EQ(b.rig.sys->read(keyboardLock), off());
    EXPECT_FALSE(b.board.isOn(SwitchKind::lockKeyboard));
    EXPECT_EQ(b.board.remaining(SwitchKind::lockKeyboard), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(b.rig.journalPath()));
}

TEST(SwitchBoard, AnAutoOffIsFixedWhenTurnedOnAndRenewedByTheNextTurnOn) {
    Board b;
    b.board.settings.setPrefs(SwitchKind::hideDock, SwitchPrefs{true, 1, std::nullopt});
    const Date t0 = b.now();
    b.board.turnOn(SwitchKind::hideDock);
    EXPECT_EQ(b.board.expiries().at(SwitchKind::hideDock), t0 + 60);

    // The minutes changed later do not move the running timer; the next turnOn does.
    b.board.settings.setPrefs(SwitchKind::hideDock, SwitchPrefs{true, 5, std::nullopt});
    b.advance(30);
    b.board.tick();
    EXPECT_EQ(b.board.remaining(SwitchKind::hideDock), 30);
    const auto again = b.board.turnOn(SwitchKind::hideDock);
    ASSERT_EQ(again.size(), 1u);
    EXPECT_EQ(again[0].outcome, CueOutcome::alreadySo());
    EXPECT_EQ(b.board.expiries().at(SwitchKind::hideDock), t0 + 30 + 300);

    // Past the expiry and before the next tick, nothing is left, and nothing below zero.
    b.advance(301);
    EXPECT_EQ(b.board.remaining(SwitchKind::hideDock), 0);
    EXPECT_TRUE(b.board.isOn(SwitchKind::hideDock));
    EXPECT_EQ(b.board.tick(), std::vector<SwitchKind>{SwitchKind::hideDock});
    EXPECT_EQ(b.rig.sys->read(dock), off());

    // Turned off by hand, the timer goes with it.
    b.board.turnOn(SwitchKind::hideDock);
    b.board.turnOff(SwitchKind::hideDock);
    EXPECT_EQ(b.board.remaining(SwitchKind::hideDock), std::nullopt);
    const int changes = b.changes;
    b.advance(600);
    EXPECT_TRUE(b.board.tick().empty());
    EXPECT_EQ(b.changes, changes);

    // Without an auto-off a switch stays on.
    b.board.settings.setPrefs(SwitchKind::hideDock, SwitchPrefs{true, std::nullopt, std::nullopt});
    b.board.turnOn(SwitchKind::hideDock);
    EXPECT_EQ(b.board.remaining(SwitchKind::hideDock), std::nullopt);
    b.advance(24 * 3600);
    b.board.tick();
    EXPECT_TRUE(b.board.isOn(SwitchKind::hideDock));
}

TEST(SwitchBoard, ASwitchWhoseChangeTheUserOverridesTurnsItselfOff) {
    Board b;
    b.board.turnOn(SwitchKind::muteAlerts);
    b.board.turnOn(SwitchKind::hideDock);
    EXPECT_EQ(b.rig.sys->read(alerts), num(0));
    b.advance(3);
    EXPECT_TRUE(b.board.tick().empty());

    // Looks at most every 5 seconds.
    b.advance(1);
    b.rig.sys->userSet(alerts, num(0.4));
    b.advance(3);
    EXPECT_TRUE(b.board.tick().empty());
    EXPECT_TRUE(b.board.isOn(SwitchKind::muteAlerts));
    b.advance(1);
    const int writes = b.rig.sys->writeCount();
    EXPECT_EQ(b.board.tick(), std::vector<SwitchKind>{SwitchKind::muteAlerts});
    EXPECT_FALSE(b.board.isOn(SwitchKind::muteAlerts));
    EXPECT_EQ(b.rig.sys->read(alerts), num(0.4)) << "the user's choice is not put back";
    EXPECT_EQ(b.rig.sys->writeCount(), writes);
    EXPECT_EQ(b.director->log().back().outcome, CueOutcome::leftAlone());
    EXPECT_TRUE(b.board.isOn(SwitchKind::hideDock));
    EXPECT_EQ(b.board.onCount(), 1);
}

TEST(SwitchBoard, TheBoardLooksOnlyWhileASwitchIsOnAndLeavesTheShowItsOwn) {
    Board b;
    StageSettings muteOnly;
    muteOnly.plan = StagePlan{false, false, false, false, false, false, false, true, false, {}};
    Show show(b.director, muteOnly, {}, ManualClock::reading(b.rig.clock));
    show.start("Menu bar", false);
    b.advance(5);
    b.rig.sys->userSet(alerts, num(0.4));
    b.advance(3600);
    b.board.tick();
    EXPECT_EQ(b.director->entry(alerts)->state, EntryState::applied)
        << "with every switch off the board never reconciles";

    b.board.turnOn(SwitchKind::keepAwake);
    EXPECT_TRUE(b.board.tick().empty());
    EXPECT_EQ(b.director->entry(alerts)->state, EntryState::userChanged);
    // The show now has nothing of its own left, but it looks after its own.
    EXPECT_EQ(b.director->ownersFullyOverridden(), std::vector<std::string>{Show::owner});
    EXPECT_TRUE(b.director->isHeld(alerts, Show::owner));
    EXPECT_TRUE(show.isLive());
    EXPECT_TRUE(b.board.isOn(SwitchKind::keepAwake));
}

TEST(SwitchBoard, HidingOtherAppsKeepsNeitherTheShareNorTheRecorders) {
    Board b;
    b.board.settings.keepVisible = {"com.apple.Notes"};
    const auto records = b.board.turnOn(SwitchKind::hideOtherApps);
    EXPECT_EQ(records.size(), 7u);
    for (const auto& app : b.rig.sys->apps) {
        const bool kept = app.bundleID == "com.apple.Keynote" ||
                          app.bundleID == "app.vantrel.scrimlet" ||
                          app.bundleID == "com.apple.Notes";
        EXPECT_EQ(app.isHidden, !kept) << app.bundleID;
    }
    EXPECT_TRUE(b.rig.sys->app("us.zoom.xos")->isHidden);
    EXPECT_TRUE(b.rig.sys->app("app.vantrel.takeloom")->isHidden);
    EXPECT_EQ(b.director->keys(owner(SwitchKind::hideOtherApps)).size(), 7u);
}

TEST(SwitchBoard, AllOffPutsEverySwitchBackAndForgetsTheirTimers) {
    Board b;
    const auto before = b.rig.sys->state(false);
    for (const auto kind : {SwitchKind::hideDock, SwitchKind::darkMode, SwitchKind::muteMic,
                            SwitchKind::lockKeyboard, SwitchKind::doNotDisturb}) {
        b.board.turnOn(kind);
    }
    EXPECT_EQ(b.board.onCount(), 5);
    EXPECT_EQ(b.rig.sys->read(EffectKey(EffectKind::micMute, "BuiltInMicrophoneDevice")), on());
    EXPECT_TRUE(b.rig.sys->dnd);
    const int changes = b.changes;
    b.board.allOff();
    EXPECT_EQ(b.changes, changes + 5);
    EXPECT_EQ(b.board.onCount(), 0);
    EXPECT_TRUE(b.board.expiries().empty());
    EXPECT_EQ(b.rig.sys->state(false), before);
    EXPECT_FALSE(std::filesystem::exists(b.rig.journalPath()));
    b.board.allOff();
    EXPECT_EQ(b.changes, changes + 5);
}

} // namespace
} // namespace scrimlet
