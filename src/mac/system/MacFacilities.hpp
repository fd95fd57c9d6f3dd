#pragma once

// The Mac's own facilities behind the real system's rules. Each group of calls lives in a
// file of its own, named after the platform job (Preferences, Automation, Audio, Cameras,
// DisplayModes, Power, Workspace, WindowServer), and none of them decides anything: what a
// value means is the portable code's business. Main thread only.

#include "SystemFacilities.hpp"

#include <functional>
#include <memory>
#include <vector>

namespace scrimlet::mac {

/// How the facilities reach the program's own scenery and menu bar divider, which live in
/// the app rather than in this library (the command line has neither).
struct SceneryAccess {
    std::function<bool(EffectKind)> isOn;
    /// Throws `StageError` when it cannot.
    std::function<void(EffectKind, bool)> set;
    std::function<bool()> dividerInstalled;
};

class MacFacilities final : public SystemFacilities {
public:
    MacFacilities() = default;
    MacFacilities(const MacFacilities&) = delete;
    MacFacilities& operator=(const MacFacilities&) = delete;

    /// Until this is called, no scene is on and none can be put up.
    void connectScenery(SceneryAccess scenery) { scenery_ = std::move(scenery); }

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
    SceneryAccess scenery_;
    /// The notification registrations; each is removed when its holder goes.
    std::vector<std::shared_ptr<void>> observers_;
};

} // namespace scrimlet::mac
