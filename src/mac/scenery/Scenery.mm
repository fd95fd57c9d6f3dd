#include "Scenery.hpp"

#include "StageSystem.hpp"

// Placeholder until the scenery lands: nothing is ever put on screen, and a scene effect
// says so rather than pretend.

namespace scrimlet::mac::Scenery {

void installHooks(SceneryHooks) {}

bool isOn(EffectKind) { return false; }

void set(EffectKind, bool) { throw StageError::failed("Scenery isn't built yet"); }

void screensChanged() {}

void showCountdown(int) {}

void hideCountdown() {}

bool backdropShowing() { return false; }

void restyleBackdrop() {}

void orderBackdropBehindFront() {}

} // namespace scrimlet::mac::Scenery
