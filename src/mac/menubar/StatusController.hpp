#pragma once

// The status item and its dropdown, as the app reaches them. Main thread only.

namespace scrimlet {
class StageStore;
}

namespace scrimlet::mac::StatusController {

/// Puts the item in the menu bar, with the dropdown behind it; once, at the start of a live
/// run.
void install(StageStore& store);
/// Repaints the item for the store as it stands.
void update(StageStore& store);
/// Closes the dropdown, if it is open.
void closePopover();

} // namespace scrimlet::mac::StatusController
