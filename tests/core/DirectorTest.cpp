#include "Director.hpp"

#include "StageRig.hpp"
#include "SwitchBoard.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using namespace testing;
using Case = CueOutcome::Case;

TEST(Director, SharedOwnershipKeepsTheEffectUntilTheLastOwnerLetsGo) {
    StageRig rig;
    auto& d = *rig.director;
    EXPECT_EQ(d.claim(darkMode, on(), "switch.darkMode"), CueOutcome::applied());
    EXPECT_EQ(d.claim(darkMode, on(), "stage"), CueOutcome::joined());
    EXPECT_EQ(rig.sys->writeCount(), 1);
    EXPECT_EQ(d.owners(darkMode), (std::vector<std::string>{"switch.darkMode", "stage"}));

    EXPECT_EQ(d.release(darkMode, "switch.darkMode"), CueOutcome::stillHeld());
    EXPECT_EQ(rig.sys->read(darkMode), on());
    EXPECT_TRUE(std::filesystem::exists(rig.journalPath()));

    EXPECT_EQ(d.release(darkMode, "stage"), CueOutcome::restored());
    EXPECT_EQ(rig.sys->read(darkMode), off());
    EXPECT_FALSE(d.hasOutstanding());
    EXPECT_FALSE(std::filesystem::exists(rig.journalPath()));
}

TEST(Director, RepeatedAndAlreadySoClaimsWriteNothing) {
    StageRig rig;
    auto& d = *rig.director;
    EXPECT_EQ(d.claim(dock, on(), "stage"), CueOutcome::applied());
    EXPECT_EQ(d.claim(dock, on(), "stage"), CueOutcome::alreadySo());
    EXPECT_EQ(d.owners(dock), std::vector<std::string>{"stage"});
    EXPECT_EQ(rig.sys->writeCount(), 1);

    // The Mac already stands where it is asked to be: held, but never put back.
    EXPECT_EQ(d.claim(darkMode, off(), "stage"), CueOutcome::alreadySo());
    EXPECT_FALSE(d.entry(darkMode)->changed);
    EXPECT_EQ(d.release(darkMode, "stage"), CueOutcome::alreadyBack());
    EXPECT_EQ(rig.sys->writeCount(), 1);

    EXPECT_EQ(d.release(darkMode, "stage"), std::nullopt);
    EXPECT_EQ(d.release(dock, "nobody"), std::nullopt);
    EXPECT_EQ(d.log().size(), 4u);
}

TEST(Director, ALaterClaimWithAnotherValueWinsAndTheFirstBeforeComesBack) {
    StageRig rig;
    auto& d = *rig.director;
    d.claim(alerts, num(0.3), "switch.muteAlerts");
    EXPECT_EQ(d.claim(alerts, num(0), "stage"), CueOutcome::applied());
    const auto entry = *d.entry(alerts);
    EXPECT_EQ(entry.before, num(0.75));
    EXPECT_EQ(entry.after, num(0));
    EXPECT_EQ(entry.owners.size(), 2u);
    EXPECT_EQ(d.release(alerts, "switch.muteAlerts"), CueOutcome::stillHeld());
    EXPECT_EQ(rig.sys->read(alerts), num(0));
    EXPECT_EQ(d.release(alerts, "stage"), CueOutcome::restored());
    EXPECT_EQ(rig.sys->read(alerts), num(0.75));
}

TEST(Director, DoNotDisturbLearnsItsPastStateFromTheWrite) {
    StageRig rig;
    auto& d = *rig.director;
    rig.sys->dnd = true;
    EXPECT_EQ(d.claim(dnd, on(), "stage"), CueOutcome::applied());
    EXPECT_FALSE(d.entry(dnd)->changed);
    EXPECT_EQ(d.release(dnd, "stage"), CueOutcome::alreadyBack());
    EXPECT_TRUE(rig.sys->dnd);

    // From off it is turned off again at the end, whatever the user did meanwhile, since it
    // cannot be read.
    rig.sys->dnd = false;
    d.claim(dnd, on(), "stage");
    EXPECT_EQ(d.entry(dnd)->before, off());
    rig.clock->advance(60);
    EXPECT_TRUE(d.reconcile().empty());
    EXPECT_EQ(d.release(dnd, "stage"), CueOutcome::restored());
    EXPECT_FALSE(rig.sys->dnd);
}

