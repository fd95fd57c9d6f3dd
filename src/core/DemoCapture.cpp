#include "DemoCapture.hpp"

#include <optional>

#include <string>
#include <utility>

namespace scrimlet::DemoCapture {

namespace {

constexpr std::int32_t demoSelfPID = 510;

WindowInfo window(std::int32_t pid, std::string owner, std::string bundleID, std::int64_t layer,
                  Rect bounds) {
    return WindowInfo{pid, std::move(owner), std::move(bundleID), layer, bounds, 1};
}

/// The desk, with `extra` behind it if given, on the demo display, with nothing running and
/// no microphone or camera in use.
CaptureSnapshot deskWith(std::optional<WindowInfo> extra) {
    CaptureSnapshot snapshot;
    snapshot.windows = desk();
    if (extra) {
        snapshot.windows.push_back(std::move(*extra));
    }
    snapshot.displays = {display()};
    snapshot.selfPID = demoSelfPID;
    return snapshot;
}

} // namespace

DisplayInfo display() {
    return DisplayInfo{1, Rect{0, 0, 1512, 982}};
}

std::vector<WindowInfo> desk() {
    return {
        window(501, "Keynote", "com.apple.Keynote", 0, Rect{80, 60, 1200, 800}),
        window(507, "Finder", "com.apple.finder", 0, Rect{200, 200, 700, 400}),
    };
}

CaptureSnapshot idle() {
    return deskWith(std::nullopt);
}

CaptureSnapshot screenshot() {
    return deskWith(window(700, "screencaptureui", std::string(KnownApps::screencaptureUI), 1000,
                           display().frame));
}

CaptureSnapshot zoomSharing() {
    return deskWith(window(502, "zoom.us", "us.zoom.xos", 3, display().frame));
}

CaptureSnapshot chromeSharing() {
    return deskWith(window(600, "Google Chrome", "com.google.Chrome", 3, Rect{506, 900, 500, 44}));
}

} // namespace scrimlet::DemoCapture
