#pragma once

#import <AppKit/AppKit.h>

/// The app's menu bar, seen only while the settings window is in front: the app menu, Edit
/// (for the text fields), the "Show" menu and Window. The "Show" menu is rebuilt from the
/// store each time it opens.
@interface ScrimletMainMenu : NSObject <NSMenuDelegate>

/// Builds the menus and installs them as the application's main menu.
- (void)install;

@end
