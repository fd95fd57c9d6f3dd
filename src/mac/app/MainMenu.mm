#import "MainMenu.h"

#import "../common/Text.h"
#import "../kit/Vantrel.hpp"
#import "SharedStore.hpp"
#import "ShowMenu.hpp"

@interface ScrimletMainMenu ()
@property(nonatomic) NSMenu *showMenu;
@end

@implementation ScrimletMainMenu

- (void)install {
    NSMenu *bar = [[NSMenu alloc] initWithTitle:@""];
    [self addSubmenu:[self appMenu] to:bar];
    [self addSubmenu:[self editMenu] to:bar];
    self.showMenu = [[NSMenu alloc] initWithTitle:@"Show"];
    self.showMenu.delegate = self;
    self.showMenu.autoenablesItems = NO;
    [self addSubmenu:self.showMenu to:bar];
    NSMenu *window = [self windowMenu];
    [self addSubmenu:window to:bar];
    NSApplication *app = NSApp;
    app.mainMenu = bar;
    app.windowsMenu = window;
    [self menuNeedsUpdate:self.showMenu];
}

#pragma mark - Menus

- (void)addSubmenu:(NSMenu *)menu to:(NSMenu *)bar {
    NSMenuItem *holder = [[NSMenuItem alloc] initWithTitle:menu.title action:nil keyEquivalent:@""];
    holder.submenu = menu;
    [bar addItem:holder];
}

- (NSMenuItem *)item:(NSString *)title action:(SEL)action key:(NSString *)key {
    return [[NSMenuItem alloc] initWithTitle:title action:action keyEquivalent:key];
}

- (NSMenu *)appMenu {
    NSMenu *menu = [[NSMenu alloc] initWithTitle:@"Scrimlet"];
    [menu addItem:[self item:@"About Scrimlet"
                      action:@selector(orderFrontStandardAboutPanel:)
                         key:@""]];
    [menu addItem:NSMenuItem.separatorItem];
    NSMenuItem *updates = [self item:@"Check for Updates…"
                              action:@selector(checkForUpdates:)
                                 key:@""];
    updates.target = self;
    [menu addItem:updates];
    [menu addItem:NSMenuItem.separatorItem];
    [menu addItem:[self item:@"Settings…"
                      action:NSSelectorFromString(@"showSettingsWindow:")
                         key:@","]];
    [menu addItem:NSMenuItem.separatorItem];
    [menu addItem:[self item:@"Hide Scrimlet" action:@selector(hide:) key:@"h"]];
    [menu addItem:[self item:@"Quit Scrimlet" action:@selector(terminate:) key:@"q"]];
    return menu;
}

- (NSMenu *)editMenu {
    NSMenu *menu = [[NSMenu alloc] initWithTitle:@"Edit"];
    [menu addItem:[self item:@"Undo" action:NSSelectorFromString(@"undo:") key:@"z"]];
    NSMenuItem *redo = [self item:@"Redo" action:NSSelectorFromString(@"redo:") key:@"z"];
    redo.keyEquivalentModifierMask = NSEventModifierFlagCommand | NSEventModifierFlagShift;
    [menu addItem:redo];
    [menu addItem:NSMenuItem.separatorItem];
    [menu addItem:[self item:@"Cut" action:@selector(cut:) key:@"x"]];
    [menu addItem:[self item:@"Copy" action:@selector(copy:) key:@"c"]];
    [menu addItem:[self item:@"Paste" action:@selector(paste:) key:@"v"]];
    [menu addItem:[self item:@"Select All" action:@selector(selectAll:) key:@"a"]];
    return menu;
}

- (NSMenu *)windowMenu {
    NSMenu *menu = [[NSMenu alloc] initWithTitle:@"Window"];
    [menu addItem:[self item:@"Minimize" action:@selector(performMiniaturize:) key:@"m"]];
    [menu addItem:[self item:@"Close" action:@selector(performClose:) key:@"w"]];
    return menu;
}

#pragma mark - The Show menu

- (void)menuNeedsUpdate:(NSMenu *)menu {
    if (menu != self.showMenu) {
        return;
    }
    [menu removeAllItems];
    for (const scrimlet::ShowMenu::Item &row :
         scrimlet::ShowMenu::items(scrimlet::mac::sharedStore().phase())) {
        if (row.divider) {
            [menu addItem:NSMenuItem.separatorItem];
            continue;
        }
        NSMenuItem *item = [self item:scrimlet::mac::toNSString(row.title)
                               action:@selector(performShowAction:)
                                  key:scrimlet::mac::toNSString(row.key)];
        item.keyEquivalentModifierMask = NSEventModifierFlagOption | NSEventModifierFlagCommand;
        item.target = self;
        item.tag = static_cast<NSInteger>(row.action);
        item.enabled = row.enabled;
        [menu addItem:item];
    }
}

- (void)performShowAction:(NSMenuItem *)sender {
    const auto action = static_cast<scrimlet::ShowMenu::Action>(sender.tag);
    if (scrimlet::ShowMenu::perform(action, scrimlet::mac::sharedStore())) {
        scrimlet::mac::openSettings(std::nullopt);
    }
}

- (void)checkForUpdates:(id)sender {
    scrimlet::mac::Vantrel::checkForUpdates();
}

@end
