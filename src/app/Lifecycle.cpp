#include "Lifecycle.hpp"

#include "StageStore.hpp"

#include <algorithm>

namespace scrimlet::Lifecycle {

RunKind runKind(const Harness::Environment& environment) {
    if (Harness::selfTestDir(environment)) {
        return RunKind::selfCheck;
    }
    if (Harness::snapshotDir(environment)) {
        return RunKind::snapshots;
    }
    if (Harness::demoDir(environment)) {
        return RunKind::demoFilm;
    }
    return Harness::isTestRun(environment) ? RunKind::otherTestRun : RunKind::normal;
}

std::vector<LaunchStep> launchSteps(RunKind kind) {
    switch (kind) {
    case RunKind::selfCheck:
        return {LaunchStep::runSelfCheck};
    case RunKind::snapshots:
        return {LaunchStep::startKit, LaunchStep::runSnapshots};
    case RunKind::demoFilm:
        return {LaunchStep::startKit, LaunchStep::runDemoFilm};
    case RunKind::otherTestRun:
        return {LaunchStep::startKit, LaunchStep::stopForTestRun};
    case RunKind::normal:
        break;
    }
    return {LaunchStep::startKit, LaunchStep::leaveIfAnotherCopyRuns, LaunchStep::becomeAccessory,
            LaunchStep::startLive, LaunchStep::installSignalHandlers};
}

std::string_view name(LaunchStep step) {
    switch (step) {
    case LaunchStep::runSelfCheck:
        return "run the self check";
    case LaunchStep::startKit:
        return "start the kit";
    case LaunchStep::runSnapshots:
        return "shoot the snapshots";
    case LaunchStep::runDemoFilm:
        return "film the demo";
    case LaunchStep::stopForTestRun:
        return "stop: test run";
    case LaunchStep::leaveIfAnotherCopyRuns:
        return "leave if another copy runs";
    case LaunchStep::becomeAccessory:
        return "become a menu-bar agent";
    case LaunchStep::startLive:
        return "start live";
    case LaunchStep::installSignalHandlers:
        return "install the signal handlers";
    }
    return "";
}

bool isAppBundlePath(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') {
        path.remove_suffix(1);
    }
    constexpr std::string_view suffix = ".app";
    return path.size() > suffix.size() && path.substr(path.size() - suffix.size()) == suffix;
}

bool isSecondCopy(const Instance& instance) {
    if (!instance.bundleIdentifier || instance.bundleIdentifier->empty() ||
        !isAppBundlePath(instance.bundlePath)) {
        return false;
    }
    return std::any_of(instance.sameBundleProcesses.begin(), instance.sameBundleProcesses.end(),
                       [&](int pid) { return pid != instance.processIdentifier; });
}

void handleURLEvent(const std::string& url, const std::function<StageStore*()>& store,
                    const Harness::Environment& environment) {
    if (url.empty() || Harness::isTestRun(environment)) {
        return;
    }
    if (StageStore* target = store ? store() : nullptr) {
        target->handle(url);
    }
}

} // namespace scrimlet::Lifecycle
