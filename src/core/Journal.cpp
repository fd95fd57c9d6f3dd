#include "Journal.hpp"

#include "JsonCoding.hpp"

#include <array>

namespace scrimlet {

using json::Json;

namespace {

constexpr std::array<std::string_view, 4> stateNames = {"pending", "applied", "userChanged",
                                                        "deferred"};

struct OutcomeRow {
    std::string_view name;
    std::string_view label;
    std::string_view shortLabel;
    bool isProblem;
};

// In declared order, which is also the order of the JSON case names.
constexpr std::array<OutcomeRow, 11> outcomeRows = {{
    {"applied", "Done", "Done", false},
    {"alreadySo", "Already so", "Already so", false},
    {"joined", "Already on", "Already on", false},
    {"skipped", "Skipped · ", "Skipped", true},
    {"failed", "Failed · ", "Failed", true},
    {"restored", "Restored", "Restored", false},
    {"alreadyBack", "Already back", "Already back", false},
    {"leftAlone", "Left alone — you changed it", "Yours now", false},
    {"gone", "Gone — nothing to undo", "Gone", false},
    {"deferred", "Waiting for the display", "Waiting", true},
    {"stillHeld", "Kept — a switch holds it", "Kept", false},
}};

const OutcomeRow& outcomeRow(CueOutcome::Case c) {
    return outcomeRows[static_cast<size_t>(c)];
}

bool hasPayload(CueOutcome::Case c) {
    return c == CueOutcome::Case::skipped || c == CueOutcome::Case::failed;
}

} // namespace

std::string_view rawValue(EntryState state) {
    return stateNames[static_cast<size_t>(state)];
}

std::optional<EntryState> entryStateFromRaw(std::string_view raw) {
    for (size_t i = 0; i < stateNames.size(); ++i) {
        if (stateNames[i] == raw) {
            return static_cast<EntryState>(i);
        }
    }
    return std::nullopt;
}

JournalEntry::JournalEntry(EffectKey key_, std::optional<JournalValue> before_, JournalValue after_,
                           std::vector<std::string> owners_, EntryState state_, bool changed_,
                           Date at_)
    : id(Uuid::random())
    , key(std::move(key_))
    , before(std::move(before_))
    , after(std::move(after_))
    , owners(std::move(owners_))
    , state(state_)
    , changed(changed_)
    , at(at_) {}

CueOutcome CueOutcome::of(Case c, std::string text) {
    return CueOutcome(c, hasPayload(c) ? std::move(text) : std::string());
}

std::string_view CueOutcome::name() const {
    return outcomeRow(case_).name;
}

std::string CueOutcome::label() const {
    std::string out(outcomeRow(case_).label);
    if (hasPayload(case_)) {
        out += text_;
    }
    return out;
}

std::string CueOutcome::shortLabel() const {
    return std::string(outcomeRow(case_).shortLabel);
}

bool CueOutcome::isProblem() const {
    return outcomeRow(case_).isProblem;
}

CueRecord::CueRecord(EffectKey key_, CueOutcome outcome_, Date at_)
    : id(Uuid::random())
    , key(std::move(key_))
    , title(key.title())
    , outcome(std::move(outcome_))
    , at(at_) {}

Json toJson(const JournalEntry& entry) {
    Json out = Json::object();
    out["id"] = json::encodeUuid(entry.id);
    out["key"] = toJson(entry.key);
    if (entry.before) {
        out["before"] = toJson(*entry.before);
    }
    out["after"] = toJson(entry.after);
    out["owners"] = entry.owners;
    out["state"] = std::string(rawValue(entry.state));
    out["changed"] = entry.changed;
    out["at"] = json::encodeDate(entry.at);
    return out;
}

JournalEntry journalEntryFromJson(const Json& value) {
    JournalEntry entry;
    entry.id = json::decodeUuid(json::field(value, "id"));
    entry.key = effectKeyFromJson(json::field(value, "key"));
    if (const Json* before = json::optionalField(value, "before")) {
        entry.before = journalValueFromJson(*before);
    }
    entry.after = journalValueFromJson(json::field(value, "after"));
    const Json& owners = json::field(value, "owners");
    if (!owners.is_array()) {
        throw json::DecodeError("owners must be an array");
    }
    for (const Json& owner : owners) {
        entry.owners.push_back(json::decodeString(owner));
    }
    const auto state = entryStateFromRaw(json::decodeString(json::field(value, "state")));
    if (!state) {
        throw json::DecodeError("unknown entry state");
    }
    entry.state = *state;
    entry.changed = json::decodeBool(json::field(value, "changed"));
    entry.at = json::decodeDate(json::field(value, "at"));
    return entry;
}

Json toJson(const CueOutcome& outcome) {
    if (hasPayload(outcome.kind())) {
        return json::encodeCase(outcome.name(), outcome.text());
    }
    return json::encodeCase(outcome.name());
}

CueOutcome cueOutcomeFromJson(const Json& value) {
    const auto [name, object] = json::decodeCase(value);
    for (size_t i = 0; i < outcomeRows.size(); ++i) {
        if (outcomeRows[i].name != name) {
            continue;
        }
        const auto c = static_cast<CueOutcome::Case>(i);
        return CueOutcome::of(c, hasPayload(c) ? json::decodeString(json::casePayload(*object))
                                               : std::string());
    }
    throw json::DecodeError("unknown cue outcome");
}

Json toJson(const CueRecord& record) {
    Json out = Json::object();
    out["id"] = json::encodeUuid(record.id);
    out["key"] = toJson(record.key);
    out["title"] = record.title;
    out["outcome"] = toJson(record.outcome);
    out["at"] = json::encodeDate(record.at);
    return out;
}

CueRecord cueRecordFromJson(const Json& value) {
    CueRecord record;
    record.id = json::decodeUuid(json::field(value, "id"));
    record.key = effectKeyFromJson(json::field(value, "key"));
    record.title = json::decodeString(json::field(value, "title"));
    record.outcome = cueOutcomeFromJson(json::field(value, "outcome"));
    record.at = json::decodeDate(json::field(value, "at"));
    return record;
}

} // namespace scrimlet
