#include "Lifecycle.hpp"
#include "ShowMenu.hpp"
#include "StoreRig.hpp"

#include "DemoCapture.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using Lifecycle::LaunchStep;
using Lifecycle::RunKind;

TEST(Lifecycle, EachKindOfRunTakesItsOwnLaunchSteps) {
    EXPECT_EQ(Lifecycle::runKind({}), RunKind::normal);
    EXPECT_EQ(Lifecycle::runKind({{"HOME", "/Users/a"}, {"SCRIMLET_VERBOSE", "1"}}),
              RunKind::normal);
    EXPECT_EQ(Lifecycle::runKind({{"SCRIMLET_SELFTEST", ""}}), RunKind::selfCheck);
    // A self check wins over snapshots when both are asked for: it is step 1.
    EXPECT_EQ(Lifecycle::runKind({{"SCRIMLET_SELFTEST", "/t"}, {"SCRIMLET_SNAPSHOT_DIR", "/s"}}),
              RunKind::selfCheck);
    EXPECT_EQ(Lifecycle::runKind({{"SCRIMLET_SNAPSHOT_DIR", "/s"}}), RunKind::snapshots);
    EXPECT_EQ(Lifecycle::runKind({{"SCRIMLET_DEMO_DIR", "/d"}}), RunKind::demoFilm);
    EXPECT_EQ(Lifecycle::runKind({{"SCRIMLET_DEMO_DIR", "/d"}, {"SCRIMLET_SNAPSHOT_DIR", "/s"}}),
              RunKind::snapshots);
    EXPECT_EQ(Lifecycle::runKind({{"SCRIMLET_DEMO_DIR", "/d"}, {"SCRIMLET_SELFTEST", "/t"}}),
              RunKind::selfCheck);
    EXPECT_EQ(Lifecycle::runKind({{"SCRIMLET_DEMO_DIRECTORY", "/d"}}), RunKind::otherTestRun)
        << "a misspelt demo folder is a test run that films nothing";
    EXPECT_EQ(Lifecycle::runKind({{"SCRIMLET_MY_UITEST_X", "0"}}), RunKind::otherTestRun);
    EXPECT_EQ(Lifecycle::runKind({{"XCTestConfigurationFilePath", "/x"}}), RunKind::otherTestRun);

    using Steps = std::vector<LaunchStep>;
    EXPECT_EQ(Lifecycle::launchSteps(RunKind::selfCheck), Steps{LaunchStep::runSelfCheck});
    EXPECT_EQ(Lifecycle::launchSteps(RunKind::snapshots),
              (Steps{LaunchStep::startKit, LaunchStep::runSnapshots}));
    EXPECT_EQ(Lifecycle::launchSteps(RunKind::demoFilm),
              (Steps{LaunchStep::startKit, LaunchStep::runDemoFilm}));
    EXPECT_EQ(Lifecycle::launchSteps(RunKind::otherTestRun),
              (Steps{LaunchStep::startKit, LaunchStep::stopForTestRun}));
    EXPECT_EQ(Lifecycle::launchSteps(RunKind::normal),
              (Steps{LaunchStep::startKit, LaunchStep::leaveIfAnotherCopyRuns,
                     LaunchStep::becomeAccessory, LaunchStep::startLive,
                     LaunchStep::installSignalHandlers}));
    // Only a normal run ever goes live or touches the Mac's signals.
    for (const auto kind :
         {RunKind::selfCheck, RunKind::snapshots, RunKind::demoFilm, RunKind::otherTestRun}) {
        for (const auto step : Lifecycle::launchSteps(kind)) {
            EXPECT_NE(step, LaunchStep::startLive) << Lifecycle::name(step);
            EXPECT_NE(step, LaunchStep::leaveIfAnotherCopyRuns) << Lifecycle::name(step);
        }
    }
}

