#pragma once

// What was changed (`JournalEntry`) and how each step went (`CueOutcome`, logged as a
// `CueRecord`). Plain values.

#include "Date.hpp"
#include "Effects.hpp"
#include "Uuid.hpp"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

/// The state of one journal entry.
enum class EntryState {
    pending,     ///< On disk; the write to the Mac is not confirmed yet.
    applied,     ///< The change is made, or was already so.
    userChanged, ///< The user changed it by hand since; it will be left alone.
    deferred,    ///< Could not be undone yet (a display is absent); waits for a retry.
};

std::string_view rawValue(EntryState state);
std::optional<EntryState> entryStateFromRaw(std::string_view raw);

/// One reversible change on record.
struct JournalEntry {
    Uuid id;
    EffectKey key;
    /// The value to go back to; absent when the effect could not be read before the change.
    std::optional<JournalValue> before;
    JournalValue after = JournalValue::boolean(false);
    /// Who holds the effect, in order of arrival, without duplicates.
    std::vector<std::string> owners;
    EntryState state = EntryState::pending;
    /// True when the Mac was actually altered; false when it already stood at `after`.
    bool changed = false;
    /// When the entry was made or last re-applied.
    Date at;

    JournalEntry() = default;
    JournalEntry(EffectKey key, std::optional<JournalValue> before, JournalValue after,
                 std::vector<std::string> owners, EntryState state, bool changed, Date at);

    friend bool operator==(const JournalEntry&, const JournalEntry&) = default;
};

/// The result of one step.
class CueOutcome {
public:
    enum class Case {
        applied,
        alreadySo,
        joined,
        skipped,
        failed,
        restored,
        alreadyBack,
        leftAlone,
        gone,
        deferred,
        stillHeld,
    };

    static CueOutcome applied() { return CueOutcome(Case::applied); }
    static CueOutcome alreadySo() { return CueOutcome(Case::alreadySo); }
    static CueOutcome joined() { return CueOutcome(Case::joined); }
    static CueOutcome skipped(std::string text) {
        return CueOutcome(Case::skipped, std::move(text));
    }
    static CueOutcome failed(std::string text) { return CueOutcome(Case::failed, std::move(text)); }
    static CueOutcome restored() { return CueOutcome(Case::restored); }
    static CueOutcome alreadyBack() { return CueOutcome(Case::alreadyBack); }
    static CueOutcome leftAlone() { return CueOutcome(Case::leftAlone); }
    static CueOutcome gone() { return CueOutcome(Case::gone); }
    static CueOutcome deferred() { return CueOutcome(Case::deferred); }
    static CueOutcome stillHeld() { return CueOutcome(Case::stillHeld); }
    /// Any case; `text` is kept only for `skipped` and `failed`.
    static CueOutcome of(Case c, std::string text = {});

    Case kind() const { return case_; }
    /// The text of `skipped` and `failed`; empty for the other cases.
    const std::string& text() const { return text_; }
    /// The case name, as written in JSON.
    std::string_view name() const;

    /// "Done", "Skipped · <text>", "Left alone — you changed it", ...
    std::string label() const;
    /// The short form for narrow places: "Done", "Skipped", "Yours now", ...
    std::string shortLabel() const;
    /// True for `skipped`, `failed` and `deferred` only.
    bool isProblem() const;

    friend bool operator==(const CueOutcome&, const CueOutcome&) = default;

private:
    explicit CueOutcome(Case c, std::string text = {})
        : case_(c)
        , text_(std::move(text)) {}
    Case case_;
    std::string text_;
};

/// One line of the director's log and of a run sheet.
struct CueRecord {
    Uuid id;
    EffectKey key;
    /// `key.title()` as it read when the record was made.
    std::string title;
    CueOutcome outcome = CueOutcome::applied();
    Date at;

    CueRecord() = default;
    CueRecord(EffectKey key, CueOutcome outcome, Date at);

    friend bool operator==(const CueRecord&, const CueRecord&) = default;
};

// JSON forms; decoders throw `json::DecodeError`.
nlohmann::ordered_json toJson(const JournalEntry& entry);
JournalEntry journalEntryFromJson(const nlohmann::ordered_json& value);
nlohmann::ordered_json toJson(const CueOutcome& outcome);
CueOutcome cueOutcomeFromJson(const nlohmann::ordered_json& value);
nlohmann::ordered_json toJson(const CueRecord& record);
CueRecord cueRecordFromJson(const nlohmann::ordered_json& value);

} // namespace scrimlet
