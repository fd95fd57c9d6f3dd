#include "Effects.hpp"

#include "JsonCoding.hpp"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace scrimlet {

using json::Json;

namespace {

struct KindRow {
    EffectKind kind;
    std::string_view raw;
    std::string_view title;
};

constexpr std::array<KindRow, 13> kindRows = {{
    {EffectKind::dockAutohide, "dockAutohide", "Hide the Dock"},
    {EffectKind::darkMode, "darkMode", "Dark Mode"},
    {EffectKind::alertVolume, "alertVolume", "Mute alert sounds"},
    {EffectKind::micMute, "micMute", "Mute the microphone"},
    {EffectKind::doNotDisturb, "doNotDisturb", "Do Not Disturb"},
    {EffectKind::appHidden, "appHidden", "Hide app"},
    {EffectKind::displayMode, "displayMode", "Recording resolution"},
    {EffectKind::keepAwake, "keepAwake", "Keep the Mac awake"},
    {EffectKind::desktopIcons, "desktopIcons", "Hide desktop icons"},
    {EffectKind::backdrop, "backdrop", "Backdrop"},
    {EffectKind::menuBarTidy, "menuBarTidy", "Tidy the menu bar"},
    {EffectKind::spotlight, "spotlight", "Pointer Spotlight"},
    {EffectKind::keyboardLock, "keyboardLock", "Lock the keyboard"},
}};

const KindRow& row(EffectKind kind) {
    return kindRows[static_cast<size_t>(kind)];
}

// A whole 32-bit signed decimal number with an optional sign; nothing else.
std::optional<std::int32_t> parsePid(std::string_view text) {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
            return std::nullopt;
        }
    }
    if (text.empty()) {
        return std::nullopt;
    }
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

} // namespace

std::string_view rawValue(EffectKind kind) {
    return row(kind).raw;
}

std::optional<EffectKind> effectKindFromRaw(std::string_view raw) {
    for (const auto& r : kindRows) {
        if (r.raw == raw) {
            return r.kind;
        }
    }
    return std::nullopt;
}

std::string_view title(EffectKind kind) {
    return row(kind).title;
}

bool outlivesApp(EffectKind kind) {
    return static_cast<int>(kind) < static_cast<int>(EffectKind::keepAwake);
}

AppTarget::AppTarget(std::string bundleID_, std::int32_t pid_, std::string name_)
    : bundleID(std::move(bundleID_))
    , pid(pid_)
    , name(std::move(name_)) {}

AppTarget::AppTarget(const AppInfo& info)
    : AppTarget(info.bundleID, info.pid, info.name) {}

std::optional<AppTarget> AppTarget::parse(std::string_view target) {
    const size_t first = target.find('#');
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view bundleID = target.substr(0, first);
    const std::string_view rest = target.substr(first + 1);
    const size_t second = rest.find('#');
    const auto pid = parsePid(rest.substr(0, second));
    if (!pid) {
        return std::nullopt;
    }
    // The name is everything after the second "#", so that a name may itself hold "#".
    const std::string_view name =
        second == std::string_view::npos ? bundleID : rest.substr(second + 1);
    return AppTarget(std::string(bundleID), *pid, std::string(name));
}

std::string AppTarget::encoded() const {
    return bundleID + "#" + std::to_string(pid) + "#" + name;
}

EffectKey::EffectKey(EffectKind kind_, std::string target_)
    : kind(kind_)
    , target(std::move(target_)) {}

EffectKey EffectKey::app(const AppInfo& info) {
    return EffectKey(EffectKind::appHidden, AppTarget(info).encoded());
}

std::string EffectKey::description() const {
    std::string out(rawValue(kind));
    if (!target.empty()) {
        out += "[" + target + "]";
    }
    return out;
}

std::string EffectKey::title() const {
    switch (kind) {
    case EffectKind::appHidden: {
        const auto app = AppTarget::parse(target);
        return "Hide " + (app ? app->name : target);
    }
    case EffectKind::displayMode:
        return "Resolution · display " + target;
    default:
        return std::string(scrimlet::title(kind));
    }
}

std::string ResolutionPreset::id() const {
    return std::to_string(width) + "x" + std::to_string(height);
}

