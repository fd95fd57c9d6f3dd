#import "MacStagePlatform.hpp"

#import "../common/Text.h"
#import "../menubar/Hotkeys.hpp"
#import "../menubar/MenuBarTidy.hpp"
#import "../menubar/StatusController.hpp"
#import "../scenery/Scenery.hpp"
#import "../system/MacSystem.hpp"
#import "../views/DropdownView.h"
#import "../views/Interface.hpp"
#import "Lifecycle.hpp"
#import "LoginItem.hpp"

#import <AppKit/AppKit.h>

namespace scrimlet::mac {

namespace {

/// The other apps' cue, with the verb ("start", "stop", "toggle"...) as its object.
NSString *const cueNotification = @"app.vantrel.scrimlet.cue";

class MacStagePlatform final : public StagePlatform {
  public:
    ~MacStagePlatform() override {
        stopTimer();
        for (id token in workspaceObservers_) {
            [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:token];
        }
        for (id token in appObservers_) {
            [NSNotificationCenter.defaultCenter removeObserver:token];
        }
        for (id token in distributedObservers_) {
            [NSDistributedNotificationCenter.defaultCenter removeObserver:token];
        }
    }

    void startFrontTracker() override {
        // Whenever another app comes forward, the backdrop moves behind its front window.
        mac::startFrontTracker([] { Scenery::orderBackdropBehindFront(); });
    }

    void installSceneryHooks(SceneryHooks hooks) override {
        Scenery::installHooks(std::move(hooks));
    }

    void setMenuBarDividerInstalled(bool installed) override {
        MenuBarTidy::setInstalled(installed);
    }

    void installStatusItem(StageStore &store) override { StatusController::install(store); }

    std::vector<std::uint32_t> registerHotkeys(std::vector<HotkeyEntry> entries) override {
        return Hotkeys::registerAll(std::move(entries));
    }

    void observeNotifications(NotificationHandlers handlers) override {
        NSOperationQueue *main = NSOperationQueue.mainQueue;
        auto onWake = std::move(handlers.onWake);
        auto onScreensChanged = std::move(handlers.onScreensChanged);
        auto onCue = std::move(handlers.onCue);
        [workspaceObservers_ addObject:[NSWorkspace.sharedWorkspace.notificationCenter
                                           addObserverForName:NSWorkspaceDidWakeNotification
                                                       object:nil
                                                        queue:main
                                                   usingBlock:^(NSNotification *) {
                                                       if (onWake) {
                                                           onWake();
                                                       }
                                                   }]];
        [appObservers_
            addObject:[NSNotificationCenter.defaultCenter
                          addObserverForName:NSApplicationDidChangeScreenParametersNotification
                                      object:nil
                                       queue:main
                                  usingBlock:^(NSNotification *) {
                                      if (onScreensChanged) {
                                          onScreensChanged();
                                      }
                                  }]];
        [distributedObservers_
            addObject:[NSDistributedNotificationCenter.defaultCenter
                          addObserverForName:cueNotification
                                      object:nil
                                       queue:main
                                  usingBlock:^(NSNotification *note) {
                                      if (!onCue) {
                                          return;
                                      }
                                      // A distributed notification's object is a string, if
                                      // the sender gave one.
                                      std::optional<std::string> verb;
                                      if ([note.object isKindOfClass:NSString.class]) {
                                          verb = toString(note.object);
                                      }
                                      onCue(verb);
                                  }]];
    }

    void startTimer(double interval, double tolerance, std::function<void()> fire) override {
        stopTimer();
        auto action = std::make_shared<std::function<void()>>(std::move(fire));
        timer_ = [NSTimer timerWithTimeInterval:interval
                                        repeats:YES
                                          block:^(NSTimer *) {
                                              (*action)();
                                          }];
        timer_.tolerance = tolerance;
        // The common modes keep the main loop beating while one of the app's own menus or
        // the settings window's controls are being tracked.
        [NSRunLoop.mainRunLoop addTimer:timer_ forMode:NSRunLoopCommonModes];
    }

    void stopTimer() override {
        [timer_ invalidate];
        timer_ = nil;
    }

    CaptureSnapshot windowSnapshot(const DetectionOptions &options) override {
        return mac::windowSnapshot(options);
    }

    void screensChanged() override { Scenery::screensChanged(); }
    void showCountdown(int seconds) override { Scenery::showCountdown(seconds); }
    void hideCountdown() override { Scenery::hideCountdown(); }

    void updateStatusItem(StageStore &store) override {
        StatusController::update(store);
        [NSNotificationCenter.defaultCenter postNotificationName:ScrimletStoreDidChangeNotification
                                                          object:nil];
    }

    void closePopover() override { StatusController::closePopover(); }

    void animateCurtain(const std::function<void()> &change) override {
        Interface::animateCurtain(change);
    }

    bool backdropShowing() override { return Scenery::backdropShowing(); }
    void restyleBackdrop() override { Scenery::restyleBackdrop(); }
    void refreshShortcuts() override { mac::refreshShortcuts(); }

    std::optional<std::string> setLoginItem(bool enabled) override {
        return LoginItem::set(enabled);
    }

    std::optional<std::string> mainBundleIdentifier() override {
        NSString *identifier = NSBundle.mainBundle.bundleIdentifier;
        if (!identifier) {
            return std::nullopt;
        }
        return toString(identifier);
    }

    bool runsFromAppBundle() override {
        return Lifecycle::isAppBundlePath(NSBundle.mainBundle.bundlePath.fileSystemRepresentation);
    }

  private:
    NSTimer *timer_ = nil;
    NSMutableArray *workspaceObservers_ = [NSMutableArray array];
    NSMutableArray *appObservers_ = [NSMutableArray array];
    NSMutableArray *distributedObservers_ = [NSMutableArray array];
};

} // namespace

std::shared_ptr<StagePlatform> makeMacStagePlatform() {
    return std::make_shared<MacStagePlatform>();
}

} // namespace scrimlet::mac
