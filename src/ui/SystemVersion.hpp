#pragma once

// Which macOS this is, as a plain major number, from what the system reports. The number an
// app is told can be a compatibility one: since the jump from 15 to 26, an app built against
// an older SDK is told "16.0" on macOS 26, as "10.16" stood for 11 before. The kernel's
// release is never dressed up, so both are read and the larger answer wins.

#include <string_view>

namespace scrimlet::SystemVersion {

/// The leading number of a version text ("26.1" gives 26); 0 when there is none.
int leadingNumber(std::string_view text);

/// The macOS major version: from the product version (`16` to `25` read as the
/// compatibility numbers of `26` to `35`, numbers no macOS ever had) and from the kernel's
/// release (Darwin 20 to 24 are macOS 11 to 15; from Darwin 25, macOS 26, one above). 0 when
/// neither says anything.
int macOSMajor(std::string_view productVersion, std::string_view darwinRelease);

} // namespace scrimlet::SystemVersion
