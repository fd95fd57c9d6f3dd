#pragma once

// What the store needs from the platform in live mode, as one interface handed to it at
// creation: the window list, the scenery, the countdown panel, the menu bar divider, the
// status item and its dropdown, the front-app tracker, global hotkeys, the Shortcuts
// listing, the login item, system notifications and the one-second timer. The macOS shell
// implements it; demo runs pass none, tests a recording fake. Main thread only: every
// callback handed in here must be called on the main thread.

#include "BackdropStyle.hpp"
#include "CaptureModel.hpp"
#include "Hotkey.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace scrimlet {

class StageStore;

/// What the scenery asks the store for while it draws.
struct SceneryHooks {
    std::function<BackdropStyle()> backdropStyle;
    /// The spotlight's radius and dim.
    std::function<std::pair<double, double>()> spotlight;
    /// The user clicked "Done" on the keyboard lock.
    std::function<void()> onUnlockRequest;
};

/// One global hotkey to register: its identifier, its keys, and what it does.
struct HotkeyEntry {
    std::uint32_t identifier = 0;
    Hotkey hotkey;
    std::function<void()> action;
};

/// The reactions to the system's notifications.
struct NotificationHandlers {
    /// The Mac woke from sleep.
    std::function<void()> onWake;
    /// Displays were added, removed or rearranged.
    std::function<void()> onScreensChanged;
    /// Another app sent the cue notification; its object as text, if it had one.
    std::function<void(std::optional<std::string> verb)> onCue;
};

class StagePlatform {
public:
    virtual ~StagePlatform() = default;

    // Start-up, in the order the store calls them.
    /// Tracks the frontmost app and keeps the backdrop just behind it.
    virtual void startFrontTracker() = 0;
    virtual void installSceneryHooks(SceneryHooks hooks) = 0;
    virtual void setMenuBarDividerInstalled(bool installed) = 0;
    virtual void installStatusItem(StageStore& store) = 0;
    /// Replaces every registered hotkey; answers the identifiers that could not be had.
    virtual std::vector<std::uint32_t> registerHotkeys(std::vector<HotkeyEntry> entries) = 0;
    virtual void observeNotifications(NotificationHandlers handlers) = 0;
    /// A repeating timer on the main run loop.
    virtual void startTimer(double interval, double tolerance, std::function<void()> fire) = 0;
    virtual void stopTimer() = 0;

    // The main loop.
    /// One read-only look at the window list, the running apps and the devices.
    virtual CaptureSnapshot windowSnapshot(const DetectionOptions& options) = 0;
    virtual void screensChanged() = 0;
    virtual void showCountdown(int seconds) = 0;
    /// Orders the countdown panel out, if there is one.
    virtual void hideCountdown() = 0;
    virtual void updateStatusItem(StageStore& store) = 0;
    /// Closes the dropdown, if it is open.
    virtual void closePopover() = 0;
    /// Runs `change` inside the curtain animation, or inside a plain fade when the user
    /// asked the system to reduce motion.
    virtual void animateCurtain(const std::function<void()>& change) = 0;

    // Reactions to settings.
    /// Whether backdrop panels are on screen.
    virtual bool backdropShowing() = 0;
    /// Hides the backdrop panels and shows them again in the style the hooks give.
    virtual void restyleBackdrop() = 0;
    /// Lists the user's Shortcuts again.
    virtual void refreshShortcuts() = 0;
    /// Registers or unregisters the app as a login item; the error's text on failure.
    virtual std::optional<std::string> setLoginItem(bool enabled) = 0;

    // Facts about the running program.
    virtual std::optional<std::string> mainBundleIdentifier() = 0;
    /// Whether the program runs from an application bundle (its path ends in ".app").
    virtual bool runsFromAppBundle() = 0;
};

} // namespace scrimlet
