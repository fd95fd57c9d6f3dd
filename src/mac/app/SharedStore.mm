#import "SharedStore.hpp"

#import "../menubar/MenuBarTidy.hpp"
#import "../menubar/StatusController.hpp"
#import "../scenery/Scenery.hpp"
#import "../system/MacSystem.hpp"
#import "AppPaths.hpp"
#import "Harness.hpp"
#import "MacStagePlatform.hpp"

#import <AppKit/AppKit.h>

namespace scrimlet::mac {

namespace {

std::shared_ptr<StageSystem> makeSystem(std::function<StageSettings()> settings) {
    return makeRealStageSystem({std::move(settings),
                                [] { return Harness::isTestRun(); },
                                AppPaths::support() / "mic-levels.json",
                                {Scenery::isOn, Scenery::set, MenuBarTidy::isInstalled}});
}

} // namespace

StageStore &sharedStore() {
    static const std::shared_ptr<StageStore> store =
        StageStore::makeShared(makeMacStagePlatform(), makeSystem);
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
