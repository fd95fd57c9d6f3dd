#import "AppDelegate.h"

#import "../common/Text.h"
#import "../kit/DemoFilmRun.hpp"
#import "../kit/Snapshotter.hpp"
#import "../kit/Vantrel.hpp"
#import "../views/Interface.hpp"
#import "Lifecycle.hpp"
#import "MacSelfTestShell.hpp"
#import "MainMenu.h"
#import "SelfTest.hpp"
#import "SharedStore.hpp"
#import "Theme.hpp"

#import <csignal>

using scrimlet::Lifecycle::LaunchStep;

@interface AppDelegate ()
@property(nonatomic) ScrimletMainMenu *mainMenu;
@end

@implementation AppDelegate

- (instancetype)init {
    if ((self = [super init])) {
        _signalSources = [NSMutableArray array];
    }
    return self;
}

- (void)applicationWillFinishLaunching:(NSNotification *)notification {
    // Registered before any event can arrive: a link may be what launched the app.
    [NSAppleEventManager.sharedAppleEventManager setEventHandler:self
                                                     andSelector:@selector(handleURL:reply:)
                                                   forEventClass:kInternetEventClass
                                                      andEventID:kAEGetURL];
}

- (void)applicationDidFinishLaunching:(NSNotification *)notification {
    const auto &environment = scrimlet::Harness::env();
    for (const LaunchStep step :
         scrimlet::Lifecycle::launchSteps(scrimlet::Lifecycle::runKind(environment))) {
        if (![self perform:step]) {
            return;
        }
    }
}

/// Carries out one launch step; answers whether the next one may run.
- (BOOL)perform:(LaunchStep)step {
    NSApplication *app = NSApp;
    switch (step) {
    case LaunchStep::runSelfCheck: {
        app.activationPolicy = NSApplicationActivationPolicyAccessory;
        const std::string dir = scrimlet::Harness::selfTestDir().value_or("");
        dispatch_async(dispatch_get_main_queue(), ^{
            scrimlet::mac::MacSelfTestShell shell;
            const auto result = scrimlet::SelfTest::run(dir, &shell);
            fputs(result.report.c_str(), stdout);
            fflush(stdout);
            exit(result.exitStatus);
        });
        return NO;
    }
    case LaunchStep::startKit:
        scrimlet::mac::Vantrel::start(scrimlet::Theme::brandVelvet, scrimlet::Theme::brandLight);
        return YES;
    case LaunchStep::runSnapshots:
        scrimlet::mac::Snapshotter::run(scrimlet::Harness::snapshotDir().value_or(""));
        return NO;
    case LaunchStep::runDemoFilm:
        scrimlet::mac::DemoFilmRun::run(scrimlet::Harness::demoDir().value_or(""));
        return NO;
    case LaunchStep::stopForTestRun:
        return NO;
    case LaunchStep::leaveIfAnotherCopyRuns:
        if (scrimlet::Lifecycle::isSecondCopy([self instance])) {
            [app terminate:nil];
            return NO;
        }
        return YES;
    case LaunchStep::becomeAccessory:
        app.activationPolicy = NSApplicationActivationPolicyAccessory;
        return YES;
    case LaunchStep::startLive:
        scrimlet::mac::sharedStore().startLive();
        self.mainMenu = [[ScrimletMainMenu alloc] init];
        [self.mainMenu install];
        return YES;
    case LaunchStep::installSignalHandlers:
        [self installSignalHandlers];
        return YES;
    }
    return YES;
}

/// What the single-instance test needs to know about this process.
- (scrimlet::Lifecycle::Instance)instance {
    NSBundle *bundle = NSBundle.mainBundle;
    scrimlet::Lifecycle::Instance instance;
    instance.bundlePath = bundle.bundlePath.fileSystemRepresentation;
    instance.processIdentifier = NSProcessInfo.processInfo.processIdentifier;
    if (NSString *identifier = bundle.bundleIdentifier) {
        instance.bundleIdentifier = scrimlet::mac::toString(identifier);
        for (NSRunningApplication *running in
             [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
            instance.sameBundleProcesses.push_back(running.processIdentifier);
        }
    }
    return instance;
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication *)sender {
    return NO;
}

- (void)applicationWillTerminate:(NSNotification *)notification {
    if (scrimlet::Lifecycle::runKind(scrimlet::Harness::env()) ==
        scrimlet::Lifecycle::RunKind::normal) {
        scrimlet::mac::sharedStore().shutdown();
    }
}

#pragma mark - Links

- (void)handleURL:(NSAppleEventDescriptor *)event reply:(NSAppleEventDescriptor *)reply {
    NSString *text = [event paramDescriptorForKeyword:keyDirectObject].stringValue;
    if (!text || ![NSURL URLWithString:text]) {
        return;
    }
    const std::string url = scrimlet::mac::toString(text);
    dispatch_async(dispatch_get_main_queue(), ^{
        scrimlet::Lifecycle::handleURLEvent(
            url, [] { return &scrimlet::mac::sharedStore(); }, scrimlet::Harness::env());
    });
}

#pragma mark - Signals

/// SIGTERM, SIGINT and SIGHUP put the Mac back like a quit does: a logout, a kill or a
/// Ctrl-C never leaves a show's changes behind. Dispatch sources, unlike signal handlers,
/// may run any code, on the main queue.
- (void)installSignalHandlers {
    for (const int sig : {SIGTERM, SIGINT, SIGHUP}) {
        signal(sig, SIG_IGN);
        dispatch_source_t source = dispatch_source_create(
            DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<uintptr_t>(sig), 0, dispatch_get_main_queue());
        dispatch_source_set_event_handler(source, ^{
            scrimlet::mac::sharedStore().shutdown();
            exit(0);
        });
        dispatch_resume(source);
        [self.signalSources addObject:source];
    }
}

#pragma mark - Settings

/// The end of the responder chain for "showSettingsWindow:", from the menu and from
/// `openSettings`.
- (void)showSettingsWindow:(id)sender {
    scrimlet::mac::Interface::showSettingsWindow(scrimlet::mac::sharedStore());
}

@end
