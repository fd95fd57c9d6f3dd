// The one-click switches on the simulated Mac: what each does when it cannot take, the
// timed auto-off, and how a switch notices that the user has taken its change over.

#include "SwitchBoard.hpp"

#include "Show.hpp"
#include "StageRig.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using namespace testing;

// A board on the rig's director that counts its change callbacks.
struct Board {
    StageRig rig;
    std::shared_ptr<Director> director = rig.shareDirector();
    SwitchBoard board{director, StageSettings{}, ManualClock::reading(rig.clock)};
    int changes = 0;

    Board() {
        board.onChange = [this] { ++changes; };
    }

    void advance(double seconds) { rig.clock->advance(seconds); }
    bool journalOnDisk() const { return std::filesystem::exists(rig.journalPath()); }
    std::optional<std::string> note(SwitchKind kind) const {
        const auto found = board.notes().find(kind);
        return found == board.notes().end() ? std::nullopt : std::optional(found->second);
    }
};

TEST(SwitchBoard, ASwitchThatCannotTakeSaysWhyAndStaysOff) {
    Board b;
    // The screen saver is a one-shot action, never on: each toggle starts it again.
    b.board.toggle(SwitchKind::screenSaver);
    b.board.toggle(SwitchKind::screenSaver);
    EXPECT_EQ(b.rig.sys->screenSaverStarts(), 2);
    b.rig.sys->failWrites.insert(EffectKind::keepAwake);
    b.board.turnOn(SwitchKind::screenSaver);
    EXPECT_EQ(b.note(SwitchKind::screenSaver), "fake failure");

    for (auto& app : b.rig.sys->apps) {
        app.isHidden = true;
    }
    EXPECT_TRUE(b.board.turnOn(SwitchKind::hideOtherApps).empty());
    EXPECT_EQ(b.note(SwitchKind::hideOtherApps), "Nothing to hide");

    b.rig.sys->inputDevices.clear();
    b.board.turnOn(SwitchKind::muteMic);
    EXPECT_EQ(b.note(SwitchKind::muteMic), "No microphone found");

    b.rig.sys->availabilityOverrides.insert_or_assign(
        EffectKind::darkMode, Availability::needsPermission("Allow Automation of System Events"));
    b.board.turnOn(SwitchKind::darkMode);
    EXPECT_EQ(b.note(SwitchKind::darkMode), "Skipped · Allow Automation of System Events");

    // A keyboard lock that fails sets no timer.
    b.rig.sys->failWrites.insert(EffectKind::keyboardLock);
    b.board.turnOn(SwitchKind::lockKeyboard);
    EXPECT_EQ(b.note(SwitchKind::lockKeyboard), "Failed · fake failure");
    EXPECT_EQ(b.board.remaining(SwitchKind::lockKeyboard), std::nullopt);
    EXPECT_EQ(b.board.onCount(), 0);
    EXPECT_EQ(b.changes, 7);

    // A note lasts through `turnOff` and goes at the next `turnOn`.
    b.board.turnOff(SwitchKind::lockKeyboard);
    EXPECT_EQ(b.note(SwitchKind::lockKeyboard), "Failed · fake failure");
    b.rig.sys->failWrites.clear();
    b.board.turnOn(SwitchKind::screenSaver);
    b.board.turnOn(SwitchKind::lockKeyboard);
    EXPECT_EQ(b.board.notes().size(), 3u);
    EXPECT_TRUE(b.board.isOn(SwitchKind::lockKeyboard));
}

