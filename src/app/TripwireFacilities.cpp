#include "TripwireFacilities.hpp"

#include <algorithm>

namespace scrimlet {

bool TripwireFacilities::called(const std::string& name) const {
    return std::find(calls_.begin(), calls_.end(), name) != calls_.end();
}

Shell::Runner TripwireFacilities::runner() {
    return [this](const std::string&, const std::vector<std::string>&, double) {
        trip("shortcuts");
        return Shell::Result{};
    };
}

std::optional<PreferenceValue> TripwireFacilities::preference(const std::string&,
                                                              const std::string&) {
    trip("preference");
    return std::nullopt;
}

ScriptOutcome TripwireFacilities::runAppleScript(const std::string&) {
    trip("runAppleScript");
    return ScriptOutcome{false, false, std::nullopt, std::nullopt, std::nullopt};
}

std::optional<std::int32_t> TripwireFacilities::automationPermission(const std::string&) {
    trip("automationPermission");
    return std::nullopt;
}

bool TripwireFacilities::audioHasProperty(std::uint32_t, PropertyAddress) {
    trip("audioHasProperty");
    return false;
}

std::optional<bool> TripwireFacilities::audioIsSettable(std::uint32_t, PropertyAddress) {
    trip("audioIsSettable");
    return std::nullopt;
}

std::optional<std::uint32_t> TripwireFacilities::audioUInt32(std::uint32_t, PropertyAddress) {
    trip("audioUInt32");
    return std::nullopt;
}

std::optional<float> TripwireFacilities::audioFloat(std::uint32_t, PropertyAddress) {
    trip("audioFloat");
    return std::nullopt;
}

std::optional<std::string> TripwireFacilities::audioText(std::uint32_t, PropertyAddress) {
    trip("audioText");
    return std::nullopt;
}

std::optional<std::vector<std::uint32_t>> TripwireFacilities::audioObjects(std::uint32_t,
                                                                           PropertyAddress) {
    trip("audioObjects");
    return std::nullopt;
}

bool TripwireFacilities::setAudioUInt32(std::uint32_t, PropertyAddress, std::uint32_t) {
    trip("setAudioUInt32");
    return false;
}

bool TripwireFacilities::setAudioFloat(std::uint32_t, PropertyAddress, float) {
    trip("setAudioFloat");
    return false;
}

std::optional<std::vector<std::uint32_t>> TripwireFacilities::cameraObjects(std::uint32_t,
                                                                            PropertyAddress) {
    trip("cameraObjects");
    return std::nullopt;
}

std::optional<std::uint32_t> TripwireFacilities::cameraUInt32(std::uint32_t, PropertyAddress) {
    trip("cameraUInt32");
    return std::nullopt;
}

std::vector<std::uint32_t> TripwireFacilities::onlineDisplays() {
    trip("onlineDisplays");
    return {};
}

std::uint32_t TripwireFacilities::mainDisplayID() {
    trip("mainDisplayID");
    return 0;
}

std::vector<DisplayMode> TripwireFacilities::displayModes(std::uint32_t) {
    trip("displayModes");
    return {};
}

std::optional<DisplayMode> TripwireFacilities::currentDisplayMode(std::uint32_t) {
    trip("currentDisplayMode");
    return std::nullopt;
}

DisplayConfiguration TripwireFacilities::configureDisplay(std::uint32_t, const DisplayMode&) {
    trip("configureDisplay");
    return DisplayConfiguration::notBegun;
}

std::vector<std::optional<double>> TripwireFacilities::screenNumbers() {
    trip("screenNumbers");
    return {};
}

Rect TripwireFacilities::displayBounds(std::uint32_t) {
    trip("displayBounds");
    return {};
}

PowerAssertion TripwireFacilities::createPowerAssertion(const std::string&, std::uint32_t,
                                                        const std::string&) {
    trip("createPowerAssertion");
    return {-1, 0};
}

void TripwireFacilities::releasePowerAssertion(std::uint32_t) {
    trip("releasePowerAssertion");
}

std::vector<RunningApp> TripwireFacilities::runningApplications() {
    trip("runningApplications");
    return {};
}

std::optional<RunningApp> TripwireFacilities::runningApplication(std::int32_t) {
    trip("runningApplication");
    return std::nullopt;
}

std::optional<RunningApp> TripwireFacilities::frontmostApplication() {
    trip("frontmostApplication");
    return std::nullopt;
}

bool TripwireFacilities::setApplicationHidden(std::int32_t, bool) {
    trip("setApplicationHidden");
    return false;
}

void TripwireFacilities::observeActivations(std::function<void(std::optional<RunningApp>)>) {
    trip("observeActivations");
}

std::int32_t TripwireFacilities::processID() {
    trip("processID");
    return 0;
}

bool TripwireFacilities::open(const std::string&) {
    trip("open");
    return false;
}

bool TripwireFacilities::accessibilityTrusted() {
    trip("accessibilityTrusted");
    return false;
}

std::vector<std::optional<RawWindow>> TripwireFacilities::windowList() {
    trip("windowList");
    return {};
}

bool TripwireFacilities::sceneryIsOn(EffectKind) {
    trip("sceneryIsOn");
    return false;
}

void TripwireFacilities::setScenery(EffectKind, bool) {
    trip("setScenery");
}

bool TripwireFacilities::menuBarDividerInstalled() {
    trip("menuBarDividerInstalled");
    return false;
}

} // namespace scrimlet
