#pragma once

#import <AppKit/AppKit.h>

namespace scrimlet {
class StageStore;
}

/// The dropdown's content for the store, for the status item's popover. It follows the
/// store by itself (the app posts `ScrimletStoreDidChangeNotification` after every change).
NSViewController* ScrimletDropdownViewController(scrimlet::StageStore& store);

/// Posted on the main thread after every change of the store that the interface shows.
extern NSNotificationName const ScrimletStoreDidChangeNotification;
