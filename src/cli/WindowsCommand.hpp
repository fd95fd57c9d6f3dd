#pragma once

#include "Date.hpp"
#include "Harness.hpp"
#include "LiveWindowList.hpp"

#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <string>

/// `scrimlet windows [--save FILE] [--label TEXT] [--watch]`: the live window list as capture
/// detection sees it, the verdict and why; with --watch, what the watcher decides once a
/// second until Ctrl-C. What a user attaches to "Scrimlet didn't notice my share". Main
/// thread only.
namespace scrimlet::WindowsCommand {

/// How the watch keeps time. The command waits for termination signals on the wall clock;
/// tests hand in their own.
struct Pacing {
    /// Waits up to the given seconds; false when the watch must end.
    std::function<bool(double seconds)> wait;
    Clock clock;
};

/// `values` holds "--save" and "--label" as given. The options are the user's, from the
/// settings in `environment`'s support folder. Without `live` (anywhere but on a Mac) it
/// says that it needs one and answers 1.
int run(const std::map<std::string, std::string>& values, bool watch,
        const Harness::Environment& environment, const LiveWindowList* live, std::ostream& out,
        std::ostream& err, std::optional<Pacing> pacing = std::nullopt);

} // namespace scrimlet::WindowsCommand
