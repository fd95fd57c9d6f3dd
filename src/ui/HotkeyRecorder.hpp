#pragma once

// Turning a key press into a `Hotkey`: the names of the keys that have no printable
// character, and the translation of the event's modifier flags into the hot-key service's
// modifier bits. Plain functions over plain values, so that the platform only copies the
// three fields of its key event into a `KeyInput`.

#include "Hotkey.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace scrimlet {

/// The modifier flags of a key event, as the event system reports them: device-independent
/// bits, one per key.
namespace CocoaModifiers {
inline constexpr std::uint64_t shift = 1ULL << 17;
inline constexpr std::uint64_t control = 1ULL << 18;
inline constexpr std::uint64_t option = 1ULL << 19;
inline constexpr std::uint64_t command = 1ULL << 20;
} // namespace CocoaModifiers

/// The modifier bits the hot-key service takes: the same values as `Hotkey`'s.
namespace CarbonModifiers {
inline constexpr std::uint32_t cmdKey = Hotkey::cmd;
inline constexpr std::uint32_t shiftKey = Hotkey::shift;
inline constexpr std::uint32_t optionKey = Hotkey::option;
inline constexpr std::uint32_t controlKey = Hotkey::control;
} // namespace CarbonModifiers

/// Virtual key codes the recorder treats on their own.
namespace KeyCode {
inline constexpr std::uint32_t escape = 53;
inline constexpr std::uint32_t deleteKey = 51;
inline constexpr std::uint32_t forwardDelete = 117;
} // namespace KeyCode

/// One key-down event, reduced to what a hotkey needs.
struct KeyInput {
    std::uint32_t keyCode = 0;
    /// The event's modifier flags (`CocoaModifiers`); other bits are ignored.
    std::uint64_t modifierFlags = 0;
    /// The characters the key gives without modifiers, as UTF-8; absent when it gives none.
    std::optional<std::string> charactersIgnoringModifiers;
};

namespace HotkeyRecorder {

/// The label of a function key or of a key that types no visible character ("F5", "Space",
/// "↩", "←"...); absent for every other key.
std::optional<std::string_view> keyName(std::uint32_t keyCode);

/// The hot-key service's modifier bits for an event's flags: command, shift, option and
/// control, and nothing else (caps lock, the fn key and the numeric pad bit are dropped).
std::uint32_t carbonModifiers(std::uint64_t cocoaFlags);

/// The key's label: its name, or else its characters in upper case. A key that types only
/// invisible characters (a control character, or one of the private-use characters the
/// system gives keys such as F16 or Help) has no label.
std::string keyLabel(const KeyInput& input);

/// The hotkey a key press stands for; absent when the key has no label. Whether it is
/// usable is the caller's question (`Hotkey::isUsable`).
std::optional<Hotkey> hotkey(const KeyInput& input);

/// Upper case for the letters keyboards type: ASCII, Latin-1, Latin Extended-A, Greek and
/// Cyrillic, with "ß" as "SS". Other characters, and bytes that are not UTF-8, stay as they
/// are.
std::string uppercased(std::string_view text);

} // namespace HotkeyRecorder

} // namespace scrimlet
