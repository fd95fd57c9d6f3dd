#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

/// `scrimlet detect FILE... [--windows] [--json]`: judges saved window lists again, on any machine.
/// Each list goes through the capture rules, with the rule-by-rule explanation, and the
/// lists together go through the watcher as one list a second, so that its delays show.
/// Main thread only.
namespace scrimlet::DetectCommand {

/// The largest window list file read: a Mac with a thousand windows writes a few hundred KB.
inline constexpr std::size_t maxFileBytes = 8 * 1000 * 1000;

struct Options {
    /// Everything as one JSON document, for tools.
    bool json = false;
    /// Each list's displays and windows too, in the text.
    bool windows = false;
};

/// 0 when every file was a window list, 1 when some could not be read (the others are
/// still judged), 2 without files.
int run(const std::vector<std::string>& files, Options options, std::ostream& out,
        std::ostream& err);

} // namespace scrimlet::DetectCommand
