#pragma once

#include "StageSystem.hpp"
#include "SystemFacilities.hpp"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace scrimlet::testing {

/// A Mac's raw facilities as plain data, with every call written down: the name of the
/// facility and its main argument, in order.
class RecordingFacilities : public SystemFacilities {
public:
    struct AudioDevice {
        std::string uid;
        /// The mute control's value; none when the device has no mute control.
        std::optional<std::uint32_t> mute;
        bool muteSettable = true;
        /// The input volume; none when it has none.
        std::optional<float> volume;
        bool volumeSettable = true;
        /// Whether the volume can be read (a device may take a volume it will not tell).
        bool volumeReadable = true;
        bool refusesChanges = false;
        std::uint32_t running = 0;

        /// A device with a mute control that can be set.
        static AudioDevice withMute(std::string uid, std::uint32_t mute,
                                    std::optional<float> volume = std::nullopt) {
            AudioDevice device;
            device.uid = std::move(uid);
            device.mute = mute;
            device.volume = volume;
            return device;
        }
        /// A device that can be muted only by its volume.
        static AudioDevice byVolume(std::string uid, float volume) {
            AudioDevice device;
            device.uid = std::move(uid);
            device.volume = volume;
            return device;
        }
    };

    struct Display {
        std::vector<DisplayMode> modes;
        std::optional<std::int32_t> current;
        Rect bounds;
    };

    std::vector<std::string> calls;

    std::map<std::pair<std::string, std::string>, PreferenceValue> preferences;
    /// What each script gives; by default it succeeds without a result.
    std::function<ScriptOutcome(const std::string&)> script = [](const std::string&) {
        return ScriptOutcome{};
    };
    std::vector<std::string> scripts;
    std::optional<std::int32_t> automationStatus = 0;

    std::map<std::uint32_t, AudioDevice> audioDevices;
    std::optional<std::uint32_t> defaultInputDevice;
    std::map<std::uint32_t, std::uint32_t> cameras;
    bool camerasListed = true;

    std::vector<std::uint32_t> online;
    std::map<std::uint32_t, Display> displayTable;
    std::uint32_t mainDisplay = 0;
    DisplayConfiguration configuration = DisplayConfiguration::applied;
    std::vector<std::pair<std::uint32_t, std::int32_t>> configured;
    std::vector<std::optional<double>> screens;

    std::int32_t assertionStatus = 0;
    std::uint32_t nextAssertion = 7;
    std::set<std::uint32_t> assertions;

    std::vector<RunningApp> apps;
    std::optional<std::int32_t> front;
    /// Processes that say no when asked to hide or show, and whether they moved anyway.
    std::map<std::int32_t, bool> refusesToHide;
    std::function<void(std::optional<RunningApp>)> activationHandler;
    std::int32_t selfPID = 500;
    bool opens = true;
    std::vector<std::string> opened;
    bool trusted = true;

    std::vector<std::optional<RawWindow>> windows;

    std::set<EffectKind> sceneryOn;
    std::optional<std::string> sceneryFailure;
    bool divider = true;

