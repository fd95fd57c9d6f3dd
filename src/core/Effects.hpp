#pragma once

// The vocabulary of what can be changed on the Mac: an effect named by an `EffectKey`, and
// the values it can take. Plain values: copies are independent, equality is by value.

#include <nlohmann/json_fwd.hpp>

#include <array>
#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace scrimlet {

/// The thirteen reversible effects, in their declared order.
enum class EffectKind {
    dockAutohide,
    darkMode,
    alertVolume,
    micMute,
    doNotDisturb,
    appHidden,
    displayMode,
    keepAwake,
    desktopIcons,
    backdrop,
    menuBarTidy,
    spotlight,
    keyboardLock,
};

namespace effect_kind {
inline constexpr std::array<EffectKind, 13> allCases = {
    EffectKind::dockAutohide, EffectKind::darkMode,  EffectKind::alertVolume, EffectKind::micMute,
    EffectKind::doNotDisturb, EffectKind::appHidden, EffectKind::displayMode, EffectKind::keepAwake,
    EffectKind::desktopIcons, EffectKind::backdrop,  EffectKind::menuBarTidy, EffectKind::spotlight,
    EffectKind::keyboardLock,
};
} // namespace effect_kind

std::string_view rawValue(EffectKind kind);
std::optional<EffectKind> effectKindFromRaw(std::string_view raw);
/// The text shown to the user ("Hide the Dock").
std::string_view title(EffectKind kind);
/// Whether the change stays on the Mac after the process has died, so that it must be
/// healed from the journal at the next launch. The last six kinds die with the process.
bool outlivesApp(EffectKind kind);

/// One running app as the stage system reports it.
struct AppInfo {
    std::string bundleID;
    std::string name;
    std::int32_t pid = 0;
    bool isHidden = false;
    bool isRegular = true;

    friend bool operator==(const AppInfo&, const AppInfo&) = default;
    friend auto operator<=>(const AppInfo&, const AppInfo&) = default;
};

/// The identity of one running app, packed into an `EffectKey` target as
/// bundle ID, "#", pid, "#", name.
struct AppTarget {
    std::string bundleID;
    std::int32_t pid = 0;
    std::string name;

    AppTarget() = default;
    AppTarget(std::string bundleID, std::int32_t pid, std::string name);
    explicit AppTarget(const AppInfo& info);
    /// Forgiving parse of a target string; nothing when it is not an app target.
    static std::optional<AppTarget> parse(std::string_view target);
    std::string encoded() const;

    friend bool operator==(const AppTarget&, const AppTarget&) = default;
    friend auto operator<=>(const AppTarget&, const AppTarget&) = default;
};

/// One effect on one target. The target is empty for effects that exist once on the Mac,
/// an `AppTarget` text for `appHidden`, a display id in decimal for `displayMode`, and an
/// input device identifier for `micMute`.
struct EffectKey {
    EffectKind kind = EffectKind::dockAutohide;
    std::string target;

    EffectKey() = default;
    EffectKey(EffectKind kind, std::string target = {});
    static EffectKey app(const AppInfo& info);

    /// For logs: the raw value, with "[target]" when there is a target.
    std::string description() const;
    /// For the user: "Hide Mail", "Resolution · display 1", or the kind's title.
    std::string title() const;

    friend bool operator==(const EffectKey&, const EffectKey&) = default;
    friend auto operator<=>(const EffectKey&, const EffectKey&) = default;
};

/// A display size the user can choose.
struct ResolutionPreset {
    std::int64_t width = 0;
    std::int64_t height = 0;

    /// "1280x720"
    std::string id() const;
    /// "1280 × 720"
    std::string label() const;
    /// The four sizes offered: 1280×720, 1440×900, 1920×1080, 2560×1440.
    static const std::vector<ResolutionPreset>& common();

    friend bool operator==(const ResolutionPreset&, const ResolutionPreset&) = default;
    friend auto operator<=>(const ResolutionPreset&, const ResolutionPreset&) = default;
};

/// The value of an effect at one moment: a boolean, a number or a text. Equality is exact;
/// `matches` is the tolerant comparison that the engine uses for states of the Mac.
class JournalValue {
public:
    static JournalValue boolean(bool value) { return JournalValue(Storage(value)); }
    static JournalValue number(double value) { return JournalValue(Storage(value)); }
    static JournalValue text(std::string value) { return JournalValue(Storage(std::move(value))); }

    bool isBool() const { return std::holds_alternative<bool>(storage_); }
    bool isNumber() const { return std::holds_alternative<double>(storage_); }
    bool isText() const { return std::holds_alternative<std::string>(storage_); }
    /// The payload of a boolean; nothing for the other two cases.
    std::optional<bool> boolValue() const;
    std::optional<double> numberValue() const;
    std::optional<std::string> textValue() const;

    /// "on"/"off", a whole number as "1440", any other number as "%.2f", or the text.
    std::string description() const;
    /// Whether `other` counts as the same state of the Mac: same case, and for numbers a
    /// difference strictly below 0.011. Nothing never matches.
    bool matches(const std::optional<JournalValue>& other) const;

    friend bool operator==(const JournalValue&, const JournalValue&) = default;
    friend auto operator<=>(const JournalValue& a, const JournalValue& b) {
        return a.storage_ <=> b.storage_;
    }

private:
    using Storage = std::variant<bool, double, std::string>;
    explicit JournalValue(Storage storage)
        : storage_(std::move(storage)) {}
    Storage storage_;
};

// JSON forms. Decoders throw `json::DecodeError` on anything they cannot read.
nlohmann::ordered_json toJson(const EffectKey& key);
EffectKey effectKeyFromJson(const nlohmann::ordered_json& value);
nlohmann::ordered_json toJson(const JournalValue& value);
JournalValue journalValueFromJson(const nlohmann::ordered_json& value);
nlohmann::ordered_json toJson(const AppInfo& info);
AppInfo appInfoFromJson(const nlohmann::ordered_json& value);
nlohmann::ordered_json toJson(const ResolutionPreset& preset);
ResolutionPreset resolutionPresetFromJson(const nlohmann::ordered_json& value);

} // namespace scrimlet

template <>
struct std::hash<scrimlet::EffectKey> {
    size_t operator()(const scrimlet::EffectKey& key) const noexcept {
        return std::hash<std::string>{}(key.target) * 31 + static_cast<size_t>(key.kind);
    }
};
