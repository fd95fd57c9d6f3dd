#include "Director.hpp"

#include <algorithm>
#include <set>

namespace scrimlet {

namespace {

// A deferred undo older than this is given up at launch, so that a display that never
// returns cannot pin the journal for ever.
constexpr double deferredLifetime = 7 * 24 * 3600;

bool contains(const std::vector<std::string>& list, const std::string& item) {
    return std::find(list.begin(), list.end(), item) != list.end();
}

// An entry as a deferred undo is retried: no owners left, and treated as applied.
JournalEntry asRetry(JournalEntry entry) {
    entry.state = EntryState::applied;
    entry.owners.clear();
    return entry;
}

} // namespace

Director::Director(std::shared_ptr<StageSystem> system, std::shared_ptr<JournalStore> store,
                   Clock clock_)
    : clock(std::move(clock_))
    , system_(std::move(system))
    , store_(std::move(store))
    , entries_(store_->load()) {}

std::optional<size_t> Director::indexOf(const EffectKey& key) const {
    for (size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].key == key) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<JournalEntry> Director::entry(const EffectKey& key) const {
    if (const auto i = indexOf(key)) {
        return entries_[*i];
    }
    return std::nullopt;
}

std::vector<std::string> Director::owners(const EffectKey& key) const {
    if (const auto i = indexOf(key)) {
        return entries_[*i].owners;
    }
    return {};
}

bool Director::isHeld(const EffectKey& key, const std::string& by) const {
    const auto i = indexOf(key);
    return i && contains(entries_[*i].owners, by);
}

std::vector<EffectKey> Director::keys(const std::string& heldBy) const {
    std::vector<EffectKey> out;
    for (const auto& e : entries_) {
        if (contains(e.owners, heldBy)) {
            out.push_back(e.key);
        }
    }
    return out;
}

std::vector<std::string> Director::ownersFullyOverridden() const {
    std::set<std::string> everyOwner;
    for (const auto& e : entries_) {
        everyOwner.insert(e.owners.begin(), e.owners.end());
    }
    std::vector<std::string> out;
    for (const auto& owner : everyOwner) {
        bool any = false;
        bool all = true;
        for (const auto& e : entries_) {
            if (e.changed && contains(e.owners, owner)) {
                any = true;
                all = all && e.state == EntryState::userChanged;
            }
        }
        if (any && all) {
            out.push_back(owner);
        }
    }
    return out;
}

CueOutcome Director::claim(const EffectKey& key, const JournalValue& value,
                           const std::string& owner) {
    const Availability availability = system_->availability(key.kind);
    const auto skipped = [&] {
        return CueOutcome::skipped(availability.note().value_or("unavailable"));
    };
    const auto index = indexOf(key);

    if (!index) {
        if (!availability.isReady()) {
            const CueOutcome outcome = skipped();
            record(key, outcome);
            return outcome;
        }
        const auto current = system_->read(key);
        if (value.matches(current)) {
            // The Mac already stands there. The entry still makes the owner a holder, and
            // says that nothing was changed, so nothing will be put back.
            entries_.emplace_back(key, current, value, std::vector{owner}, EntryState::applied,
                                  false, clock());
            save();
            record(key, CueOutcome::alreadySo());
            return CueOutcome::alreadySo();
        }
        // Write-ahead: the journal reaches the disk before the Mac is touched.
        entries_.emplace_back(key, current, value, std::vector{owner}, EntryState::pending, true,
                              clock());
        const Uuid id = entries_.back().id;
        save();
        const auto findNew = [&] {
            return std::find_if(entries_.begin(), entries_.end(),
                                [&](const JournalEntry& e) { return e.id == id; });
        };
        std::optional<JournalValue> prior;
        try {
            prior = system_->write(key, value);
        } catch (...) {
            entries_.erase(findNew());
            save();
            const CueOutcome outcome = CueOutcome::failed(describe(std::current_exception()));
            record(key, outcome);
            return outcome;
        }
        auto& added = *findNew();
        // Do Not Disturb cannot be read; only switching tells whether it was on already.
        if (prior && !added.before) {
            added.before = prior;
            if (value.matches(prior)) {
                added.changed = false;
            }
        }
        added.state = EntryState::applied;
        save();
        record(key, CueOutcome::applied());
        return CueOutcome::applied();
    }

    JournalEntry copy = entries_[*index];
    const bool ownerIsNew = !contains(copy.owners, owner);
    if (ownerIsNew) {
        copy.owners.push_back(owner);
    }
    const auto current = system_->read(key);
    const bool plainJoin =
        (copy.state == EntryState::pending || copy.state == EntryState::applied) &&
        value.matches(copy.after) && (!current || value.matches(current));
    if (plainJoin) {
        entries_[*index] = copy;
        save();
        const CueOutcome outcome = ownerIsNew ? CueOutcome::joined() : CueOutcome::alreadySo();
        record(key, outcome);
        return outcome;
    }
    if (!availability.isReady()) {
        entries_[*index] = copy;
        save();
        const CueOutcome outcome = skipped();
        record(key, outcome);
        return outcome;
    }
    // Driven again: the user changed it, its undo waits, the value differs, or the Mac no
    // longer stands at it. `before` keeps the value from before the first change.
    copy.after = value;
    copy.state = EntryState::pending;
    copy.at = clock();
    if (!copy.before) {
        copy.before = current;
    }
    if (!copy.changed) {
        copy.changed = !value.matches(current);
    }
    const Uuid id = copy.id;
    entries_[*index] = std::move(copy);
    save();
    std::optional<CueOutcome> failure;
    try {
        system_->write(key, value);
    } catch (...) {
        failure = CueOutcome::failed(describe(std::current_exception()));
    }
    const auto driven = std::find_if(entries_.begin(), entries_.end(),
                                     [&](const JournalEntry& e) { return e.id == id; });
    driven->state = EntryState::applied;
    save();
    const CueOutcome outcome = failure.value_or(CueOutcome::applied());
    record(key, outcome);
    return outcome;
}

std::optional<CueOutcome> Director::release(const EffectKey& key, const std::string& owner) {
    const auto index = indexOf(key);
    if (!index || !contains(entries_[*index].owners, owner)) {
        return std::nullopt;
    }
    auto& owners = entries_[*index].owners;
    owners.erase(std::remove(owners.begin(), owners.end(), owner), owners.end());
    if (owners.empty()) {
        return undo(*index);
    }
    save();
    record(key, CueOutcome::stillHeld());
    return CueOutcome::stillHeld();
}

CueOutcome Director::undo(size_t index) {
    const EffectKey key = entries_[index].key;
    const CueOutcome outcome = restore(entries_[index]);
    if (outcome.kind() == CueOutcome::Case::deferred) {
        entries_[index].state = EntryState::deferred;
        entries_[index].owners.clear();
    } else {
        entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(index));
    }
    save();
    record(key, outcome);
    return outcome;
}

