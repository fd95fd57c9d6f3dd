// The window list as detection reads it, the bundle cache behind it, and the tracker of the
// application the user came from.

#include "WindowList.hpp"
#include "CaptureRules.hpp"
#include "FrontTracker.hpp"
#include "RealStageSystem.hpp"
#include "RecordingFacilities.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace scrimlet {
namespace {

using testing::RecordingFacilities;
using Device = RecordingFacilities::AudioDevice;

RawWindow raw(double pid, double layer, Rect bounds = {0, 0, 100, 100}) {
    RawWindow window;
    window.ownerPID = pid;
    window.layer = layer;
    window.bounds = bounds;
    return window;
}

TEST(WindowList, EntriesBecomeWindowsByTheRules) {
    auto mac = std::make_shared<RecordingFacilities>();
    mac->apps = {{10, "us.zoom.xos", "zoom.us", RunningApp::Policy::regular, false, false},
                 {11, std::nullopt, "Tool", RunningApp::Policy::prohibited, false, false}};
    RawWindow named = raw(10, 0, {10, 20, 300, 200});
    named.ownerName = "zoom.us";
    named.alpha = 0.5;
    RawWindow noBounds = raw(10, 0);
    noBounds.bounds.reset();
    RawWindow noPID = raw(10, 0);
    noPID.ownerPID.reset();
    mac->windows = {named,        raw(11, 25),          noBounds,     noPID,
                    raw(10.5, 0), raw(4294967296.0, 0), raw(10, 2.5), raw(-3, -2147483648.0)};
    WindowList list(mac);
    const auto windows = list.windows();
    ASSERT_EQ(windows.size(), 3u);
    EXPECT_EQ(windows[0], (WindowInfo{10, "zoom.us", "us.zoom.xos", 0, {10, 20, 300, 200}, 0.5}));
    // No name is an empty name, no alpha is opaque, and a process without an identifier has none.
    EXPECT_EQ(windows[1], (WindowInfo{11, "", std::nullopt, 25, {0, 0, 100, 100}, 1.0}));
    EXPECT_EQ(windows[2].ownerPID, -3);

    // One entry that is not a record spoils the whole list.
    mac->windows.push_back(std::nullopt);
    EXPECT_TRUE(list.windows().empty());
    mac->windows.clear();
    EXPECT_TRUE(list.windows().empty());
}

TEST(WindowList, TheBundleCacheStartsAgainAfter401Processes) {
    auto mac = std::make_shared<RecordingFacilities>();
    for (std::int32_t pid = 1; pid <= 402; ++pid) {
        mac->apps.push_back({pid, "app." + std::to_string(pid), std::nullopt,
                             RunningApp::Policy::regular, false, false});
    }
    mac->apps.push_back({999, std::nullopt, "Tool", RunningApp::Policy::regular, false, false});
    WindowList list(mac);
    for (std::int32_t pid = 1; pid <= 401; ++pid) {
        list.bundleID(pid);
    }
    EXPECT_EQ(list.cachedProcesses(), 401u);
    mac->takeCalls();
    EXPECT_EQ(list.bundleID(401), "app.401");
    EXPECT_TRUE(mac->takeCalls().empty());
    EXPECT_EQ(list.bundleID(402), "app.402");
    EXPECT_EQ(list.cachedProcesses(), 1u);
    EXPECT_EQ(list.bundleID(1), "app.1");
    EXPECT_EQ(mac->takeCalls(),
              (std::vector<std::string>{"runningApplication 402", "runningApplication 1"}));

    // A process without an identifier, or one that is gone, is asked again each time.
    EXPECT_EQ(list.bundleID(999), std::nullopt);
    EXPECT_EQ(list.bundleID(999), std::nullopt);
    EXPECT_EQ(list.bundleID(1000), std::nullopt);
    EXPECT_EQ(mac->takeCalls().size(), 3u);
    EXPECT_EQ(list.cachedProcesses(), 2u);
}

TEST(WindowList, TheSnapshotAsksForDevicesOnlyWhenCallsCount) {
    auto mac = std::make_shared<RecordingFacilities>();
    mac->apps = {
        {10, "us.zoom.xos", "zoom.us", RunningApp::Policy::regular, false, false},
        {12, "com.apple.controlcenter", std::nullopt, RunningApp::Policy::accessory, false, false},
        {13, std::nullopt, "Tool", RunningApp::Policy::prohibited, false, false}};
    mac->windows = {raw(10, 0)};
    mac->screens = {2, std::nullopt, 1.5, 3};
    mac->displayTable[2].bounds = {0, 0, 1512, 982};
    mac->displayTable[3].bounds = {1512, -200, 2560, 1440};
    mac->audioDevices[5] = Device::byVolume("USB", 0.5f);
    mac->audioDevices[5].running = 1;
    mac->defaultInputDevice = 5;
    mac->cameras = {{30, 1}};
    mac->selfPID = 77;
    WindowList list(mac);

    DetectionOptions options;
    auto snapshot = list.snapshot(options);
    EXPECT_EQ(snapshot.runningBundleIDs,
              (std::set<std::string>{"com.apple.controlcenter", "us.zoom.xos"}));
    EXPECT_EQ(snapshot.windows.size(), 1u);
    EXPECT_EQ(snapshot.displays,
              (std::vector<DisplayInfo>{{2, {0, 0, 1512, 982}}, {3, {1512, -200, 2560, 1440}}}));
    EXPECT_FALSE(snapshot.micInUse);
    EXPECT_FALSE(snapshot.cameraInUse);
    EXPECT_EQ(snapshot.selfPID, 77);
    const auto calls = mac->takeCalls();
    EXPECT_TRUE(std::none_of(calls.begin(), calls.end(), [](const std::string& call) {
        return call.rfind("audio", 0) == 0 || call.rfind("camera", 0) == 0;
    }));

    options.treatCallsAsSharing = true;
    snapshot = list.snapshot(options);
    EXPECT_TRUE(snapshot.micInUse);
    EXPECT_TRUE(snapshot.cameraInUse);
    // A call app with the microphone in use is a call the rules can see.
    const auto source = CaptureRules::evaluate(snapshot, options);
    ASSERT_TRUE(source);
    EXPECT_EQ(source->sentence(), "Zoom is on a call");
}

TEST(WindowList, TheFrontWindowIsTheFirstNormalOneOfTheProcess) {
    auto mac = std::make_shared<RecordingFacilities>();
    RawWindow menu = raw(10, 25);
    menu.number = 1;
    RawWindow other = raw(11, 0);
    other.number = 2;
    RawWindow front = raw(10, 0);
    front.number = 3;
    RawWindow behind = raw(10, 0);
    behind.number = 4;
    RawWindow unnumbered = raw(12, 0);
    mac->windows = {menu, other, unnumbered, front, behind};
    WindowList list(mac);
    EXPECT_EQ(list.frontWindowNumber(10), 3);
    EXPECT_EQ(list.frontWindowNumber(11), 2);
    EXPECT_EQ(list.frontWindowNumber(12), std::nullopt);
    EXPECT_EQ(list.frontWindowNumber(13), std::nullopt);
}

TEST(FrontTracker, RemembersTheLastOtherAppAndIgnoresItself) {
    auto mac = std::make_shared<RecordingFacilities>();
    mac->selfPID = 500;
    mac->apps = {
        {500, "app.vantrel.scrimlet", "Scrimlet", RunningApp::Policy::accessory, false, false},
        {42, "com.apple.Keynote", "Keynote", RunningApp::Policy::regular, false, false},
        {43, std::nullopt, "Tool", RunningApp::Policy::regular, false, false}};
    mac->front = 42;
    auto tracker = std::make_shared<FrontTracker>(mac);
    int changes = 0;
    tracker->onChange = [&] { ++changes; };

    RealStageSystem::Options options;
    options.isTestRun = [] { return true; };
    options.frontTracker = tracker;
    RealStageSystem sys(mac, options);
    EXPECT_EQ(sys.frontmostBundleID(), std::nullopt);

    tracker->start();
    tracker->start();
    EXPECT_EQ(sys.frontmostBundleID(), "com.apple.Keynote");
    EXPECT_EQ(tracker->lastOtherPID(), 42);
    ASSERT_TRUE(mac->activationHandler);
    const auto calls = mac->calls;
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "observeActivations"), 1);

    // This program in front: nothing forgotten, but the change is told.
    mac->activationHandler(mac->runningApplication(500));
    EXPECT_EQ(sys.frontmostBundleID(), "com.apple.Keynote");
    EXPECT_EQ(changes, 1);
    mac->activationHandler(mac->runningApplication(43));
    EXPECT_EQ(sys.frontmostBundleID(), std::nullopt);
    EXPECT_EQ(tracker->lastOtherPID(), 43);
    mac->activationHandler(std::nullopt);
    EXPECT_EQ(tracker->lastOtherPID(), 43);
    EXPECT_EQ(changes, 3);

    // Starting with this program itself in front remembers nothing.
    mac->front = 500;
    auto fresh = std::make_shared<FrontTracker>(mac);
    int freshChanges = 0;
    fresh->onChange = [&] { ++freshChanges; };
    fresh->start();
    EXPECT_EQ(fresh->lastOtherBundleID(), std::nullopt);

    // A tracker that is gone is not reached by late notifications.
    const auto handler = mac->activationHandler;
    handler(mac->runningApplication(42));
    EXPECT_EQ(freshChanges, 1);
    fresh.reset();
    handler(mac->runningApplication(42));
    EXPECT_EQ(freshChanges, 1);
}

} // namespace
} // namespace scrimlet
