#include "SwitchKind.hpp"

#include "JsonCoding.hpp"

#include <algorithm>

namespace scrimlet {

using json::Json;

namespace {

struct SwitchRow {
    std::string_view raw;
    std::string_view title;
    std::string_view symbol;
    std::string_view note;
};

constexpr std::array<SwitchRow, 13> switchRows = {{
    {"hideDesktopIcons", "Hide Desktop Icons", "menubar.dock.rectangle",
     "Covers the icons with your wallpaper. Finder isn't touched."},
    {"hideDock", "Hide Dock", "dock.rectangle", "Turns on Dock hiding via System Events."},
    {"hideOtherApps", "Hide Other Apps", "eye.slash", "Hides every app except the one in front."},
    {"tidyMenuBar", "Tidy Menu Bar", "menubar.rectangle",
     "Pushes the icons left of Scrimlet's divider out of sight."},
    {"backdrop", "Backdrop", "rectangle.inset.filled", "Fills the space behind the front window."},
    {"darkMode", "Dark Mode", "circle.lefthalf.filled",
     "Switches the whole Mac to Dark Mode via System Events."},
    {"doNotDisturb", "Do Not Disturb", "moon.fill", "Runs your two Scrimlet shortcuts."},
    {"keepAwake", "Keep Awake", "cup.and.saucer.fill", "Stops idle sleep, screen included."},
    {"muteAlerts", "Mute Alert Sounds", "bell.slash.fill", "Sets the alert volume to zero."},
    {"muteMic", "Mute Microphone", "mic.slash.fill", "Mutes the current input device."},
    {"spotlight", "Pointer Spotlight", "smallcircle.filled.circle",
     "Dims everything except a circle around the pointer."},
    {"lockKeyboard", "Lock Keyboard", "keyboard",
     "Swallows every key so you can wipe it. Click Done to unlock."},
    {"screenSaver", "Screen Saver Now", "sparkles.tv", "Starts the screen saver right away."},
}};

const SwitchRow& row(SwitchKind kind) {
    return switchRows[static_cast<size_t>(kind)];
}

} // namespace

std::string_view rawValue(SwitchKind kind) {
    return row(kind).raw;
}

std::optional<SwitchKind> switchKindFromRaw(std::string_view raw) {
    for (const SwitchKind kind : switch_kind::allCases) {
        if (rawValue(kind) == raw) {
            return kind;
        }
    }
    return std::nullopt;
}

std::string owner(SwitchKind kind) {
    return "switch." + std::string(rawValue(kind));
}

std::string_view title(SwitchKind kind) {
    return row(kind).title;
}

std::string_view symbol(SwitchKind kind) {
    return row(kind).symbol;
}

std::string_view note(SwitchKind kind) {
    return row(kind).note;
}

bool isAction(SwitchKind kind) {
    return kind == SwitchKind::screenSaver;
}

bool isDefaultPinned(SwitchKind kind) {
    return std::find(switch_kind::defaultPinned.begin(), switch_kind::defaultPinned.end(), kind) !=
           switch_kind::defaultPinned.end();
}

Json toJson(const SwitchPrefs& prefs) {
    Json out = Json::object();
    out["pinned"] = prefs.pinned;
    if (prefs.autoOffMinutes) {
        out["autoOffMinutes"] = *prefs.autoOffMinutes;
    }
    if (prefs.hotkey) {
        out["hotkey"] = toJson(*prefs.hotkey);
    }
    return out;
}

SwitchPrefs switchPrefsFromJson(const Json& value) {
    SwitchPrefs prefs;
    prefs.pinned = json::decodeBool(json::field(value, "pinned"));
    if (const Json* minutes = json::optionalField(value, "autoOffMinutes")) {
        prefs.autoOffMinutes = json::decodeInteger(*minutes);
    }
    if (const Json* hotkey = json::optionalField(value, "hotkey")) {
        prefs.hotkey = hotkeyFromJson(*hotkey);
    }
    return prefs;
}

} // namespace scrimlet
