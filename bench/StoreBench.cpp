// The store's one-second tick, as the main loop runs it for the whole life of the app:
// one look at the window list, the watcher, the show and the switch board, and the publish.

#include "DemoCapture.hpp"
#include "Harness.hpp"
#include "StageStore.hpp"

#include <benchmark/benchmark.h>

namespace scrimlet {
namespace {

// An ordinary desktop: `count` windows of everyday apps over two displays, none sharing.
CaptureSnapshot busyDesktop(int count) {
    CaptureSnapshot snapshot;
    snapshot.displays = {DemoCapture::display(), {2, {1512, 0, 1920, 1080}}};
    snapshot.selfPID = 510;
    const char* owners[] = {"com.apple.Safari", "com.apple.mail", "com.tinyspeck.slackmacgap",
                            "com.apple.finder", "com.apple.Notes"};
    for (int i = 0; i < count; ++i) {
        WindowInfo window;
        window.ownerPID = 503 + i % 5;
        window.ownerName = "App";
        window.bundleID = owners[i % 5];
        window.layer = i % 17 == 0 ? 25 : 0;
        window.bounds = {static_cast<double>(i % 40) * 30, static_cast<double>(i % 25) * 20, 900,
                         600};
        snapshot.windows.push_back(window);
    }
    return snapshot;
}

void storeTick(benchmark::State& state, bool live) {
    auto store = StageStore::demo(Harness::demoNow(), std::nullopt, std::nullopt,
                                  FakeStageSystem::demo(), false);
    if (live) {
        store->startShow("bench", false);
    }
    const auto snapshot = busyDesktop(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        store->demoObserve(snapshot);
    }
    if (store->show().isLive() != live) {
        state.SkipWithError("the show changed phase during the run");
    }
}

void StoreTickDark(benchmark::State& state) {
    storeTick(state, false);
}
void StoreTickLive(benchmark::State& state) {
    storeTick(state, true);
}

BENCHMARK(StoreTickDark)->Arg(0)->Arg(50)->Arg(300);
BENCHMARK(StoreTickLive)->Arg(0)->Arg(50)->Arg(300);

} // namespace
} // namespace scrimlet
