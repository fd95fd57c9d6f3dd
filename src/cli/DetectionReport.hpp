#pragma once

#include "CaptureExplanation.hpp"
#include "CaptureWatcher.hpp"
#include "WindowListFile.hpp"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>

/// How `scrimlet detect` and `scrimlet windows` put a window list and its judgement into
/// words, and into JSON for tools. Main thread only.
namespace scrimlet::DetectionReport {

/// "6 windows, 1 display, 9 running apps; microphone in use, camera not in use."
std::string facts(const CaptureSnapshot& snapshot);
/// Where and by what the list was taken, and what the user said they were doing.
std::string provenance(const RecordedWindowList& list);
/// The displays, then the windows front to back with their positions, each marked with
/// why no rule looks at it, or which rule it matched or nearly matched.
std::string windowTable(const CaptureSnapshot& snapshot, const CaptureExplanation& explanation);
/// The verdict, then each rule in its order with what it found.
std::string explanation(const CaptureExplanation& explanation);

/// One look fed to the watcher, and what came of it.
struct WatchStep {
    /// Seconds since the first look.
    double at = 0;
    std::optional<CaptureSource> seen;
    std::optional<CaptureWatcher::Change> change;
    std::optional<CaptureSource> active;
    /// "sees Zoom is sharing your screen; started"
    std::string text;
};

/// Feeds `snapshot` to `watcher` at `now` (with `options` in force) and says what it did.
WatchStep watch(CaptureWatcher& watcher, const CaptureSnapshot& snapshot,
                const DetectionOptions& options, Date now, double at);

/// What the replay and the live watch say before the first step.
std::string watcherRules(const CaptureWatcher& watcher);

nlohmann::ordered_json toJson(const WatchStep& step);
nlohmann::ordered_json toJson(const CaptureWatcher::Change& change);

} // namespace scrimlet::DetectionReport
