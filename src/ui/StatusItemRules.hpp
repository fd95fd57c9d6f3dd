#pragma once

// The status item: what it shows for the store as it stands (glyph, title, accessibility),
// and what a click on it means. The platform paints the look and carries out the click.
// Main thread only.

#include "Font.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace scrimlet {

class StageStore;

/// Everything the item shows, as a function of the store.
struct StatusItemLook {
    /// The glyph's state: curtain drawn back with the lamp, half open, or closed.
    bool live = false;
    bool standby = false;
    /// A template takes the menu bar's colour; the live glyph keeps its red.
    bool templateImage = true;
    std::string glyphDescription;
    /// Empty for no title; otherwise it is drawn in `titleFont`.
    std::string title;
    std::optional<Font> titleFont;
    std::string accessibilityValue;

    friend bool operator==(const StatusItemLook&, const StatusItemLook&) = default;
};

/// A mouse-up on the item, as the event reports it.
struct StatusClickEvent {
    /// The event's modifier flags.
    std::uint64_t modifierFlags = 0;
    /// The event's type: 2 is left mouse up, 4 right mouse up.
    std::uint64_t type = 0;
};

namespace StatusItemRules {

inline constexpr std::string_view autosaveName = "ScrimletMain";
inline constexpr std::string_view accessibilityLabel = "Scrimlet";
/// The option key's flag, and the left mouse-up's event type.
inline constexpr std::uint64_t optionFlag = 0x80000;
inline constexpr std::uint64_t leftMouseUp = 2;
/// The how of a show started by option-clicking the item.
inline constexpr std::string_view optionClickHow = "Started with ⌥-click";

StatusItemLook look(const StageStore& store);

/// What a click does.
enum class Click {
    /// Opens the dropdown, or closes it if it is open.
    toggleDropdown,
    /// Starts a show when dark, and stops it otherwise; the dropdown stays as it is.
    startOrStop,
};
/// Only an option left-click starts or stops; every other click, an option right-click
/// included, toggles the dropdown. With no event at hand, it toggles too.
Click decide(const std::optional<StatusClickEvent>& event);
/// Carries out an option-click on the store.
void startOrStop(StageStore& store);

} // namespace StatusItemRules

} // namespace scrimlet
