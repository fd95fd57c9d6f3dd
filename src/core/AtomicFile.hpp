#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace scrimlet::files {

/// The whole content of a file, or nothing when it cannot be read for any reason.
std::optional<std::string> read(const std::filesystem::path& path) noexcept;

/// Writes `data` so that a crash leaves either the old file or the new one, never half of
/// one: the parent folders are created, a temporary file beside the target is written,
/// flushed to the disk and renamed over the target, and the folder itself is flushed.
/// Never throws; answers whether the file was replaced.
bool writeAtomically(const std::filesystem::path& path, std::string_view data) noexcept;

/// Deletes the file; a missing file or a failure is not reported. Never throws.
void remove(const std::filesystem::path& path) noexcept;

} // namespace scrimlet::files
