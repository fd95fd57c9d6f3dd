#include "CaptureWatcher.hpp"

#include "CaptureRules.hpp"

namespace scrimlet {

std::optional<CaptureWatcher::Change> CaptureWatcher::observe(const CaptureSnapshot& snapshot,
                                                              Date now) {
    if (auto seen = CaptureRules::evaluate(snapshot, options)) {
        return saw(*seen, now);
    }
    return lost(now);
}

void CaptureWatcher::reset() {
    active_.reset();
    candidate_.reset();
    candidateSince_.reset();
    lastSeen_.reset();
}

std::optional<CaptureWatcher::Change> CaptureWatcher::lost(Date now) {
    // A candidate that flickers out starts from nothing the next time it shows up.
    candidate_.reset();
    candidateSince_.reset();
    if (!active_ || !lastSeen_ || now - *lastSeen_ < stopDelay) {
        return std::nullopt;
    }
    auto ended = std::move(*active_);
    active_.reset();
    return Change::ended(std::move(ended));
}

std::optional<CaptureWatcher::Change> CaptureWatcher::saw(const CaptureSource& seen, Date now) {
    // Any source holds off the end of the active one, even while another serves its delay.
    lastSeen_ = now;
    // An app that renames its window mid-share is still the same capture: the name is not
    // compared here, and the active source keeps the name it started with.
    if (active_ && active_->bundleID == seen.bundleID && active_->kind == seen.kind) {
        candidate_.reset();
        return std::nullopt;
    }
    if (candidate_ != seen) {
        candidate_ = seen;
        candidateSince_ = now;
    }
    if (now - *candidateSince_ < startDelay) {
        return std::nullopt;
    }
    candidate_.reset();
    if (active_) {
        auto from = std::move(*active_);
        active_ = seen;
        return Change::switched(std::move(from), seen);
    }
    active_ = seen;
    return Change::started(seen);
}

} // namespace scrimlet
