#include "AtomicFile.hpp"
#include "FakeStageSystem.hpp"
#include "ManualClock.hpp"
#include "Show.hpp"
#include "TempDir.hpp"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>

namespace scrimlet {
namespace {

// Every flag, and a size the demo display has: the heaviest plan a user can choose.
StageSettings fullPlan() {
    StageSettings settings;
    settings.plan = StagePlan{true, true, true, true, true,
                              true, true, true, true, ResolutionPreset{1920, 1080}};
    return settings;
}

// One show cycle on the demo Mac: the full plan goes live (sixteen effects: the cover, seven
// apps, eight other items) and is struck again. Reports the journal saves on each side per
// changed effect.
void showCycle(benchmark::State& state, std::optional<std::filesystem::path> journal) {
    auto clock = std::make_shared<ManualClock>(Date{1'790'000'000});
    auto sys = FakeStageSystem::demo();
    auto store = std::make_shared<JournalStore>(journal);
    auto director = std::make_shared<Director>(sys, store, ManualClock::reading(clock));
    Show show(director, fullPlan(), {}, ManualClock::reading(clock));

    int savesLive = 0;
    int savesStrike = 0;
    int effects = 0;
    for (auto _ : state) {
        const int before = store->saves();
        show.start("Menu bar", false);
        effects += static_cast<int>(director->entries().size());
        const int live = store->saves();
        clock->advance(60);
        show.stop(EndReason::stopped);
        savesLive += live - before;
        savesStrike += store->saves() - live;
        // The log would otherwise grow with every cycle, which no real show does.
        director->clearLog();
    }
    if (sys->writeCount() != 32 * static_cast<int>(state.iterations())) {
        state.SkipWithError("the cycle did not change every effect");
    }
    state.counters["effects"] = benchmark::Counter(effects, benchmark::Counter::kAvgIterations);
    state.counters["savesPerEffectLive"] = static_cast<double>(savesLive) / effects;
    state.counters["savesPerEffectStrike"] = static_cast<double>(savesStrike) / effects;
}

void BM_ShowCycleJournalOnDisk(benchmark::State& state) {
    const testing::TempDir scratch;
    showCycle(state, scratch / "journal.json");
}
BENCHMARK(BM_ShowCycleJournalOnDisk)->Unit(benchmark::kMillisecond);

// The same cycle with the journal in memory, to tell the engine's own cost from the disk's.
void BM_ShowCycleJournalInMemory(benchmark::State& state) {
    showCycle(state, std::nullopt);
}
BENCHMARK(BM_ShowCycleJournalInMemory)->Unit(benchmark::kMicrosecond);

// The launch after a crash in mid-show with twenty effects on record: read the journal, put
// the Mac back, file the sheet. The demo Mac has four more apps here, so that the full plan
// hides eleven: the cover, eleven apps and eight other items.
void BM_RecoveryOfTwentyEntryJournal(benchmark::State& state) {
    const testing::TempDir scratch;
    auto clock = std::make_shared<ManualClock>(Date{1'790'000'000});
    auto sys = FakeStageSystem::demo();
    for (int i = 0; i < 4; ++i) {
        sys->apps.push_back(AppInfo{"com.example.extra" + std::to_string(i),
                                    "Extra " + std::to_string(i), 520 + i, false, true});
    }
    const auto lit = [&] {
        auto store = std::make_shared<JournalStore>(scratch / "journal.json");
        auto director = std::make_shared<Director>(sys, store, ManualClock::reading(clock));
        Show show(director, fullPlan(), {}, ManualClock::reading(clock));
        show.start("Menu bar", false);
        return director->entries().size();
    }();
    const auto journal = files::read(scratch / "journal.json");
    if (lit != 20 || !journal) {
        state.SkipWithError("the show did not leave twenty entries on disk");
        return;
    }
    sys->processDied();
    const auto values = sys->values;
    const auto apps = sys->apps;
    const bool dnd = sys->dnd;

    size_t records = 0;
    for (auto _ : state) {
        state.PauseTiming();
        files::writeAtomically(scratch / "journal.json", *journal);
        sys->values = values;
        sys->apps = apps;
        sys->dnd = dnd;
        state.ResumeTiming();

        auto store = std::make_shared<JournalStore>(scratch / "journal.json");
        auto director = std::make_shared<Director>(sys, store, ManualClock::reading(clock));
        Show show(director, StageSettings{}, {}, ManualClock::reading(clock));
        const auto sheet = show.recoverAtLaunch();
        records = sheet ? sheet->strike.size() : 0;
        benchmark::DoNotOptimize(sheet);
    }
    // The four effects held by the process died with it and leave no line.
    if (records != 16 || std::filesystem::exists(scratch / "journal.json")) {
        state.SkipWithError("recovery did not put back the sixteen lasting effects");
    }
    state.counters["entries"] = static_cast<double>(lit);
    state.counters["records"] = static_cast<double>(records);
}
BENCHMARK(BM_RecoveryOfTwentyEntryJournal)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace scrimlet
