#pragma once

#include "CaptureModel.hpp"
#include "Effects.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet {

class StageStore;

/// The size the dropdown settles at once it has laid itself out for a store.
struct DropdownSize {
    double width = 0;
    double height = 0;

    friend bool operator==(const DropdownSize&, const DropdownSize&) = default;
};

/// What only the macOS shell can do for the self check: lay out the real dropdown, and
/// read the real window list. The self check judges what it answers; the shell decides
/// nothing.
class SelfTestShell {
public:
    virtual ~SelfTestShell() = default;
    /// Lays out the dropdown for the store as it stands; its fitting size.
    virtual DropdownSize render(StageStore& store) = 0;
    /// One read-only look at the real window list, as detection takes it with its default
    /// options; nothing when it could not be read.
    virtual std::optional<CaptureSnapshot> onScreenWindows() = 0;
};

/// The program proving itself: the whole application logic runs a fixed scenario of named
/// steps on the simulated Mac, with a manual clock and real files, and reports each step.
/// A failed step is only a line and a count: the scenario always goes on to the end.
namespace SelfTest {

struct Result {
    /// "n passed, m failed" (and ", k skipped" when steps could not run here), then one
    /// line per step, each ending in a line feed.
    std::string report;
    int passed = 0;
    int failed = 0;
    int skipped = 0;
    /// 0 when no step failed, 1 otherwise.
    int exitStatus = 0;
};

/// Runs the scenario with its files in `dir` (created if needed; its folders "state" and
/// "crash" are the self check's own and start empty) and writes the report atomically to
/// "selftest.txt" there. An unwritable folder fails its steps and loses the file, but the
/// result still tells. The real system's refusals are proved wherever this runs, over
/// facilities that fail the step if they are ever reached; without a shell, the steps that
/// need the macOS shell are reported as skipped, never as passed.
Result run(const std::filesystem::path& dir, SelfTestShell* shell = nullptr);

} // namespace SelfTest

} // namespace scrimlet
