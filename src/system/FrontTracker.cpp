#include "FrontTracker.hpp"

namespace scrimlet {

FrontTracker::FrontTracker(std::shared_ptr<SystemFacilities> facilities)
    : facilities_(std::move(facilities)) {}

void FrontTracker::start() {
    if (started_) {
        return;
    }
    started_ = true;
    if (const auto front = facilities_->frontmostApplication()) {
        remember(*front);
    }
    facilities_->observeActivations(
        [weak = weak_from_this()](const std::optional<RunningApp>& app) {
            if (const auto tracker = weak.lock()) {
                tracker->activated(app);
            }
        });
}

void FrontTracker::activated(const std::optional<RunningApp>& app) {
    if (app) {
        remember(*app);
    }
    if (onChange) {
        onChange();
    }
}

void FrontTracker::remember(const RunningApp& app) {
    if (app.pid == facilities_->processID()) {
        return;
    }
    lastOtherBundleID_ = app.bundleID;
    lastOtherPID_ = app.pid;
}

} // namespace scrimlet
