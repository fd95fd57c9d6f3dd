#pragma once

#include "CueSheet.hpp"
#include "Harness.hpp"

#include <optional>

/// App names in the order a person expects: the collation of the user's locale, with case
/// ignored and accents only breaking ties, as the Mac's Finder orders them. The command line
/// hands it to the cue sheet before it runs anything. Main thread only.
namespace scrimlet::NameCollation {

/// The locale whose collation `userOrder` takes, from LC_ALL, LC_COLLATE or LANG (the first
/// that is set and not empty), without its encoding or modifier: "ro_RO.UTF-8" gives
/// "ro_RO". The C and POSIX locales, and no locale at all, give "" (the root collation,
/// which orders every script sensibly).
std::string localeName(const Harness::Environment& environment);

/// The collation of `localeName`; nothing when this build has no collation library or the
/// library cannot open one.
std::optional<CueSheet::NameOrder> userOrder(const Harness::Environment& environment);

} // namespace scrimlet::NameCollation
