#include "Mic.hpp"

#include "AtomicFile.hpp"
#include "JsonCoding.hpp"
#include "StageSystem.hpp"

#include <algorithm>
#include <cmath>

namespace scrimlet::Mic {

namespace {

bool hasSettable(SystemFacilities& facilities, Device device, PropertyAddress address) {
    return facilities.audioHasProperty(device, address) &&
           facilities.audioIsSettable(device, address) == true;
}

} // namespace

std::optional<Device> defaultInput(SystemFacilities& facilities) {
    const auto device = facilities.audioUInt32(properties::systemObject, properties::defaultInput);
    if (!device || *device == 0) {
        return std::nullopt;
    }
    return *device;
}

std::vector<Device> allDevices(SystemFacilities& facilities) {
    return facilities.audioObjects(properties::systemObject, properties::devices)
        .value_or(std::vector<Device>{});
}

std::optional<std::string> uid(SystemFacilities& facilities, Device device) {
    return facilities.audioText(device, properties::deviceUID);
}

std::optional<float> volume(SystemFacilities& facilities, Device device) {
    return facilities.audioFloat(device, properties::volume);
}

std::optional<bool> isMuted(SystemFacilities& facilities, Device device) {
    if (hasSettable(facilities, device, properties::mute)) {
        const auto mute = facilities.audioUInt32(device, properties::mute);
        if (!mute) {
            return std::nullopt;
        }
        return *mute != 0;
    }
    const auto level = volume(facilities, device);
    if (!level) {
        return std::nullopt;
    }
    return *level < silence;
}

void setMuted(SystemFacilities& facilities, Device device, bool muted, const std::string& uid,
              const std::filesystem::path& levelsFile) {
    if (hasSettable(facilities, device, properties::mute)) {
        if (!facilities.setAudioUInt32(device, properties::mute, muted ? 1 : 0)) {
            throw StageError::failed("The microphone wouldn't mute");
        }
        return;
    }
    if (!hasSettable(facilities, device, properties::volume)) {
        throw StageError::failed("This microphone can't be muted");
    }
    Levels levels = loadLevels(levelsFile);
    double target = 0;
    if (muted) {
        const auto level = volume(facilities, device);
        levels[uid] = level ? static_cast<double>(*level) : fallbackLevel;
    } else {
        const auto saved = levels.find(uid);
        target = saved == levels.end() ? fallbackLevel : saved->second;
        if (saved != levels.end()) {
            levels.erase(saved);
        }
    }
    // The level reaches the disk before the device is touched.
    saveLevels(levelsFile, levels);
    if (!facilities.setAudioFloat(device, properties::volume, static_cast<float>(target))) {
        throw StageError::failed("The microphone wouldn't mute");
    }
}

bool inUse(SystemFacilities& facilities) {
    const auto device = defaultInput(facilities);
    if (!device) {
        return false;
    }
    const auto running = facilities.audioUInt32(*device, properties::runningSomewhere);
    return running && *running != 0;
}

Levels loadLevels(const std::filesystem::path& file) noexcept {
    try {
        const auto text = files::read(file);
        const auto document = text ? json::parse(*text) : std::nullopt;
        if (!document || !document->is_object()) {
            return {};
        }
        Levels levels;
        for (const auto& [uid, level] : document->items()) {
            if (level.is_number() && std::isfinite(level.get<double>())) {
                levels[uid] = std::clamp(level.get<double>(), 0.0, 1.0);
            }
        }
        return levels;
    } catch (...) {
        return {};
    }
}

void saveLevels(const std::filesystem::path& file, const Levels& levels) noexcept {
    try {
        json::Json document = json::Json::object();
        for (const auto& [uid, level] : levels) {
            document[uid] = level;
        }
        files::writeAtomically(file, json::sortedText(document));
    } catch (...) {
        // The device is muted all the same; only its level may be lost.
    }
}

} // namespace scrimlet::Mic
