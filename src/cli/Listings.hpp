#pragma once

#include <filesystem>
#include <ostream>

/// The program's two files that a person may want to read: the run sheets of past shows and
/// the journal of changes outstanding. Both are read exactly as the program reads them, so a
/// damaged file is forgiven the same way, and the listing says so.
namespace scrimlet::Listings {

/// Exit status when the file is there but cannot be read at all (a folder, a pipe, a
/// device, too large, or refused by the system): the listing could not say what it holds.
inline constexpr int unreadable = 1;

/// The run sheets in `file`, newest first, in words; with `json`, as the program writes the
/// file. 0 also for a missing or damaged file, which means no past shows.
int sheets(const std::filesystem::path& file, bool json, std::ostream& out, std::ostream& err);
/// What the journal in `file` holds outstanding, in words. 0 also for a missing or damaged
/// journal, which means nothing to put back.
int journal(const std::filesystem::path& file, std::ostream& out, std::ostream& err);

} // namespace scrimlet::Listings
