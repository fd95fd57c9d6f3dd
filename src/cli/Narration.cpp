#include "Narration.hpp"

#include "EndReason.hpp"
#include "Fmt.hpp"
#include "SwitchKind.hpp"

#include <algorithm>
#include <ctime>

namespace scrimlet::Narration {

namespace {

std::string local(Date date, const char* format) {
    const auto seconds = static_cast<std::time_t>(date.seconds);
    std::tm parts{};
    if (!localtime_r(&seconds, &parts)) {
        return date.iso8601();
    }
    char buffer[64];
    const size_t length = std::strftime(buffer, sizeof buffer, format, &parts);
    return length > 0 ? std::string(buffer, length) : date.iso8601();
}

std::string counted(int n, const std::string& one, const std::string& many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

std::string state(const JournalEntry& entry) {
    switch (entry.state) {
    case EntryState::pending:
        return "not confirmed: the change may or may not have been made";
    case EntryState::applied:
        return entry.changed ? "made" : "it was so already, nothing to put back";
    case EntryState::userChanged:
        return "changed by you since: it will be left alone";
    case EntryState::deferred:
        return "waiting for its display to come back";
    }
    return std::string(rawValue(entry.state));
}

} // namespace

std::string day(Date date) {
    return local(date, "%a %d %b %Y %H:%M");
}

std::string time(Date date) {
    return local(date, "%H:%M:%S");
}

std::string record(const CueRecord& record) {
    return record.title + ": " + record.outcome.label();
}

std::string records(const std::vector<CueRecord>& list, const std::string& indent) {
    std::string out;
    for (const auto& item : list) {
        out += indent + record(item) + "\n";
    }
    return out;
}

std::string owner(const std::string& name) {
    if (name == "stage") {
        return "the show";
    }
    for (const auto kind : switch_kind::allCases) {
        if (scrimlet::owner(kind) == name) {
            return "the " + std::string(title(kind)) + " switch";
        }
    }
    return name;
}

std::string problems(int count) {
    return count == 0 ? "no problems" : counted(count, "problem", "problems");
}

std::string sheet(const RunSheet& sheet) {
    const auto duration = sheet.duration();
    std::string out = day(sheet.startedAt) + " · " +
                      (duration ? Fmt::duration(*duration) : "still running") + " · " +
                      (sheet.reason ? std::string(label(*sheet.reason)) : "not over yet") + "\n";
    out += "  " + sheet.how + " · " + problems(sheet.problems());
    if (const int mine = sheet.leftAlone(); mine > 0) {
        out += " · " + std::to_string(mine) + " left alone";
    }
    out += "\n";
    out += sheet.cues.empty() ? "  Cues: none\n" : "  Cues:\n" + records(sheet.cues, "    ");
    out +=
        sheet.strike.empty() ? "  Strike: none\n" : "  Strike:\n" + records(sheet.strike, "    ");
    return out;
}

std::string entry(const JournalEntry& entry) {
    std::string out = entry.key.title() + ": set to " + entry.after.description() + ", was " +
                      (entry.before ? entry.before->description() : "unknown") + " · " +
                      state(entry);
    std::string holders;
    for (size_t i = 0; i < entry.owners.size(); ++i) {
        holders += (i == 0                         ? ""
                    : i + 1 == entry.owners.size() ? " and "
                                                   : ", ") +
                   owner(entry.owners[i]);
    }
    if (!holders.empty()) {
        out += " · held by " + holders;
    }
    return out + " · since " + day(entry.at);
}

} // namespace scrimlet::Narration
