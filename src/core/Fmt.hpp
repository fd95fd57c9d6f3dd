#pragma once

#include <cstdint>
#include <string>

/// The small time formatters that the run sheets, the status item and the dropdown share.
namespace scrimlet::Fmt {

/// A running timer: "1:15" under an hour, "1:01:01" from an hour on. Seconds are cut off,
/// not rounded, and a negative time reads as "0:00".
std::string clock(double seconds);
/// A finished show: "under a minute" below 60 seconds, otherwise whole minutes rounded
/// half away from zero and worded as `minutes` does ("2 min", "1 h", "1 h 30 min").
std::string duration(double seconds);
/// "45 min", "1 h", "1 h 1 min".
std::string minutes(std::int64_t minutes);

} // namespace scrimlet::Fmt
