#pragma once

// The scenery as the app and the real stage system reach it: the windows Scrimlet puts on
// the screens (desktop cover, backdrop, spotlight, keyboard lock, countdown). Main thread
// only.

#include "Effects.hpp"
#include "StagePlatform.hpp"

namespace scrimlet::mac::Scenery {

/// What the scenery asks the store for while it draws; set once at the start of a live run.
void installHooks(SceneryHooks hooks);

/// Whether a scene effect is on screen now.
bool isOn(EffectKind kind);
/// Puts a scene effect up or takes it down; throws `StageError` (always in a test run).
void set(EffectKind kind, bool on);

/// The displays changed: what is up is built again on the new screens.
void screensChanged();

void showCountdown(int seconds);
void hideCountdown();

bool backdropShowing();
/// Takes the backdrop down and puts it up again in the style the hooks give now.
void restyleBackdrop();
/// Orders the backdrop just behind the front window.
void orderBackdropBehindFront();

} // namespace scrimlet::mac::Scenery
