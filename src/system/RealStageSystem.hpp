#pragma once

// The real Mac behind the engine: the one place where effects meet the machine. Every rule
// of it (which value a read answers, which words a failure carries, what a test run refuses,
// whether an effect can run at all) is here; the platform calls are behind
// `SystemFacilities`. The scenery kinds are not system settings: they go to the program's
// own scenery through the facilities.

#include "FocusShortcuts.hpp"
#include "FrontTracker.hpp"
#include "KeepAwake.hpp"
#include "Settings.hpp"
#include "StageSystem.hpp"
#include "SystemFacilities.hpp"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace scrimlet {

/// Main thread only. Scripts and shortcuts block it for as long as they take, on purpose.
class RealStageSystem : public StageSystem {
public:
    struct Options {
        /// The main bundle's identifier; Scrimlet's own when there is none.
        std::string selfBundleID;
        /// Whether this is a scripted run that must never touch the machine. Asked first by
        /// every write, and again just before a script would run. Without it, every write is
        /// refused.
        std::function<bool()> isTestRun;
        /// Where the levels of microphones muted by volume are kept.
        std::filesystem::path micLevelsFile;
        /// The application the user came from; none, and nothing is in front.
        std::shared_ptr<const FrontTracker> frontTracker;
        FocusShortcuts::Options shortcuts;
    };

    static constexpr const char* screenSaverPath =
        "/System/Library/CoreServices/ScreenSaverEngine.app";

    RealStageSystem(std::shared_ptr<SystemFacilities> facilities, Options options);

    const std::string selfBundleID;
    /// The settings the shortcut names come from; the store replaces it once it exists.
    std::function<StageSettings()> settings = [] { return StageSettings(); };

    // StageSystem
    std::optional<JournalValue> read(const EffectKey& key) override;
    std::optional<JournalValue> write(const EffectKey& key, const JournalValue& value) override;
    Availability availability(EffectKind kind) override;
    std::vector<AppInfo> runningApps() override;
    std::optional<std::string> frontmostBundleID() override;
    std::vector<std::uint32_t> displays() override;
    std::optional<JournalValue> displayModeValue(const ResolutionPreset& preset,
                                                 std::uint32_t display) override;
    std::optional<std::uint32_t> mainDisplay() override;
    std::optional<std::string> defaultInputDevice() override;
    void startScreenSaver() override;

    /// The live application an encoded target names: it must parse, run under that pid with
    /// that bundle identifier, and not have terminated, so that a pid reused by another
    /// program is never touched.
    std::optional<RunningApp> app(const std::string& target);

    FocusShortcuts& shortcuts() { return shortcuts_; }
    KeepAwake& keepAwake() { return keepAwake_; }

private:
    bool testRun() const { return isTestRun_(); }
    /// A display target that parses and is connected.
    std::optional<std::uint32_t> onlineDisplay(const std::string& target);
    std::optional<std::uint32_t> micDevice(const std::string& uid);
    void runSystemEventsScript(const std::string& source);
    void hide(const EffectKey& key, bool hidden);

    std::shared_ptr<SystemFacilities> facilities_;
    std::function<bool()> isTestRun_;
    std::filesystem::path micLevelsFile_;
    std::shared_ptr<const FrontTracker> frontTracker_;
    FocusShortcuts shortcuts_;
    KeepAwake keepAwake_;
};

} // namespace scrimlet
