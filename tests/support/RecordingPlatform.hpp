#pragma once

#include "StagePlatform.hpp"
#include "StageStore.hpp"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace scrimlet::testing {

/// A platform that does nothing but write down what the store asked of it, serve a
/// scripted window list, and keep the callbacks it was given so that a test can fire them.
class RecordingPlatform : public StagePlatform {
public:
    std::vector<std::string> calls;
    CaptureSnapshot snapshot;
    int snapshots = 0;
    std::set<std::uint32_t> taken; ///< Hotkey identifiers another app already holds.
    std::vector<HotkeyEntry> hotkeys;
    SceneryHooks hooks;
    NotificationHandlers handlers;
    std::function<void()> timer;
    bool backdropOnScreen = false;
    bool fromAppBundle = true;
    std::optional<std::string> loginItemFailure;
    std::optional<std::string> bundleIdentifier = "app.vantrel.scrimlet";

    size_t count(const std::string& call) const {
        return static_cast<size_t>(std::count(calls.begin(), calls.end(), call));
    }

    void startFrontTracker() override { calls.push_back("startFrontTracker"); }
    void installSceneryHooks(SceneryHooks given) override {
        hooks = std::move(given);
        calls.push_back("installSceneryHooks");
    }
    void setMenuBarDividerInstalled(bool installed) override {
        calls.push_back(std::string("setMenuBarDividerInstalled ") + (installed ? "on" : "off"));
    }
    void installStatusItem(StageStore&) override { calls.push_back("installStatusItem"); }
    std::vector<std::uint32_t> registerHotkeys(std::vector<HotkeyEntry> entries) override {
        calls.push_back("registerHotkeys " + std::to_string(entries.size()));
        hotkeys = std::move(entries);
        std::vector<std::uint32_t> failed;
        for (const auto& entry : hotkeys) {
            if (taken.count(entry.identifier)) {
                failed.push_back(entry.identifier);
            }
        }
        return failed;
    }
    void observeNotifications(NotificationHandlers given) override {
        handlers = std::move(given);
        calls.push_back("observeNotifications");
    }
    void startTimer(double interval, double tolerance, std::function<void()> fire) override {
        timer = std::move(fire);
        calls.push_back("startTimer " + std::to_string(interval) + " " + std::to_string(tolerance));
    }
    void stopTimer() override {
        timer = nullptr;
        calls.push_back("stopTimer");
    }
    CaptureSnapshot windowSnapshot(const DetectionOptions&) override {
        ++snapshots;
        return snapshot;
    }
    void screensChanged() override { calls.push_back("screensChanged"); }
    void showCountdown(int seconds) override {
        calls.push_back("showCountdown " + std::to_string(seconds));
    }
    void hideCountdown() override { calls.push_back("hideCountdown"); }
    void updateStatusItem(StageStore&) override { calls.push_back("updateStatusItem"); }
    void closePopover() override { calls.push_back("closePopover"); }
    void animateCurtain(const std::function<void()>& change) override {
        calls.push_back("animateCurtain");
        change();
    }
    bool backdropShowing() override { return backdropOnScreen; }
    void restyleBackdrop() override { calls.push_back("restyleBackdrop"); }
    void refreshShortcuts() override { calls.push_back("refreshShortcuts"); }
    std::optional<std::string> setLoginItem(bool enabled) override {
        calls.push_back(std::string("setLoginItem ") + (enabled ? "on" : "off"));
        return loginItemFailure;
    }
    std::optional<std::string> mainBundleIdentifier() override { return bundleIdentifier; }
    bool runsFromAppBundle() override { return fromAppBundle; }
};

} // namespace scrimlet::testing
