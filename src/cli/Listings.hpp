#pragma once

#include <filesystem>
#include <ostream>

/// The program's two files that a person may want to read: the run sheets of past shows and
/// the journal of changes outstanding. Both are read exactly as the program reads them, so a
/// damaged file is forgiven the same way, and the listing says so.
namespace scrimlet::Listings {

/// The run sheets in `file`, newest first, in words; with `json`, as the program writes the
/// file. Always 0: a missing or damaged file means no past shows.
int sheets(const std::filesystem::path& file, bool json, std::ostream& out, std::ostream& err);
/// What the journal in `file` holds outstanding, in words. Always 0: a missing or damaged
/// journal means nothing to put back.
int journal(const std::filesystem::path& file, std::ostream& out);

} // namespace scrimlet::Listings
