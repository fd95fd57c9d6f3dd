#pragma once

// The kit's one entry point: the updater, started once at the end of launch with the app's
// brand colours for the kit's windows. Main thread only.

#include <cstdint>

namespace scrimlet::mac::Vantrel {

/// An sRGB colour as 0xRRGGBB.
using BrandColor = std::uint32_t;

/// Starts the kit; a second call does nothing.
void start(BrandColor velvet, BrandColor light);

/// "Check for Updates…" from the app menu.
void checkForUpdates();

} // namespace scrimlet::mac::Vantrel
