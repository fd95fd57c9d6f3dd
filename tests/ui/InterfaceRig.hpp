#pragma once

#include "DemoCapture.hpp"
#include "LiveStoreRig.hpp"
#include "SettingsFile.hpp"
#include "ViewModel.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet::testing {

/// What the interface asked of the platform, in order.
class RecordingHost : public InterfaceHost {
public:
    std::vector<std::string> calls;
    std::vector<std::optional<SettingsTab>> openedTabs;
    /// The file the next image chooser answers with; none cancels it.
    std::optional<std::string> chosenImage;

    void openSettings(std::optional<SettingsTab> tab) override {
        openedTabs.push_back(tab);
        calls.push_back("openSettings " + (tab ? std::string(rawValue(*tab)) : "-"));
    }
    void quit() override { calls.push_back("quit"); }
    void copyToPasteboard(const std::string& text) override { calls.push_back("copy " + text); }
    void openApplication(const std::string& path) override { calls.push_back("open " + path); }
    void chooseImage(std::function<void(const std::string&)> chosen) override {
        calls.push_back("chooseImage");
        if (chosenImage) {
            chosen(*chosenImage);
        }
    }
};

/// A live store on the simulated Mac, seeing an idle desk, with a recording host for the
/// interface's own requests.
struct InterfaceRig : LiveStoreRig<> {
    RecordingHost host;

    explicit InterfaceRig(StageSettings settings = {})
        : LiveStoreRig<>(std::move(settings)) {
        platform->snapshot = DemoCapture::idle();
        store->refreshAvailability();
    }

    /// A Zoom share, seen long enough to raise the curtain.
    void zoomShare() {
        platform->snapshot = DemoCapture::zoomSharing();
        seconds(3);
    }

    void act(const UiAction& action) { perform(action, *store, host); }

    StageSettings saved() const { return SettingsFile::load(dir / "settings.json"); }
};

} // namespace scrimlet::testing
