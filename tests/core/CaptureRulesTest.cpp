#include "CaptureRules.hpp"
#include "DemoCapture.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace scrimlet {

static void PrintTo(const CaptureSource& source, std::ostream* out) {
    *out << source.bundleID << " \"" << source.name << "\" " << rawValue(source.kind);
}

namespace {

using Found = std::optional<CaptureSource>;
const Found none;
const Found recording = CaptureSource{"com.apple.screencaptureui", "macOS screen recording",
                                      CaptureKind::systemRecording};
const Found zoom = CaptureSource{"us.zoom.xos", "Zoom", CaptureKind::callShare};
const Found teams =
    CaptureSource{"com.microsoft.teams2", "Microsoft Teams", CaptureKind::callShare};
const Found chrome = CaptureSource{"com.google.Chrome", "Chrome", CaptureKind::browserShare};
const Found takeloom = CaptureSource{"app.vantrel.takeloom", "Takeloom", CaptureKind::recorder};
const Found deckOpen = CaptureSource{"com.example.deck", "com.example.deck", CaptureKind::appOpen};

// A laptop display, a square one whose shares come out in whole numbers, and a second
// display to the right of the laptop whose top sits 200 above the laptop's.
const DisplayInfo laptop{1, {0, 0, 1512, 982}};
const DisplayInfo square{2, {0, 0, 1000, 1000}};
const DisplayInfo external{3, {1512, -200, 1920, 1080}};

constexpr std::int32_t selfPID = 510;

WindowInfo window(std::string bundleID, std::int64_t layer, Rect bounds, std::int32_t pid = 900,
                  double alpha = 1) {
    return WindowInfo{pid, "owner", std::move(bundleID), layer, bounds, alpha};
}
WindowInfo dot(std::int64_t layer, Rect bounds) {
    return window("com.apple.screencaptureui", layer, bounds);
}
WindowInfo frame(std::int64_t layer, Rect bounds) {
    return window("us.zoom.xos", layer, bounds);
}
/// A Chrome bar centred on the laptop display.
WindowInfo bar(double top, double width = 500, double height = 44, std::int64_t layer = 3) {
    return window("com.google.Chrome", layer, {756 - width / 2, top, width, height});
}
WindowInfo loom(std::int64_t layer, double width, double height) {
    return window("app.vantrel.takeloom", layer, {100, 100, width, height});
}

CaptureSnapshot shot(std::vector<WindowInfo> windows,
                     std::vector<DisplayInfo> displays = {laptop}) {
    CaptureSnapshot out;
    out.windows = std::move(windows);
    out.displays = std::move(displays);
    out.selfPID = selfPID;
    return out;
}

CaptureSnapshot running(std::set<std::string> ids, bool mic = false, bool camera = false) {
    CaptureSnapshot out = shot({});
    out.runningBundleIDs = std::move(ids);
    out.micInUse = mic;
    out.cameraInUse = camera;
    return out;
}

struct Case {
    std::string name;
    CaptureSnapshot snapshot;
    Found expected;
    DetectionOptions options = {};
};

void check(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(CaptureRules::evaluate(c.snapshot, c.options), c.expected);
    }
}

