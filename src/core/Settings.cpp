#include "Settings.hpp"

#include "JsonCoding.hpp"

namespace scrimlet {

using json::Json;

namespace {

std::vector<std::string> stringList(const Json& value) {
    if (!value.is_array()) {
        throw json::DecodeError("expected an array");
    }
    std::vector<std::string> out;
    out.reserve(value.size());
    for (const Json& item : value) {
        out.push_back(json::decodeString(item));
    }
    return out;
}

std::map<std::string, SwitchPrefs> switchMap(const Json& value) {
    if (!value.is_object()) {
        throw json::DecodeError("expected an object");
    }
    std::map<std::string, SwitchPrefs> out;
    for (const auto& [key, item] : value.items()) {
        out.emplace(key, switchPrefsFromJson(item));
    }
    return out;
}

// Reads one field; whatever goes wrong leaves `target` at its default.
template <typename T, typename Decode>
void readField(const Json& object, std::string_view key, T& target, Decode decode) {
    try {
        target = decode(json::field(object, key));
    } catch (const std::exception&) {
        // Missing, of the wrong type or not decodable: the default stands.
    }
}

// Reads an optional field: missing, null or unreadable all mean absent.
template <typename T, typename Decode>
std::optional<T> readOptional(const Json& object, std::string_view key, Decode decode) {
    try {
        if (const Json* item = json::optionalField(object, key)) {
            return decode(*item);
        }
    } catch (const std::exception&) {
        // Unreadable counts as absent, like a missing key.
    }
    return std::nullopt;
}

} // namespace

SwitchPrefs StageSettings::prefs(SwitchKind kind) const {
    if (const auto saved = switches.find(std::string(rawValue(kind))); saved != switches.end()) {
        return saved->second;
    }
    SwitchPrefs defaults;
    defaults.pinned = isDefaultPinned(kind);
    if (kind == SwitchKind::lockKeyboard) {
        defaults.autoOffMinutes = 2;
    }
    return defaults;
}

void StageSettings::setPrefs(SwitchKind kind, SwitchPrefs newPrefs) {
    switches[std::string(rawValue(kind))] = std::move(newPrefs);
}

std::vector<SwitchKind> StageSettings::pinnedSwitches() const {
    std::vector<SwitchKind> out;
    for (const SwitchKind kind : switch_kind::allCases) {
        if (prefs(kind).pinned) {
            out.push_back(kind);
        }
    }
    return out;
}

Json toJson(const StageSettings& settings) {
    Json out = Json::object();
    out["autoStart"] = settings.autoStart;
    out["detection"] = toJson(settings.detection);
    out["plan"] = toJson(settings.plan);
    out["countdown"] = settings.countdown;
    if (settings.timeLimitMinutes) {
        out["timeLimitMinutes"] = *settings.timeLimitMinutes;
    }
    out["showTimerInMenuBar"] = settings.showTimerInMenuBar;
    out["keepVisible"] = settings.keepVisible;
    out["backdropStyle"] = toJson(settings.backdropStyle);
    out["spotlightRadius"] = settings.spotlightRadius;
    out["spotlightDim"] = settings.spotlightDim;
    Json switches = Json::object();
    for (const auto& [key, prefs] : settings.switches) {
        switches[key] = toJson(prefs);
    }
    out["switches"] = std::move(switches);
    if (settings.stageHotkey) {
        out["stageHotkey"] = toJson(*settings.stageHotkey);
    }
    out["focusOnShortcut"] = settings.focusOnShortcut;
    out["focusOffShortcut"] = settings.focusOffShortcut;
    out["launchAtLogin"] = settings.launchAtLogin;
    out["menuBarDivider"] = settings.menuBarDivider;
    return out;
}

StageSettings stageSettingsFromJson(const Json& value) {
    if (!value.is_object()) {
        throw json::DecodeError("settings must be an object");
    }
    StageSettings s;
    readField(value, "autoStart", s.autoStart, json::decodeBool);
    readField(value, "detection", s.detection, detectionOptionsFromJson);
    readField(value, "plan", s.plan, stagePlanFromJson);
    readField(value, "countdown", s.countdown, json::decodeBool);
    s.timeLimitMinutes = readOptional<std::int64_t>(value, "timeLimitMinutes", json::decodeInteger);
    readField(value, "showTimerInMenuBar", s.showTimerInMenuBar, json::decodeBool);
    readField(value, "keepVisible", s.keepVisible, stringList);
    readField(value, "backdropStyle", s.backdropStyle, backdropStyleFromJson);
    readField(value, "spotlightRadius", s.spotlightRadius, json::decodeDouble);
    readField(value, "spotlightDim", s.spotlightDim, json::decodeDouble);
    readField(value, "switches", s.switches, switchMap);
    // Unlike a new record, a file without a stage hotkey has none: the writer leaves a
    // cleared hotkey out, and reading it back must not bring the default back.
    s.stageHotkey = readOptional<Hotkey>(value, "stageHotkey", hotkeyFromJson);
    readField(value, "focusOnShortcut", s.focusOnShortcut, json::decodeString);
    readField(value, "focusOffShortcut", s.focusOffShortcut, json::decodeString);
    readField(value, "launchAtLogin", s.launchAtLogin, json::decodeBool);
    readField(value, "menuBarDivider", s.menuBarDivider, json::decodeBool);
    return s;
}

} // namespace scrimlet
