#pragma once

#include "RecordingPlatform.hpp"
#include "StageStore.hpp"
#include "TempDir.hpp"

namespace scrimlet::testing {

/// A store in live mode on the simulated Mac: a recording platform, a manual clock, and its
/// journal, settings and run sheets as real files in a temporary folder.
struct StoreRig {
    TempDir dir;
    std::shared_ptr<FakeStageSystem> sys = FakeStageSystem::demo();
    std::shared_ptr<RecordingPlatform> platform = std::make_shared<RecordingPlatform>();
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(Date{1'790'000'000});
    std::shared_ptr<StageStore> store;

    explicit StoreRig(StageSettings settings = {}) { store = open(std::move(settings)); }

    std::shared_ptr<StageStore> open(StageSettings settings) {
        return StageStore::create(StageStore::Mode::live, sys, nullptr,
                                  std::make_shared<JournalStore>(dir / "journal.json"),
                                  std::move(settings), dir / "settings.json",
                                  dir / "runsheets.json", clock, platform);
    }

    /// One second of the live main loop.
    void second() {
        clock->advance(1);
        store->tick();
    }
    void seconds(int n) {
        for (int i = 0; i < n; ++i) {
            second();
        }
    }
};

} // namespace scrimlet::testing
