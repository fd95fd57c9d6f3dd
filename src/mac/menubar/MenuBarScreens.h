#pragma once

// What the menu bar's rules need to know about this Mac: its macOS version and its displays,
// with frames turned into the global coordinates of the portable code (origin at the top
// left of the main display, y growing downward). Main thread only.

#import "Geometry.hpp"
#import "MenuBarDivider.hpp"

#import <AppKit/AppKit.h>

#include <vector>

namespace scrimlet::mac::MenuBarScreens {

/// The macOS major version, through the compatibility numbers an older SDK is told.
int systemMajor();
/// A frame in AppKit's screen coordinates (origin at the bottom left of the main display,
/// y upward), in global coordinates.
Rect globalRect(NSRect frame);
/// The frames of the attached displays, in global coordinates.
std::vector<Rect> displayFrames();
/// The displays' widths and the system version, for the divider's length.
MenuBarMetrics metrics();

} // namespace scrimlet::mac::MenuBarScreens
