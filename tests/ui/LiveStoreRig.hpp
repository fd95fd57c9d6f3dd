#pragma once

#include "RecordingPlatform.hpp"
#include "StageStore.hpp"
#include "TempDir.hpp"

namespace scrimlet::testing {

/// A live store on the simulated Mac with a manual clock, its files in a temporary folder,
/// and a platform of the test's choosing (a recording one unless told otherwise).
template <class Platform = RecordingPlatform>
struct LiveStoreRig {
    TempDir dir;
    std::shared_ptr<FakeStageSystem> sys = FakeStageSystem::demo();
    std::shared_ptr<Platform> platform = std::make_shared<Platform>();
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(Date{1'790'000'000});
    std::shared_ptr<StageStore> store;

    explicit LiveStoreRig(StageSettings settings = {}) {
        store = StageStore::create(StageStore::Mode::live, sys, nullptr,
                                   std::make_shared<JournalStore>(dir / "journal.json"),
                                   std::move(settings), dir / "settings.json",
                                   dir / "runsheets.json", clock, platform);
    }

    void seconds(int n) {
        for (int i = 0; i < n; ++i) {
            clock->advance(1);
            store->tick();
        }
    }
};

} // namespace scrimlet::testing
