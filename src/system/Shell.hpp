#pragma once

// Runs another program with a time-out and reads what it prints. Blocks the calling thread
// for the whole run, polling the child every 20 ms; used on the main thread on purpose, as
// every change to the Mac waits for its answer.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace scrimlet::Shell {

struct Result {
    /// The exit status; 128 plus the signal's number for a child killed by a signal that was
    /// not sent here; -1 when it could not be started or outlived its time-out.
    std::int32_t status = -1;
    /// What it wrote to its standard output, with ill-formed UTF-8 repaired; empty when the
    /// run failed or timed out.
    std::string output;

    friend bool operator==(const Result&, const Result&) = default;
};

/// Runs the executable at `path` (no search of PATH) with `arguments`, its standard input
/// and standard error on the null device. A child still running after `timeout` seconds
/// is terminated with everything it started, and killed if it ignores that. Never fails:
/// trouble is status -1.
Result run(const std::string& path, const std::vector<std::string>& arguments, double timeout);

/// Whatever runs programs for a caller: `run` in the app, a stand-in in checks.
using Runner = std::function<Result(const std::string& path,
                                    const std::vector<std::string>& arguments, double timeout)>;

} // namespace scrimlet::Shell