std::string ResolutionPreset::label() const {
    return std::to_string(width) + " × " + std::to_string(height);
}

const std::vector<ResolutionPreset>& ResolutionPreset::common() {
    static const std::vector<ResolutionPreset> presets = {
        {1280, 720}, {1440, 900}, {1920, 1080}, {2560, 1440}};
    return presets;
}

std::optional<bool> JournalValue::boolValue() const {
    if (const auto* b = std::get_if<bool>(&storage_)) {
        return *b;
    }
    return std::nullopt;
}

std::optional<double> JournalValue::numberValue() const {
    if (const auto* d = std::get_if<double>(&storage_)) {
        return *d;
    }
    return std::nullopt;
}

std::optional<std::string> JournalValue::textValue() const {
    if (const auto* s = std::get_if<std::string>(&storage_)) {
        return *s;
    }
    return std::nullopt;
}

std::string JournalValue::description() const {
    if (const auto* b = std::get_if<bool>(&storage_)) {
        return *b ? "on" : "off";
    }
    if (const auto* d = std::get_if<double>(&storage_)) {
        char buffer[64];
        if (std::isfinite(*d) && std::trunc(*d) == *d && std::fabs(*d) < 1e18) {
            std::snprintf(buffer, sizeof buffer, "%lld", static_cast<long long>(*d));
        } else {
            std::snprintf(buffer, sizeof buffer, "%.2f", *d);
        }
        return buffer;
    }
    return std::get<std::string>(storage_);
}

bool JournalValue::matches(const std::optional<JournalValue>& other) const {
    if (!other || storage_.index() != other->storage_.index()) {
        return false;
    }
    if (const auto* d = std::get_if<double>(&storage_)) {
        return std::fabs(*d - std::get<double>(other->storage_)) < 0.011;
    }
    return storage_ == other->storage_;
}

Json toJson(const EffectKey& key) {
    Json out = Json::object();
    out["kind"] = std::string(rawValue(key.kind));
    out["target"] = key.target;
    return out;
}

EffectKey effectKeyFromJson(const Json& value) {
    const auto kind = effectKindFromRaw(json::decodeString(json::field(value, "kind")));
    if (!kind) {
        throw json::DecodeError("unknown effect kind");
    }
    return EffectKey(*kind, json::decodeString(json::field(value, "target")));
}

Json toJson(const JournalValue& value) {
    if (const auto b = value.boolValue()) {
        return json::encodeCase("bool", *b);
    }
    if (const auto d = value.numberValue()) {
        return json::encodeCase("number", *d);
    }
    return json::encodeCase("text", *value.textValue());
}

JournalValue journalValueFromJson(const Json& value) {
    const auto [name, object] = json::decodeCase(value);
    const Json& payload = json::casePayload(*object);
    if (name == "bool") {
        return JournalValue::boolean(json::decodeBool(payload));
    }
    if (name == "number") {
        return JournalValue::number(json::decodeDouble(payload));
    }
    if (name == "text") {
        return JournalValue::text(json::decodeString(payload));
    }
    throw json::DecodeError("unknown journal value case");
}

Json toJson(const AppInfo& info) {
    Json out = Json::object();
    out["bundleID"] = info.bundleID;
    out["name"] = info.name;
    out["pid"] = info.pid;
    out["isHidden"] = info.isHidden;
    out["isRegular"] = info.isRegular;
    return out;
}

AppInfo appInfoFromJson(const Json& value) {
    AppInfo info;
    info.bundleID = json::decodeString(json::field(value, "bundleID"));
    info.name = json::decodeString(json::field(value, "name"));
    info.pid = json::decodeInt32(json::field(value, "pid"));
    info.isHidden = json::decodeBool(json::field(value, "isHidden"));
    info.isRegular = json::decodeBool(json::field(value, "isRegular"));
    return info;
}

Json toJson(const ResolutionPreset& preset) {
    Json out = Json::object();
    out["width"] = preset.width;
    out["height"] = preset.height;
    return out;
}

ResolutionPreset resolutionPresetFromJson(const Json& value) {
    return ResolutionPreset{json::decodeInteger(json::field(value, "width")),
                            json::decodeInteger(json::field(value, "height"))};
}

} // namespace scrimlet
