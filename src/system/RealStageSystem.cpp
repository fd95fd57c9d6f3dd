#include "RealStageSystem.hpp"

#include "AppleScript.hpp"
#include "AsciiText.hpp"
#include "CaptureModel.hpp"
#include "Displays.hpp"
#include "Mic.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace scrimlet {

namespace {

constexpr const char* dockDomain = "com.apple.dock";

// A stored boolean; a number reads as one only when it is exactly 0 or 1.
std::optional<bool> asBool(const std::optional<PreferenceValue>& value) {
    if (!value) {
        return std::nullopt;
    }
    if (const auto* flag = std::get_if<bool>(&*value)) {
        return *flag;
    }
    if (const auto* number = std::get_if<double>(&*value);
        number && (*number == 0 || *number == 1)) {
        return *number == 1;
    }
    return std::nullopt;
}

// A display identifier in decimal, with nothing else around it.
std::optional<std::uint32_t> parseDisplay(const std::string& target) {
    std::string_view digits = target;
    if (!digits.empty() && digits.front() == '+') {
        digits.remove_prefix(1);
    }
    if (digits.empty() || digits.front() < '0' || digits.front() > '9') {
        return std::nullopt;
    }
    std::uint32_t display = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), display);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        return std::nullopt;
    }
    return display;
}

std::string systemEventsScript(EffectKind kind, bool on) {
    const std::string flag = on ? "true" : "false";
    if (kind == EffectKind::dockAutohide) {
        return "tell application \"System Events\" to set autohide of dock preferences to " + flag;
    }
    return "tell application \"System Events\" to tell appearance preferences to set dark mode "
           "to " +
           flag;
}

} // namespace

RealStageSystem::RealStageSystem(std::shared_ptr<SystemFacilities> facilities, Options options)
    : selfBundleID(options.selfBundleID.empty() ? std::string(KnownApps::scrimlet)
                                                : options.selfBundleID)
    , facilities_(std::move(facilities))
    , isTestRun_(options.isTestRun ? std::move(options.isTestRun) : [] { return true; })
    , micLevelsFile_(std::move(options.micLevelsFile))
    , frontTracker_(std::move(options.frontTracker))
    , shortcuts_(std::move(options.shortcuts), isTestRun_)
    , keepAwake_(facilities_, isTestRun_) {}

std::optional<JournalValue> RealStageSystem::read(const EffectKey& key) {
    switch (key.kind) {
    case EffectKind::dockAutohide: {
        const auto value = facilities_->preference(dockDomain, "autohide");
        return JournalValue::boolean(asBool(value).value_or(false));
    }
    case EffectKind::darkMode: {
        const auto value =
            facilities_->preference(SystemFacilities::anyApplication, "AppleInterfaceStyle");
        const auto* style = value ? std::get_if<std::string>(&*value) : nullptr;
        return JournalValue::boolean(style && ascii::lowercased(*style) == "dark");
    }
    case EffectKind::alertVolume: {
        const auto volume =
            AppleScript::number(*facilities_, testRun(), "alert volume of (get volume settings)");
        if (!volume) {
            return std::nullopt;
        }
        return JournalValue::number(*volume / 100.0);
    }
    case EffectKind::micMute: {
        const auto device = micDevice(key.target);
        const auto muted = device ? Mic::isMuted(*facilities_, *device) : std::nullopt;
        if (!muted) {
            return std::nullopt;
        }
        return JournalValue::boolean(*muted);
    }
    case EffectKind::doNotDisturb:
        // A Focus cannot be read; only switching it tells what it was.
        return std::nullopt;
    case EffectKind::appHidden: {
        const auto running = app(key.target);
        if (!running) {
            return std::nullopt;
        }
        return JournalValue::boolean(running->isHidden);
    }
    case EffectKind::displayMode: {
        const auto display = onlineDisplay(key.target);
        const auto current = display ? facilities_->currentDisplayMode(*display) : std::nullopt;
        if (!current) {
            return std::nullopt;
        }
        return JournalValue::number(current->ioModeID);
    }
    case EffectKind::keepAwake:
        return JournalValue::boolean(keepAwake_.isHolding());
    case EffectKind::desktopIcons:
    case EffectKind::backdrop:
    case EffectKind::menuBarTidy:
    case EffectKind::spotlight:
    case EffectKind::keyboardLock:
        return JournalValue::boolean(facilities_->sceneryIsOn(key.kind));
    }
    return std::nullopt;
}

