#pragma once

// The interface as the app reaches it: the settings window and the curtain's animation.
// Main thread only.

#include <functional>

namespace scrimlet {
class StageStore;
}

namespace scrimlet::mac::Interface {

/// Opens the settings window on the store's `settingsTab`, or brings it to the front.
void showSettingsWindow(StageStore& store);

/// Runs `change` inside the curtain's animation, or a plain fade when the user asked the
/// system to reduce motion.
void animateCurtain(const std::function<void()>& change);

} // namespace scrimlet::mac::Interface
