#pragma once

#include <optional>
#include <signal.h>

namespace scrimlet {

/// Brings SIGTERM, SIGINT and SIGHUP to the main loop instead of ending the process at once,
/// so that a kill, a Ctrl-C or a closed terminal still puts the Mac back. The handler does
/// nothing but write the signal's number to a pipe, which is all a handler may safely do;
/// the main loop reads it while it waits and acts on it in its own time. One instance at a
/// time; the handlers that were there before come back when it goes. Main thread only.
class TerminationSignals {
public:
    /// Installs the handlers. Throws `std::system_error` when the pipe cannot be made and
    /// `std::logic_error` when another instance is alive.
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Waits up to `seconds` for a termination signal; the signal's number once one has
    /// arrived (now or earlier), nothing when the time ran out. Zero seconds only looks.
    std::optional<int> wait(double seconds);
    /// Whether a termination signal has arrived, without waiting.
    std::optional<int> received() { return wait(0); }

private:
    int readEnd_ = -1;
    int writeEnd_ = -1;
    std::optional<int> received_;
    struct sigaction previous_[3] = {};
};

} // namespace scrimlet
