#include "Displays.hpp"

#include "StageSystem.hpp"

#include <algorithm>
#include <cmath>

namespace scrimlet::Displays {

namespace {

constexpr double usualRefreshRate = 60.0;

bool isRetina(const DisplayMode& mode) {
    return mode.pixelWidth > mode.width;
}

// A rate that is not a number is as far from any other as can be.
double distance(const DisplayMode& mode, double rate) {
    const double apart = std::abs(mode.refreshRate - rate);
    return std::isnan(apart) ? HUGE_VAL : apart;
}

} // namespace

std::vector<std::uint32_t> online(SystemFacilities& facilities) {
    return facilities.onlineDisplays();
}

std::vector<DisplayMode> modes(SystemFacilities& facilities, std::uint32_t display) {
    return facilities.displayModes(display);
}

std::optional<DisplayMode> choose(const std::vector<DisplayMode>& modes,
                                  const std::optional<DisplayMode>& current,
                                  const ResolutionPreset& preset) {
    std::vector<DisplayMode> candidates;
    for (const auto& mode : modes) {
        if (mode.width == preset.width && mode.height == preset.height &&
            mode.usableForDesktopGUI) {
            candidates.push_back(mode);
        }
    }
    const double rate = current ? current->refreshRate : usualRefreshRate;
    std::stable_sort(candidates.begin(), candidates.end(),
                     [rate](const DisplayMode& a, const DisplayMode& b) {
                         if (isRetina(a) != isRetina(b)) {
                             return isRetina(a);
                         }
                         return distance(a, rate) < distance(b, rate);
                     });
    if (candidates.empty()) {
        return std::nullopt;
    }
    return candidates.front();
}

std::optional<DisplayMode> mode(SystemFacilities& facilities, const ResolutionPreset& preset,
                                std::uint32_t display) {
    return choose(modes(facilities, display), facilities.currentDisplayMode(display), preset);
}

void set(SystemFacilities& facilities, std::uint32_t display, std::int32_t modeID) {
    const auto all = modes(facilities, display);
    const auto found = std::find_if(
        all.begin(), all.end(), [&](const DisplayMode& mode) { return mode.ioModeID == modeID; });
    if (found == all.end()) {
        throw StageError::failed("That display mode is gone");
    }
    switch (facilities.configureDisplay(display, *found)) {
    case DisplayConfiguration::applied:
        return;
    case DisplayConfiguration::notBegun:
        throw StageError::failed("Display busy");
    case DisplayConfiguration::notCompleted:
        throw StageError::failed("The display refused that resolution");
    }
}

} // namespace scrimlet::Displays
