#pragma once

// The system layer as the app and the command line reach it: the real stage system over
// the Mac's own facilities, the window list as detection sees it, the front-app tracker and
// the Shortcuts listing. One set of facilities, one window list and one tracker serve the
// whole process. Main thread only.

#include "CaptureModel.hpp"
#include "MacFacilities.hpp"
#include "Settings.hpp"
#include "StageSystem.hpp"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace scrimlet::mac {

/// What the real stage system needs from the app, which this library cannot know itself.
struct RealSystemSetup {
    /// The store's settings, for the names of the two Quiet shortcuts.
    std::function<StageSettings()> settings;
    /// Whether this is a scripted run that must never touch the machine.
    std::function<bool()> isTestRun;
    /// "mic-levels.json" in the support folder.
    std::filesystem::path micLevelsFile;
    SceneryAccess scenery;
};

/// The stage system of a live run.
std::shared_ptr<StageSystem> makeRealStageSystem(RealSystemSetup setup);

/// One read-only look at the window list, the running apps and, when the options ask for
/// it, the microphone and camera.
CaptureSnapshot windowSnapshot(const DetectionOptions& options);

/// The number of the process's frontmost normal window, for ordering the backdrop behind it.
std::optional<std::int64_t> frontWindowNumber(std::int32_t pid);

/// Starts following which app is in front; `onChange` runs after every activation, also
/// when this program itself comes to the front. Once only.
void startFrontTracker(std::function<void()> onChange);
/// The process of the last app other than this program that was in front.
std::optional<std::int32_t> frontAppPID();

/// Lists the user's Shortcuts again, past the listing's cache.
void refreshShortcuts();

} // namespace scrimlet::mac
