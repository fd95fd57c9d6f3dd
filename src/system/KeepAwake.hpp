#pragma once

// Keeps the display from sleeping while the curtain is up, with one power assertion that
// the platform drops by itself when the process dies.

#include "SystemFacilities.hpp"

#include <cstdint>
#include <functional>
#include <memory>

namespace scrimlet {

/// Main thread only. One per process; the assertion is released when it goes.
class KeepAwake {
public:
    static constexpr const char* assertionType = "PreventUserIdleDisplaySleep";
    static constexpr std::uint32_t assertionOn = 255;
    static constexpr const char* assertionName = "Scrimlet: on stage";

    KeepAwake(std::shared_ptr<SystemFacilities> facilities, std::function<bool()> isTestRun);
    ~KeepAwake();
    KeepAwake(const KeepAwake&) = delete;
    KeepAwake& operator=(const KeepAwake&) = delete;

    /// Takes the assertion unless it is held already. Throws `StageError` when it cannot, or
    /// in a test run.
    void hold();
    /// Lets the assertion go, if it is held.
    void release();
    bool isHolding() const { return id_ != 0; }

private:
    std::shared_ptr<SystemFacilities> facilities_;
    std::function<bool()> isTestRun_;
    std::uint32_t id_ = 0;
};

} // namespace scrimlet
