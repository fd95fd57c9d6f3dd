// The write-ahead promise, tested the hard way: a process that dies at every possible
// write, a journal frozen as a dead process leaves it, and the next launch healing the Mac.

#include "Director.hpp"

#include "StageRig.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using testing::num;
using testing::on;
using testing::StageRig;

struct Claim {
    EffectKey key;
    JournalValue value;
};

// A run of every kind that a show or a switch can hold, persistent and process-held.
std::vector<Claim> run(FakeStageSystem& sys) {
    return {
        {EffectKey(EffectKind::desktopIcons), on()},
        {EffectKey::app(*sys.app("com.apple.mail")), on()},
        {EffectKey::app(*sys.app("com.apple.Notes")), on()},
        {EffectKey(EffectKind::backdrop), on()},
        {EffectKey(EffectKind::menuBarTidy), on()},
        {EffectKey(EffectKind::dockAutohide), on()},
        {EffectKey(EffectKind::darkMode), on()},
        {EffectKey(EffectKind::alertVolume), num(0)},
        {EffectKey(EffectKind::doNotDisturb), on()},
        {EffectKey(EffectKind::keepAwake), on()},
        {EffectKey(EffectKind::displayMode, "1"), *sys.displayModeValue({1920, 1080}, 1)},
        {EffectKey(EffectKind::micMute, "BuiltInMicrophoneDevice"), on()},
        {EffectKey(EffectKind::spotlight), on()},
    };
}

// Plays the run until the armed crash strikes. Answers whether it struck.
bool playUntilCrash(StageRig& rig, FakeStageSystem::CrashPoint point,
                    const std::function<void(size_t)>& betweenClaims = {}) {
    rig.sys->onCrash = [store = rig.store] { store->freeze(); };
    rig.sys->setCrash(point);
    const auto claims = run(*rig.sys);
    for (size_t i = 0; i < claims.size() && !rig.sys->crashed(); ++i) {
        if (betweenClaims) {
            betweenClaims(i);
        }
        rig.director->claim(claims[i].key, claims[i].value, "stage");
        rig.clock->advance(1);
    }
    return rig.sys->crashed();
}

void launchAgain(StageRig& rig) {
    rig.sys->revive();
    rig.sys->processDied();
    auto director = rig.relaunch();
    director->recoverAtLaunch();
    EXPECT_FALSE(director->hasOutstanding());
}

TEST(JournalCrash, EveryCrashPointIsHealedAtTheNextLaunch) {
    const size_t writes = run(*FakeStageSystem::demo()).size();
    int crashes = 0;
    for (const auto kind : {FakeStageSystem::CrashPoint::Case::beforeWrite,
                            FakeStageSystem::CrashPoint::Case::afterWrite}) {
        for (int n = 1; n <= static_cast<int>(writes); ++n) {
            SCOPED_TRACE(
                (kind == FakeStageSystem::CrashPoint::Case::beforeWrite ? "before " : "after ") +
                std::to_string(n));
            StageRig rig;
            const auto before = rig.sys->state(true);
            ASSERT_TRUE(playUntilCrash(rig, {kind, n}));
            ++crashes;
            EXPECT_EQ(rig.sys->writeCount(), n);
            launchAgain(rig);
            EXPECT_EQ(rig.sys->state(true), before);
            EXPECT_FALSE(std::filesystem::exists(rig.journalPath()));
        }
    }
    EXPECT_EQ(crashes, 2 * static_cast<int>(writes));
}

TEST(JournalCrash, AValueTheUserChoseMidRunSurvivesRecovery) {
    const size_t writes = run(*FakeStageSystem::demo()).size();
    const EffectKey alerts(EffectKind::alertVolume);
    for (int n = 9; n <= static_cast<int>(writes); ++n) {
        SCOPED_TRACE(n);
        StageRig rig;
        auto expected = rig.sys->state(true);
        // The alert volume is claimed eighth; the user moves it right after.
        ASSERT_TRUE(playUntilCrash(rig, FakeStageSystem::CrashPoint::afterWrite(n), [&](size_t i) {
            if (i == 8) {
                rig.sys->userSet(alerts, num(0.5));
            }
        }));
        launchAgain(rig);
        expected[alerts.description()] = "0.50";
        EXPECT_EQ(rig.sys->state(true), expected);
    }
}

TEST(JournalCrash, AWriteThatFailsAfterTheCrashLeavesTheJournalAsTheDeadProcessDid) {
    StageRig rig;
    ASSERT_TRUE(playUntilCrash(rig, FakeStageSystem::CrashPoint::beforeWrite(2)));
    // The live director cleaned up its list, but the frozen file still says "pending".
    EXPECT_EQ(rig.director->entries().size(), 1u);
    const auto onDisk = JournalStore(rig.journalPath()).load();
    ASSERT_EQ(onDisk.size(), 2u);
    EXPECT_EQ(onDisk[1].state, EntryState::pending);
    EXPECT_EQ(rig.director->log().back().outcome.kind(), CueOutcome::Case::failed);
}

} // namespace
} // namespace scrimlet
