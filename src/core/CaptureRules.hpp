#pragma once

// The one judgement of capture detection: from a single look at the window list, which app,
// if any, is sharing or recording the screen right now. Each rule reads a mark that one kind
// of app leaves behind (a call app's frame around the shared display, a browser's sharing
// bar, the system's recording indicator), so no screen-recording permission is needed.
// Stateless and pure; smoothing over time is the watcher's job.

#include "CaptureModel.hpp"

#include <optional>

namespace scrimlet::CaptureRules {

/// The source that is capturing, or nothing. The rules run in a fixed order and the first
/// that matches decides, so that order is also the priority among several sources.
std::optional<CaptureSource> evaluate(const CaptureSnapshot& snapshot,
                                      const DetectionOptions& options);

} // namespace scrimlet::CaptureRules