TEST(SwitchBoard, AnAutoOffStrikesAtItsEndAndIsFixedWhenTurnedOn) {
    Board b;
    b.board.turnOn(SwitchKind::lockKeyboard);
    EXPECT_EQ(b.board.remaining(SwitchKind::lockKeyboard), 120);
    // Minutes changed later do not move a running timer; the next `turnOn` does.
    b.board.settings.setPrefs(SwitchKind::hideDock, SwitchPrefs{true, 1, std::nullopt});
    b.board.turnOn(SwitchKind::hideDock);
    b.board.settings.setPrefs(SwitchKind::hideDock, SwitchPrefs{true, 5, std::nullopt});
    b.advance(30);
    EXPECT_EQ(b.board.remaining(SwitchKind::hideDock), 30);
    b.board.turnOn(SwitchKind::hideDock);
    EXPECT_EQ(b.board.remaining(SwitchKind::hideDock), 300);

    b.advance(89.5);
    EXPECT_TRUE(b.board.tick().empty());
    b.advance(0.5);
    const int changes = b.changes;
    EXPECT_EQ(b.board.tick(), std::vector<SwitchKind>{SwitchKind::lockKeyboard});
    EXPECT_EQ(b.changes, changes + 1);
    EXPECT_EQ(b.rig.sys->read(EffectKey(EffectKind::keyboardLock)), off());
    EXPECT_EQ(b.board.remaining(SwitchKind::lockKeyboard), std::nullopt);
    b.advance(300);
    EXPECT_EQ(b.board.remaining(SwitchKind::hideDock), 0) << "never below zero before the tick";
    EXPECT_EQ(b.board.tick(), std::vector<SwitchKind>{SwitchKind::hideDock});

    // Turned off by hand, the timer goes with it.
    b.board.turnOn(SwitchKind::hideDock);
    b.board.turnOff(SwitchKind::hideDock);
    b.advance(600);
    EXPECT_TRUE(b.board.tick().empty());

    b.board.settings.setPrefs(SwitchKind::hideDock, SwitchPrefs{true, std::nullopt, std::nullopt});
    b.board.turnOn(SwitchKind::hideDock);
    EXPECT_EQ(b.board.remaining(SwitchKind::hideDock), std::nullopt);
}

TEST(SwitchBoard, ASwitchWhoseChangeTheUserOverridesTurnsItselfOff) {
    Board b;
    StageSettings dockOnly;
    dockOnly.plan = StagePlan{false, true, false, false, false, false, false, false, false, {}};
    Show show(b.director, dockOnly, {}, ManualClock::reading(b.rig.clock));
    show.start("Menu bar", false);
    b.advance(5);
    b.rig.sys->userSet(dock, off());
    b.advance(3600);
    b.board.tick();
    EXPECT_EQ(b.director->entry(dock)->state, EntryState::applied)
        << "with every switch off the board never looks";

    // The show has nothing of its own left now, but that is for the show to judge.
    b.board.turnOn(SwitchKind::muteAlerts);
    EXPECT_TRUE(b.board.tick().empty());
    EXPECT_EQ(b.director->entry(dock)->state, EntryState::userChanged);
    EXPECT_TRUE(b.director->isHeld(dock, Show::owner));

    // Looks at most every 5 seconds.
    b.advance(1);
    b.rig.sys->userSet(alerts, num(0.4));
    b.advance(3);
    EXPECT_TRUE(b.board.tick().empty());
    b.advance(1);
    EXPECT_EQ(b.board.tick(), std::vector<SwitchKind>{SwitchKind::muteAlerts});
    EXPECT_EQ(b.rig.sys->read(alerts), num(0.4)) << "the user's choice is not put back";
    EXPECT_EQ(b.board.onCount(), 0);
}

TEST(SwitchBoard, AllOffPutsEverySwitchBackAndForgetsTheirTimers) {
    Board b;
    const auto before = b.rig.sys->state(false);
    b.board.settings.keepVisible = {"com.apple.Notes"};
    for (const auto kind : {SwitchKind::hideOtherApps, SwitchKind::darkMode, SwitchKind::muteMic,
                            SwitchKind::lockKeyboard, SwitchKind::doNotDisturb}) {
        b.board.turnOn(kind);
    }
    // Unlike a show, hiding other apps keeps neither a share nor the recorders.
    for (const auto& app : b.rig.sys->apps) {
        EXPECT_EQ(app.isHidden, app.bundleID != "com.apple.Keynote" &&
                                    app.bundleID != "app.vantrel.scrimlet" &&
                                    app.bundleID != "com.apple.Notes")
            << app.bundleID;
    }
    const int changes = b.changes;
    b.board.allOff();
    EXPECT_EQ(b.changes, changes + 5);
    EXPECT_TRUE(b.board.expiries().empty());
    EXPECT_EQ(b.rig.sys->state(false), before);
    EXPECT_FALSE(b.journalOnDisk());
    b.board.allOff();
    EXPECT_EQ(b.changes, changes + 5);
}

} // namespace
} // namespace scrimlet
