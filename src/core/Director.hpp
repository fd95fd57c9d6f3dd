#pragma once

#include "Journal.hpp"
#include "JournalStore.hpp"
#include "StageSystem.hpp"

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet {

/// The only code that changes the Mac. It takes a request (an effect, the value it shall
/// have, the owner who wants it), writes what it is about to do into the journal, does it
/// through the stage system, and later puts it back: not at all while another owner still
/// holds the effect, and never over a change the user made by hand. After a crash it heals
/// what the journal says is still out of place.
///
/// Main thread only. Calls into the stage system block on purpose: the order of journal
/// and Mac is the guarantee of the whole program.
class Director {
public:
    Director(std::shared_ptr<StageSystem> system, std::shared_ptr<JournalStore> store, Clock clock);

    StageSystem& system() const { return *system_; }
    const std::shared_ptr<StageSystem>& systemPointer() const { return system_; }
    JournalStore& store() const { return *store_; }
    /// Oldest first; at all times what the journal file is to hold.
    const std::vector<JournalEntry>& entries() const { return entries_; }
    /// Every step the director took, oldest first.
    const std::vector<CueRecord>& log() const { return log_; }

    /// Replaceable, so that scripted runs have a time of their own.
    Clock clock;
    /// How long after a change the director waits before it believes what it reads back.
    double settleTime = 3;

    // Queries
    std::optional<JournalEntry> entry(const EffectKey& key) const;
    std::vector<std::string> owners(const EffectKey& key) const;
    bool isHeld(const EffectKey& key, const std::string& by) const;
    /// The keys the owner holds, in journal order.
    std::vector<EffectKey> keys(const std::string& heldBy) const;
    bool hasOutstanding() const { return !entries_.empty(); }
    /// Owners all of whose real changes the user has since overridden by hand, sorted.
    std::vector<std::string> ownersFullyOverridden() const;

    // Commands
    /// Drives the effect to `value` for `owner`, journal first.
    CueOutcome claim(const EffectKey& key, const JournalValue& value, const std::string& owner);
    /// Lets go of one effect; it is put back when its last owner has gone. Nothing when the
    /// owner did not hold it.
    std::optional<CueOutcome> release(const EffectKey& key, const std::string& owner);
    /// Lets go of everything the owner holds, newest first, and answers what that did.
    std::vector<CueRecord> releaseAll(const std::string& owner);
    /// Looks for changes the user made by hand; answers the keys found changed.
    std::vector<EffectKey> reconcile();
    /// Once at launch, before anything else: puts back what a dead process left behind.
    std::vector<CueRecord> recoverAtLaunch();
    /// Tries again the undos that waited for a display.
    std::vector<CueRecord> retryDeferred();
    void clearLog() { log_.clear(); }

    /// The text for the user of an error thrown by the stage system.
    static std::string describe(const std::exception& error);
    /// The same for an error of any type, also one that is no standard exception.
    static std::string describe(const std::exception_ptr& error);

private:
    std::optional<size_t> indexOf(const EffectKey& key) const;
    CueOutcome undo(size_t index);
    /// What undoing one entry means; touches neither the entries nor the journal.
    CueOutcome restore(const JournalEntry& entry);
    CueOutcome write(const EffectKey& key, const JournalValue& value);
    void record(const EffectKey& key, const CueOutcome& outcome);
    void save() { store_->save(entries_); }
    std::vector<CueRecord> logSince(size_t length) const;

    std::shared_ptr<StageSystem> system_;
    std::shared_ptr<JournalStore> store_;
    std::vector<JournalEntry> entries_;
    std::vector<CueRecord> log_;
};

} // namespace scrimlet
