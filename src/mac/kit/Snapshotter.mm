#include "Snapshotter.hpp"

#include <cstdio>
#include <cstdlib>

// Placeholder until the snapshots land: the run says it shot nothing, and fails.

namespace scrimlet::mac::Snapshotter {

void run(const std::string &) {
    std::fputs("Scrimlet: this build has no snapshots yet\n", stderr);
    std::exit(1);
}

} // namespace scrimlet::mac::Snapshotter
