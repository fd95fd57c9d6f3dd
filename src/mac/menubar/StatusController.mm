#import "StatusController.hpp"

#import "../app/SharedStore.hpp"
#import "../common/Text.h"
#import "../views/DrawingView.h"
#import "../views/DropdownView.h"
#import "Harness.hpp"
#import "MenuBarScreens.h"
#import "StageStore.hpp"
#import "StatusItemPresence.hpp"
#import "StatusItemRules.hpp"

#import <AppKit/AppKit.h>

using scrimlet::StatusItemLook;
namespace Presence = scrimlet::StatusItemPresence;
namespace Rules = scrimlet::StatusItemRules;

/// The status item's target, and the one who keeps an eye on whether the item made it into
/// the menu bar.
@interface ScrimletStatusTarget : NSObject
- (void)clicked:(NSStatusBarButton *)sender;
- (void)noticeOpenSystemSettings:(id)sender;
- (void)noticeOpenScrimletSettings:(id)sender;
- (void)noticeDismiss:(id)sender;
@end

namespace scrimlet::mac::StatusController {

namespace {

struct Controller {
    NSStatusItem *item = nil;
    /// Made with the controller and never replaced.
    NSPopover *popover = [[NSPopover alloc] init];
    ScrimletStatusTarget *target = [[ScrimletStatusTarget alloc] init];
    /// The store the item shows; the process-wide one, alive as long as the process.
    StageStore *store = nullptr;
    /// Whether the system had its moment to place the item.
    bool settled = false;
    /// Whether a show or a share kept the notice back at the last update.
    bool busy = false;
    NSAlert *notice = nil;
    NSMutableArray *observers = [NSMutableArray array];
};

Controller &controller() {
    static Controller shared;
    return shared;
}

void activateApp() {
    NSApplication *app = NSApp;
    if (@available(macOS 14.0, *)) {
        [app activate];
    } else {
        [app activateIgnoringOtherApps:YES];
    }
}

void toggle() {
    Controller &c = controller();
    NSStatusBarButton *button = c.item.button;
    if (!button || !c.store) {
        return;
    }
    if (c.popover.shown) {
        [c.popover performClose:nil];
        return;
    }
    c.store->popoverWillOpen();
    activateApp();
    // Read at each opening, so that a change of the setting counts at once.
    c.popover.animates = !NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;
    [c.popover showRelativeToRect:button.bounds ofView:button preferredEdge:NSRectEdgeMinY];
}

void closeNotice() {
    Controller &c = controller();
    [c.notice.window orderOut:nil];
    c.notice = nil;
}

void showNotice() {
    Controller &c = controller();
    if (c.notice || !c.store) {
        return;
    }
    const Presence::Notice words = Presence::notice(c.store->settings().stageHotkey);
    NSAlert *alert = [[NSAlert alloc] init];
    alert.messageText = toNSString(words.title);
    alert.informativeText = toNSString(words.message);
    // Shown as a plain window, not run modally: a modal run would hold up the main loop,
    // and with it the automatic starts, for as long as nobody answers.
    NSButton *openSystem = [alert addButtonWithTitle:toNSString(words.openSystemSettings)];
    openSystem.target = c.target;
    openSystem.action = @selector(noticeOpenSystemSettings:);
    NSButton *openOwn = [alert addButtonWithTitle:toNSString(words.openScrimletSettings)];
    openOwn.target = c.target;
    openOwn.action = @selector(noticeOpenScrimletSettings:);
    NSButton *dismiss = [alert addButtonWithTitle:toNSString(words.dismiss)];
    dismiss.target = c.target;
    dismiss.action = @selector(noticeDismiss:);
    [alert layout];
    c.notice = alert;
    activateApp();
    [alert.window center];
    [alert.window makeKeyAndOrderFront:nil];
}

/// Judges whether the item is in the menu bar, and gives the notice when it was kept out.
void judgePresence() {
    Controller &c = controller();
    if (!c.item || !c.settled || !c.store) {
        return;
    }
    NSWindow *window = c.item.button.window;
    std::optional<Rect> frame;
    if (window) {
        frame = MenuBarScreens::globalRect(window.frame);
    }
    const auto placement = Presence::judge(c.item.visible, frame, MenuBarScreens::displayFrames());
    NSUserDefaults *defaults = NSUserDefaults.standardUserDefaults;
    NSString *key = toNSString(Presence::noticedKey);
    const auto decision = Presence::decide(MenuBarScreens::systemMajor(), placement,
                                           [defaults boolForKey:key], Presence::isBusy(*c.store));
    [defaults setBool:decision.noticed forKey:key];
    if (decision.showNotice) {
        showNotice();
    }
}

void judgePresenceLater() {
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW,
                                 static_cast<int64_t>(Presence::settleSeconds * NSEC_PER_SEC)),
                   dispatch_get_main_queue(), ^{
                       controller().settled = true;
                       judgePresence();
                   });
}

