#include "MenuBarTidy.hpp"

#include "StageSystem.hpp"

// Placeholder until the menu bar lands: there is never a divider.

namespace scrimlet::mac::MenuBarTidy {

void setInstalled(bool) {}

bool isInstalled() { return false; }

bool isCollapsed() { return false; }

void setCollapsed(bool) { throw StageError::failed("The menu bar divider is off"); }

} // namespace scrimlet::mac::MenuBarTidy
