// What the views compute each time the store changes, which in a live show is every second:
// the dropdown's whole model, and the description by which an open settings page decides
// whether it must be drawn again.

#include "Dropdown.hpp"
#include "Harness.hpp"
#include "SettingsModel.hpp"
#include "StageStore.hpp"

#include <benchmark/benchmark.h>

namespace scrimlet {
namespace {

/// A demo Mac with `apps` more ordinary apps running, all of which a show hides.
std::shared_ptr<StageStore> busyStore(int apps, bool live) {
    auto sys = FakeStageSystem::demo();
    for (int i = 0; i < apps; ++i) {
        sys->apps.push_back({"com.example.app" + std::to_string(i), "App " + std::to_string(i),
                             1000 + i, false, true});
    }
    auto store = StageStore::demo(Harness::demoNow(), std::nullopt, std::nullopt, sys, true);
    store->refreshAvailability();
    if (live) {
        store->startShow("bench", false);
    }
    return store;
}

void DropdownModel(benchmark::State& state) {
    const auto store = busyStore(static_cast<int>(state.range(0)), state.range(1) != 0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(Dropdown::model(*store));
    }
}

void SettingsPageDescription(benchmark::State& state) {
    const auto store = busyStore(static_cast<int>(state.range(0)), false);
    const auto tab = static_cast<SettingsTab>(state.range(1));
    for (auto _ : state) {
        benchmark::DoNotOptimize(SettingsPages::describe(SettingsPages::page(tab, *store)));
    }
}

BENCHMARK(DropdownModel)->Args({0, 0})->Args({0, 1})->Args({100, 1});
BENCHMARK(SettingsPageDescription)
    ->Args({0, static_cast<int>(SettingsTab::stage)})
    ->Args({100, static_cast<int>(SettingsTab::stage)})
    ->Args({0, static_cast<int>(SettingsTab::switches)});

} // namespace
} // namespace scrimlet
