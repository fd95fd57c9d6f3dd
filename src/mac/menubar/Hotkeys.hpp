#pragma once

// Global hotkeys, as the app reaches them. Main thread only.

#include "StagePlatform.hpp"

#include <cstdint>
#include <vector>

namespace scrimlet::mac::Hotkeys {

/// Replaces every registered hotkey; answers the identifiers that could not be registered.
std::vector<std::uint32_t> registerAll(std::vector<HotkeyEntry> entries);

} // namespace scrimlet::mac::Hotkeys
