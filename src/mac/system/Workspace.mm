#import "MacFacilities.hpp"

#import "../common/Text.h"

#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>

// The running applications as the workspace knows them, their activations, opening a file,
// and whether the user trusts this program with Accessibility.

namespace scrimlet::mac {

namespace {

RunningApp record(NSRunningApplication *app) {
    RunningApp out;
    out.pid = app.processIdentifier;
    if (NSString *bundleID = app.bundleIdentifier) {
        out.bundleID = toString(bundleID);
    }
    if (NSString *name = app.localizedName) {
        out.localizedName = toString(name);
    }
    out.policy = RunningApp::Policy::prohibited;
    switch (app.activationPolicy) {
    case NSApplicationActivationPolicyRegular:
        out.policy = RunningApp::Policy::regular;
        break;
    case NSApplicationActivationPolicyAccessory:
        out.policy = RunningApp::Policy::accessory;
        break;
    case NSApplicationActivationPolicyProhibited:
        break;
    }
    out.isHidden = app.hidden;
    out.isTerminated = app.terminated;
    return out;
}

} // namespace

std::vector<RunningApp> MacFacilities::runningApplications() {
    std::vector<RunningApp> out;
    for (NSRunningApplication *app in NSWorkspace.sharedWorkspace.runningApplications) {
        out.push_back(record(app));
    }
    return out;
}

std::optional<RunningApp> MacFacilities::runningApplication(std::int32_t pid) {
    NSRunningApplication *app = [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
    if (!app) {
        return std::nullopt;
    }
    return record(app);
}

std::optional<RunningApp> MacFacilities::frontmostApplication() {
    NSRunningApplication *app = NSWorkspace.sharedWorkspace.frontmostApplication;
    if (!app) {
        return std::nullopt;
    }
    return record(app);
}

bool MacFacilities::setApplicationHidden(std::int32_t pid, bool hidden) {
    NSRunningApplication *app = [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
    if (!app) {
        return false;
    }
    return hidden ? [app hide] : [app unhide];
}

void MacFacilities::observeActivations(std::function<void(std::optional<RunningApp>)> handler) {
    auto shared =
        std::make_shared<std::function<void(std::optional<RunningApp>)>>(std::move(handler));
    NSNotificationCenter *center = NSWorkspace.sharedWorkspace.notificationCenter;
    id token = [center addObserverForName:NSWorkspaceDidActivateApplicationNotification
                                   object:nil
                                    queue:NSOperationQueue.mainQueue
                               usingBlock:^(NSNotification *note) {
                                   id app = note.userInfo[NSWorkspaceApplicationKey];
                                   std::optional<RunningApp> named;
                                   if ([app isKindOfClass:NSRunningApplication.class]) {
                                       named = record(app);
                                   }
                                   (*shared)(named);
                               }];
    // The registration ends with its holder.
    observers_.emplace_back((__bridge_retained void *)token, [](void *held) {
        id registration = (__bridge_transfer id)held;
        [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:registration];
    });
}

std::int32_t MacFacilities::processID() { return NSProcessInfo.processInfo.processIdentifier; }

bool MacFacilities::open(const std::string &path) {
    return [NSWorkspace.sharedWorkspace openURL:[NSURL fileURLWithPath:toNSString(path)]];
}

bool MacFacilities::accessibilityTrusted() { return AXIsProcessTrusted(); }

} // namespace scrimlet::mac
