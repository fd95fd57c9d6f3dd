#pragma once

// The window list as capture detection sees it, once a second: owner, layer, bounds and
// alpha of each on-screen window, never a title or a picture, so that no screen-recording
// permission is needed.

#include "CaptureModel.hpp"
#include "SystemFacilities.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace scrimlet {

/// Main thread only. Keeps the bundle identifiers of the processes it has met, since each
/// window's owner is looked up every second.
class WindowList {
public:
    /// The cache starts again when it holds this many processes, so that it cannot grow
    /// without end.
    static constexpr std::size_t cacheLimit = 401;

    explicit WindowList(std::shared_ptr<SystemFacilities> facilities);

    /// The on-screen windows, front to back. An entry without an owner as a 32-bit integer,
    /// a layer as an integer, or bounds is skipped; a missing name is empty and a missing
    /// alpha is 1.
    std::vector<WindowInfo> windows();
    /// The screens' displays with their frames; a screen without a display number is left out.
    std::vector<DisplayInfo> displays();
    /// One look at the system. Microphone and camera are asked only when calls count as
    /// sharing: otherwise they are false whatever the devices do.
    CaptureSnapshot snapshot(const DetectionOptions& options);
    /// A process's bundle identifier, from the cache when it knows the process. A process
    /// without one is asked again next time. A pid reused by another program can answer the
    /// old identifier until the cache starts again: accepted, for the cost it saves.
    std::optional<std::string> bundleID(std::int32_t pid);
    /// The number of the process's frontmost window in the normal layer.
    std::optional<std::int64_t> frontWindowNumber(std::int32_t pid);

    std::size_t cachedProcesses() const { return bundleCache_.size(); }

private:
    std::shared_ptr<SystemFacilities> facilities_;
    std::unordered_map<std::int32_t, std::string> bundleCache_;
};

} // namespace scrimlet
