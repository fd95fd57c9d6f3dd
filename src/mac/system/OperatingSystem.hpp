#pragma once

// What the operating system itself says, for the app and the command line alike: the order
// of names in the user's language, and its own name and version. Main thread only.

#include <compare>
#include <string>
#include <string_view>

namespace scrimlet::mac::OperatingSystem {

/// The order Finder shows names in, in the user's language, with case ignored.
std::weak_ordering nameOrder(std::string_view a, std::string_view b);

/// "macOS 26.1.0 (Version 26.1 (Build 25B78))": the numbers to compare, then the system's
/// own words, which are for reading only.
std::string version();

} // namespace scrimlet::mac::OperatingSystem