TEST(Director, ReconcileBelievesAChangeOnlyAfterTheSettleTime) {
    StageRig rig;
    auto& d = *rig.director;
    d.claim(alerts, num(0), "stage");
    d.claim(dock, on(), "stage");
    const int saves = rig.store->saves();
    rig.clock->advance(1);
    rig.sys->userSet(alerts, num(0.5));
    rig.clock->advance(1.9);
    EXPECT_TRUE(d.reconcile().empty());
    EXPECT_EQ(rig.store->saves(), saves) << "a pass that finds nothing does not save";
    rig.clock->advance(0.1);
    EXPECT_EQ(d.reconcile(), std::vector<EffectKey>{alerts});
    EXPECT_EQ(d.entry(alerts)->state, EntryState::userChanged);
    EXPECT_EQ(d.log().back().outcome, CueOutcome::leftAlone());
    EXPECT_EQ(rig.store->saves(), saves + 1);
    EXPECT_EQ(d.ownersFullyOverridden(), std::vector<std::string>{});

    const int writes = rig.sys->writeCount();
    const auto strike = d.releaseAll("stage");
    EXPECT_EQ(outcomes(strike), (std::vector{Case::restored, Case::leftAlone}));
    EXPECT_EQ(rig.sys->read(alerts), num(0.5));
    EXPECT_EQ(rig.sys->writeCount(), writes + 1);
}

TEST(Director, AUserWhoPutsTheValueBackIsLeftAloneEitherWay) {
    StageRig rig;
    auto& d = *rig.director;
    d.claim(dock, on(), "stage");
    rig.sys->userSet(dock, off());
    // Seen by reconcile: the user's.
    rig.clock->advance(5);
    d.reconcile();
    EXPECT_EQ(d.release(dock, "stage"), CueOutcome::leftAlone());

    // Not seen yet: the Mac already stands at `before`.
    d.claim(dock, on(), "stage");
    rig.sys->userSet(dock, off());
    const int writes = rig.sys->writeCount();
    EXPECT_EQ(d.release(dock, "stage"), CueOutcome::alreadyBack());
    EXPECT_EQ(rig.sys->writeCount(), writes);

    // An entry that changed nothing is never looked at.
    d.claim(darkMode, off(), "stage");
    rig.sys->userSet(darkMode, on());
    rig.clock->advance(5);
    EXPECT_TRUE(d.reconcile().empty());
    EXPECT_EQ(d.release(darkMode, "stage"), CueOutcome::alreadyBack());
    EXPECT_EQ(rig.sys->read(darkMode), on());
}

TEST(Director, AnAppThatQuitIsGoneAndTheOtherIsStillShownAgain) {
    StageRig rig;
    auto& d = *rig.director;
    const auto mail = EffectKey::app(*rig.sys->app("com.apple.mail"));
    const auto slack = EffectKey::app(*rig.sys->app("com.tinyspeck.slackmacgap"));
    d.claim(mail, on(), "stage");
    d.claim(slack, on(), "stage");
    std::erase_if(rig.sys->apps, [](const AppInfo& a) { return a.bundleID == "com.apple.mail"; });
    rig.clock->advance(5);
    EXPECT_TRUE(d.reconcile().empty());
    EXPECT_EQ(d.log().back().outcome, CueOutcome::gone());
    EXPECT_FALSE(d.entry(mail));
    const auto strike = d.releaseAll("stage");
    ASSERT_EQ(strike.size(), 1u);
    EXPECT_EQ(strike[0].key, slack);
    EXPECT_EQ(strike[0].title, "Hide Slack");
    EXPECT_FALSE(rig.sys->app("com.tinyspeck.slackmacgap")->isHidden);
}

TEST(Director, FailedWritesNeverLeaveAFalseJournal) {
    StageRig rig;
    auto& d = *rig.director;
    rig.sys->failWrites.insert(EffectKind::darkMode);
    EXPECT_EQ(d.claim(darkMode, on(), "stage"), CueOutcome::failed("fake failure"));
    EXPECT_FALSE(d.hasOutstanding());
    EXPECT_FALSE(std::filesystem::exists(rig.journalPath()));

    // Driving an existing entry again: it stays, with the new value, though the Mac did
    // not move; after the settle time that difference reads as the user's doing.
    rig.sys->failWrites.clear();
    d.claim(alerts, num(0.3), "stage");
    rig.sys->failWrites.insert(EffectKind::alertVolume);
    EXPECT_EQ(d.claim(alerts, num(0), "switch.muteAlerts"), CueOutcome::failed("fake failure"));
    EXPECT_EQ(d.entry(alerts)->state, EntryState::applied);
    EXPECT_EQ(d.entry(alerts)->after, num(0));
    rig.clock->advance(3);
    EXPECT_EQ(d.reconcile(), std::vector<EffectKey>{alerts});
    EXPECT_EQ(d.ownersFullyOverridden(), (std::vector<std::string>{"stage", "switch.muteAlerts"}));

    // A failed undo is reported and not retried.
    d.claim(dock, on(), "x");
    rig.sys->failWrites.insert(EffectKind::dockAutohide);
    EXPECT_EQ(d.release(dock, "x"), CueOutcome::failed("fake failure"));
    EXPECT_FALSE(d.entry(dock));
}

