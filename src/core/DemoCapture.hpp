#pragma once

// The scripted window lists of demo runs: one display, a desk of two ordinary windows, and
// three moments that each add one window behind them. The driver of a demo run feeds these
// to the capture watcher in place of the real window list.

#include "CaptureModel.hpp"

#include <vector>

namespace scrimlet::DemoCapture {

/// The one display of a demo run: id 1, 1512 × 982 at the origin.
DisplayInfo display();
/// Keynote and the Finder at layer 0, in that order.
std::vector<WindowInfo> desk();
/// The desk alone, with nothing capturing: what the window list shows between captures.
CaptureSnapshot idle();
/// The system's screen-capture interface over the whole display, as during a screenshot.
/// Not a capture.
CaptureSnapshot screenshot();
/// Zoom's frame around the shared display.
CaptureSnapshot zoomSharing();
/// Chrome's sharing bar near the bottom of the display.
CaptureSnapshot chromeSharing();

} // namespace scrimlet::DemoCapture