std::optional<JournalValue> RealStageSystem::write(const EffectKey& key,
                                                   const JournalValue& value) {
    if (testRun()) {
        throw StageError::refusedInTestRun();
    }
    const bool on = value.boolValue().value_or(false);
    switch (key.kind) {
    case EffectKind::dockAutohide:
    case EffectKind::darkMode:
        runSystemEventsScript(systemEventsScript(key.kind, on));
        return std::nullopt;
    case EffectKind::alertVolume: {
        const auto volume = value.numberValue();
        if (!volume || !std::isfinite(*volume)) {
            throw StageError::failed("bad value");
        }
        // In whole steps from 0 to 100, halves away from zero: 0.125 is 13.
        const long long steps = std::llround(std::clamp(*volume * 100, 0.0, 100.0));
        AppleScript::run(*facilities_, "set volume alert volume " + std::to_string(steps));
        return std::nullopt;
    }
    case EffectKind::micMute: {
        const auto device = micDevice(key.target);
        if (!device) {
            throw StageError::targetGone();
        }
        Mic::setMuted(*facilities_, *device, on, key.target, micLevelsFile_);
        return std::nullopt;
    }
    case EffectKind::doNotDisturb: {
        const StageSettings current = settings();
        return shortcuts_.run(on ? current.focusOnShortcut : current.focusOffShortcut);
    }
    case EffectKind::appHidden:
        hide(key, on);
        return std::nullopt;
    case EffectKind::displayMode: {
        const auto display = onlineDisplay(key.target);
        if (!display) {
            throw StageError::targetGone();
        }
        const auto mode = value.numberValue();
        if (!mode || !std::isfinite(*mode) ||
            *mode < static_cast<double>(std::numeric_limits<std::int32_t>::min()) ||
            *mode > static_cast<double>(std::numeric_limits<std::int32_t>::max())) {
            throw StageError::failed("bad value");
        }
        Displays::set(*facilities_, *display, static_cast<std::int32_t>(*mode));
        return std::nullopt;
    }
    case EffectKind::keepAwake:
        if (on) {
            keepAwake_.hold();
        } else {
            keepAwake_.release();
        }
        return std::nullopt;
    case EffectKind::desktopIcons:
    case EffectKind::backdrop:
    case EffectKind::menuBarTidy:
    case EffectKind::spotlight:
    case EffectKind::keyboardLock:
        facilities_->setScenery(key.kind, on);
        return std::nullopt;
    }
    return std::nullopt;
}

Availability RealStageSystem::availability(EffectKind kind) {
    switch (kind) {
    case EffectKind::dockAutohide:
    case EffectKind::darkMode: {
        if (testRun()) {
            return Availability::ready();
        }
        const auto status = facilities_->automationPermission(AppleScript::systemEvents);
        if (status == AppleScript::notPermitted) {
            return Availability::needsPermission("Allow Scrimlet to control System Events in "
                                                 "System Settings › Privacy & Security › "
                                                 "Automation");
        }
        return Availability::ready();
    }
    case EffectKind::micMute:
        if (!Mic::defaultInput(*facilities_)) {
            return Availability::unavailable("No microphone");
        }
        return Availability::ready();
    case EffectKind::doNotDisturb: {
        const StageSettings current = settings();
        const auto names = shortcuts_.installed(false);
        if (names.count(current.focusOnShortcut) && names.count(current.focusOffShortcut)) {
            return Availability::ready();
        }
        return Availability::needsSetup("Add the two Scrimlet shortcuts (Settings › Quiet)");
    }
    case EffectKind::menuBarTidy:
        if (facilities_->menuBarDividerInstalled()) {
            return Availability::ready();
        }
        return Availability::needsSetup("Turn on the menu bar divider (Settings › Menu Bar)");
    case EffectKind::keyboardLock:
        if (facilities_->accessibilityTrusted()) {
            return Availability::ready();
        }
        return Availability::needsPermission(
            "Allow Scrimlet in System Settings › Privacy & Security › Accessibility");
    default:
        return Availability::ready();
    }
}

