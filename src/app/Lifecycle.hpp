#pragma once

// The program's start as rules: which launch steps a run takes, whether this copy is a
// second one that must leave, and whether a link event may reach the store. The macOS app
// delegate walks these answers and carries each step out; it decides nothing itself.

#include "Harness.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

class StageStore;

namespace Lifecycle {

/// What kind of run the environment asks for.
enum class RunKind {
    normal,
    /// "SCRIMLET_SELFTEST" is set: the self check runs and the process exits with its status.
    selfCheck,
    /// "SCRIMLET_SNAPSHOT_DIR" is set: the snapshots are shot.
    snapshots,
    /// "SCRIMLET_DEMO_DIR" is set: the app films itself into that folder.
    demoFilm,
    /// Any other scripted run: the app starts, but never touches the Mac.
    otherTestRun,
};

RunKind runKind(const Harness::Environment& environment);

/// The steps of `applicationDidFinishLaunching`, in their order.
enum class LaunchStep {
    /// Accessory policy, then the self check on the main queue; it ends the process.
    runSelfCheck,
    /// The kit starts: the updater, with the brand colours.
    startKit,
    /// The snapshots; the process ends after them unless told to stay.
    runSnapshots,
    /// The scripted film of the app, in place of the stop of a test run; the process ends
    /// with its outcome.
    runDemoFilm,
    /// Test runs stop here, with the kit started and nothing else.
    stopForTestRun,
    /// A second copy of an installed app quits, and the first keeps its show.
    leaveIfAnotherCopyRuns,
    /// No Dock icon and no menu of its own until the settings window opens.
    becomeAccessory,
    startLive,
    installSignalHandlers,
};

/// The launch steps that run, in order, for this kind of run. A second copy of a normal run
/// walks them all but stops at `leaveIfAnotherCopyRuns`, where it terminates.
std::vector<LaunchStep> launchSteps(RunKind kind);
std::string_view name(LaunchStep step);

/// What the single-instance test knows about this process.
struct Instance {
    /// The main bundle's identifier, if it has one.
    std::optional<std::string> bundleIdentifier;
    /// The main bundle's path.
    std::string bundlePath;
    int processIdentifier = 0;
    /// The processes of every running app with the same bundle identifier, this one included.
    std::vector<int> sameBundleProcesses;
};

/// True when this process must terminate because an older copy of the same app runs. Only
/// a program in an application bundle (an identifier, and a path ending in ".app") takes
/// the test: a build run from a plain folder never quits for another copy.
bool isSecondCopy(const Instance& instance);

/// Whether the bundle at `path` is an installed application, which is what may register a
/// login item and take the single-instance test.
bool isAppBundlePath(std::string_view path);

/// A "scrimlet:" link from the system's URL event: handed to the store, except in a scripted
/// run, which must not be steered from outside (the store is not even asked for then). An
/// empty text does nothing.
void handleURLEvent(const std::string& url, const std::function<StageStore*()>& store,
                    const Harness::Environment& environment);

} // namespace Lifecycle

} // namespace scrimlet
