#import "MacFacilities.hpp"

#import <CoreMediaIO/CMIOHardware.h>

// The cameras, through CoreMediaIO. Kept apart: these headers come from an older SDK here.

namespace scrimlet::mac {

namespace {

static_assert(properties::systemObject == kCMIOObjectSystemObject);
static_assert(properties::devices.selector == kCMIOHardwarePropertyDevices);
static_assert(properties::devices.scope == kCMIOObjectPropertyScopeGlobal);
static_assert(properties::cameraRunningSomewhere.selector ==
              kCMIODevicePropertyDeviceIsRunningSomewhere);
static_assert(properties::cameraRunningSomewhere.scope == kCMIOObjectPropertyScopeWildcard);
static_assert(properties::cameraRunningSomewhere.element == kCMIOObjectPropertyElementWildcard);

CMIOObjectPropertyAddress address(PropertyAddress property) {
    return {property.selector, property.scope, property.element};
}

} // namespace

std::optional<std::vector<std::uint32_t>> MacFacilities::cameraObjects(std::uint32_t object,
                                                                       PropertyAddress property) {
    const CMIOObjectPropertyAddress where = address(property);
    UInt32 size = 0;
    if (CMIOObjectGetPropertyDataSize(object, &where, 0, nullptr, &size) != noErr) {
        return std::nullopt;
    }
    std::vector<CMIOObjectID> objects(size / sizeof(CMIOObjectID));
    if (objects.empty()) {
        return std::vector<std::uint32_t>{};
    }
    UInt32 used = 0;
    if (CMIOObjectGetPropertyData(object, &where, 0, nullptr,
                                  static_cast<UInt32>(objects.size() * sizeof(CMIOObjectID)), &used,
                                  objects.data()) != noErr) {
        return std::nullopt;
    }
    objects.resize(used / sizeof(CMIOObjectID));
    return std::vector<std::uint32_t>(objects.begin(), objects.end());
}

std::optional<std::uint32_t> MacFacilities::cameraUInt32(std::uint32_t object,
                                                         PropertyAddress property) {
    const CMIOObjectPropertyAddress where = address(property);
    UInt32 answer = 0;
    UInt32 used = 0;
    if (CMIOObjectGetPropertyData(object, &where, 0, nullptr, sizeof answer, &used, &answer) !=
            noErr ||
        used != sizeof answer) {
        return std::nullopt;
    }
    return answer;
}

} // namespace scrimlet::mac
