#pragma once

// The menu bar divider, as the app and the scenery reach it. Main thread only.

namespace scrimlet::mac::MenuBarTidy {

/// Makes or removes the divider; ignored in a test run.
void setInstalled(bool installed);
bool isInstalled();
bool isCollapsed();
/// Pushes the icons on the divider's left out of sight, or brings them back; throws
/// `StageError` without a divider.
void setCollapsed(bool collapsed);

} // namespace scrimlet::mac::MenuBarTidy
