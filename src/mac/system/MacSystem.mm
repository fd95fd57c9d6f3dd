#import "MacSystem.hpp"

#import "../common/Text.h"
#import "FrontTracker.hpp"
#import "RealStageSystem.hpp"
#import "WindowList.hpp"

#import <Foundation/Foundation.h>

// The process-wide pieces of the system layer, at the shell's edge.

namespace scrimlet::mac {

namespace {

const std::shared_ptr<MacFacilities> &facilities() {
    static const auto shared = std::make_shared<MacFacilities>();
    return shared;
}

WindowList &windowList() {
    static WindowList list(facilities());
    return list;
}

const std::shared_ptr<FrontTracker> &frontTracker() {
    static const auto tracker = std::make_shared<FrontTracker>(facilities());
    return tracker;
}

// The stage system the store made, while it lives, for the Shortcuts listing it caches.
std::weak_ptr<RealStageSystem> &madeSystem() {
    static std::weak_ptr<RealStageSystem> made;
    return made;
}

} // namespace

std::shared_ptr<StageSystem> makeRealStageSystem(RealSystemSetup setup) {
    facilities()->connectScenery(std::move(setup.scenery));
    RealStageSystem::Options options;
    options.selfBundleID = toString(NSBundle.mainBundle.bundleIdentifier);
    options.isTestRun = std::move(setup.isTestRun);
    options.micLevelsFile = std::move(setup.micLevelsFile);
    options.frontTracker = frontTracker();
    if (const char *folder =
            NSFileManager.defaultManager.temporaryDirectory.fileSystemRepresentation) {
        options.shortcuts.temporaryFolder = folder;
    }
    auto system = std::make_shared<RealStageSystem>(facilities(), std::move(options));
    if (setup.settings) {
        system->settings = std::move(setup.settings);
    }
    madeSystem() = system;
    return system;
}

CaptureSnapshot windowSnapshot(const DetectionOptions &options) {
    return windowList().snapshot(options);
}

std::optional<std::int64_t> frontWindowNumber(std::int32_t pid) {
    return windowList().frontWindowNumber(pid);
}

void startFrontTracker(std::function<void()> onChange) {
    frontTracker()->onChange = std::move(onChange);
    frontTracker()->start();
}

std::optional<std::int32_t> frontAppPID() { return frontTracker()->lastOtherPID(); }

void refreshShortcuts() {
    if (const auto system = madeSystem().lock()) {
        system->shortcuts().installed(true);
    }
}

} // namespace scrimlet::mac