    /// The calls made since the last look, and none after it.
    std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }

    AppInfo appInfo(std::int32_t pid) const {
        const auto& app = *findApp(pid);
        return AppInfo{app.bundleID.value_or(""), app.localizedName.value_or(""), app.pid,
                       app.isHidden, true};
    }

    // SystemFacilities
    std::optional<PreferenceValue> preference(const std::string& domain,
                                              const std::string& key) override {
        calls.push_back("preference " + domain + " " + key);
        const auto found = preferences.find({domain, key});
        if (found == preferences.end()) {
            return std::nullopt;
        }
        return found->second;
    }
    ScriptOutcome runAppleScript(const std::string& source) override {
        calls.push_back("runAppleScript");
        scripts.push_back(source);
        return script(source);
    }
    std::optional<std::int32_t> automationPermission(const std::string& bundleID) override {
        calls.push_back("automationPermission " + bundleID);
        return automationStatus;
    }

    bool audioHasProperty(std::uint32_t object, PropertyAddress address) override {
        calls.push_back("audioHasProperty");
        const auto* device = audio(object);
        return device &&
               ((address == properties::mute && device->mute) ||
                (address == properties::volume && device->volume) ||
                address == properties::deviceUID || address == properties::runningSomewhere);
    }
    std::optional<bool> audioIsSettable(std::uint32_t object, PropertyAddress address) override {
        calls.push_back("audioIsSettable");
        const auto* device = audio(object);
        if (!device) {
            return std::nullopt;
        }
        return (address == properties::mute && device->muteSettable) ||
               (address == properties::volume && device->volumeSettable);
    }
    std::optional<std::uint32_t> audioUInt32(std::uint32_t object,
                                             PropertyAddress address) override {
        calls.push_back("audioUInt32");
        if (object == properties::systemObject && address == properties::defaultInput) {
            return defaultInputDevice;
        }
        const auto* device = audio(object);
        if (!device) {
            return std::nullopt;
        }
        if (address == properties::mute) {
            return device->mute;
        }
        if (address == properties::runningSomewhere) {
            return device->running;
        }
        return std::nullopt;
    }
    std::optional<float> audioFloat(std::uint32_t object, PropertyAddress address) override {
        calls.push_back("audioFloat");
        const auto* device = audio(object);
        if (!device || address != properties::volume || !device->volumeReadable) {
            return std::nullopt;
        }
        return device->volume;
    }
    std::optional<std::string> audioText(std::uint32_t object, PropertyAddress address) override {
        calls.push_back("audioText");
        const auto* device = audio(object);
        if (!device || address != properties::deviceUID) {
            return std::nullopt;
        }
        return device->uid;
    }
    std::optional<std::vector<std::uint32_t>> audioObjects(std::uint32_t object,
                                                           PropertyAddress address) override {
        calls.push_back("audioObjects");
        if (object != properties::systemObject || address != properties::devices) {
            return std::nullopt;
        }
        std::vector<std::uint32_t> out;
        for (const auto& [id, device] : audioDevices) {
            out.push_back(id);
        }
        return out;
    }
    bool setAudioUInt32(std::uint32_t object, PropertyAddress address,
                        std::uint32_t value) override {
        calls.push_back("setAudioUInt32 " + std::to_string(value));
        auto* device = audio(object);
        if (!device || device->refusesChanges || address != properties::mute) {
            return false;
        }
        device->mute = value;
        return true;
    }
    bool setAudioFloat(std::uint32_t object, PropertyAddress address, float value) override {
        calls.push_back("setAudioFloat");
        auto* device = audio(object);
        if (!device || device->refusesChanges || address != properties::volume) {
            return false;
        }
        device->volume = value;
        return true;
    }

    std::optional<std::vector<std::uint32_t>> cameraObjects(std::uint32_t object,
                                                            PropertyAddress address) override {
        calls.push_back("cameraObjects");
        if (!camerasListed || object != properties::systemObject ||
            address != properties::devices) {
            return std::nullopt;
        }
        std::vector<std::uint32_t> out;
        for (const auto& [id, running] : cameras) {
            out.push_back(id);
        }
        return out;
    }
    std::optional<std::uint32_t> cameraUInt32(std::uint32_t object,
                                              PropertyAddress address) override {
        calls.push_back("cameraUInt32");
        const auto found = cameras.find(object);
        if (found == cameras.end() || address != properties::cameraRunningSomewhere) {
            return std::nullopt;
        }
        return found->second;
    }

    std::vector<std::uint32_t> onlineDisplays() override {
        calls.push_back("onlineDisplays");
        return online;
    }
    std::uint32_t mainDisplayID() override {
        calls.push_back("mainDisplayID");
        return mainDisplay;
    }
    std::vector<DisplayMode> displayModes(std::uint32_t display) override {
        calls.push_back("displayModes " + std::to_string(display));
        const auto found = displayTable.find(display);
        return found == displayTable.end() ? std::vector<DisplayMode>{} : found->second.modes;
    }
    std::optional<DisplayMode> currentDisplayMode(std::uint32_t display) override {
        calls.push_back("currentDisplayMode " + std::to_string(display));
        const auto found = displayTable.find(display);
        if (found == displayTable.end() || !found->second.current) {
            return std::nullopt;
        }
        for (const auto& mode : found->second.modes) {
            if (mode.ioModeID == *found->second.current) {
                return mode;
            }
        }
        return std::nullopt;
    }
    DisplayConfiguration configureDisplay(std::uint32_t display, const DisplayMode& mode) override {
        calls.push_back("configureDisplay " + std::to_string(display));
        if (configuration == DisplayConfiguration::applied) {
            configured.emplace_back(display, mode.ioModeID);
            displayTable[display].current = mode.ioModeID;
        }
        return configuration;
    }
    std::vector<std::optional<double>> screenNumbers() override {
        calls.push_back("screenNumbers");
        return screens;
    }
    Rect displayBounds(std::uint32_t display) override {
        calls.push_back("displayBounds " + std::to_string(display));
        return displayTable[display].bounds;
    }

    PowerAssertion createPowerAssertion(const std::string& type, std::uint32_t level,
                                        const std::string& name) override {
        calls.push_back("createPowerAssertion " + type + " " + std::to_string(level) + " " + name);
        if (assertionStatus != 0) {
            return {assertionStatus, 0};
        }
        assertions.insert(nextAssertion);
        return {0, nextAssertion++};
    }
    void releasePowerAssertion(std::uint32_t id) override {
        calls.push_back("releasePowerAssertion " + std::to_string(id));
        assertions.erase(id);
    }

    std::vector<RunningApp> runningApplications() override {
        calls.push_back("runningApplications");
        return apps;
    }
    std::optional<RunningApp> runningApplication(std::int32_t pid) override {
        calls.push_back("runningApplication " + std::to_string(pid));
        const auto* app = findApp(pid);
        if (!app) {
            return std::nullopt;
        }
        return *app;
    }
    std::optional<RunningApp> frontmostApplication() override {
        calls.push_back("frontmostApplication");
        if (!front) {
            return std::nullopt;
        }
        return runningApplication(*front);
    }
    bool setApplicationHidden(std::int32_t pid, bool hidden) override {
        calls.push_back(std::string(hidden ? "hide " : "unhide ") + std::to_string(pid));
        auto* app = findApp(pid);
        if (!app) {
            return false;
        }
        if (const auto refusal = refusesToHide.find(pid); refusal != refusesToHide.end()) {
            if (refusal->second) {
                app->isHidden = hidden;
            }
            return false;
        }
        app->isHidden = hidden;
        return true;
    }
    void observeActivations(std::function<void(std::optional<RunningApp>)> handler) override {
        calls.push_back("observeActivations");
        activationHandler = std::move(handler);
    }
    std::int32_t processID() override {
        calls.push_back("processID");
        return selfPID;
    }
    bool open(const std::string& path) override {
        calls.push_back("open " + path);
        opened.push_back(path);
        return opens;
    }
    bool accessibilityTrusted() override {
        calls.push_back("accessibilityTrusted");
        return trusted;
    }

    std::vector<std::optional<RawWindow>> windowList() override {
        calls.push_back("windowList");
        return windows;
    }

    bool sceneryIsOn(EffectKind kind) override {
        calls.push_back("sceneryIsOn " + std::string(rawValue(kind)));
        return sceneryOn.count(kind) > 0;
    }
    void setScenery(EffectKind kind, bool on) override {
        calls.push_back("setScenery " + std::string(rawValue(kind)));
        if (sceneryFailure) {
            throw StageError::failed(*sceneryFailure);
        }
        if (on) {
            sceneryOn.insert(kind);
        } else {
            sceneryOn.erase(kind);
        }
    }
    bool menuBarDividerInstalled() override {
        calls.push_back("menuBarDividerInstalled");
        return divider;
    }

private:
    AudioDevice* audio(std::uint32_t object) {
        const auto found = audioDevices.find(object);
        return found == audioDevices.end() ? nullptr : &found->second;
    }
    const RunningApp* findApp(std::int32_t pid) const {
        const auto found = std::find_if(apps.begin(), apps.end(),
                                        [&](const RunningApp& app) { return app.pid == pid; });
        return found == apps.end() ? nullptr : &*found;
    }
    RunningApp* findApp(std::int32_t pid) {
        return const_cast<RunningApp*>(std::as_const(*this).findApp(pid));
    }
};

/// A display mode of `width` by `height` points, `scale` pixels per point.
inline DisplayMode displayMode(std::int32_t id, std::int64_t width, std::int64_t height,
                               double scale, double rate, bool usable = true) {
    return DisplayMode{id,
                       width,
                       height,
                       static_cast<std::int64_t>(static_cast<double>(width) * scale),
                       static_cast<std::int64_t>(static_cast<double>(height) * scale),
                       rate,
                       usable,
                       nullptr};
}

} // namespace scrimlet::testing
