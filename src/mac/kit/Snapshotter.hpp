#pragma once

// The scripted run that photographs every view in both appearances. Main thread only.

#include <string>

namespace scrimlet::mac::Snapshotter {

/// Shoots every view into `dir`, then ends the process unless "SCRIMLET_SNAPSHOT_STAY" is
/// set.
void run(const std::string& dir);

} // namespace scrimlet::mac::Snapshotter
