#pragma once

// How the command line tells what the engine did, in the program's own words: the titles
// and outcome labels of the cue records, the reasons of the run sheets, and the curtain-down
// and recovery notes that the dropdown shows. Plain functions over plain values.

#include "Date.hpp"
#include "Journal.hpp"
#include "RunSheet.hpp"

#include <string>
#include <vector>

namespace scrimlet::Narration {

/// "Wed 28 Oct 2026 15:42" in the local time zone.
std::string day(Date date);
/// "15:42:07" in the local time zone.
std::string time(Date date);
/// "Hide desktop icons: Done"
std::string record(const CueRecord& record);
/// One indented line per record, each ending in a line feed.
std::string records(const std::vector<CueRecord>& records, const std::string& indent);
/// "the show", "the Keep Awake switch", or the owner's name as it stands.
std::string owner(const std::string& owner);
/// "no problems", "1 problem", "3 problems".
std::string problems(int count);
/// A whole sheet for reading: when, how long, how it ended, how it started, and every cue
/// and strike line. Ends in a line feed.
std::string sheet(const RunSheet& sheet);
/// One journal entry: the effect, its value and the one to go back to, its state and who
/// holds it.
std::string entry(const JournalEntry& entry);

} // namespace scrimlet::Narration
