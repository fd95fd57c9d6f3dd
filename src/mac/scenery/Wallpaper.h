#pragma once

// The desktop picture of a screen, and its blurred copy for the backdrop. Main thread only.

#import <AppKit/AppKit.h>

namespace scrimlet::mac::Wallpaper {

/// The picture the system shows on `screen`; nil when there is none, it is not a file, or
/// it cannot be read.
NSImage* imageFor(NSScreen* screen);

/// The picture blurred by `radius`, after shrinking it so that its longer side is at most
/// `maxSide`; nil when any step fails.
NSImage* blurred(NSImage* image, double radius, double maxSide);

} // namespace scrimlet::mac::Wallpaper
