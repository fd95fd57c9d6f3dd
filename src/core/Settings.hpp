#pragma once

// Everything the user can choose, in one plain value that is copied freely: the show and
// the switch board each hold a copy, and the store hands them a new one on each change.

#include "BackdropStyle.hpp"
#include "CaptureModel.hpp"
#include "Hotkey.hpp"
#include "StagePlan.hpp"
#include "SwitchKind.hpp"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet {

struct StageSettings {
    /// Start a show by itself when a capture is detected.
    bool autoStart = true;
    /// What counts as a capture.
    DetectionOptions detection;
    /// What a show does.
    StagePlan plan;
    /// Count down before a show started by hand.
    bool countdown = true;
    /// End the show after this many minutes; absent means no limit.
    std::optional<std::int64_t> timeLimitMinutes;
    /// Show the running time in the status item.
    bool showTimerInMenuBar = true;
    /// Bundle identifiers never hidden by a show or a switch.
    std::vector<std::string> keepVisible;
    BackdropStyle backdropStyle;
    double spotlightRadius = 110;
    /// How dark the area around the spotlight is.
    double spotlightDim = 0.55;
    /// The user's prefs per switch, under the switch's raw value. Read them through
    /// `prefs`, which supplies each switch's defaults.
    std::map<std::string, SwitchPrefs> switches;
    /// A first run has the default hotkey; a file without one means the user cleared it.
    std::optional<Hotkey> stageHotkey = Hotkey::defaultStage();
    /// Names of the user's two Shortcuts that turn Do Not Disturb on and off.
    std::string focusOnShortcut = "Scrimlet Quiet On";
    std::string focusOffShortcut = "Scrimlet Quiet Off";
    bool launchAtLogin = false;
    /// Show the divider item that the menu bar tidy pushes icons behind.
    bool menuBarDivider = false;

    /// The saved prefs of a switch, or its defaults: pinned when it is one of the default
    /// pinned switches, and a two-minute auto-off for the keyboard lock so that a locked
    /// keyboard always comes back by itself unless the user chose otherwise.
    SwitchPrefs prefs(SwitchKind kind) const;
    /// Saves prefs of the user's own for a switch, replacing any earlier ones.
    void setPrefs(SwitchKind kind, SwitchPrefs prefs);
    /// The pinned switches, in declared order.
    std::vector<SwitchKind> pinnedSwitches() const;

    friend bool operator==(const StageSettings&, const StageSettings&) = default;
};

/// Every field under its name; absent optionals are left out, never written as null.
nlohmann::ordered_json toJson(const StageSettings& settings);
/// Forgiving: each field is read on its own, and one that is missing or does not decode
/// takes its default without touching the others. `detection`, `plan`, `backdropStyle` and
/// `switches` fall back as a whole. A missing `stageHotkey` reads as no hotkey. Throws
/// `json::DecodeError` only when `value` is not an object.
StageSettings stageSettingsFromJson(const nlohmann::ordered_json& value);

} // namespace scrimlet
