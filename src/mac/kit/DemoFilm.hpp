#pragma once

// The Mac's side of a demo film: the camera that captures this app's windows and draws each
// frame, the run loop's time, the screens, and the anchors the views report. Main thread
// only.

#include "Color.hpp"
#include "DemoRecorder.hpp"

#include <memory>
#include <vector>

namespace scrimlet::mac::DemoFilm {

/// Everything a `vantrel::DemoRecorder` needs on this Mac; `backdrop` are the colours behind
/// the windows, from the top down.
vantrel::DemoRecorder::Services services(std::vector<Color> backdrop);

/// The displays, in global points with the origin at the top left of the main one.
std::vector<vantrel::DemoScreen> screens();

/// Where the views have said they are, for the script to point at.
std::shared_ptr<vantrel::DemoAnchors> anchors();

} // namespace scrimlet::mac::DemoFilm
