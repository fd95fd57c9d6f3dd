#import "MacFacilities.hpp"

#import "CFHolder.hpp"

#import <IOKit/pwr_mgt/IOPMLib.h>

// Power assertions through IOKit. Kept apart: this header comes from an older SDK here. The
// assertion itself is held and let go by `KeepAwake`, which releases it when it goes.

namespace scrimlet::mac {

namespace {

CFHolder<CFStringRef> cfString(const std::string &text) {
    return CFHolder<CFStringRef>::takeOver(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(text.data()),
                                static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

} // namespace

PowerAssertion MacFacilities::createPowerAssertion(const std::string &type, std::uint32_t level,
                                                   const std::string &name) {
    const auto assertionType = cfString(type);
    const auto assertionName = cfString(name);
    IOPMAssertionID id = kIOPMNullAssertionID;
    const IOReturn status =
        IOPMAssertionCreateWithName(assertionType.get(), level, assertionName.get(), &id);
    return {static_cast<std::int32_t>(status), id};
}

void MacFacilities::releasePowerAssertion(std::uint32_t id) { IOPMAssertionRelease(id); }

} // namespace scrimlet::mac
