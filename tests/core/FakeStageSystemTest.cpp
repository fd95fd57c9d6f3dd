#include "FakeStageSystem.hpp"

#include "AtomicFile.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <unistd.h>

namespace scrimlet {
namespace {

const EffectKey dock{EffectKind::dockAutohide};
const EffectKey dnd{EffectKind::doNotDisturb};

TEST(FakeStageSystem, CrashPointsCountFromTheirArming) {
    auto sys = FakeStageSystem::demo();
    int crashes = 0;
    sys->onCrash = [&] { ++crashes; };
    sys->setCrash(FakeStageSystem::CrashPoint::beforeWrite(1));
    EXPECT_THROW(sys->write(dock, JournalValue::boolean(true)), SimulatedCrash);
    EXPECT_TRUE(sys->crashed());
    EXPECT_EQ(sys->read(dock), JournalValue::boolean(false));
    EXPECT_TRUE(sys->writeLog().empty());
    EXPECT_EQ(sys->writeCount(), 1);
    EXPECT_THROW(sys->write(dock, JournalValue::boolean(true)), SimulatedCrash);
    EXPECT_EQ(crashes, 1) << "a dead process dies only once";
    EXPECT_EQ(sys->writeCount(), 2);

    sys->revive();
    for (int i = 0; i < 5; ++i) {
        sys->write(dock, JournalValue::boolean(i % 2 == 0));
    }
    sys->onCrash = [&] { ++crashes; };
    sys->setCrash(FakeStageSystem::CrashPoint::afterWrite(2));
    sys->write(dock, JournalValue::boolean(false));
    EXPECT_THROW(sys->write(dock, JournalValue::boolean(true)), SimulatedCrash);
    EXPECT_EQ(sys->writeCount(), 9);
    EXPECT_EQ(crashes, 2);
    EXPECT_EQ(sys->read(dock), JournalValue::boolean(true)) << "the change stands";
    EXPECT_EQ(sys->writeLog().back(), "dockAutohide = on");

    sys->revive();
    sys->setCrash(FakeStageSystem::CrashPoint::beforeWrite(0));
    EXPECT_NO_THROW(sys->write(dock, JournalValue::boolean(false)));
}

TEST(FakeStageSystem, ReadsAnswerNothingForWhatIsNotThere) {
    auto sys = FakeStageSystem::demo();
    EXPECT_EQ(sys->write(dnd, JournalValue::boolean(true)), JournalValue::boolean(false));
    EXPECT_EQ(sys->read(dnd), std::nullopt);
    EXPECT_EQ(sys->write(dnd, JournalValue::boolean(true)), JournalValue::boolean(true));

    const EffectKey display(EffectKind::displayMode, "1");
    EXPECT_EQ(sys->read(display), JournalValue::number(20));
    EXPECT_EQ(sys->read(EffectKey(EffectKind::displayMode, "+1")), std::nullopt)
        << "a different target text is a different key";
    sys->displayList.clear();
    EXPECT_EQ(sys->read(display), std::nullopt);
    EXPECT_EQ(sys->mainDisplay(), std::nullopt);
    try {
        sys->write(display, JournalValue::number(13));
        FAIL();
    } catch (const StageError& e) {
        EXPECT_EQ(e.kind(), StageError::Case::targetGone);
    }
    EXPECT_EQ(sys->displayModeValue({1280, 720}, 1), JournalValue::number(11));
    EXPECT_EQ(sys->displayModeValue({1280, 800}, 1), std::nullopt);

    const EffectKey mic(EffectKind::micMute, "BuiltInMicrophoneDevice");
    sys->values.erase(mic);
    EXPECT_EQ(sys->read(mic), JournalValue::boolean(false));
    sys->inputDevices.clear();
    EXPECT_EQ(sys->read(mic), std::nullopt);
    EXPECT_THROW(sys->write(mic, JournalValue::boolean(true)), StageError);

    // A reused pid under another bundle identifier is not the app that was hidden.
    const EffectKey mail(EffectKind::appHidden, "com.apple.mail#504#Mail");
    sys->apps[3].bundleID = "com.example.other";
    EXPECT_EQ(sys->read(mail), std::nullopt);
    EXPECT_THROW(sys->write(mail, JournalValue::boolean(true)), StageError);
    sys->userSet(mail, JournalValue::boolean(true));
    EXPECT_TRUE(sys->apps[3].isHidden) << "the user's hand goes by process id";
}

TEST(FakeStageSystem, TheDeathOfTheProcessTakesOnlyWhatItHeld) {
    auto sys = FakeStageSystem::demo();
    const auto before = sys->state(true);
    sys->write(EffectKey(EffectKind::keepAwake), JournalValue::boolean(true));
    sys->write(EffectKey(EffectKind::desktopIcons), JournalValue::boolean(true));
    sys->write(dock, JournalValue::boolean(true));
    sys->write(EffectKey(EffectKind::alertVolume), JournalValue::number(0));
    EXPECT_EQ(sys->state(true).count("keepAwake"), 0u);
    sys->processDied();
    const auto all = sys->state(false);
    EXPECT_EQ(all.at("keepAwake"), "off");
    EXPECT_EQ(all.at("desktopIcons"), "off");
    EXPECT_EQ(all.at("dockAutohide"), "on");
    EXPECT_EQ(all.at("alertVolume"), "0");
    EXPECT_EQ(all.at("app:com.apple.Keynote#501"), "shown");
    EXPECT_EQ(all.at("dnd"), "off");
    EXPECT_NE(sys->state(true), before);

    sys->failWrites.insert(EffectKind::keepAwake);
    EXPECT_THROW(sys->startScreenSaver(), StageError);
    sys->failWrites.clear();
    sys->startScreenSaver();
    EXPECT_EQ(sys->screenSaverStarts(), 1);
}

// The simulated Mac of a process that is killed: what would outlive the process on a real
// Mac is on disk after every change, and the next process finds it there.
TEST(FakeStageSystem, LastingStateOutlivesTheProcessInItsFile) {
    testing::TempDir dir;
    const auto file = dir / "mac.json";
    const EffectKey mail = EffectKey::app(*FakeStageSystem::demo()->app("com.apple.mail"));
    auto first = FakeStageSystem::demo();
    first->keepPersistentState(file);
    first->write(dock, JournalValue::boolean(true));
    first->write(EffectKey(EffectKind::displayMode, "1"), JournalValue::number(13));
    first->write(mail, JournalValue::boolean(true));
    first->write(dnd, JournalValue::boolean(true));
    first->write(EffectKey(EffectKind::keepAwake), JournalValue::boolean(true));
    first->userSet(EffectKey(EffectKind::alertVolume), JournalValue::number(0.2));
    // Killed right after a change: it stands, on disk too. Killed right before one: it never
    // happened.
    first->setCrash(FakeStageSystem::CrashPoint::afterWrite(1));
    EXPECT_THROW(first->write(EffectKey(EffectKind::darkMode), JournalValue::boolean(true)),
                 SimulatedCrash);
    first->revive();
    first->setCrash(FakeStageSystem::CrashPoint::beforeWrite(1));
    EXPECT_THROW(first->write(dock, JournalValue::boolean(false)), SimulatedCrash);

    // This process has no save in flight, so a temporary file under its name is a leftover.
    const auto leftover = dir / (".mac.json.tmp-" + std::to_string(getpid()) + "-3");
    files::writeAtomically(leftover, "{\"dnd\": tr");
    auto next = FakeStageSystem::demo();
    next->keepPersistentState(file);
    EXPECT_FALSE(std::filesystem::exists(leftover));
    EXPECT_EQ(next->state(true), first->state(true));
    EXPECT_EQ(next->read(EffectKey(EffectKind::darkMode)), JournalValue::boolean(true));
    EXPECT_EQ(next->read(dock), JournalValue::boolean(true));
    EXPECT_EQ(next->read(EffectKey(EffectKind::keepAwake)), JournalValue::boolean(false))
        << "a power assertion dies with its process";
    EXPECT_NE(next->state(false), first->state(false));

    // Read part by part: a damaged part costs only itself, an app that is not running now
    // and an effect that dies with the process are passed over.
    auto damaged = FakeStageSystem::demo();
    damaged->takePersistentState(R"({"dnd": "yes", "values": [
        {"key": {"kind": "darkMode", "target": ""}, "value": {"bool": {"_0": true}}},
        {"key": {"kind": "warpDrive", "target": ""}, "value": {"bool": {"_0": true}}},
        {"key": {"kind": "backdrop", "target": ""}, "value": {"bool": {"_0": true}}},
        {"key": {"kind": "alertVolume", "target": ""}, "value": {"number": {"_0": "loud"}}}],
        "apps": [{"bundleID": "com.apple.mail", "name": "Mail", "pid": 504, "isHidden": true,
                  "isRegular": true}, {"bundleID": "com.apple.mail", "name": "Mail", "pid": 9,
                  "isHidden": false, "isRegular": true}, 7]})");
    auto expected = FakeStageSystem::demo();
    expected->values.insert_or_assign(EffectKey(EffectKind::darkMode), JournalValue::boolean(true));
    expected->userSet(mail, JournalValue::boolean(true));
    EXPECT_EQ(damaged->state(false), expected->state(false));
    for (const char* text : {"", "[]", "{\"values\": 3}", "\xff"}) {
        auto fresh = FakeStageSystem::demo();
        fresh->takePersistentState(text);
        EXPECT_EQ(fresh->state(false), FakeStageSystem::demo()->state(false)) << text;
    }
}

} // namespace
} // namespace scrimlet
