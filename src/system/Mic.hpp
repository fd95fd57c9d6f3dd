#pragma once

// The microphones, through Core Audio: which is the default input, whether one is muted or
// in use, and muting it. A device without a mute control is muted by turning its input
// volume down; its level is kept in "mic-levels.json" until it is unmuted, so that even a
// crash between the two does not lose the user's level.

#include "SystemFacilities.hpp"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet::Mic {

using Device = std::uint32_t;
/// Saved levels of muted microphones by device identifier, each from 0.0 to 1.0.
using Levels = std::map<std::string, double>;

/// The level a microphone goes back to when its own was never known.
inline constexpr double fallbackLevel = 0.75;
/// Below this a volume counts as muted.
inline constexpr double silence = 0.001;

std::optional<Device> defaultInput(SystemFacilities& facilities);
/// Every audio device, outputs too.
std::vector<Device> allDevices(SystemFacilities& facilities);
std::optional<std::string> uid(SystemFacilities& facilities, Device device);
std::optional<float> volume(SystemFacilities& facilities, Device device);
/// By its mute control where it has one that can be set, otherwise by its volume.
std::optional<bool> isMuted(SystemFacilities& facilities, Device device);
/// Mutes or unmutes, keeping the level in `levelsFile` for a device muted by volume. Throws
/// `StageError::failed` when the device refuses or cannot be muted at all.
void setMuted(SystemFacilities& facilities, Device device, bool muted, const std::string& uid,
              const std::filesystem::path& levelsFile);
/// Whether some process is using the default input.
bool inUse(SystemFacilities& facilities);

/// The saved levels; empty when the file is missing or damaged, and without the entries
/// that are not levels.
Levels loadLevels(const std::filesystem::path& file) noexcept;
/// Written atomically, with its folder created; a failure is dropped.
void saveLevels(const std::filesystem::path& file, const Levels& levels) noexcept;

} // namespace scrimlet::Mic
