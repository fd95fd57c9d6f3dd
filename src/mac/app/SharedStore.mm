#import "SharedStore.hpp"

#import "../menubar/StatusController.hpp"
#import "../system/MacSystem.hpp"
#import "MacStagePlatform.hpp"

#import <AppKit/AppKit.h>

namespace scrimlet::mac {

StageStore &sharedStore() {
    static const std::shared_ptr<StageStore> store =
        StageStore::makeShared(makeMacStagePlatform(), makeRealStageSystem);
    return *store;
}

void openSettings(std::optional<StageStore::SettingsTab> tab) {
    if (tab) {
        sharedStore().settingsTab = *tab;
    }
    StatusController::closePopover();
    NSApplication *app = NSApp;
    if (@available(macOS 14.0, *)) {
        [app activate];
    } else {
        [app activateIgnoringOtherApps:YES];
    }
    [app sendAction:NSSelectorFromString(@"showSettingsWindow:") to:nil from:nil];
}

} // namespace scrimlet::mac
