#import "ScenePanel.h"

namespace scrimlet::mac {

NSWindowLevel levelOf(const SceneRecipe &recipe) {
    switch (recipe.level) {
    case SceneRecipe::Level::aboveDesktopIcons:
        return CGWindowLevelForKey(kCGDesktopIconWindowLevelKey) + 1;
    case SceneRecipe::Level::normal:
        return NSNormalWindowLevel;
    case SceneRecipe::Level::assistiveTechHigh:
        return CGWindowLevelForKey(kCGAssistiveTechHighWindowLevelKey);
    case SceneRecipe::Level::fixed:
        return recipe.fixedLevel;
    }
    return NSNormalWindowLevel;
}

void closePanels(NSMutableArray<SCScenePanel *> *panels) {
    for (SCScenePanel *panel in panels) {
        [panel orderOut:nil];
        [panel close];
    }
    [panels removeAllObjects];
}

} // namespace scrimlet::mac

@implementation SCScenePanel

- (instancetype)initWithRecipe:(const scrimlet::SceneRecipe &)recipe
                         frame:(NSRect)frame
                       content:(NSView *)content {
    self =
        [super initWithContentRect:frame
                         styleMask:static_cast<NSWindowStyleMask>(scrimlet::SceneRecipe::styleMask)
                           backing:static_cast<NSBackingStoreType>(scrimlet::SceneRecipe::backing)
                             defer:NO];
    if (self == nil) {
        return nil;
    }
    self.level = scrimlet::mac::levelOf(recipe);
    self.opaque = NO;
    self.backgroundColor = NSColor.clearColor;
    self.hasShadow = NO;
    self.releasedWhenClosed = NO;
    self.hidesOnDeactivate = NO;
    self.collectionBehavior = static_cast<NSWindowCollectionBehavior>(recipe.collectionBehavior);
    self.movable = NO;
    self.ignoresMouseEvents = recipe.ignoresMouse;
    if (recipe.hiddenFromSharing) {
        // What this promises stops at the system's older capture paths: from macOS 15 on,
        // ScreenCaptureKit, which the sharing apps use, captures the screen as composed and
        // shows this window all the same. See CountdownOverlay.
        self.sharingType = NSWindowSharingNone;
    }
    self.contentView = content;
    [self setFrame:frame display:NO];
    return self;
}

- (BOOL)canBecomeKeyWindow {
    return NO;
}

- (BOOL)canBecomeMainWindow {
    return NO;
}

@end
