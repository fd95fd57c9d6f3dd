#pragma once

#include "CaptureModel.hpp"

#include <functional>
#include <string>

namespace scrimlet {

/// The live window list behind `scrimlet windows`. Only a Mac has one: the macOS build hands
/// it to the command line, which elsewhere goes without and says so. Main thread only.
struct LiveWindowList {
    /// One look now, taken exactly as the app's main loop takes it. The command asks with
    /// `treatCallsAsSharing` on, so that the microphone and camera are always looked at.
    std::function<CaptureSnapshot(const DetectionOptions& options)> snapshot;
    /// The system's name and version as it gives them: "macOS 26.0 (25A354)".
    std::function<std::string()> systemVersion;
};

} // namespace scrimlet
