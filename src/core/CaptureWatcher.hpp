#pragma once

// Window lists flicker; this turns the stream of single looks into clean events. A source
// must be seen for `startDelay` before it counts and gone for `stopDelay` before it stops
// counting. It owns no timer and no clock: the caller feeds it a snapshot and the time.
// Main thread only.

#include "CaptureModel.hpp"
#include "Date.hpp"

#include <optional>
#include <utility>

namespace scrimlet {

class CaptureWatcher {
public:
    /// What a look found out: a capture started, ended, or moved to another source.
    class Change {
    public:
        enum class Case { started, ended, switched };

        static Change started(CaptureSource source) {
            return Change(Case::started, std::nullopt, std::move(source));
        }
        static Change ended(CaptureSource source) {
            return Change(Case::ended, std::nullopt, std::move(source));
        }
        static Change switched(CaptureSource from, CaptureSource to) {
            return Change(Case::switched, std::move(from), std::move(to));
        }

        Case kind() const { return case_; }
        /// The source that started or ended, or the one a capture switched to.
        const CaptureSource& source() const { return source_; }
        /// The source a capture switched away from; nothing for the other cases.
        const std::optional<CaptureSource>& from() const { return from_; }

        friend bool operator==(const Change&, const Change&) = default;

    private:
        Change(Case c, std::optional<CaptureSource> from, CaptureSource source)
            : case_(c)
            , from_(std::move(from))
            , source_(std::move(source)) {}
        Case case_;
        std::optional<CaptureSource> from_;
        CaptureSource source_;
    };

    explicit CaptureWatcher(DetectionOptions detection = {})
        : options(std::move(detection)) {}

    /// Handed to the rules at each look; replaced when the settings change.
    DetectionOptions options;
    /// How long, in seconds, a new source must be seen before it counts.
    double startDelay = 1.5;
    /// How long, in seconds, the active source must be gone before it stops counting.
    double stopDelay = 3.0;

    /// The source now in force.
    const std::optional<CaptureSource>& active() const { return active_; }

    /// Looks once, at time `now`, and reports at most one change. Both delays are inclusive.
    std::optional<Change> observe(const CaptureSnapshot& snapshot, Date now);
    /// Forgets everything without reporting it; after a sleep all the dates are stale.
    void reset();

private:
    std::optional<Change> lost(Date now);
    std::optional<Change> saw(const CaptureSource& seen, Date now);

    std::optional<CaptureSource> active_;
    std::optional<CaptureSource> candidate_;
    std::optional<Date> candidateSince_;
    std::optional<Date> lastSeen_;
};

} // namespace scrimlet
