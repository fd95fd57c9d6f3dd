#pragma once

// The kit's one entry point: the updater, started once at the end of launch with the app's
// brand colours for the kit's windows. Main thread only.

#include "Color.hpp"

#include <string>

namespace scrimlet::mac::Vantrel {

/// Starts the kit; a second call does nothing. The first check for updates comes 8 seconds
/// later, then one every six hours; news that comes while a show is up waits for its end.
void start(const Color& velvet, const Color& light);

/// "Check for Updates…" from the app menu.
void checkForUpdates();

// The settings row "Download and install updates automatically".

/// Whether this build looks for updates at all: a build without a feed never does, and the
/// row has nothing to say.
bool updatesAvailable();
bool automaticallyDownloads();
void setAutomaticallyDownloads(bool on);
/// The row's detail: "New versions download in the background and install when you quit
/// Scrimlet."
std::string automaticUpdatesNote();

} // namespace scrimlet::mac::Vantrel