// What platform code may throw that is no standard exception at all.
struct ForeignError {};

// The simulated Mac, but writes of the chosen kinds throw something foreign.
class ForeignFailures : public FakeStageSystem {
public:
    ForeignFailures()
        : FakeStageSystem(demoApps(), "com.apple.Keynote", {1}, {"BuiltInMicrophoneDevice"}) {}
    std::set<EffectKind> foreign;
    std::optional<JournalValue> write(const EffectKey& key, const JournalValue& value) override {
        if (foreign.count(key.kind)) {
            throw ForeignError{};
        }
        return FakeStageSystem::write(key, value);
    }
    void startScreenSaver() override { throw ForeignError{}; }
};

TEST(Director, AnErrorOfAnyTypeIsAFailedStepAndThePlanGoesOn) {
    TempDir dir;
    auto sys = std::make_shared<ForeignFailures>();
    auto clock = std::make_shared<ManualClock>(Date{1'790'000'000});
    const auto journal = dir / "journal.json";
    const auto director = std::make_shared<Director>(sys, std::make_shared<JournalStore>(journal),
                                                     ManualClock::reading(clock));
    Director& d = *director;
    const CueOutcome unexpected = CueOutcome::failed("unexpected error");

    sys->foreign = {EffectKind::darkMode};
    EXPECT_EQ(d.claim(darkMode, on(), "stage"), unexpected);
    EXPECT_FALSE(d.entry(darkMode));
    EXPECT_FALSE(std::filesystem::exists(journal));
    EXPECT_EQ(d.claim(dock, on(), "stage"), CueOutcome::applied());

    // Driven again: the entry stays, applied, with the new value.
    d.claim(alerts, num(0.3), "stage");
    sys->foreign = {EffectKind::alertVolume};
    EXPECT_EQ(d.claim(alerts, num(0), "switch.muteAlerts"), unexpected);
    EXPECT_EQ(d.entry(alerts)->state, EntryState::applied);
    EXPECT_EQ(JournalStore(journal).load().size(), 2u);

    // Letting go removes the entry whatever the undo threw, and the rest still comes down.
    sys->foreign.clear();
    d.claim(keepAwake, on(), "stage");
    sys->foreign = {EffectKind::dockAutohide, EffectKind::keepAwake};
    const auto strike = d.releaseAll("stage");
    EXPECT_EQ(outcomes(strike), (std::vector{Case::failed, Case::stillHeld, Case::failed}));
    EXPECT_EQ(strike.front().outcome, unexpected);
    EXPECT_EQ(d.keys("switch.muteAlerts"), std::vector{alerts});
    EXPECT_EQ(d.entries().size(), 1u);
    d.release(alerts, "switch.muteAlerts");
    EXPECT_FALSE(d.hasOutstanding());
    EXPECT_FALSE(std::filesystem::exists(journal));

    // The one-shot action says the same in its note.
    SwitchBoard board(director, StageSettings{}, ManualClock::reading(clock));
    board.turnOn(SwitchKind::screenSaver);
    EXPECT_EQ(board.notes().at(SwitchKind::screenSaver), "unexpected error");
}

TEST(Director, UnavailableEffectsAreSkippedButAJoiningOwnerStaysOnRecord) {
    StageRig rig;
    auto& d = *rig.director;
    rig.sys->availabilityOverrides.insert_or_assign(
        EffectKind::darkMode, Availability::needsPermission("Allow Automation"));
    EXPECT_EQ(d.claim(darkMode, on(), "stage"), CueOutcome::skipped("Allow Automation"));
    EXPECT_FALSE(std::filesystem::exists(rig.journalPath()));
    EXPECT_EQ(d.log().back().outcome.label(), "Skipped · Allow Automation");

    rig.sys->availabilityOverrides.clear();
    d.claim(darkMode, on(), "switch.darkMode");
    rig.sys->userSet(darkMode, off());
    rig.sys->availabilityOverrides.insert_or_assign(EffectKind::darkMode,
                                                    Availability::unavailable(""));
    EXPECT_EQ(d.claim(darkMode, on(), "stage"), CueOutcome::skipped(""));
    EXPECT_TRUE(d.isHeld(darkMode, "stage"));
    EXPECT_EQ(rig.sys->read(darkMode), off());
}

TEST(Director, ADisplayUndoWaitsForTheDisplayToReturn) {
    StageRig rig;
    auto& d = *rig.director;
    d.claim(display1, num(13), "stage");
    rig.sys->displayList.clear();
    EXPECT_EQ(d.release(display1, "stage"), CueOutcome::deferred());
    EXPECT_TRUE(d.entry(display1)->owners.empty());
    EXPECT_EQ(d.entry(display1)->state, EntryState::deferred);

    const int saves = rig.store->saves();
    EXPECT_TRUE(d.retryDeferred().empty());
    EXPECT_EQ(rig.store->saves(), saves + 1) << "a retry always saves";

    // A claim on a deferred entry drives it again and makes the claimant its owner.
    rig.sys->displayList = {1};
    EXPECT_EQ(d.claim(display1, num(12), "switch.x"), CueOutcome::applied());
    EXPECT_EQ(d.entry(display1)->before, num(20));
    rig.sys->displayList.clear();
    d.release(display1, "switch.x");

    rig.sys->displayList = {1};
    const auto settled = d.retryDeferred();
    EXPECT_EQ(outcomes(settled), std::vector{Case::restored});
    EXPECT_EQ(rig.sys->read(display1), num(20));
    EXPECT_FALSE(d.hasOutstanding());
}

// Each row of the recovery table: an entry as a dead process left it, the Mac as the next
// launch finds it, and what recovery does.
TEST(Director, RecoveryFollowsTheStateOfEachEntry) {
    StageRig rig;
    const Date t = rig.clock->now;
    const auto mail = EffectKey::app(*rig.sys->app("com.apple.mail"));
    std::vector<JournalEntry> journal = {
        // The write landed: put back.
        {dock, off(), on(), {"stage"}, EntryState::pending, true, t},
        // The write never landed: the Mac stands at before.
        {darkMode, off(), on(), {"stage"}, EntryState::pending, true, t},
        // The user chose something else.
        {alerts, num(0.75), num(0), {"stage"}, EntryState::applied, true, t},
        // An app that is not running any more.
        {EffectKey(EffectKind::appHidden, "com.apple.Music#999#Music"),
         off(),
         on(),
         {"stage"},
         EntryState::applied,
         true,
         t},
        {mail, off(), on(), {"stage"}, EntryState::userChanged, true, t},
        {dnd, off(), on(), {"stage"}, EntryState::applied, true, t},
        {EffectKey(EffectKind::micMute, "BuiltInMicrophoneDevice"),
         on(),
         on(),
         {"switch.muteMic"},
         EntryState::applied,
         false,
         t},
        // Unplugged display: kept while young, dropped after seven days.
        {EffectKey(EffectKind::displayMode, "2"),
         num(20),
         num(13),
         {},
         EntryState::deferred,
         true,
         t - 8 * 86400},
        {EffectKey(EffectKind::displayMode, "3"),
         num(20),
         num(13),
         {"stage"},
         EntryState::applied,
         true,
         t},
        // Died with the process: no record at all.
        {keepAwake, off(), on(), {"stage"}, EntryState::applied, true, t},
    };
    rig.sys->userSet(dock, on());
    rig.sys->userSet(alerts, num(0.4));
    rig.sys->userSet(mail, on());
    rig.sys->dnd = true;
    rig.store->save(journal);

    auto d = rig.relaunch();
    const auto records = d->recoverAtLaunch();
    EXPECT_EQ(outcomes(records), (std::vector{Case::deferred, Case::deferred, Case::alreadyBack,
                                              Case::restored, Case::leftAlone, Case::gone,
                                              Case::leftAlone, Case::alreadyBack, Case::restored}));
    EXPECT_EQ(records.front().key.target, "3");
    EXPECT_EQ(records[1].key.target, "2");
    EXPECT_EQ(rig.sys->read(dock), off());
    EXPECT_EQ(rig.sys->read(alerts), num(0.4));
    EXPECT_TRUE(rig.sys->app("com.apple.mail")->isHidden);
    EXPECT_FALSE(rig.sys->dnd);
    ASSERT_EQ(d->entries().size(), 1u);
    EXPECT_EQ(d->entries()[0].key.target, "3");
    EXPECT_EQ(d->entries()[0].state, EntryState::deferred);

    // Nothing left to recover the second time; an empty journal is not even saved.
    const int saves = rig.store->saves();
    rig.store->save({});
    auto again = rig.relaunch();
    EXPECT_TRUE(again->recoverAtLaunch().empty());
    EXPECT_EQ(rig.store->saves(), 0);
    EXPECT_GT(saves, 0);
}

} // namespace
} // namespace scrimlet
