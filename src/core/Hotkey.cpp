#include "Hotkey.hpp"

#include "JsonCoding.hpp"

namespace scrimlet {

using json::Json;

Hotkey Hotkey::defaultStage() {
    return Hotkey{1, control | option | cmd, "S"};
}

std::string Hotkey::display() const {
    std::string out;
    if (modifiers & control) {
        out += "⌃";
    }
    if (modifiers & option) {
        out += "⌥";
    }
    if (modifiers & shift) {
        out += "⇧";
    }
    if (modifiers & cmd) {
        out += "⌘";
    }
    return out + key;
}

bool Hotkey::isUsable() const {
    return (modifiers & (cmd | option | control)) != 0 || key.starts_with('F');
}

Json toJson(const Hotkey& hotkey) {
    Json out = Json::object();
    out["keyCode"] = hotkey.keyCode;
    out["modifiers"] = hotkey.modifiers;
    out["key"] = hotkey.key;
    return out;
}

Hotkey hotkeyFromJson(const Json& value) {
    Hotkey hotkey;
    hotkey.keyCode = json::decodeUInt32(json::field(value, "keyCode"));
    hotkey.modifiers = json::decodeUInt32(json::field(value, "modifiers"));
    hotkey.key = json::decodeString(json::field(value, "key"));
    return hotkey;
}

} // namespace scrimlet
