#pragma once

#include "Director.hpp"
#include "FakeStageSystem.hpp"
#include "JournalStore.hpp"
#include "ManualClock.hpp"
#include "TempDir.hpp"

#include <memory>

namespace scrimlet::testing {

/// The simulated Mac with a manual clock and a director whose journal is a real file in a
/// temporary folder.
struct StageRig {
    TempDir dir;
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(Date{1'790'000'000});
    std::shared_ptr<FakeStageSystem> sys = FakeStageSystem::demo();
    std::shared_ptr<JournalStore> store =
        std::make_shared<JournalStore>(dir.path() / "journal.json");
    std::unique_ptr<Director> director =
        std::make_unique<Director>(sys, store, ManualClock::reading(clock));

    std::filesystem::path journalPath() const { return dir.path() / "journal.json"; }

    /// The director as a show or a switch board holds it, shared. `director` hands it over
    /// and is empty afterwards.
    std::shared_ptr<Director> shareDirector() {
        return std::shared_ptr<Director>(std::move(director));
    }

    /// A new director on the same journal file, as the next launch would make.
    std::unique_ptr<Director> relaunch() {
        store = std::make_shared<JournalStore>(journalPath());
        return std::make_unique<Director>(sys, store, ManualClock::reading(clock));
    }
};

inline const EffectKey dock{EffectKind::dockAutohide};
inline const EffectKey darkMode{EffectKind::darkMode};
inline const EffectKey alerts{EffectKind::alertVolume};
inline const EffectKey dnd{EffectKind::doNotDisturb};
inline const EffectKey display1{EffectKind::displayMode, "1"};
inline const EffectKey keepAwake{EffectKind::keepAwake};

/// The outcomes of a run of records, in order.
inline std::vector<CueOutcome::Case> outcomes(const std::vector<CueRecord>& records) {
    std::vector<CueOutcome::Case> out;
    for (const auto& record : records) {
        out.push_back(record.outcome.kind());
    }
    return out;
}

inline JournalValue on() {
    return JournalValue::boolean(true);
}
inline JournalValue off() {
    return JournalValue::boolean(false);
}
inline JournalValue num(double n) {
    return JournalValue::number(n);
}

} // namespace scrimlet::testing
