#pragma once

// What the keyboard lock swallows and what it says when it cannot.

#include <cstdint>
#include <string_view>

namespace scrimlet::KeyboardLockRules {

/// Key down (10), key up (11), modifier changes (12) and the system-defined events (14) that
/// carry the media and brightness keys. The mouse is left alone.
inline constexpr std::uint64_t eventMask = (1u << 10) | (1u << 11) | (1u << 12) | (1u << 14);

inline constexpr std::string_view needsAccessibility =
    "Allow Scrimlet in Privacy & Security › Accessibility";
inline constexpr std::string_view tapRefused = "macOS didn't allow the keyboard lock";

enum class TapVerdict {
    /// The event reaches no application.
    drop,
    /// The system switched the tap off (after a time-out or by the user's input): switch it
    /// straight back on, and hand the event on unchanged.
    reenableAndPass,
};

/// Every type below 0xFFFFFFFE is an event to drop; the two from there up are the system's
/// notices that it disabled the tap.
constexpr TapVerdict verdict(std::uint32_t eventType) {
    return eventType < 0xFFFFFFFEu ? TapVerdict::drop : TapVerdict::reenableAndPass;
}

} // namespace scrimlet::KeyboardLockRules
