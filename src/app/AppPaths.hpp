#pragma once

#include "Harness.hpp"

#include <filesystem>

namespace scrimlet::AppPaths {

/// The folder of the program's files ("settings.json", "journal.json", "runsheets.json",
/// "mic-levels.json"): the user's Application Support folder on macOS, the XDG data home
/// elsewhere, followed by "Scrimlet". It is not created here.
std::filesystem::path support(const Harness::Environment& environment);
std::filesystem::path support();

} // namespace scrimlet::AppPaths
