#include "StatusController.hpp"

// Placeholder until the menu bar lands: no item is shown.

namespace scrimlet::mac::StatusController {

void install(StageStore &) {}

void update(StageStore &) {}

void closePopover() {}

} // namespace scrimlet::mac::StatusController
