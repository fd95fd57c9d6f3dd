#pragma once

// The dropdown as the self check measures it. Main thread only.

#include "SelfTest.hpp"

namespace scrimlet::mac {

/// Builds the real dropdown for the store as it stands, lays it out, and answers the size it
/// settles at: its fitting size, taken again once that frame is laid out.
DropdownSize layOutDropdown(StageStore& store);

} // namespace scrimlet::mac
