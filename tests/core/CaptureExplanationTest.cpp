#include "CaptureExplanation.hpp"
#include "CaptureRules.hpp"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace scrimlet {
namespace {

const DisplayInfo laptop{1, {0, 0, 1512, 982}};
const DisplayInfo square{2, {0, 0, 1000, 1000}};
const DisplayInfo external{3, {1512, -200, 1920, 1080}};
constexpr std::int32_t selfPID = 510;

WindowInfo window(std::string id, std::int64_t layer, Rect bounds, double alpha = 1,
                  std::int32_t pid = 900) {
    const std::string owner = id == "us.zoom.xos" ? "zoom.us" : "owner";
    return WindowInfo{pid, owner, std::move(id), layer, bounds, alpha};
}
WindowInfo dot(std::int64_t layer, Rect r, double alpha = 1) {
    return window("com.apple.screencaptureui", layer, r, alpha);
}
WindowInfo frame(std::int64_t layer, Rect r) {
    return window("us.zoom.xos", layer, r);
}
WindowInfo bar(double top, double width, double height, std::int64_t layer = 3,
               double centre = 756) {
    return window("com.google.Chrome", layer, {centre - width / 2, top, width, height});
}
WindowInfo loom(std::int64_t layer, double width, double height) {
    return window("app.vantrel.takeloom", layer, {100, 100, width, height});
}

CaptureSnapshot shot(std::vector<WindowInfo> windows,
                     std::vector<DisplayInfo> displays = {laptop}) {
    return CaptureSnapshot{std::move(windows), std::move(displays), {}, false, false, selfPID};
}

const RuleFinding& finding(const CaptureExplanation& explanation, CaptureRule rule) {
    return explanation.rules.at(static_cast<size_t>(rule));
}

std::vector<std::string> limits(const RuleFinding& finding) {
    std::vector<std::string> keys;
    for (const auto& miss : finding.misses) {
        keys.push_back(miss.limit);
    }
    return keys;
}

TEST(CaptureExplanation, SaysWhatWasFoundAndWhatTheRuleWants) {
    const auto explain = [](std::vector<WindowInfo> windows, CaptureRule rule,
                            std::vector<DisplayInfo> displays = {laptop}) {
        return finding(CaptureRules::explain(shot(std::move(windows), std::move(displays)), {}),
                       rule)
            .text;
    };
    using R = CaptureRule;
    // Each limit of each rule, one past it, is tried on the saved lists of the command's
    // tests; here is how the findings read.
    EXPECT_EQ(explain({frame(0, laptop.frame)}, R::callShare),
              "zoom.us window at layer 0, rule wants 1 to 999");
    EXPECT_EQ(explain({window("us.zoom.xos", 3, laptop.frame, 1, selfPID)}, R::callShare),
              "zoom.us window owned by Scrimlet itself (pid 510), rule wants another process");
    EXPECT_EQ(explain({frame(3, {50, 50, 900, 840})}, R::callShare, {square}),
              "zoom.us window covering 84% of the height of display 2, rule wants at least 85%");
    EXPECT_EQ(explain({frame(3, laptop.frame)}, R::callShare),
              "zoom.us window at layer 3, 1512×982 at 0,0, on display 1");
    // A near miss must never read like the limit it missed.
    EXPECT_EQ(explain({dot(25, {1300, 0, 120.004, 44})}, R::systemRecording),
              "owner window 120.004 wide, rule wants at most 120");
    EXPECT_EQ(explain({dot(25, {1300, 9, 40, 24})}, R::systemRecording),
              "owner window with its top 9 below the top of display 1, rule wants from 1 above "
              "to 8 below");
    EXPECT_EQ(explain({bar(500, 500, 44)}, R::browserShare),
              "owner window with its bottom 438 above the bottom of display 1 and its top 500 "
              "below the top, rule wants the bottom within 220 or the top within 120");
    EXPECT_EQ(explain({bar(900, 400, 44, 3, 1300)}, R::browserShare),
              "owner window with its middle 544 from the middle of display 1, rule wants at most "
              "453.6 (30% of its width)");
    EXPECT_EQ(explain({loom(3, 399, 60)}, R::takeloom),
              "owner window 399 wide, capture bar wants at least 400");
    EXPECT_EQ(explain({dot(25, {5000, 0, 40, 24})}, R::systemRecording),
              "owner window at 5000,0, outside every display, rule wants it on one");
    EXPECT_EQ(explain({dot(25, {1300, 0, 40, 24}, 0)}, R::systemRecording),
              "owner window with alpha 0, rule wants above 0.01");

    CaptureSnapshot teams = shot({});
    teams.runningBundleIDs = {"com.microsoft.teams2", "com.microsoft.teams", "com.apple.Safari"};
    EXPECT_EQ(finding(CaptureRules::explain(teams, {}), R::callShare).text,
              "no window of a known call app; Microsoft Teams is running");
    EXPECT_EQ(finding(CaptureRules::explain(teams, {}), R::browserShare).text,
              "no window of a known browser");
}

// Among several windows of the rule's apps, the one missing the fewest limits is told
// about, the first in the list on a tie; the first window that matches wins outright.
TEST(CaptureExplanation, PicksTheNearestMissAndTheFirstMatch) {
    const auto nearest = [](const CaptureSnapshot& snapshot) {
        return finding(CaptureRules::explain(snapshot, {}), CaptureRule::callShare);
    };
    const auto small = frame(0, {0, 0, 300, 200});  // layer and both shares: 3 misses
    const auto toolbar = frame(3, {0, 0, 400, 50}); // both shares: 2 misses
    const auto tall = frame(3, {0, 0, 1512, 500});  // the height share: 1 miss
    const auto wide = frame(3, {0, 0, 1000, 982});  // the width share: 1 miss
    EXPECT_EQ(nearest(shot({small, toolbar, tall, wide})).window, std::optional<size_t>(2));
    EXPECT_EQ(nearest(shot({small, wide, tall})).window, std::optional<size_t>(1));
    const auto found = nearest(shot({small, frame(5, laptop.frame), frame(4, laptop.frame)}));
    EXPECT_TRUE(found.matched);
    EXPECT_EQ(found.window, std::optional<size_t>(1));
    EXPECT_EQ(found.display, std::optional<std::uint32_t>(1));

    // Each display the window overlaps is tried: this one covers too little of the laptop
    // but enough of the external display.
    const auto across = nearest(shot({frame(3, {1000, -200, 2400, 1080})}, {laptop, external}));
    EXPECT_TRUE(across.matched);
    EXPECT_EQ(across.display, std::optional<std::uint32_t>(3));
    const auto onExternal = nearest(shot({frame(3, {1600, -200, 1000, 1080})}, {laptop, external}));
    EXPECT_EQ(onExternal.display, std::optional<std::uint32_t>(3));
    EXPECT_EQ(limits(onExternal), (std::vector<std::string>{"coverWidth"}));

    // The Takeloom rule tells about the nearer of its two shapes.
    const auto loomFinding = [](WindowInfo w) {
        return limits(finding(CaptureRules::explain(shot({w}), {}), CaptureRule::takeloom));
    };
    EXPECT_EQ(loomFinding(loom(1000, 300, 310)), (std::vector<std::string>{"squareSides"}));
    EXPECT_EQ(loomFinding(loom(0, 300, 300)), (std::vector<std::string>{"squareLayer"}));
    EXPECT_EQ(loomFinding(loom(0, 600, 60)), (std::vector<std::string>{"barLayer"}));
}

TEST(CaptureExplanation, RulesThatNeedNoWindowsAndRulesThatAreOff) {
    CaptureSnapshot snapshot = shot({frame(3, laptop.frame)});
    snapshot.runningBundleIDs = {"us.zoom.xos", "com.tinyspeck.slackmacgap", "com.example.deck"};
    snapshot.micInUse = true;

    DetectionOptions options;
    auto explanation = CaptureRules::explain(snapshot, options);
    EXPECT_EQ(explanation.decidedBy, CaptureRule::callShare);
    const auto& listed = finding(explanation, CaptureRule::startWhenOpen);
    EXPECT_FALSE(listed.enabled);
    EXPECT_EQ(listed.text, "no apps listed");
    // Off, but judged all the same: the reader learns that switching it on would help.
    const auto& call = finding(explanation, CaptureRule::call);
    EXPECT_FALSE(call.enabled);
    EXPECT_TRUE(call.matched);
    EXPECT_EQ(call.source->bundleID, "com.tinyspeck.slackmacgap");
    EXPECT_EQ(call.text, "microphone in use and Slack (com.tinyspeck.slackmacgap) running");

    options =
        DetectionOptions{false, true, true, true, true, {"com.example.other", "com.example.deck"}};
    explanation = CaptureRules::explain(snapshot, options);
    EXPECT_FALSE(finding(explanation, CaptureRule::callShare).enabled);
    EXPECT_TRUE(finding(explanation, CaptureRule::callShare).matched);
    EXPECT_EQ(explanation.decidedBy, CaptureRule::startWhenOpen);
    EXPECT_EQ(explanation.verdict,
              (CaptureSource{"com.example.deck", "com.example.deck", CaptureKind::appOpen}));
    EXPECT_TRUE(finding(explanation, CaptureRule::call).enabled);

    snapshot.runningBundleIDs = {"com.example.elsewhere"};
    snapshot.micInUse = false;
    explanation = CaptureRules::explain(snapshot, options);
    EXPECT_EQ(finding(explanation, CaptureRule::startWhenOpen).text,
              "none of the listed apps is running: com.example.deck and com.example.other");
    EXPECT_EQ(finding(explanation, CaptureRule::call).text,
              "neither microphone nor camera in use; no call app running");
    EXPECT_EQ(limits(finding(explanation, CaptureRule::call)),
              (std::vector<std::string>{"devices", "running"}));
    EXPECT_FALSE(explanation.verdict);
}

// The explanation walks the rules on its own, so it is held to the rules themselves: over
// many lists made of windows near every limit, its verdict must be what `evaluate` says, and
// each rule's own finding what `evaluate` says with only that rule switched on.
TEST(CaptureExplanation, AgreesWithTheRulesOnRandomListsNearTheLimits) {
    std::mt19937 random(20261120);
    const auto pick = [&](std::vector<double> values) {
        return values[std::uniform_int_distribution<size_t>(0, values.size() - 1)(random)];
    };
    // Each list starts from windows that match a rule, with some of their numbers moved to
    // values on or just beside a limit, so that both sides of every limit come up often.
    const std::vector<WindowInfo> matching = {
        dot(25, {1300, 0, 40, 24}),
        frame(3, laptop.frame),
        bar(880, 500, 44),
        loom(3, 600, 60),
        loom(1000, 300, 300),
        frame(3, square.frame),
        window("com.apple.Safari", 3, {506, 880, 500, 44}),
    };
    const std::vector<double> sides = {1,   2,    19,   20,   24,   44,   45,   90,  91,
                                       119, 120,  121,  139,  140,  299,  300,  303, 304,
                                       399, 400,  401,  403,  834,  835,  850,  899, 900,
                                       982, 1000, 1100, 1101, 1360, 1361, 1512, 2000};
    const std::vector<double> places = {-200, -2,  -1,  0,   8,   9,   50,  76,  100,  120,
                                        121,  500, 506, 672, 717, 760, 880, 900, 1512, 3000};
    const std::vector<double> layers = {-1, 0, 1, 3, 4, 23, 24, 25, 26, 27, 999, 1000, 2000};
    const std::vector<std::vector<DisplayInfo>> desks = {
        {laptop}, {square}, {laptop, external}, {}};
    // How often each rule matched and missed, so that the lists are known to reach both sides.
    std::map<CaptureRule, std::pair<int, int>> seen;
    const auto now = [&](int oneIn) {
        return std::uniform_int_distribution<int>(1, oneIn)(random) == 1;
    };
    for (int round = 0; round < 6000; ++round) {
        CaptureSnapshot snapshot;
        snapshot.selfPID = selfPID;
        snapshot.displays = desks[static_cast<size_t>(round) % desks.size()];
        const int count = std::uniform_int_distribution<int>(0, 3)(random);
        for (int i = 0; i < count; ++i) {
            WindowInfo w =
                matching[std::uniform_int_distribution<size_t>(0, matching.size() - 1)(random)];
            if (now(4)) {
                w.layer = static_cast<std::int64_t>(pick(layers));
            }
            if (now(4)) {
                w.bounds.x = pick(places);
            }
            if (now(4)) {
                w.bounds.y = pick(places);
            }
            if (now(4)) {
                w.bounds.width = pick(sides);
            }
            if (now(4)) {
                w.bounds.height = pick(sides);
            }
            if (now(10)) {
                w.alpha = pick({0, 0.01, 0.02});
            }
            if (now(20)) {
                w.ownerPID = selfPID;
            }
            if (now(20)) {
                w.bundleID.reset();
            }
            snapshot.windows.push_back(w);
        }
        snapshot.micInUse = round % 3 == 0;
        snapshot.cameraInUse = round % 5 == 0;
        if (round % 2 == 0) {
            snapshot.runningBundleIDs = {"us.zoom.xos", "com.example.deck"};
        }
        const unsigned bits = static_cast<unsigned>(random());
        DetectionOptions options{(bits & 1) != 0, (bits & 2) != 0,  (bits & 4) != 0,
                                 (bits & 8) != 0, (bits & 16) != 0, {}};
        if (bits & 32) {
            options.startWhenOpen = {"com.example.deck"};
        }
        const auto explanation = CaptureRules::explain(snapshot, options);
        ASSERT_EQ(explanation.verdict, CaptureRules::evaluate(snapshot, options)) << round;
        for (const RuleFinding& found : explanation.rules) {
            DetectionOptions only{false, false, false, false, false, {}};
            switch (found.rule) {
            case CaptureRule::systemRecording:
                only.watchSystemRecording = true;
                break;
            case CaptureRule::callShare:
                only.watchCalls = true;
                break;
            case CaptureRule::browserShare:
                only.watchBrowsers = true;
                break;
            case CaptureRule::takeloom:
                only.watchTakeloom = true;
                break;
            case CaptureRule::startWhenOpen:
                only.startWhenOpen = {"com.example.deck"};
                break;
            case CaptureRule::call:
                only.treatCallsAsSharing = true;
                break;
            }
            if (found.rule == CaptureRule::startWhenOpen && options.startWhenOpen.empty()) {
                continue;
            }
            ASSERT_EQ(found.matched ? found.source : std::nullopt,
                      CaptureRules::evaluate(snapshot, only))
                << round << " " << rawValue(found.rule) << ": " << found.text;
            ASSERT_EQ(found.matched, found.misses.empty()) << round;
            (found.matched ? seen[found.rule].first : seen[found.rule].second)++;
        }
    }
    for (const CaptureRule rule : allCaptureRules) {
        EXPECT_GT(seen[rule].first, 20) << rawValue(rule);
        EXPECT_GT(seen[rule].second, 20) << rawValue(rule);
    }
}

} // namespace
} // namespace scrimlet
