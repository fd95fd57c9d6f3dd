#pragma once

#include "Harness.hpp"

#include <filesystem>

namespace scrimlet::AppPaths {

/// The folder of the program's files ("settings.json", "journal.json", "runsheets.json",
/// "mic-levels.json"): the user's Application Support folder on macOS, the XDG data home
/// elsewhere, followed by "Scrimlet". It is not created here.
std::filesystem::path support(const Harness::Environment& environment);
/// The same for this process. Once the macOS app has handed in the Application Support
/// folder as the system names it, that folder followed by "Scrimlet".
std::filesystem::path support();

/// Called by the macOS app at launch, before anything reads a file, with the first
/// Application Support folder of the user's domain. Main thread only.
void setApplicationSupport(std::filesystem::path folder);

} // namespace scrimlet::AppPaths
