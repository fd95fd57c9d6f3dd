#include "KeepAwake.hpp"

#include "StageSystem.hpp"

namespace scrimlet {

KeepAwake::KeepAwake(std::shared_ptr<SystemFacilities> facilities, std::function<bool()> isTestRun)
    : facilities_(std::move(facilities))
    , isTestRun_(std::move(isTestRun)) {}

KeepAwake::~KeepAwake() {
    release();
}

void KeepAwake::hold() {
    if (isTestRun_()) {
        throw StageError::refusedInTestRun();
    }
    if (isHolding()) {
        return;
    }
    const PowerAssertion assertion =
        facilities_->createPowerAssertion(assertionType, assertionOn, assertionName);
    if (assertion.status != 0) {
        throw StageError::failed("Couldn't keep the Mac awake");
    }
    id_ = assertion.id;
}

void KeepAwake::release() {
    if (!isHolding()) {
        return;
    }
    facilities_->releasePowerAssertion(id_);
    id_ = 0;
}

} // namespace scrimlet