TEST(CaptureRules, FilterAndWindowRuleBoundaries) {
    const Rect full = laptop.frame;
    check({
        {"own share frame", shot({window("us.zoom.xos", 3, full, selfPID)}), none},
        {"alpha 0.01", shot({window("us.zoom.xos", 3, full, 502, 0.01)}), none},
        {"alpha 0.02", shot({window("us.zoom.xos", 3, full, 502, 0.02)}), zoom},
        {"1 wide", shot({loom(1000, 1, 2)}), none},
        {"2 by 2", shot({loom(1000, 2, 2)}), takeloom},

        {"indicator 120x44, 1 above the top", shot({dot(25, {1300, -1, 120, 44})}), recording},
        {"indicator 8 below the top", shot({dot(25, {1300, 8, 120, 44})}), recording},
        {"indicator 9 below the top", shot({dot(25, {1300, 9, 120, 44})}), none},
        {"indicator 2 above the top", shot({dot(25, {1300, -2, 40, 24})}), none},
        {"indicator 121 wide", shot({dot(25, {1300, 0, 121, 44})}), none},
        {"indicator 45 high", shot({dot(25, {1300, 0, 120, 45})}), none},
        {"indicator at layer 23", shot({dot(23, {1300, 0, 40, 24})}), none},
        {"indicator at layer 24", shot({dot(24, {1300, 0, 40, 24})}), recording},
        {"indicator at layer 26", shot({dot(26, {1300, 0, 40, 24})}), recording},
        {"indicator at layer 27", shot({dot(27, {1300, 0, 40, 24})}), none},
        {"indicator just right of the display", shot({dot(25, {1512, 0, 40, 24})}), none},
        {"indicator atop the second display",
         shot({dot(25, {3000, -200, 40, 24})}, {laptop, external}), recording},
        // Level with the laptop's top but inside the other display: one display must pass
        // both tests.
        {"indicator in one's band, other's area",
         shot({dot(25, {3000, 0, 40, 24})}, {laptop, external}), none},
        {"screenshot", DemoCapture::screenshot(), none},

        {"frame at layer 0", shot({frame(0, square.frame)}, {square}), none},
        {"frame at layer 1", shot({frame(1, square.frame)}, {square}), zoom},
        {"frame at layer 999", shot({frame(999, square.frame)}, {square}), zoom},
        {"frame at layer 1000", shot({frame(1000, square.frame)}, {square}), none},
        {"frame 90% by 85%", shot({frame(3, {50, 50, 900, 850})}, {square}), zoom},
        {"frame 90% by 84%", shot({frame(3, {50, 50, 900, 840})}, {square}), none},
        {"frame 89.9% by 100%", shot({frame(3, {0, 0, 899, 1000})}, {square}), none},
        {"frame half off its display", shot({frame(3, {500, 0, 1000, 1000})}, {square}), none},
        {"frame on the second display", shot({frame(3, external.frame)}, {laptop, external}), zoom},
        {"first frame in list order",
         shot({window("com.microsoft.teams2", 5, full), frame(3, full)}), teams},
        {"frame of an unknown app", shot({window("com.example.call", 5, full)}), none},
        {"zoom sharing", DemoCapture::zoomSharing(), zoom},

        {"chrome sharing", DemoCapture::chromeSharing(), chrome},
        {"bar 20 high, 70 wide", shot({bar(900, 70, 20)}), none},
        {"bar 120 wide, 34 high", shot({bar(900, 120, 34)}), chrome},
        {"bar 120 wide, 35 high", shot({bar(900, 120, 35)}), none},
        {"bar 90 high", shot({bar(850, 400, 90)}), chrome},
        {"bar 91 high", shot({bar(850, 400, 91)}), none},
        {"bar 1100 wide", shot({bar(900, 1100, 44)}), chrome},
        {"bar 1101 wide", shot({bar(900, 1101, 44)}), none},
        {"bar at layer 0", shot({bar(900, 500, 44, 0)}), none},
        {"bar at layer 23", shot({bar(900, 500, 44, 23)}), chrome},
        {"bar at layer 24", shot({bar(900, 500, 44, 24)}), none},
        {"bar bottom at 762", shot({bar(718)}), chrome},
        {"bar bottom at 761", shot({bar(717)}), none},
        {"bar top at 120", shot({bar(120)}), chrome},
        {"bar top at 121", shot({bar(121)}), none},
        {"bar 300 off centre",
         shot({window("com.google.Chrome", 3, {600, 900, 400, 44})}, {square}), chrome},
        {"bar 301 off centre", shot({window("com.google.Chrome", 3, {-1, 900, 400, 44})}, {square}),
         none},
        {"bar beside every display", shot({bar(2000)}), none},
        {"safari bar", shot({window("com.apple.Safari", 3, {506, 900, 500, 44})}), none},

        {"loom bar 400 wide", shot({loom(3, 400, 120)}), takeloom},
        {"loom bar 399 wide", shot({loom(3, 399, 60)}), none},
        {"loom bar 121 high", shot({loom(3, 600, 121)}), none},
        {"loom bar at layer 4", shot({loom(4, 600, 60)}), none},
        {"loom square 3 off, layer 1000", shot({loom(1000, 300, 303)}), takeloom},
        {"loom square 4 off", shot({loom(1000, 304, 300)}), none},
        {"loom square at layer 999", shot({loom(999, 300, 300)}), none},
        {"loom square 400 wide", shot({loom(2000, 400, 400)}), takeloom},
        {"loom square 401 wide", shot({loom(2000, 401, 401)}), none},
    });
}

