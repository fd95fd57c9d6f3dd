#pragma once

// The displays and their modes: which mode gives a display the size the user chose, and
// switching to it for this program only, so that the platform itself undoes the change if
// the process dies.

#include "SystemFacilities.hpp"

#include <cstdint>
#include <optional>
#include <vector>

namespace scrimlet::Displays {

std::vector<std::uint32_t> online(SystemFacilities& facilities);
std::vector<DisplayMode> modes(SystemFacilities& facilities, std::uint32_t display);
/// The one mode for a preset among `modes`: those of exactly that size in points that the
/// desktop can use, a Retina mode before one that is not, then the refresh rate nearest to
/// `current`'s (60 Hz without one); ties keep the order of `modes`. Nothing when none fits.
std::optional<DisplayMode> choose(const std::vector<DisplayMode>& modes,
                                  const std::optional<DisplayMode>& current,
                                  const ResolutionPreset& preset);
/// `choose` over the display's modes and its current mode.
std::optional<DisplayMode> mode(SystemFacilities& facilities, const ResolutionPreset& preset,
                                std::uint32_t display);
/// Switches the display to the mode with that identifier; throws `StageError::failed`.
void set(SystemFacilities& facilities, std::uint32_t display, std::int32_t modeID);

} // namespace scrimlet::Displays
