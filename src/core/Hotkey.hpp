#pragma once

#include <nlohmann/json_fwd.hpp>

#include <compare>
#include <cstdint>
#include <functional>
#include <string>

namespace scrimlet {

/// A global hotkey as the system's hot-key service takes it: a virtual key code and
/// modifier bits, with the key's label for display. A plain value.
struct Hotkey {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;
    /// The key's label, such as "S" or "F5".
    std::string key;

    // The system's modifier bits.
    static constexpr std::uint32_t cmd = 0x100;
    static constexpr std::uint32_t shift = 0x200;
    static constexpr std::uint32_t option = 0x800;
    static constexpr std::uint32_t control = 0x1000;

    /// ⌃⌥⌘S: key code 1 with control, option and command.
    static Hotkey defaultStage();

    /// The modifier signs in the fixed order ⌃⌥⇧⌘, then the key: "⌃⌥⌘S".
    std::string display() const;
    /// Whether the key can be registered without stealing ordinary typing: it needs command,
    /// option or control, or must be a function key (any key whose label begins with "F").
    bool isUsable() const;

    friend bool operator==(const Hotkey&, const Hotkey&) = default;
    friend auto operator<=>(const Hotkey&, const Hotkey&) = default;
};

nlohmann::ordered_json toJson(const Hotkey& hotkey);
/// Strict: `keyCode`, `modifiers` and `key` are all required.
Hotkey hotkeyFromJson(const nlohmann::ordered_json& value);

} // namespace scrimlet

template <>
struct std::hash<scrimlet::Hotkey> {
    size_t operator()(const scrimlet::Hotkey& hotkey) const noexcept {
        return std::hash<std::string>{}(hotkey.key) ^ (static_cast<size_t>(hotkey.keyCode) << 20) ^
               hotkey.modifiers;
    }
};
