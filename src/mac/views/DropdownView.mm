#import "DropdownView.h"

NSNotificationName const ScrimletStoreDidChangeNotification = @"ScrimletStoreDidChange";

// Placeholder until the interface lands: an empty card of the dropdown's width.
NSViewController *ScrimletDropdownViewController(scrimlet::StageStore &) {
    NSViewController *controller = [[NSViewController alloc] init];
    controller.view = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 360, 120)];
    return controller;
}
