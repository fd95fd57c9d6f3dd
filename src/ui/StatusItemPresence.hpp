#pragma once

// Whether the status item really made it into the menu bar. Since macOS 26 the user can
// switch any app's item off in System Settings › Menu Bar; the app is told nothing, its item
// keeps reporting itself visible, and Scrimlet, with no Dock icon and no window, has no
// other door. What the app can see is where the item's window is: an item the system let in
// sits in the menu bar band at the top of a display, one it keeps out stays where it was
// made, away from every band. When that happens, a notice names the ways still open (the
// stage hotkey and the "scrimlet://" link) once, and again only after the item was seen back
// in place. Main thread only.

#include "Geometry.hpp"
#include "Hotkey.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {
class StageStore;
}

namespace scrimlet::StatusItemPresence {

enum class Placement {
    /// In the menu bar band of a display.
    placed,
    /// Switched off, removed, or kept out of every band.
    notPlaced,
    /// Nothing to judge by yet: no window, or no display.
    unknown,
};

/// The first macOS with a switch per app in System Settings › Menu Bar.
inline constexpr int firstSystemWithSwitch = 26;
/// The system places a new item a little after it is made; it is judged only this many
/// seconds after it was put in the bar.
inline constexpr double settleSeconds = 5;
/// The key under which the app remembers that it gave the notice for the current absence.
inline constexpr std::string_view noticedKey = "ScrimletHiddenItemNoticed";
/// How far from a display's top edge the item's window may be and still count as in the
/// band: deep enough for a notched bar, and high enough for a bar that hides itself and
/// slides up out of sight.
inline constexpr double bandReach = 60;

/// `visible` is the item's own flag (false once it is removed); `itemWindow` the frame of
/// the item's window and `displays` the frames of the displays, all in global coordinates
/// (top left origin, y downward).
Placement judge(bool visible, std::optional<Rect> itemWindow, const std::vector<Rect>& displays);

struct Decision {
    bool showNotice = false;
    /// What to remember as `noticedKey` from now on.
    bool noticed = false;
    friend bool operator==(const Decision&, const Decision&) = default;
};
/// Before macOS 26 there is no such switch and nothing is shown. An item in place forgets
/// an earlier notice, so that hiding it again is told again; an item out of place is told
/// once, but never while `busy`: the notice waits until nothing is being shown.
Decision decide(int systemMajor, Placement placement, bool noticedBefore, bool busy);

/// Whether a window popping up now would land in front of an audience: a show counts down
/// or runs, or a share or recording is being recognised.
bool isBusy(const StageStore& store);

/// The notice's words, with the stage hotkey when there is one.
struct Notice {
    std::string title;
    std::string message;
    /// The buttons, first the default: open System Settings, open Scrimlet's settings on
    /// the cues page, dismiss.
    std::string openSystemSettings;
    std::string openScrimletSettings;
    std::string dismiss;
};
Notice notice(const std::optional<Hotkey>& stageHotkey);

/// System Settings at its Menu Bar page, as a link the system opens.
inline constexpr std::string_view menuBarSettingsLink =
    "x-apple.systempreferences:com.apple.ControlCenter-Settings.extension";

} // namespace scrimlet::StatusItemPresence