std::vector<AppInfo> RealStageSystem::runningApps() {
    std::vector<AppInfo> out;
    for (const auto& app : facilities_->runningApplications()) {
        if (!app.bundleID || app.policy != RunningApp::Policy::regular || app.isTerminated) {
            continue;
        }
        out.push_back(AppInfo{*app.bundleID, app.localizedName.value_or(*app.bundleID), app.pid,
                              app.isHidden, true});
    }
    return out;
}

std::optional<std::string> RealStageSystem::frontmostBundleID() {
    if (!frontTracker_) {
        return std::nullopt;
    }
    return frontTracker_->lastOtherBundleID();
}

std::vector<std::uint32_t> RealStageSystem::displays() {
    return Displays::online(*facilities_);
}

std::optional<JournalValue> RealStageSystem::displayModeValue(const ResolutionPreset& preset,
                                                              std::uint32_t display) {
    const auto mode = Displays::mode(*facilities_, preset, display);
    if (!mode) {
        return std::nullopt;
    }
    return JournalValue::number(mode->ioModeID);
}

std::optional<std::uint32_t> RealStageSystem::mainDisplay() {
    const std::uint32_t display = facilities_->mainDisplayID();
    if (display == 0) {
        return std::nullopt;
    }
    return display;
}

std::optional<std::string> RealStageSystem::defaultInputDevice() {
    const auto device = Mic::defaultInput(*facilities_);
    if (!device) {
        return std::nullopt;
    }
    return Mic::uid(*facilities_, *device);
}

void RealStageSystem::startScreenSaver() {
    if (testRun()) {
        throw StageError::refusedInTestRun();
    }
    if (!facilities_->open(screenSaverPath)) {
        throw StageError::failed("Couldn't start the screen saver");
    }
}

std::optional<RunningApp> RealStageSystem::app(const std::string& target) {
    const auto parsed = AppTarget::parse(target);
    if (!parsed) {
        return std::nullopt;
    }
    auto running = facilities_->runningApplication(parsed->pid);
    if (!running || running->bundleID != parsed->bundleID || running->isTerminated) {
        return std::nullopt;
    }
    return running;
}

std::optional<std::uint32_t> RealStageSystem::onlineDisplay(const std::string& target) {
    const auto display = parseDisplay(target);
    if (!display) {
        return std::nullopt;
    }
    const auto online = Displays::online(*facilities_);
    if (std::find(online.begin(), online.end(), *display) == online.end()) {
        return std::nullopt;
    }
    return display;
}

std::optional<std::uint32_t> RealStageSystem::micDevice(const std::string& uid) {
    for (const auto device : Mic::allDevices(*facilities_)) {
        if (Mic::uid(*facilities_, device) == uid) {
            return device;
        }
    }
    return std::nullopt;
}

void RealStageSystem::runSystemEventsScript(const std::string& source) {
    // Asked again at the last moment: these two scripts change settings that outlive the
    // program, and nothing may reach them from a scripted run.
    if (testRun()) {
        throw StageError::refusedInTestRun();
    }
    AppleScript::run(*facilities_, source);
}

void RealStageSystem::hide(const EffectKey& key, bool hidden) {
    const auto running = app(key.target);
    if (!running) {
        throw StageError::targetGone();
    }
    if (facilities_->setApplicationHidden(running->pid, hidden)) {
        return;
    }
    // A refusal with the app already as asked is no failure.
    const auto after = app(key.target);
    if (!after) {
        throw StageError::targetGone();
    }
    if (after->isHidden != hidden) {
        throw StageError::failed(running->localizedName.value_or("The app") + " wouldn't " +
                                 (hidden ? "hide" : "show"));
    }
}

} // namespace scrimlet