void watchPresence() {
    Controller &c = controller();
    NSNotificationCenter *center = NSNotificationCenter.defaultCenter;
    NSOperationQueue *main = NSOperationQueue.mainQueue;
    [c.observers addObject:[center addObserverForName:NSWindowDidMoveNotification
                                               object:nil
                                                queue:main
                                           usingBlock:^(NSNotification *note) {
                                               if (note.object == controller().item.button.window) {
                                                   judgePresence();
                                               }
                                           }]];
    [c.observers
        addObject:[center addObserverForName:NSApplicationDidChangeScreenParametersNotification
                                      object:nil
                                       queue:main
                                  usingBlock:^(NSNotification *) {
                                      judgePresenceLater();
                                  }]];
    judgePresenceLater();
}

} // namespace

void install(StageStore &store) {
    Controller &c = controller();
    if (c.item || Harness::isTestRun()) {
        return;
    }
    c.store = &store;
    c.item = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
    c.item.autosaveName = toNSString(Rules::autosaveName);
    NSStatusBarButton *button = c.item.button;
    button.target = c.target;
    button.action = @selector(clicked:);
    [button sendActionOn:NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp];
    button.accessibilityLabel = toNSString(Rules::accessibilityLabel);

    c.popover.contentViewController = ScrimletDropdownViewController(store);
    c.popover.behavior = NSPopoverBehaviorTransient;
    c.popover.animates = !NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;
    update(store);
    watchPresence();
}

void update(StageStore &store) {
    NSStatusBarButton *button = controller().item.button;
    if (!button) {
        return;
    }
    const StatusItemLook look = Rules::look(store);
    NSImage *glyph = menuGlyphImage(look.live, look.standby);
    [glyph setTemplate:look.templateImage];
    glyph.accessibilityDescription = toNSString(look.glyphDescription);
    button.image = glyph;
    button.imagePosition = NSImageLeading;
    if (look.titleFont) {
        button.attributedTitle = [[NSAttributedString alloc]
            initWithString:toNSString(look.title)
                attributes:@{NSFontAttributeName : nsFont(*look.titleFont)}];
    } else {
        button.title = @"";
    }
    button.accessibilityValue = toNSString(look.accessibilityValue);

    // A notice held back during a show gets its turn when the show is over.
    Controller &c = controller();
    const bool busy = Presence::isBusy(store);
    if (c.busy && !busy) {
        judgePresence();
    }
    c.busy = busy;
}

void closePopover() {
    NSPopover *popover = controller().popover;
    if (popover.shown) {
        [popover performClose:nil];
    }
}

} // namespace scrimlet::mac::StatusController

@implementation ScrimletStatusTarget

- (void)clicked:(NSStatusBarButton *)sender {
    namespace StatusController = scrimlet::mac::StatusController;
    NSApplication *app = NSApp;
    NSEvent *event = app.currentEvent;
    std::optional<scrimlet::StatusClickEvent> click;
    if (event) {
        click = scrimlet::StatusClickEvent{event.modifierFlags, event.type};
    }
    auto *store = StatusController::controller().store;
    if (Rules::decide(click) == Rules::Click::startOrStop && store) {
        Rules::startOrStop(*store);
    } else {
        StatusController::toggle();
    }
}

- (void)noticeOpenSystemSettings:(id)sender {
    scrimlet::mac::StatusController::closeNotice();
    NSURL *settings =
        [NSURL URLWithString:scrimlet::mac::toNSString(Presence::menuBarSettingsLink)];
    if (settings) {
        [NSWorkspace.sharedWorkspace openURL:settings];
    }
}

- (void)noticeOpenScrimletSettings:(id)sender {
    scrimlet::mac::StatusController::closeNotice();
    scrimlet::mac::openSettings(scrimlet::StageStore::SettingsTab::cues);
}

- (void)noticeDismiss:(id)sender {
    scrimlet::mac::StatusController::closeNotice();
}

@end