TEST(Lifecycle, OnlyAnInstalledAppQuitsForAnotherCopy) {
    Lifecycle::Instance me{"app.vantrel.scrimlet", "/Applications/Scrimlet.app", 500, {500}};
    EXPECT_FALSE(Lifecycle::isSecondCopy(me)) << "alone";
    me.sameBundleProcesses = {412, 500};
    EXPECT_TRUE(Lifecycle::isSecondCopy(me)) << "an older copy runs";
    me.bundlePath = "/Applications/Scrimlet.app/";
    EXPECT_TRUE(Lifecycle::isSecondCopy(me)) << "a trailing slash is still the bundle";

    Lifecycle::Instance build = me;
    build.bundlePath = "/Users/a/scrimlet/build/mac/src/mac";
    EXPECT_FALSE(Lifecycle::isSecondCopy(build)) << "a build outside a bundle skips the test";
    build = me;
    build.bundleIdentifier.reset();
    EXPECT_FALSE(Lifecycle::isSecondCopy(build)) << "no identifier, no test";
    build.bundleIdentifier = "";
    EXPECT_FALSE(Lifecycle::isSecondCopy(build));

    EXPECT_TRUE(Lifecycle::isAppBundlePath("/Applications/Scrimlet.app"));
    EXPECT_FALSE(Lifecycle::isAppBundlePath(".app"));
    EXPECT_FALSE(Lifecycle::isAppBundlePath("/Applications/Scrimlet.apps"));
    EXPECT_FALSE(Lifecycle::isAppBundlePath("/usr/local/bin/scrimlet"));
}

TEST(Lifecycle, ALinkReachesTheStoreOnlyOutsideATestRun) {
    testing::StoreRig rig;
    int asked = 0;
    const auto store = [&] {
        ++asked;
        return rig.store.get();
    };
    Lifecycle::handleURLEvent("scrimlet://start", store, {{"SCRIMLET_DEMO_DIR", "/d"}});
    EXPECT_EQ(asked, 0) << "a scripted run is not steered from outside";
    Lifecycle::handleURLEvent("", store, {});
    Lifecycle::handleURLEvent("scrimlet://start", [] { return nullptr; }, {});
    EXPECT_EQ(asked, 0);
    EXPECT_TRUE(rig.store->show().isDark());
    Lifecycle::handleURLEvent("scrimlet://start", store, {{"HOME", "/Users/a"}});
    EXPECT_EQ(asked, 1);
    EXPECT_FALSE(rig.store->show().isDark());
}

TEST(ShowMenu, ItemsFollowThePhaseAndDoWhatTheySay) {
    testing::StoreRig rig;
    auto titles = [](const std::vector<ShowMenu::Item>& items) {
        std::vector<std::string> out;
        for (const auto& item : items) {
            out.push_back(item.divider ? "—"
                                       : item.title + (item.enabled ? "" : " (off)") +
                                             (item.key.empty() ? "" : " ⌥⌘" + item.key));
        }
        return out;
    };
    using Titles = std::vector<std::string>;
    EXPECT_EQ(titles(ShowMenu::items(rig.store->phase())),
              (Titles{"Raise the Curtain ⌥⌘s", "Add 15 Minutes (off)", "—", "Run Sheets…"}));

    EXPECT_FALSE(ShowMenu::perform(ShowMenu::Action::raiseCurtain, *rig.store));
    ASSERT_EQ(rig.store->phase().kind(), ShowPhase::Case::standby) << "a manual start counts down";
    EXPECT_EQ(titles(ShowMenu::items(rig.store->phase())),
              (Titles{"Bring It Down ⌥⌘s", "Add 15 Minutes (off)", "—", "Run Sheets…"}));
    // Too early to extend: the menu says so, and a stale choice changes nothing.
    ShowMenu::perform(ShowMenu::Action::addFifteenMinutes, *rig.store);
    rig.seconds(3);
    ASSERT_TRUE(rig.store->show().isLive());
    EXPECT_EQ(rig.store->show().current()->how, "Started from the menu");
    EXPECT_EQ(titles(ShowMenu::items(rig.store->phase())),
              (Titles{"Bring It Down ⌥⌘s", "Add 15 Minutes", "—", "Run Sheets…"}));

    ShowMenu::perform(ShowMenu::Action::addFifteenMinutes, *rig.store);
    ASSERT_TRUE(rig.store->show().remaining());
    EXPECT_NEAR(*rig.store->show().remaining(), 15 * 60, 1);

    EXPECT_TRUE(ShowMenu::perform(ShowMenu::Action::runSheets, *rig.store));
    EXPECT_EQ(rig.store->settingsTab, StageStore::SettingsTab::runSheets);
    EXPECT_FALSE(ShowMenu::perform(ShowMenu::Action::bringDown, *rig.store));
    EXPECT_TRUE(rig.store->show().isDark());
    EXPECT_EQ(rig.store->show().sheets().front().reason, EndReason::stopped);
}

} // namespace
} // namespace scrimlet
