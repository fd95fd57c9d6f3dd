#include "WindowList.hpp"

#include "Camera.hpp"
#include "Mic.hpp"

#include <cmath>
#include <limits>

namespace scrimlet {

namespace {

// The number as an integer of the type, when it is one exactly.
template <typename Integer>
std::optional<Integer> exactly(const std::optional<double>& number) {
    using Limits = std::numeric_limits<Integer>;
    const double bound = std::ldexp(1.0, Limits::digits);
    if (!number || !std::isfinite(*number) || std::trunc(*number) != *number ||
        *number < (Limits::is_signed ? -bound : 0.0) || *number >= bound) {
        return std::nullopt;
    }
    return static_cast<Integer>(*number);
}

// The list as the rules read it: nothing at all if any entry is not a record.
std::vector<RawWindow> records(SystemFacilities& facilities) {
    auto entries = facilities.windowList();
    std::vector<RawWindow> out;
    out.reserve(entries.size());
    for (auto& entry : entries) {
        if (!entry) {
            return {};
        }
        out.push_back(std::move(*entry));
    }
    return out;
}

} // namespace

WindowList::WindowList(std::shared_ptr<SystemFacilities> facilities)
    : facilities_(std::move(facilities)) {}

std::vector<WindowInfo> WindowList::windows() {
    std::vector<WindowInfo> out;
    for (const auto& raw : records(*facilities_)) {
        const auto pid = exactly<std::int32_t>(raw.ownerPID);
        const auto layer = exactly<std::int64_t>(raw.layer);
        if (!pid || !layer || !raw.bounds) {
            continue;
        }
        out.push_back(WindowInfo{*pid, raw.ownerName.value_or(""), bundleID(*pid), *layer,
                                 *raw.bounds, raw.alpha.value_or(1.0)});
    }
    return out;
}

std::vector<DisplayInfo> WindowList::displays() {
    std::vector<DisplayInfo> out;
    for (const auto& number : facilities_->screenNumbers()) {
        if (const auto id = exactly<std::uint32_t>(number)) {
            out.push_back(DisplayInfo{*id, facilities_->displayBounds(*id)});
        }
    }
    return out;
}

CaptureSnapshot WindowList::snapshot(const DetectionOptions& options) {
    CaptureSnapshot snapshot;
    for (const auto& app : facilities_->runningApplications()) {
        if (app.bundleID) {
            snapshot.runningBundleIDs.insert(*app.bundleID);
        }
    }
    snapshot.windows = windows();
    snapshot.displays = displays();
    if (options.treatCallsAsSharing) {
        snapshot.micInUse = Mic::inUse(*facilities_);
        snapshot.cameraInUse = Camera::inUse(*facilities_);
    }
    snapshot.selfPID = facilities_->processID();
    return snapshot;
}

std::optional<std::string> WindowList::bundleID(std::int32_t pid) {
    if (const auto cached = bundleCache_.find(pid); cached != bundleCache_.end()) {
        return cached->second;
    }
    const auto app = facilities_->runningApplication(pid);
    if (!app || !app->bundleID) {
        return std::nullopt;
    }
    if (bundleCache_.size() >= cacheLimit) {
        bundleCache_.clear();
    }
    bundleCache_.emplace(pid, *app->bundleID);
    return app->bundleID;
}

std::optional<std::int64_t> WindowList::frontWindowNumber(std::int32_t pid) {
    for (const auto& raw : records(*facilities_)) {
        if (exactly<std::int32_t>(raw.ownerPID) == pid && exactly<std::int64_t>(raw.layer) == 0) {
            return exactly<std::int64_t>(raw.number);
        }
    }
    return std::nullopt;
}

} // namespace scrimlet
