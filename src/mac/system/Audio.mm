#import "MacFacilities.hpp"

#import "CFHolder.hpp"

#import <CoreAudio/CoreAudio.h>

// Core Audio properties, read and set as they are asked for; a failed call is no answer.

namespace scrimlet::mac {

namespace {

static_assert(properties::systemObject == kAudioObjectSystemObject);
static_assert(properties::defaultInput.selector == kAudioHardwarePropertyDefaultInputDevice);
static_assert(properties::devices.selector == kAudioHardwarePropertyDevices);
static_assert(properties::deviceUID.selector == kAudioDevicePropertyDeviceUID);
static_assert(properties::runningSomewhere.selector ==
              kAudioDevicePropertyDeviceIsRunningSomewhere);
static_assert(properties::mute.selector == kAudioDevicePropertyMute);
static_assert(properties::volume.selector == kAudioDevicePropertyVolumeScalar);
static_assert(properties::mute.scope == kAudioObjectPropertyScopeInput);
static_assert(properties::deviceUID.scope == kAudioObjectPropertyScopeGlobal);
static_assert(properties::mute.element == kAudioObjectPropertyElementMain);

AudioObjectPropertyAddress address(PropertyAddress property) {
    return {property.selector, property.scope, property.element};
}

// A value of exactly the type's size; nothing when the call fails or answers another size.
template <typename Value>
std::optional<Value> value(std::uint32_t object, PropertyAddress property) {
    const AudioObjectPropertyAddress where = address(property);
    Value answer{};
    UInt32 size = sizeof answer;
    if (AudioObjectGetPropertyData(object, &where, 0, nullptr, &size, &answer) != noErr ||
        size != sizeof answer) {
        return std::nullopt;
    }
    return answer;
}

template <typename Value>
bool setValue(std::uint32_t object, PropertyAddress property, Value newValue) {
    const AudioObjectPropertyAddress where = address(property);
    return AudioObjectSetPropertyData(object, &where, 0, nullptr, sizeof newValue, &newValue) ==
           noErr;
}

} // namespace

bool MacFacilities::audioHasProperty(std::uint32_t object, PropertyAddress property) {
    const AudioObjectPropertyAddress where = address(property);
    return AudioObjectHasProperty(object, &where);
}

std::optional<bool> MacFacilities::audioIsSettable(std::uint32_t object, PropertyAddress property) {
    const AudioObjectPropertyAddress where = address(property);
    Boolean settable = false;
    if (AudioObjectIsPropertySettable(object, &where, &settable) != noErr) {
        return std::nullopt;
    }
    return settable != 0;
}

std::optional<std::uint32_t> MacFacilities::audioUInt32(std::uint32_t object,
                                                        PropertyAddress property) {
    return value<UInt32>(object, property);
}

std::optional<float> MacFacilities::audioFloat(std::uint32_t object, PropertyAddress property) {
    return value<Float32>(object, property);
}

std::optional<std::string> MacFacilities::audioText(std::uint32_t object,
                                                    PropertyAddress property) {
    const auto string = value<CFStringRef>(object, property);
    if (!string) {
        return std::nullopt;
    }
    // The caller owns the string the property hands out.
    const auto owned = CFHolder<CFStringRef>::takeOver(*string);
    return textValue(owned.get());
}

std::optional<std::vector<std::uint32_t>> MacFacilities::audioObjects(std::uint32_t object,
                                                                      PropertyAddress property) {
    const AudioObjectPropertyAddress where = address(property);
    UInt32 size = 0;
    if (AudioObjectGetPropertyDataSize(object, &where, 0, nullptr, &size) != noErr) {
        return std::nullopt;
    }
    std::vector<AudioObjectID> objects(size / sizeof(AudioObjectID));
    if (objects.empty()) {
        return std::vector<std::uint32_t>{};
    }
    size = static_cast<UInt32>(objects.size() * sizeof(AudioObjectID));
    if (AudioObjectGetPropertyData(object, &where, 0, nullptr, &size, objects.data()) != noErr) {
        return std::nullopt;
    }
    // The list may have shrunk between the two calls.
    objects.resize(size / sizeof(AudioObjectID));
    return std::vector<std::uint32_t>(objects.begin(), objects.end());
}

bool MacFacilities::setAudioUInt32(std::uint32_t object, PropertyAddress property,
                                   std::uint32_t newValue) {
    return setValue<UInt32>(object, property, newValue);
}

bool MacFacilities::setAudioFloat(std::uint32_t object, PropertyAddress property, float newValue) {
    return setValue<Float32>(object, property, newValue);
}

} // namespace scrimlet::mac
