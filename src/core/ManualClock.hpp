#pragma once

#include "Date.hpp"

#include <memory>

namespace scrimlet {

/// A clock that moves only when told: the time of tests, demo runs and the self check.
/// Shared by whoever reads it; main thread only.
class ManualClock {
public:
    explicit ManualClock(Date start)
        : now(start) {}

    Date now;

    /// Moves the time by `seconds`; a negative number moves it back.
    void advance(double seconds) { now = now + seconds; }

    /// The engine's view of this clock: a closure that reads `now` each time it is called.
    static Clock reading(const std::shared_ptr<ManualClock>& clock) {
        return [clock] { return clock->now; };
    }
};

} // namespace scrimlet
