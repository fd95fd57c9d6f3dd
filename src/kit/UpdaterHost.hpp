#pragma once

#include <functional>

namespace vantrel {

/// Why the "Software Update" window opens, which decides how it comes forward.
enum class WindowReason {
    /// The user asked, from a menu or the window itself: the app comes to the front with the
    /// window as its key window.
    answer,
    /// News the user did not ask for. A menu-bar agent has no Dock icon to badge and is
    /// rarely the active app, so the window is ordered in front of every app's windows on
    /// the current Space, to be seen; but the app is not activated, so the keys the user is
    /// typing stay where they are.
    reminder,
};

/// The app around the updater: its run loop, its windows and its process. The macOS shell
/// implements it with the main queue, a utility-priority queue, timers and NSApplication;
/// tests run every task at once on the calling thread.
class UpdaterHost {
public:
    using Task = std::function<void()>;

    virtual ~UpdaterHost() = default;

    /// Runs `task` on the main thread.
    virtual void runOnMain(Task task) = 0;
    /// Runs `task` away from the main thread, at utility priority.
    virtual void runInBackground(Task task) = 0;
    /// Runs `task` on the main thread once, `seconds` from now.
    virtual void runAfter(double seconds, Task task) = 0;
    /// Runs `task` on the main thread every `seconds`, for the life of the process.
    virtual void runEvery(double seconds, Task task) = 0;
    /// Runs `task` on the main thread when the app is about to terminate.
    virtual void whenTerminating(Task task) = 0;
    /// Asks the app to quit through its normal path.
    virtual void terminate() = 0;

    /// Opens the "Software Update" window, or brings it forward, as `reason` says.
    virtual void showWindow(WindowReason reason) = 0;

    virtual int processId() const = 0;
    /// Seconds since 1970.
    virtual double now() const = 0;
};

} // namespace vantrel