std::vector<CueRecord> Director::releaseAll(const std::string& owner) {
    const size_t length = log_.size();
    const auto held = keys(owner);
    // Newest first, so that a show comes down in the opposite order of its going live.
    for (auto key = held.rbegin(); key != held.rend(); ++key) {
        release(*key, owner);
    }
    return logSince(length);
}

CueOutcome Director::restore(const JournalEntry& e) {
    if (!e.changed) {
        return CueOutcome::alreadyBack();
    }
    if (e.state == EntryState::userChanged) {
        return CueOutcome::leftAlone();
    }
    const auto current = system_->read(e.key);
    if (!current) {
        switch (e.key.kind) {
        case EffectKind::doNotDisturb:
            // It cannot be read, so it is turned back whether or not the user touched it.
            if (e.before && e.before->matches(e.after)) {
                return CueOutcome::alreadyBack();
            }
            return write(e.key, e.before.value_or(JournalValue::boolean(false)));
        case EffectKind::displayMode:
            return CueOutcome::deferred();
        default:
            return CueOutcome::gone();
        }
    }
    if (current->matches(e.after)) {
        if (!e.before) {
            return CueOutcome::alreadyBack();
        }
        return write(e.key, *e.before);
    }
    if (current->matches(e.before)) {
        return CueOutcome::alreadyBack();
    }
    // Neither ours nor the earlier value: it is the user's.
    return CueOutcome::leftAlone();
}

