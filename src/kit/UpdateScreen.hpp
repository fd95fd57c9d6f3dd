#pragma once

// What the "Software Update" window and the app's update controls say, decided here so that
// the macOS view only lays it out.

#include "UpdateFeed.hpp"
#include "UpdaterHost.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

class Updater;

enum class UpdateAction {
    /// Closes the window and leaves the phase alone.
    close,
    download,
    /// Opens the feed's web page.
    openDownloadPage,
    installAndRelaunch,
};

struct UpdateButton {
    std::string title;
    UpdateAction action = UpdateAction::close;

    bool operator==(const UpdateButton&) const = default;
};

/// The right-hand side of the window, beside the app's icon.
struct UpdateScreen {
    static constexpr std::string_view windowIdentifier = "update";
    static constexpr std::string_view windowTitle = "Software Update";
    static constexpr double windowWidth = 420;
    static constexpr double iconSize = 64;
    /// The command in the app menu.
    static constexpr std::string_view checkCommandTitle = "Check for Updates…";
    static constexpr std::string_view automaticUpdatesTitle =
        "Download and install updates automatically";
    static std::string automaticUpdatesNote(const std::string& appName);

    std::string title;
    std::string detail;
    /// The feed's release notes, shown as they stand.
    std::optional<std::string> notes;
    /// The fraction of a determinate progress bar, while downloading.
    std::optional<double> progress;
    /// A spinning indicator, while a check the user asked for runs.
    bool spinning = false;
    /// At the trailing edge in this order; the last is the default.
    std::vector<UpdateButton> buttons;

    static UpdateScreen of(const Updater& updater);

    /// The feed's web page, when it is one a browser should open. The feed is not signed, so
    /// an address that would open a file or hand a link to another app is refused.
    static std::optional<std::string> downloadPage(const UpdateFeed& feed);
    /// Whether the window takes the keyboard and brings the app forward, or only comes
    /// to the front of the screen.
    static bool takesFocus(WindowReason reason) { return reason == WindowReason::answer; }

    bool operator==(const UpdateScreen&) const = default;
};

} // namespace vantrel
