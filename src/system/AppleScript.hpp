#pragma once

// Scripts run in this process, and the Automation permission they need to drive System
// Events. The words of a failure are the user's: they land on a run sheet.

#include "SystemFacilities.hpp"

#include <optional>
#include <string>

namespace scrimlet::AppleScript {

/// Whether this program may control System Events.
enum class Permission { granted, denied, notDetermined, unknown };

/// The status the platform gives when the user said no to Automation.
inline constexpr std::int32_t notPermitted = -1743;
/// The status when the user was never asked.
inline constexpr std::int32_t wouldPrompt = -1744;
inline constexpr const char* systemEvents = "com.apple.systemevents";

/// Runs the script; throws `StageError::failed` with words for the user when it fails.
void run(SystemFacilities& facilities, const std::string& source);
/// The script's result as a number; nothing in a test run, and nothing, without a reason,
/// when it fails or gives no result.
std::optional<double> number(SystemFacilities& facilities, bool testRun, const std::string& source);
/// Asks without a prompt; `unknown` in a test run, which never asks.
Permission systemEventsPermission(SystemFacilities& facilities, bool testRun);

} // namespace scrimlet::AppleScript
