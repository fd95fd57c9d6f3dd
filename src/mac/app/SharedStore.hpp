#pragma once

// The one store of the process, at the shell's edge, and the way into the settings window.
// Main thread only.

#include "StageStore.hpp"

#include <optional>

namespace scrimlet::mac {

/// The process-wide store, made on first use: a demo store in a scripted run, otherwise the
/// live store on the real Mac with the app's platform services.
StageStore& sharedStore();

/// Opens the settings window, on `tab` when one is given and on the last tab otherwise: the
/// dropdown closes, the app comes to the front, and "showSettingsWindow:" goes up the
/// responder chain.
void openSettings(std::optional<StageStore::SettingsTab> tab);

} // namespace scrimlet::mac
