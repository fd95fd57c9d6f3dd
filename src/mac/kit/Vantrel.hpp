#pragma once

// The kit's one entry point: the updater, started once at the end of launch with the app's
// brand colours for the kit's windows. Main thread only.

#include "Color.hpp"

namespace scrimlet::mac::Vantrel {

/// Starts the kit; a second call does nothing.
void start(const Color& velvet, const Color& light);

/// "Check for Updates…" from the app menu.
void checkForUpdates();

} // namespace scrimlet::mac::Vantrel
