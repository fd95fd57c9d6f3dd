#pragma once

// The names under which the dropdown's views tell the demo film where they are, shared by
// the views that report them and the film's script that points at them.

#include "SwitchKind.hpp"

#include <string>
#include <string_view>

namespace scrimlet::DropdownAnchors {

/// The first button of the action row: "Raise the Curtain", "Cancel" or "Bring It Down".
inline constexpr std::string_view action = "dropdown.action";
/// The cue list, header and rows.
inline constexpr std::string_view cueList = "dropdown.cues";
/// The note under the action row, while there is one.
inline constexpr std::string_view note = "dropdown.note";

/// The pinned switch's tile, while it is pinned.
inline std::string switchTile(SwitchKind kind) {
    return "dropdown.switch." + std::string(rawValue(kind));
}

} // namespace scrimlet::DropdownAnchors
