#include "CaptureRules.hpp"

#include "CaptureLimits.hpp"

#include <cmath>
#include <string>

namespace scrimlet::CaptureRules {

namespace {

using namespace CaptureLimits;

bool passesFilter(const WindowInfo& window, std::int32_t selfPID) {
    return window.ownerPID != selfPID && window.alpha > minimumAlpha &&
           window.bounds.width >= minimumSide && window.bounds.height >= minimumSide;
}

/// Walks the windows that pass the filter, in list order, and gives the first that has a
/// bundle identifier and satisfies `test`.
template <typename Test>
const WindowInfo* firstWindow(const CaptureSnapshot& snapshot, Test test) {
    for (const WindowInfo& window : snapshot.windows) {
        if (window.bundleID && passesFilter(window, snapshot.selfPID) && test(window)) {
            return &window;
        }
    }
    return nullptr;
}

template <typename Test>
bool anyDisplay(const CaptureSnapshot& snapshot, Test test) {
    for (const DisplayInfo& display : snapshot.displays) {
        if (test(display.frame)) {
            return true;
        }
    }
    return false;
}

bool isRecordingIndicator(const WindowInfo& window, const CaptureSnapshot& snapshot) {
    const Rect& bounds = window.bounds;
    if (*window.bundleID != KnownApps::screencaptureUI || window.layer < recordingLayerFrom ||
        window.layer > recordingLayerTo || bounds.height > recordingMaxHeight ||
        bounds.width > recordingMaxWidth) {
        return false;
    }
    return anyDisplay(snapshot, [&](const Rect& frame) {
        return frame.intersects(bounds) && frame.minY() - recordingBandAbove <= bounds.minY() &&
               bounds.minY() <= frame.minY() + recordingBandBelow;
    });
}

bool isCallShareFrame(const WindowInfo& window, const CaptureSnapshot& snapshot) {
    if (!KnownApps::calls().contains(*window.bundleID) || window.layer < callLayerFrom ||
        window.layer >= callLayerBelow) {
        return false;
    }
    // Measured by the overlap, so a big frame that hangs half off its display does not count.
    return anyDisplay(snapshot, [&](const Rect& frame) {
        const auto overlap = frame.intersection(window.bounds);
        return overlap && overlap->width >= callShareOfWidth * frame.width &&
               overlap->height >= callShareOfHeight * frame.height;
    });
}

bool isBrowserSharingBar(const WindowInfo& window, const CaptureSnapshot& snapshot) {
    const Rect& bounds = window.bounds;
    if (!KnownApps::browsers().contains(*window.bundleID) || window.layer < browserLayerFrom ||
        window.layer >= browserLayerBelow || bounds.height < browserMinHeight ||
        bounds.height > browserMaxHeight || bounds.width < browserMinWidth ||
        bounds.width > browserMaxWidth || bounds.width / bounds.height < browserMinRatio) {
        return false;
    }
    return anyDisplay(snapshot, [&](const Rect& frame) {
        const bool nearEdge = bounds.maxY() >= frame.maxY() - browserBottomBand ||
                              bounds.minY() <= frame.minY() + browserTopBand;
        const bool centred =
            std::abs(bounds.midX() - frame.midX()) <= browserMaxCentreOffset * frame.width;
        return frame.intersects(bounds) && nearEdge && centred;
    });
}

bool isTakeloomWindow(const WindowInfo& window) {
    if (*window.bundleID != KnownApps::takeloom) {
        return false;
    }
    const Rect& bounds = window.bounds;
    // The capture bar shows before the first frame is taken, so the stage is set in time.
    const bool captureBar = window.layer == takeloomBarLayer &&
                            bounds.width >= takeloomBarMinWidth &&
                            bounds.height <= takeloomBarMaxHeight;
    const bool squareOverlay = window.layer >= takeloomSquareLayerFrom &&
                               std::abs(bounds.width - bounds.height) < takeloomSquareSlack &&
                               bounds.width <= takeloomSquareMaxWidth;
    return captureBar || squareOverlay;
}

std::optional<CaptureSource> systemRecording(const CaptureSnapshot& snapshot) {
    const auto* window = firstWindow(
        snapshot, [&](const WindowInfo& w) { return isRecordingIndicator(w, snapshot); });
    if (!window) {
        return std::nullopt;
    }
    return CaptureSource{std::string(KnownApps::screencaptureUI), "macOS screen recording",
                         CaptureKind::systemRecording};
}

std::optional<CaptureSource> callShare(const CaptureSnapshot& snapshot) {
    const auto* window =
        firstWindow(snapshot, [&](const WindowInfo& w) { return isCallShareFrame(w, snapshot); });
    if (!window) {
        return std::nullopt;
    }
    return CaptureSource{*window->bundleID, KnownApps::calls().at(*window->bundleID),
                         CaptureKind::callShare};
}

std::optional<CaptureSource> browserShare(const CaptureSnapshot& snapshot) {
    const auto* window = firstWindow(
        snapshot, [&](const WindowInfo& w) { return isBrowserSharingBar(w, snapshot); });
    if (!window) {
        return std::nullopt;
    }
    return CaptureSource{*window->bundleID, KnownApps::browsers().at(*window->bundleID),
                         CaptureKind::browserShare};
}

std::optional<CaptureSource> takeloom(const CaptureSnapshot& snapshot) {
    if (!firstWindow(snapshot, isTakeloomWindow)) {
        return std::nullopt;
    }
    return CaptureSource{std::string(KnownApps::takeloom), "Takeloom", CaptureKind::recorder};
}

std::optional<CaptureSource> openApp(const CaptureSnapshot& snapshot,
                                     const DetectionOptions& options) {
    for (const std::string& bundleID : options.startWhenOpen) {
        if (snapshot.runningBundleIDs.contains(bundleID)) {
            return CaptureSource{bundleID, KnownApps::name(bundleID).value_or(bundleID),
                                 CaptureKind::appOpen};
        }
    }
    return std::nullopt;
}

std::optional<CaptureSource> callInProgress(const CaptureSnapshot& snapshot) {
    if (!snapshot.micInUse && !snapshot.cameraInUse) {
        return std::nullopt;
    }
    // The microphone cannot be traced to an app, so the first running call app in plain text
    // order takes the credit; the table is a map and already iterates in that order.
    for (const auto& [bundleID, name] : KnownApps::calls()) {
        if (snapshot.runningBundleIDs.contains(bundleID)) {
            return CaptureSource{bundleID, name, CaptureKind::call};
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<CaptureSource> evaluate(const CaptureSnapshot& snapshot,
                                      const DetectionOptions& options) {
    if (options.watchSystemRecording) {
        if (auto source = systemRecording(snapshot)) {
            return source;
        }
    }
    if (options.watchCalls) {
        if (auto source = callShare(snapshot)) {
            return source;
        }
    }
    if (options.watchBrowsers) {
        if (auto source = browserShare(snapshot)) {
            return source;
        }
    }
    if (options.watchTakeloom) {
        if (auto source = takeloom(snapshot)) {
            return source;
        }
    }
    if (auto source = openApp(snapshot, options)) {
        return source;
    }
    if (options.treatCallsAsSharing) {
        return callInProgress(snapshot);
    }
    return std::nullopt;
}

} // namespace scrimlet::CaptureRules
