#pragma once

// The system layer as the app reaches it: the real stage system over the Mac's own
// facilities, the window list as detection sees it, the front-app tracker and the Shortcuts
// listing. Main thread only.

#include "CaptureModel.hpp"
#include "Settings.hpp"
#include "StageSystem.hpp"

#include <functional>
#include <memory>

namespace scrimlet::mac {

/// The stage system of a live run; it reads the settings through `settings`.
std::shared_ptr<StageSystem> makeRealStageSystem(std::function<StageSettings()> settings);

/// One read-only look at the window list, the running apps and, when the options ask for
/// it, the microphone and camera.
CaptureSnapshot windowSnapshot(const DetectionOptions& options);

/// Starts following which app is in front; `onChange` runs after every activation.
void startFrontTracker(std::function<void()> onChange);

/// Lists the user's Shortcuts again, past the listing's cache.
void refreshShortcuts();

} // namespace scrimlet::mac
