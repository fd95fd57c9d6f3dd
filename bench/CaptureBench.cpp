#include "CaptureExplanation.hpp"
#include "CaptureRules.hpp"

#include <benchmark/benchmark.h>

#include <array>
#include <string>

namespace scrimlet {
namespace {

// A laptop and an external display to its right, as in a common desk setup.
const DisplayInfo laptop{1, {0, 0, 1512, 982}};
const DisplayInfo external{2, {1512, -98, 2560, 1440}};

// Apps whose ordinary windows fill the list; some are call apps and browsers, so the rules
// that look at those bundle identifiers have to look further than the identifier.
const std::array<const char*, 8> apps = {
    "com.apple.Safari",
    "com.google.Chrome",
    "us.zoom.xos",
    "com.apple.mail",
    "com.apple.finder",
    "com.microsoft.VSCode",
    "com.tinyspeck.slackmacgap",
    "com.apple.Notes",
};

// Status items and menu-bar extras: small windows at the top, at layers near the system's
// recording indicator.
const std::array<const char*, 4> extras = {
    "com.apple.controlcenter",
    "com.apple.Spotlight",
    "com.apple.TextInputMenuAgent",
    "com.apple.systemuiserver",
};

/// A window list of `count` windows spread over both displays: mostly ordinary layer-0
/// windows, one in twelve a menu-bar extra, one in twenty invisible. With `shareLast` the
/// final window is Zoom's frame around the external display; otherwise nothing matches.
CaptureSnapshot desk(int count, bool shareLast) {
    CaptureSnapshot snapshot;
    snapshot.displays = {laptop, external};
    snapshot.selfPID = 510;
    snapshot.runningBundleIDs = {apps.begin(), apps.end()};
    const int ordinary = shareLast ? count - 1 : count;
    for (int i = 0; i < ordinary; ++i) {
        WindowInfo window;
        window.ownerPID = 600 + i % 40;
        window.ownerName = "App " + std::to_string(i % 40);
        if (i % 12 == 5) {
            window.bundleID = extras[static_cast<size_t>(i / 12) % extras.size()];
            window.layer = 25;
            window.bounds = {1000.0 + (i % 9) * 30, 0, 28, 24};
        } else {
            window.bundleID = apps[static_cast<size_t>(i) % apps.size()];
            window.layer = 0;
            const double left = (i % 2 == 0) ? 40.0 * (i % 7) : 1600.0 + 50.0 * (i % 9);
            window.bounds = {left, 40.0 + 20 * (i % 11), 900.0 + 10 * (i % 5), 700};
        }
        window.alpha = (i % 20 == 19) ? 0 : 1;
        snapshot.windows.push_back(window);
    }
    if (shareLast) {
        snapshot.windows.push_back(WindowInfo{502, "zoom.us", "us.zoom.xos", 3, external.frame, 1});
    }
    return snapshot;
}

void BM_CaptureRulesEvaluate(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const bool shareLast = state.range(1) != 0;
    const CaptureSnapshot snapshot = desk(count, shareLast);
    DetectionOptions options;
    options.startWhenOpen = {"com.example.deck"};
    for (auto _ : state) {
        auto source = CaptureRules::evaluate(snapshot, options);
        benchmark::DoNotOptimize(source);
        if (source.has_value() != shareLast) {
            state.SkipWithError("unexpected result");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * count);
    state.SetLabel(shareLast ? "share frame last" : "nothing matches");
}

BENCHMARK(BM_CaptureRulesEvaluate)->ArgsProduct({{50, 300}, {1, 0}});

// The explanation judges every rule on every window of its apps and writes its findings in
// words; it runs when a person asks, never at the tick.
void BM_CaptureRulesExplain(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const bool shareLast = state.range(1) != 0;
    const CaptureSnapshot snapshot = desk(count, shareLast);
    DetectionOptions options;
    options.startWhenOpen = {"com.example.deck"};
    for (auto _ : state) {
        auto explanation = CaptureRules::explain(snapshot, options);
        benchmark::DoNotOptimize(explanation);
        if (explanation.verdict.has_value() != shareLast) {
            state.SkipWithError("unexpected result");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * count);
    state.SetLabel(shareLast ? "share frame last" : "nothing matches");
}

BENCHMARK(BM_CaptureRulesExplain)->ArgsProduct({{50, 300}, {1, 0}});

} // namespace
} // namespace scrimlet
