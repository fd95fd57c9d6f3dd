#pragma once

// Do Not Disturb through two shortcuts the user made, since the platform offers no way to
// set or read a Focus. Each shortcut prints what the Focus was before it acted, which is the
// only way the journal can learn the value to go back to.

#include "Date.hpp"
#include "Effects.hpp"
#include "Shell.hpp"

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace scrimlet {

/// Main thread only. The listing is cached for a minute, because availability asks for it
/// on every claim and a listing takes a process.
class FocusShortcuts {
public:
    struct Options {
        /// The command-line tool that lists and runs shortcuts.
        std::string tool = "/usr/bin/shortcuts";
        Clock clock = Date::now;
        Shell::Runner runner = Shell::run;
        /// Where a shortcut writes its output; the system's temporary folder when empty.
        std::filesystem::path temporaryFolder;
        /// Seconds a listing and a shortcut's run may take.
        double listingTimeout = 10;
        double runTimeout = 20;
    };

    static constexpr double listingLifetime = 60;

    FocusShortcuts(Options options, std::function<bool()> isTestRun);

    /// The names of the user's shortcuts. Empty in a test run, which leaves the cache alone;
    /// otherwise a listing younger than a minute answers unless `refresh`. A listing that
    /// failed is cached as empty like any other.
    std::set<std::string> installed(bool refresh);
    /// Runs the shortcut and answers what its output says the Focus was before: nothing when
    /// it printed nothing. Throws `StageError` when it did not run or this is a test run.
    std::optional<JournalValue> run(const std::string& name);
    /// Blank output is unknown; "none", "off", "no", "false" or "0" in any case mean the
    /// Focus was off; any other text names a Focus that was on.
    static std::optional<JournalValue> parse(std::string_view text);

    /// When the cached listing was taken; nothing before the first.
    std::optional<Date> listedAt() const;

private:
    Options options_;
    std::function<bool()> isTestRun_;
    std::optional<std::pair<Date, std::set<std::string>>> cache_;
};

} // namespace scrimlet
