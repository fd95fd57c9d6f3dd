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
const Found chrome = CaptureSource{"com.google.Chrome", "Chrome", CaptureKind::browserShare};
const Found takeloom = CaptureSource{"app.vantrel.takeloom", "Takeloom", CaptureKind::recorder};
const Found deckOpen = CaptureSource{"com.example.deck", "com.example.deck", CaptureKind::appOpen};
const Found zoomCall = CaptureSource{"us.zoom.xos", "Zoom", CaptureKind::call};

// A laptop display, a square one whose shares come out in whole numbers, and a second
// display to the right of the laptop whose top sits 200 above the laptop's.
const DisplayInfo laptop{1, {0, 0, 1512, 982}};
const DisplayInfo square{2, {0, 0, 1000, 1000}};
const DisplayInfo external{3, {1512, -200, 1920, 1080}};
const std::vector<DisplayInfo> both{laptop, external};

constexpr std::int32_t selfPID = 510;

WindowInfo window(std::string id, int layer, Rect bounds, int pid = 900, double alpha = 1) {
    return WindowInfo{pid, "owner", std::move(id), layer, bounds, alpha};
}
const auto dot = [](int layer, Rect r) { return window("com.apple.screencaptureui", layer, r); };
const auto frame = [](int layer, Rect r) { return window("us.zoom.xos", layer, r); };
/// A Chrome bar, centred on the laptop display unless told otherwise.
const auto bar = [](double top, double width, double height, int layer = 3, double centre = 756) {
    return window("com.google.Chrome", layer, {centre - width / 2, top, width, height});
};
const auto loom = [](int layer, double width, double height, double alpha = 1) {
    return window("app.vantrel.takeloom", layer, {100, 100, width, height}, 900, alpha);
};

