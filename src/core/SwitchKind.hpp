#pragma once

// The thirteen one-click switches as a vocabulary, and the user's choices for each. What a
// switch does lives in the switch board and the cue sheet.

#include "Hotkey.hpp"

#include <nlohmann/json_fwd.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

/// The switches, in their declared order, which is the order of every list of them.
enum class SwitchKind {
    hideDesktopIcons,
    hideDock,
    hideOtherApps,
    tidyMenuBar,
    backdrop,
    darkMode,
    doNotDisturb,
    keepAwake,
    muteAlerts,
    muteMic,
    spotlight,
    lockKeyboard,
    screenSaver,
};

namespace switch_kind {
inline constexpr std::array<SwitchKind, 13> allCases = {
    SwitchKind::hideDesktopIcons, SwitchKind::hideDock,  SwitchKind::hideOtherApps,
    SwitchKind::tidyMenuBar,      SwitchKind::backdrop,  SwitchKind::darkMode,
    SwitchKind::doNotDisturb,     SwitchKind::keepAwake, SwitchKind::muteAlerts,
    SwitchKind::muteMic,          SwitchKind::spotlight, SwitchKind::lockKeyboard,
    SwitchKind::screenSaver,
};
/// The switches on the dropdown's front until the user pins others.
inline constexpr std::array<SwitchKind, 8> defaultPinned = {
    SwitchKind::hideDesktopIcons, SwitchKind::hideDock,     SwitchKind::hideOtherApps,
    SwitchKind::darkMode,         SwitchKind::doNotDisturb, SwitchKind::keepAwake,
    SwitchKind::muteMic,          SwitchKind::spotlight,
};
} // namespace switch_kind

/// The case name, which is also the switch's `id`.
std::string_view rawValue(SwitchKind kind);
std::optional<SwitchKind> switchKindFromRaw(std::string_view raw);
/// The switch's owner name in the journal: "switch." and the raw value.
std::string owner(SwitchKind kind);
std::string_view title(SwitchKind kind);
/// An SF Symbols name.
std::string_view symbol(SwitchKind kind);
/// The help line.
std::string_view note(SwitchKind kind);
/// True for the screen saver only: it fires and holds no lasting state.
bool isAction(SwitchKind kind);
bool isDefaultPinned(SwitchKind kind);

/// The user's choices for one switch.
struct SwitchPrefs {
    /// Shown on the dropdown's front.
    bool pinned = false;
    /// Turns itself off after this many minutes.
    std::optional<std::int64_t> autoOffMinutes;
    std::optional<Hotkey> hotkey;

    friend bool operator==(const SwitchPrefs&, const SwitchPrefs&) = default;
};

/// Absent optionals are left out.
nlohmann::ordered_json toJson(const SwitchPrefs& prefs);
/// `pinned` is required; the optionals may be missing or null.
SwitchPrefs switchPrefsFromJson(const nlohmann::ordered_json& value);

} // namespace scrimlet
