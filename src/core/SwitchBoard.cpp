#include "SwitchBoard.hpp"

#include "CueSheet.hpp"

#include <algorithm>
#include <set>

namespace scrimlet {

namespace {

// While a switch is on, changes by the user are looked for at most this often.
constexpr double reconcileInterval = 5;

bool isProblem(const CueRecord& record) {
    return record.outcome.isProblem();
}

} // namespace

SwitchBoard::SwitchBoard(std::shared_ptr<Director> director, StageSettings settings_, Clock clock_)
    : settings(std::move(settings_))
    , clock(std::move(clock_))
    , director_(std::move(director)) {}

void SwitchBoard::changed() const {
    if (onChange) {
        onChange();
    }
}

bool SwitchBoard::isOn(SwitchKind kind) const {
    return !director_->keys(owner(kind)).empty();
}

int SwitchBoard::onCount() const {
    return static_cast<int>(std::count_if(switch_kind::allCases.begin(),
                                          switch_kind::allCases.end(),
                                          [this](SwitchKind kind) { return isOn(kind); }));
}

std::vector<CueRecord> SwitchBoard::toggle(SwitchKind kind) {
    return isOn(kind) ? turnOff(kind) : turnOn(kind);
}

std::vector<CueRecord> SwitchBoard::turnOn(SwitchKind kind) {
    notes_.erase(kind);
    StageSystem& system = director_->system();
    if (isAction(kind)) {
        // A one-shot action: nothing to journal, nothing to undo, no timer.
        try {
            system.startScreenSaver();
        } catch (...) {
            notes_[kind] = Director::describe(std::current_exception());
        }
        changed();
        return {};
    }

    const size_t length = director_->log().size();
    // Unlike a show, a switch keeps neither the capture source nor the recorders visible.
    std::set<std::string> keep = {selfBundleID};
    if (const auto front = system.frontmostBundleID()) {
        keep.insert(*front);
    }
    keep.insert(settings.keepVisible.begin(), settings.keepVisible.end());
    const auto cues = CueSheet::cues(kind, system, keep);
    if (cues.empty()) {
        notes_[kind] = kind == SwitchKind::muteMic ? "No microphone found" : "Nothing to hide";
    }
    for (const auto& cue : cues) {
        director_->claim(cue.key, cue.value, owner(kind));
    }
    std::vector<CueRecord> records(director_->log().begin() + static_cast<std::ptrdiff_t>(length),
                                   director_->log().end());

    if (director_->keys(owner(kind)).empty()) {
        // It did not take; say why, if a step said so.
        const auto problem = std::find_if(records.begin(), records.end(), isProblem);
        if (problem != records.end()) {
            notes_[kind] = problem->outcome.label();
        }
    } else if (const auto minutes = settings.prefs(kind).autoOffMinutes) {
        // Fixed now: changing the minutes later does not move a running timer.
        expiries_.insert_or_assign(kind, clock() + static_cast<double>(*minutes) * 60);
    }
    changed();
    return records;
}

std::vector<CueRecord> SwitchBoard::turnOff(SwitchKind kind) {
    expiries_.erase(kind);
    auto records = director_->releaseAll(owner(kind));
    changed();
    return records;
}

void SwitchBoard::allOff() {
    for (const auto kind : switch_kind::allCases) {
        if (isOn(kind)) {
            expiries_.erase(kind);
            director_->releaseAll(owner(kind));
            changed();
        }
    }
}

std::vector<SwitchKind> SwitchBoard::tick() {
    const Date now = clock();
    std::vector<SwitchKind> wentOff;
    const auto due = expiries_;
    for (const auto& [kind, expiry] : due) {
        if (now >= expiry) {
            expiries_.erase(kind);
            director_->releaseAll(owner(kind));
            changed();
            wentOff.push_back(kind);
        }
    }
    if (onCount() != 0 && now - lastReconcile_ >= reconcileInterval) {
        lastReconcile_ = now;
        director_->reconcile();
    }
    // A switch whose every change the user has overridden has nothing of its own left: it
    // goes off without putting anything back over the user's choice.
    for (const auto& fullyOverridden : director_->ownersFullyOverridden()) {
        for (const auto kind : switch_kind::allCases) {
            if (owner(kind) == fullyOverridden) {
                turnOff(kind);
                wentOff.push_back(kind);
            }
        }
    }
    return wentOff;
}

std::optional<double> SwitchBoard::remaining(SwitchKind kind) const {
    const auto found = expiries_.find(kind);
    if (found == expiries_.end()) {
        return std::nullopt;
    }
    return std::max(0.0, found->second - clock());
}

} // namespace scrimlet
