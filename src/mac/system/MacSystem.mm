#include "MacSystem.hpp"

// Placeholder until the system layer lands: no real stage system yet, so the app runs its
// engine on nothing; the window list reads as empty and nothing is tracked.

namespace scrimlet::mac {

std::shared_ptr<StageSystem> makeRealStageSystem(std::function<StageSettings()>) { return nullptr; }

CaptureSnapshot windowSnapshot(const DetectionOptions &) { return {}; }

void startFrontTracker(std::function<void()>) {}

void refreshShortcuts() {}

} // namespace scrimlet::mac
