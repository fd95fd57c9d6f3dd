#pragma once

#include "Harness.hpp"
#include "LiveWindowList.hpp"

#include <ostream>
#include <string>
#include <vector>

/// The `scrimlet` command: the demo, the self check and the two listings, on the simulated
/// Mac. Main thread only.
namespace scrimlet::CommandLine {

/// Exit statuses besides 0, and the 1 of a self check with a failed step.
inline constexpr int usageError = 2;

/// Runs the command given by `arguments` (without the program's name) in `environment`; the
/// process's exit status. "SCRIMLET_SELFTEST" in the environment runs the self check on its
/// folder, as the app does, whatever the arguments say. `windows` reads the live window
/// list from `liveWindows`, which only the macOS build has.
int run(const std::vector<std::string>& arguments, const Harness::Environment& environment,
        std::ostream& out, std::ostream& err, const LiveWindowList* liveWindows = nullptr);

} // namespace scrimlet::CommandLine