CueOutcome Director::write(const EffectKey& key, const JournalValue& value) {
    try {
        system_->write(key, value);
        return CueOutcome::restored();
    } catch (const StageError& error) {
        if (error.kind() == StageError::Case::targetGone) {
            return key.kind == EffectKind::displayMode ? CueOutcome::deferred()
                                                       : CueOutcome::gone();
        }
        return CueOutcome::failed(describe(error));
    } catch (...) {
        return CueOutcome::failed(describe(std::current_exception()));
    }
}

std::vector<EffectKey> Director::reconcile() {
    const Date now = clock();
    std::vector<EffectKey> changedByUser;
    std::vector<size_t> quitApps;
    for (size_t i = 0; i < entries_.size(); ++i) {
        auto& e = entries_[i];
        if (e.state != EntryState::applied || !e.changed ||
            e.key.kind == EffectKind::doNotDisturb) {
            continue;
        }
        // A change made just now may not read back yet.
        if (now - e.at < settleTime) {
            continue;
        }
        const auto current = system_->read(e.key);
        if (current && !current->matches(e.after)) {
            e.state = EntryState::userChanged;
            changedByUser.push_back(e.key);
            record(e.key, CueOutcome::leftAlone());
        } else if (!current && e.key.kind == EffectKind::appHidden) {
            quitApps.push_back(i);
        }
    }
    for (auto i = quitApps.rbegin(); i != quitApps.rend(); ++i) {
        record(entries_[*i].key, CueOutcome::gone());
        entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(*i));
    }
    if (!changedByUser.empty() || !quitApps.empty()) {
        save();
    }
    return changedByUser;
}

std::vector<CueRecord> Director::recoverAtLaunch() {
    if (entries_.empty()) {
        return {};
    }
    const size_t length = log_.size();
    const Date now = clock();
    for (size_t i = entries_.size(); i-- > 0;) {
        const JournalEntry e = entries_[i];
        const auto erase = [&] {
            entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(i));
        };
        if (!outlivesApp(e.key.kind)) {
            // Died with the process: nothing is left to undo.
            erase();
            continue;
        }
        const CueOutcome outcome = restore(e.state == EntryState::deferred ? asRetry(e) : e);
        if (outcome.kind() == CueOutcome::Case::deferred && now - e.at < deferredLifetime) {
            entries_[i].state = EntryState::deferred;
            entries_[i].owners.clear();
        } else {
            erase();
        }
        record(e.key, outcome);
    }
    save();
    return logSince(length);
}

std::vector<CueRecord> Director::retryDeferred() {
    const size_t length = log_.size();
    for (size_t i = entries_.size(); i-- > 0;) {
        if (entries_[i].state != EntryState::deferred) {
            continue;
        }
        const JournalEntry e = entries_[i];
        const CueOutcome outcome = restore(asRetry(e));
        if (outcome.kind() == CueOutcome::Case::deferred) {
            continue;
        }
        entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(i));
        record(e.key, outcome);
    }
    save();
    return logSince(length);
}

std::string Director::describe(const std::exception& error) {
    if (const auto* stage = dynamic_cast<const StageError*>(&error)) {
        return stage->description();
    }
    return error.what();
}

std::string Director::describe(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& known) {
        return describe(known);
    } catch (...) {
        // Platform code can throw what is no standard exception and carries no text.
        return "unexpected error";
    }
}

void Director::record(const EffectKey& key, const CueOutcome& outcome) {
    log_.emplace_back(key, outcome, clock());
}

std::vector<CueRecord> Director::logSince(size_t length) const {
    return {log_.begin() + static_cast<std::ptrdiff_t>(length), log_.end()};
}

} // namespace scrimlet
