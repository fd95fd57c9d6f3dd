#pragma once

// Which application other than this program was last in front. While the dropdown is open
// this program is in front itself, yet "the front app" must mean the one the user came from.

#include "SystemFacilities.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace scrimlet {

/// Main thread only. Made shared, because the platform's notifications reach it weakly.
class FrontTracker : public std::enable_shared_from_this<FrontTracker> {
public:
    explicit FrontTracker(std::shared_ptr<SystemFacilities> facilities);

    const std::optional<std::string>& lastOtherBundleID() const { return lastOtherBundleID_; }
    const std::optional<std::int32_t>& lastOtherPID() const { return lastOtherPID_; }
    /// Called after each activation, also when this program itself came to the front.
    std::function<void()> onChange;

    /// Takes the application in front now, then follows every activation for the life of
    /// the process. Once only.
    void start();
    /// One activation: an application other than this program is remembered, one without
    /// a bundle identifier too (with none); this program itself leaves both fields alone.
    void activated(const std::optional<RunningApp>& app);

private:
    void remember(const RunningApp& app);

    std::shared_ptr<SystemFacilities> facilities_;
    std::optional<std::string> lastOtherBundleID_;
    std::optional<std::int32_t> lastOtherPID_;
    bool started_ = false;
};

} // namespace scrimlet
