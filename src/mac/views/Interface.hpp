#pragma once

// The interface as the app reaches it: the settings window, the curtain's animation, and
// what the views ask of the platform. Main thread only.

#include <functional>

namespace scrimlet {
class StageStore;
class InterfaceHost;
} // namespace scrimlet

namespace scrimlet::mac::Interface {

/// Opens the settings window on the store's `settingsTab`, or brings it to the front.
void showSettingsWindow(StageStore& store);

/// Runs `change` inside the curtain's animation, or a plain fade when the user asked the
/// system to reduce motion.
void animateCurtain(const std::function<void()>& change);

/// What the dropdown and the settings pages ask of AppKit: the settings window, quitting,
/// the pasteboard, other apps, and the file chooser.
InterfaceHost& host();

} // namespace scrimlet::mac::Interface
