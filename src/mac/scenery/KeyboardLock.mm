#import "KeyboardLock.h"

#import <ApplicationServices/ApplicationServices.h>

#import "../views/DrawingView.h"

#include "KeyboardLockRules.hpp"
#include "SceneCards.hpp"
#include "StageSystem.hpp"

#include <string>

/// The lock's picture on one screen; on the main screen, a click on the card's button calls
/// `done`. The first click counts even though the panel never becomes key.
@interface SCLockCardView : SCDrawingView
- (instancetype)initWithFrame:(NSRect)frame
                       isMain:(BOOL)isMain
                         done:(std::function<void()>)done NS_DESIGNATED_INITIALIZER;
- (instancetype)initWithFrame:(NSRect)frameRect NS_UNAVAILABLE;
- (instancetype)initWithCoder:(NSCoder *)coder NS_UNAVAILABLE;
@end

@implementation SCLockCardView {
    BOOL _isMain;
    std::function<void()> _done;
}

- (instancetype)initWithFrame:(NSRect)frame isMain:(BOOL)isMain done:(std::function<void()>)done {
    self = [super initWithFrame:frame];
    if (self == nil) {
        return nil;
    }
    _isMain = isMain;
    _done = std::move(done);
    const bool main = isMain;
    self.maker = [main](scrimlet::Size size, scrimlet::Appearance) {
        return scrimlet::LockCard{main}.layout(size, scrimlet::mac::measureText).drawing;
    };
    return self;
}

- (BOOL)acceptsFirstMouse:(NSEvent *)event {
    (void)event;
    return YES;
}

// Taken here, so that the release comes back to this view.
- (void)mouseDown:(NSEvent *)event {
    (void)event;
}

- (void)mouseUp:(NSEvent *)event {
    const NSPoint at = [self convertPoint:event.locationInWindow fromView:nil];
    const NSSize size = self.bounds.size;
    const auto layout = scrimlet::LockCard{static_cast<bool>(_isMain)}.layout(
        {size.width, size.height}, scrimlet::mac::measureText);
    if (layout.doneButton && layout.doneButton->contains({at.x, at.y}) && _done) {
        _done();
    }
}

@end

namespace scrimlet::mac {

namespace {

// The tap's callback is a plain function without context: the tap it may have to switch
// back on is kept here, set by `lock` and cleared by `unlock`.
CFMachPortRef lockedTap = nullptr;

CGEventRef swallowKeys(CGEventTapProxy, CGEventType type, CGEventRef event, void *) {
    if (KeyboardLockRules::verdict(type) == KeyboardLockRules::TapVerdict::drop) {
        return nullptr;
    }
    // The system switched the tap off, after a slow answer or by the user's input: it comes
    // straight back.
    if (lockedTap != nullptr) {
        CGEventTapEnable(lockedTap, true);
    }
    return event;
}

} // namespace

KeyboardLock::~KeyboardLock() { unlock(); }

void KeyboardLock::lock(std::function<void()> done) {
    if (isLocked()) {
        return;
    }
    if (!AXIsProcessTrusted()) {
        throw StageError::failed(std::string(KeyboardLockRules::needsAccessibility));
    }
    CFMachPortRef tap =
        CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault,
                         KeyboardLockRules::eventMask, swallowKeys, nullptr);
    if (tap == nullptr) {
        throw StageError::failed(std::string(KeyboardLockRules::tapRefused));
    }
    source_ = CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap, 0);
    CFRunLoopAddSource(CFRunLoopGetMain(), source_, kCFRunLoopCommonModes);
    CGEventTapEnable(tap, true);
    tap_ = tap;
    lockedTap = tap;

    const SceneRecipe recipe = sceneRecipe(SceneWindow::keyboardLock);
    NSScreen *main = NSScreen.mainScreen;
    for (NSScreen *screen in NSScreen.screens) {
        const NSRect frame = screen.frame;
        SCLockCardView *view = [[SCLockCardView alloc]
            initWithFrame:NSMakeRect(0, 0, frame.size.width, frame.size.height)
                   isMain:main != nil && screen == main
                     done:done];
        SCScenePanel *panel = [[SCScenePanel alloc] initWithRecipe:recipe frame:frame content:view];
        [panel orderFrontRegardless];
        [panels_ addObject:panel];
    }
}

void KeyboardLock::unlock() {
    if (tap_ != nullptr) {
        CGEventTapEnable(tap_, false);
    }
    if (source_ != nullptr) {
        CFRunLoopRemoveSource(CFRunLoopGetMain(), source_, kCFRunLoopCommonModes);
        CFRelease(source_);
        source_ = nullptr;
    }
    if (tap_ != nullptr) {
        CFMachPortInvalidate(tap_);
        CFRelease(tap_);
        tap_ = nullptr;
    }
    lockedTap = nullptr;
    closePanels(panels_);
}

} // namespace scrimlet::mac