CaptureSnapshot shot(std::vector<WindowInfo> w, std::vector<DisplayInfo> d = {laptop}) {
    return CaptureSnapshot{std::move(w), std::move(d), {}, false, false, selfPID};
}
CaptureSnapshot running(std::set<std::string> ids, bool mic = false, bool camera = false) {
    return CaptureSnapshot{{}, {laptop}, std::move(ids), mic, camera, selfPID};
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

// Each rule gets a row with every inclusive limit reached at once, then one row per limit
// taken one step too far.
TEST(CaptureRules, FilterAndWindowRuleBoundaries) {
    const Rect full = laptop.frame;
    check({
        {"own share frame", shot({window("us.zoom.xos", 3, full, selfPID)}), none},
        {"alpha 0.01", shot({window("us.zoom.xos", 3, full, 502, 0.01)}), none},
        {"1 wide", shot({loom(1000, 1, 2)}), none},
        {"2 by 2, alpha 0.02", shot({loom(1000, 2, 2, 0.02)}), takeloom},

        {"indicator 120x44 at layer 24, 1 above", shot({dot(24, {1300, -1, 120, 44})}), recording},
        {"indicator at layer 26, 8 below", shot({dot(26, {1300, 8, 40, 24})}), recording},
        {"indicator 9 below the top", shot({dot(25, {1300, 9, 40, 24})}), none},
        {"indicator 2 above the top", shot({dot(25, {1300, -2, 40, 24})}), none},
        {"indicator 121 wide", shot({dot(25, {1300, 0, 121, 44})}), none},
        {"indicator 45 high", shot({dot(25, {1300, 0, 120, 45})}), none},
        {"indicator at layer 23", shot({dot(23, {1300, 0, 40, 24})}), none},
        {"indicator at layer 27", shot({dot(27, {1300, 0, 40, 24})}), none},
        {"indicator atop 2nd display", shot({dot(25, {3000, -200, 40, 24})}, both), recording},
        // One display must pass both tests: this is in the laptop's band but the other's area.
        {"indicator band/area split", shot({dot(25, {3000, 0, 40, 24})}, both), none},
        {"screenshot", DemoCapture::screenshot(), none},

        {"frame 90% by 85% at layer 1", shot({frame(1, {50, 50, 900, 850})}, {square}), zoom},
        {"frame at layer 999", shot({frame(999, square.frame)}, {square}), zoom},
        {"frame at layer 0", shot({frame(0, square.frame)}, {square}), none},
        {"frame at layer 1000", shot({frame(1000, square.frame)}, {square}), none},
        {"frame 90% by 84%", shot({frame(3, {50, 50, 900, 840})}, {square}), none},
        {"frame 89.9% by 100%", shot({frame(3, {0, 0, 899, 1000})}, {square}), none},
        {"frame half off its display", shot({frame(3, {500, 0, 1000, 1000})}, {square}), none},
        {"list order", shot({frame(3, full), window("com.microsoft.teams2", 5, full)}), zoom},
        {"frame of an unknown app", shot({window("com.example.call", 5, full)}), none},
        {"zoom sharing", DemoCapture::zoomSharing(), zoom},

        {"chrome sharing", DemoCapture::chromeSharing(), chrome},
        {"bar 1100x90, layer 23, bottom 762", shot({bar(672, 1100, 90, 23)}), chrome},
        {"bar 1101 wide", shot({bar(672, 1101, 90, 23)}), none},
        {"bar 91 high", shot({bar(672, 1100, 91, 23)}), none},
        {"bar at layer 24", shot({bar(672, 1100, 90, 24)}), none},
        {"bar bottom at 761", shot({bar(671, 1100, 90, 23)}), none},
        {"bar 120x20, layer 1, top 120", shot({bar(120, 120, 20, 1)}), chrome},
        {"bar at layer 0", shot({bar(120, 120, 20, 0)}), none},
        {"bar top at 121", shot({bar(121, 120, 20, 1)}), none},
        {"bar 119 wide", shot({bar(120, 119, 20, 1)}), none},
        {"bar 19 high", shot({bar(120, 120, 19, 1)}), none},
        {"bar ratio 3.5", shot({bar(900, 140, 40)}), chrome},
        {"bar ratio 3.475", shot({bar(900, 139, 40)}), none},
        {"bar 300 off centre", shot({bar(900, 400, 44, 3, 800)}, {square}), chrome},
        {"bar 301 off centre", shot({bar(900, 400, 44, 3, 801)}, {square}), none},
        {"bar beside every display", shot({bar(2000, 500, 44)}), none},
        {"safari bar", shot({window("com.apple.Safari", 3, {506, 900, 500, 44})}), none},

        {"loom bar 400x120", shot({loom(3, 400, 120)}), takeloom},
        {"loom bar 399 wide", shot({loom(3, 399, 60)}), none},
        {"loom bar 121 high", shot({loom(3, 600, 121)}), none},
        {"loom bar at layer 4", shot({loom(4, 600, 60)}), none},
        {"loom square 400, 3 off, layer 1000", shot({loom(1000, 400, 403)}), takeloom},
        {"loom square 4 off", shot({loom(1000, 304, 300)}), none},
        {"loom square at layer 999", shot({loom(999, 300, 300)}), none},
        {"loom square 401 wide", shot({loom(2000, 401, 401)}), none},
    });
}

TEST(CaptureRules, OpenAppsAndCallsNeedNoWindows) {
    const std::string obs = "com.obsproject.obs-studio";
    const DetectionOptions listed{false, false, false, false, false, {"com.example.deck", obs}};
    const DetectionOptions calls{false, true, true, true, true, {}};
    check({
        {"first listed app running", running({obs, "com.example.deck"}), deckOpen, listed},
        {"listed app named", running({obs}), CaptureSource{obs, "OBS", CaptureKind::appOpen},
         listed},
        {"first call app in text order", running({"us.zoom.xos", "Cisco-Systems.Spark"}, true),
         CaptureSource{"Cisco-Systems.Spark", "Webex", CaptureKind::call}, calls},
        {"camera alone", running({"us.zoom.xos"}, false, true), zoomCall, calls},
        {"neither microphone nor camera", running({"us.zoom.xos"}), none, calls},
        {"calls not treated as sharing", running({"us.zoom.xos"}, true, true), none},
    });
}

TEST(CaptureRules, RulesRunInPriorityOrder) {
    const std::vector<WindowInfo> windows{loom(3, 600, 60), bar(900, 500, 44),
                                          frame(3, laptop.frame), dot(25, {1300, 0, 40, 24})};
    const std::set<std::string> apps{"com.example.deck", "us.zoom.xos"};
    const CaptureSnapshot all{windows, {laptop}, apps, true, false, selfPID};
    const CaptureSnapshot dark{windows, {}, apps, true, false, selfPID};

    // Flags: calls, browsers, system recording, takeloom, calls as sharing. Switching off
    // each winner in turn uncovers the next rule.
    const std::vector<std::string> deck{"com.example.deck"};
    check({
        {"system recording first", all, recording, {true, true, true, true, true, deck}},
        {"window rules need a display", dark, takeloom, {true, true, true, true, true, deck}},
        {"then a call's share frame", all, zoom, {true, true, false, true, true, deck}},
        {"then a browser's bar", all, chrome, {false, true, false, true, true, deck}},
        {"then takeloom", all, takeloom, {false, false, false, true, true, deck}},
        {"then a listed app", all, deckOpen, {false, false, false, false, true, deck}},
        {"then a call", all, zoomCall, {false, false, false, false, true, {}}},
        {"then nothing", all, none, {false, false, false, false, false, {}}},
    });
}

} // namespace
} // namespace scrimlet
