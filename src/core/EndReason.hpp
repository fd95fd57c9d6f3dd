#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace scrimlet {

/// Why a show ended. Stored in run sheets as its case name.
enum class EndReason { stopped, captureEnded, timeLimit, quit, recovered };

namespace end_reason {
inline constexpr std::array<EndReason, 5> allCases = {EndReason::stopped, EndReason::captureEnded,
                                                      EndReason::timeLimit, EndReason::quit,
                                                      EndReason::recovered};
} // namespace end_reason

std::string_view rawValue(EndReason reason);
std::optional<EndReason> endReasonFromRaw(std::string_view raw);
/// For the user: "Stopped by you", "Sharing ended", ...
std::string_view label(EndReason reason);

} // namespace scrimlet
