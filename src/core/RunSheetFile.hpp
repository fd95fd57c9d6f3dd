#pragma once

#include "RunSheet.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Keeps the past run sheets in one JSON array, newest first. Run sheets are a convenience
/// for the user: a file that cannot be read counts as no past shows, and a write that fails
/// is dropped. Nothing here throws. The number of sheets kept is the show's business; the
/// file takes whatever it is given. Main thread only.
namespace scrimlet::RunSheetFile {

/// Every sheet in the file, or none at all when any part of it cannot be read: one damaged
/// sheet costs them all, and the next save overwrites the file. No location, no sheets.
std::vector<RunSheet> load(const std::optional<std::filesystem::path>& url) noexcept;
/// The sheets of a file's text, all or none, as `load` reads the file.
std::vector<RunSheet> decode(std::string_view text) noexcept;
/// The text `save` writes: a pretty-printed JSON array, each sheet's keys in field order.
std::string encode(const std::vector<RunSheet>& sheets);
/// Replaces the file atomically; an empty list is written as an empty array. Without a
/// location nothing is written.
void save(const std::vector<RunSheet>& sheets,
          const std::optional<std::filesystem::path>& url) noexcept;

} // namespace scrimlet::RunSheetFile
