// The heaviest work of the one-second tick: the window server's raw records turned into a
// snapshot and judged by the capture rules. Warm, the bundle cache knows every owner, as on
// every tick but the first; cold, each owner is looked up once.

#include "CaptureRules.hpp"
#include "RecordingFacilities.hpp"
#include "WindowList.hpp"

#include <benchmark/benchmark.h>

#include <string>

namespace scrimlet {
namespace {

constexpr int owners = 40;

// A recorded desk: 300 on-screen windows of 40 apps over two displays, the last of them
// Zoom's frame around the external display. Nothing is written down while it is read.
class RecordedMac : public testing::RecordingFacilities {
public:
    RecordedMac() {
        for (int i = 0; i < owners; ++i) {
            apps.push_back({600 + i, "com.example.app" + std::to_string(i), "App",
                            RunningApp::Policy::regular, false, false});
        }
        apps.push_back({502, "us.zoom.xos", "zoom.us", RunningApp::Policy::regular, false, false});
        for (int i = 0; i < 299; ++i) {
            RawWindow window;
            window.ownerPID = 600 + i % owners;
            window.ownerName = "App";
            window.number = 1000 + i;
            const bool extra = i % 12 == 5;
            window.layer = extra ? 25 : 0;
            window.bounds = extra ? Rect{1000.0 + (i % 9) * 30, 0, 28, 24}
                                  : Rect{40.0 * (i % 7), 40.0 + 20 * (i % 11), 900, 700};
            window.alpha = i % 20 == 19 ? 0 : 1;
            windows.emplace_back(window);
        }
        RawWindow frame;
        frame.ownerPID = 502;
        frame.ownerName = "zoom.us";
        frame.layer = 3;
        frame.bounds = external;
        frame.number = 2000;
        windows.emplace_back(frame);
        screens = {1, 2};
    }

    std::vector<std::optional<RawWindow>> windowList() override { return windows; }
    std::vector<RunningApp> runningApplications() override { return apps; }
    std::optional<RunningApp> runningApplication(std::int32_t pid) override {
        for (const auto& app : apps) {
            if (app.pid == pid) {
                return app;
            }
        }
        return std::nullopt;
    }
    std::vector<std::optional<double>> screenNumbers() override { return screens; }
    Rect displayBounds(std::uint32_t display) override {
        return display == 1 ? Rect{0, 0, 1512, 982} : external;
    }
    std::int32_t processID() override { return 510; }

    static constexpr Rect external{1512, -98, 2560, 1440};
};

void judge(benchmark::State& state, WindowList& list, const DetectionOptions& options) {
    const auto source = CaptureRules::evaluate(list.snapshot(options), options);
    if (!source || source->bundleID != "us.zoom.xos") {
        state.SkipWithError("the recorded share was not seen");
    }
    benchmark::DoNotOptimize(source);
}

void BM_SnapshotAndJudge_WarmCache(benchmark::State& state) {
    const auto mac = std::make_shared<RecordedMac>();
    WindowList list(mac);
    const DetectionOptions options;
    list.snapshot(options);
    for (auto _ : state) {
        judge(state, list, options);
    }
}
BENCHMARK(BM_SnapshotAndJudge_WarmCache);

void BM_SnapshotAndJudge_ColdCache(benchmark::State& state) {
    const auto mac = std::make_shared<RecordedMac>();
    const DetectionOptions options;
    for (auto _ : state) {
        WindowList list(mac);
        judge(state, list, options);
    }
}
BENCHMARK(BM_SnapshotAndJudge_ColdCache);

} // namespace
} // namespace scrimlet
