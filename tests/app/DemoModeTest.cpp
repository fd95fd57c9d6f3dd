#include "StageStore.hpp"

#include "DemoCapture.hpp"
#include "Harness.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using testing::TempDir;

TEST(DemoMode, ASeededStoreShowsThreePastShowsAndWritesNothing) {
    auto store = StageStore::demo(Harness::demoNow(), std::nullopt, std::nullopt,
                                  FakeStageSystem::demo(), true);
    const auto& sheets = store->show().sheets();
    ASSERT_EQ(sheets.size(), 3u);
    EXPECT_EQ(sheets[0].how, "Zoom is sharing your screen");
    EXPECT_EQ(sheets[0].leftAlone(), 1);
    EXPECT_EQ(sheets[0].strike.front().key.kind, EffectKind::keepAwake);
    EXPECT_EQ(sheets[0].strike.front().outcome, CueOutcome::leftAlone());
    EXPECT_EQ(sheets[1].how, "Started with ⌃⌥⌘S");
    EXPECT_EQ(sheets[2].reason, EndReason::captureEnded);
    EXPECT_LT(sheets[1].startedAt, sheets[0].startedAt);
    EXPECT_EQ(store->lastSheetCount(), 3);
    EXPECT_EQ(store->availability().size(), 13u);
    EXPECT_FALSE(store->settingsURL());
    EXPECT_FALSE(store->sheetsURL());

    // The demo settings: a plan with the tidy and the backdrop, Keynote always kept.
    EXPECT_TRUE(store->settings().plan.tidyMenuBar);
    EXPECT_EQ(store->settings().prefs(SwitchKind::keepAwake).autoOffMinutes, 120);
    EXPECT_EQ(store->settings().prefs(SwitchKind::darkMode).hotkey->display(), "⌃⌥D");
}

TEST(DemoMode, DrivenSecondsLookAndAdvancingStretchesOnlyTick) {
    TempDir dir;
    auto store = StageStore::demo(Harness::demoNow(), dir.path(), std::nullopt,
                                  FakeStageSystem::demo(), true);
    EXPECT_TRUE(store->show().sheets().empty()) << "a folder means no seeded sheets";
    for (int i = 0; i < 3; ++i) {
        store->demoObserve(DemoCapture::zoomSharing());
    }
    EXPECT_TRUE(store->show().isLive()) << "a driven second always looks";
    EXPECT_TRUE(std::filesystem::exists(dir / "journal.json"));

    int syncs = 0;
    store->onWillChange = [&] { ++syncs; };
    const Date before = store->now();
    store->demoAdvance(0, 1);
    EXPECT_EQ(syncs, 1);
    EXPECT_EQ(store->now(), before);
    store->demoAdvance(10, 0.5);
    EXPECT_EQ(store->now() - before, 10);
    store->shutdown();
    EXPECT_TRUE(std::filesystem::exists(dir / "runsheets.json"));
    EXPECT_FALSE(std::filesystem::exists(dir / "journal.json"));
}

TEST(Harness, RecognisesEveryKindOfScriptedRun) {
    using Env = Harness::Environment;
    EXPECT_FALSE(Harness::isTestRun(Env{{"HOME", "/root"}, {"SCRIMLET_VERBOSE", "1"}}));
    for (const char* key :
         {"SCRIMLET_SNAPSHOT_DIR", "SCRIMLET_SELFTEST", "SCRIMLET_DEMO_DIR", "SCRIMLET_MY_UITEST",
          "SCRIMLET_FLOWTESTS", "SCRIMLET_DEMOX", "XCTestConfigurationFilePath"}) {
        EXPECT_TRUE(Harness::isTestRun(Env{{key, ""}})) << key;
    }
    EXPECT_FALSE(Harness::isTestRun(Env{{"MY_SCRIMLET_UITEST", "1"}}));
    EXPECT_EQ(Harness::selfTestDir(Env{{"SCRIMLET_SELFTEST", ""}}), "");
    EXPECT_FALSE(Harness::snapshotDir(Env{}));
}

} // namespace
} // namespace scrimlet