TEST(CaptureRules, OpenAppsAndCallsNeedNoWindows) {
    DetectionOptions listed;
    listed.watchCalls = listed.watchBrowsers = listed.watchSystemRecording = false;
    listed.watchTakeloom = false;
    listed.startWhenOpen = {"com.example.deck", "com.obsproject.obs-studio"};
    DetectionOptions calls;
    calls.treatCallsAsSharing = true;
    calls.watchCalls = false;
    const auto call = [](std::string id, std::string name) {
        return Found(CaptureSource{std::move(id), std::move(name), CaptureKind::call});
    };
    check({
        {"first listed app running", running({"com.obsproject.obs-studio", "com.example.deck"}),
         deckOpen, listed},
        {"listed app named", running({"com.obsproject.obs-studio"}),
         CaptureSource{"com.obsproject.obs-studio", "OBS", CaptureKind::appOpen}, listed},
        {"listed app not running", running({"com.apple.Keynote"}), none, listed},
        {"slack sorts before zoom", running({"us.zoom.xos", "com.tinyspeck.slackmacgap"}, true),
         call("com.tinyspeck.slackmacgap", "Slack"), calls},
        {"capitals sort first", running({"com.apple.FaceTime", "Cisco-Systems.Spark"}, true),
         call("Cisco-Systems.Spark", "Webex"), calls},
        {"camera alone", running({"us.zoom.xos"}, false, true), call("us.zoom.xos", "Zoom"), calls},
        {"neither microphone nor camera", running({"us.zoom.xos"}), none, calls},
        {"calls not treated as sharing", running({"us.zoom.xos"}, true, true), none},
    });
}

TEST(CaptureRules, RulesRunInPriorityOrder) {
    CaptureSnapshot all =
        shot({loom(3, 600, 60), bar(900), frame(3, laptop.frame), dot(25, {1300, 0, 40, 24})});
    all.runningBundleIDs = {"com.example.deck", "us.zoom.xos"};
    all.micInUse = true;
    CaptureSnapshot dark = all;
    dark.displays.clear();

    DetectionOptions o;
    o.treatCallsAsSharing = true;
    o.startWhenOpen = {"com.example.deck"};
    std::vector<Case> cases{{"system recording first", all, recording, o},
                            {"window rules need a display", dark, takeloom, o}};
    o.watchSystemRecording = false;
    cases.push_back({"then a call's share frame", all, zoom, o});
    o.watchCalls = false;
    cases.push_back({"then a browser's bar", all, chrome, o});
    o.watchBrowsers = false;
    cases.push_back({"then takeloom", all, takeloom, o});
    o.watchTakeloom = false;
    cases.push_back({"then a listed app", all, deckOpen, o});
    o.startWhenOpen.clear();
    cases.push_back(
        {"then a call", all, CaptureSource{"us.zoom.xos", "Zoom", CaptureKind::call}, o});
    o.treatCallsAsSharing = false;
    cases.push_back({"then nothing", all, none, o});
    check(cases);
}

} // namespace
} // namespace scrimlet
