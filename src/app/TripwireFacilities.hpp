#pragma once

// A Mac that must not be touched, for the self check: every facility answers nothing and is
// written down by name, so that a step can fail if the real system's rules ever reached for
// the machine in a test run.

#include "Shell.hpp"
#include "SystemFacilities.hpp"

#include <string>
#include <vector>

namespace scrimlet {

class TripwireFacilities : public SystemFacilities {
public:
    /// The facilities called, by name, in order; "shortcuts" for a program run through
    /// `runner`.
    const std::vector<std::string>& calls() const { return calls_; }
    bool called(const std::string& name) const;
    /// Runs nothing: writes the run down and answers a failed start.
    Shell::Runner runner();

    std::optional<PreferenceValue> preference(const std::string& domain,
                                              const std::string& key) override;
    ScriptOutcome runAppleScript(const std::string& source) override;
    std::optional<std::int32_t> automationPermission(const std::string& bundleID) override;
    bool audioHasProperty(std::uint32_t object, PropertyAddress address) override;
    std::optional<bool> audioIsSettable(std::uint32_t object, PropertyAddress address) override;
    std::optional<std::uint32_t> audioUInt32(std::uint32_t object,
                                             PropertyAddress address) override;
    std::optional<float> audioFloat(std::uint32_t object, PropertyAddress address) override;
    std::optional<std::string> audioText(std::uint32_t object, PropertyAddress address) override;
    std::optional<std::vector<std::uint32_t>> audioObjects(std::uint32_t object,
                                                           PropertyAddress address) override;
    bool setAudioUInt32(std::uint32_t object, PropertyAddress address,
                        std::uint32_t value) override;
    bool setAudioFloat(std::uint32_t object, PropertyAddress address, float value) override;
    std::optional<std::vector<std::uint32_t>> cameraObjects(std::uint32_t object,
                                                            PropertyAddress address) override;
    std::optional<std::uint32_t> cameraUInt32(std::uint32_t object,
                                              PropertyAddress address) override;
    std::vector<std::uint32_t> onlineDisplays() override;
    std::uint32_t mainDisplayID() override;
    std::vector<DisplayMode> displayModes(std::uint32_t display) override;
    std::optional<DisplayMode> currentDisplayMode(std::uint32_t display) override;
    DisplayConfiguration configureDisplay(std::uint32_t display, const DisplayMode& mode) override;
    std::vector<std::optional<double>> screenNumbers() override;
    Rect displayBounds(std::uint32_t display) override;
    PowerAssertion createPowerAssertion(const std::string& type, std::uint32_t level,
                                        const std::string& name) override;
    void releasePowerAssertion(std::uint32_t id) override;
    std::vector<RunningApp> runningApplications() override;
    std::optional<RunningApp> runningApplication(std::int32_t pid) override;
    std::optional<RunningApp> frontmostApplication() override;
    bool setApplicationHidden(std::int32_t pid, bool hidden) override;
    void observeActivations(std::function<void(std::optional<RunningApp>)> handler) override;
    std::int32_t processID() override;
    bool open(const std::string& path) override;
    bool accessibilityTrusted() override;
    std::vector<std::optional<RawWindow>> windowList() override;
    bool sceneryIsOn(EffectKind kind) override;
    void setScenery(EffectKind kind, bool on) override;
    bool menuBarDividerInstalled() override;

private:
    void trip(const char* name) { calls_.emplace_back(name); }
    std::vector<std::string> calls_;
};

} // namespace scrimlet
