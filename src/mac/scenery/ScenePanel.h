#pragma once

// The borderless panel every scene window is: it never takes the keyboard focus, never
// becomes the main window, and is made only by the recipe of its window kind. Main thread
// only.

#import <AppKit/AppKit.h>

#include "SceneRecipe.hpp"

@interface SCScenePanel : NSPanel

/// A panel by `recipe`, covering `frame` (in the screens' coordinates), showing `content`.
/// It is not ordered in: each controller orders its panels in its own way.
- (instancetype)initWithRecipe:(const scrimlet::SceneRecipe &)recipe
                         frame:(NSRect)frame
                       content:(NSView *)content NS_DESIGNATED_INITIALIZER;

- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag NS_UNAVAILABLE;
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag
                             screen:(NSScreen *)screen NS_UNAVAILABLE;
- (instancetype)init NS_UNAVAILABLE;

@end

namespace scrimlet::mac {

/// The window level a recipe names.
NSWindowLevel levelOf(const SceneRecipe &recipe);

/// Orders a panel out and closes it; the list that held it lets it go.
void closePanels(NSMutableArray<SCScenePanel *> *panels);

} // namespace scrimlet::mac
