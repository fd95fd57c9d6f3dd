#pragma once

#include "CaptureWatcher.hpp"
#include "Director.hpp"
#include "FakeStageSystem.hpp"
#include "ManualClock.hpp"
#include "Settings.hpp"
#include "Show.hpp"
#include "StagePlatform.hpp"
#include "SwitchBoard.hpp"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet {

/// The application's central controller and main loop: the one object that owns the
/// director, the show, the switch board and the capture watcher, and the one the interface
/// observes. It runs `live`, on the real system and the real files, or `demo`, on the
/// simulated Mac with a manual clock. Every user action, outside cue and system
/// notification ends in the same `sync`. Main thread only; every closure it hands out holds
/// it weakly, so create it through `live` or `demo`, which answer a shared pointer.
class StageStore : public std::enable_shared_from_this<StageStore> {
public:
    enum class Mode { live, demo };
    /// The dropdown's page.
    enum class PopoverRoute { home, switches };
    /// The settings window's page.
    enum class SettingsTab { stage, cues, backdrop, menuBar, switches, quiet, runSheets };

    /// Makes the stage system of a live run, given where it reads the settings from.
    using SystemFactory =
        std::function<std::shared_ptr<StageSystem>(std::function<StageSettings()> settings)>;

    /// One row of the plan as the dropdown lists it.
    struct PlannedCue {
        EffectKind kind;
        std::string title;
        bool on;
        friend bool operator==(const PlannedCue&, const PlannedCue&) = default;
    };

    /// Only `live`, `demo` and `create` can make a store: its callbacks need a shared owner.
    class Passkey {
        friend class StageStore;
        Passkey() = default;
    };

    StageStore(Passkey, Mode mode, std::shared_ptr<StageSystem> system,
               std::shared_ptr<FakeStageSystem> fake, std::shared_ptr<JournalStore> store,
               StageSettings settings, std::optional<std::filesystem::path> settingsURL,
               std::optional<std::filesystem::path> sheetsURL, std::shared_ptr<ManualClock> clock,
               std::shared_ptr<StagePlatform> platform = nullptr);

    /// A store with its engines wired to it.
    static std::shared_ptr<StageStore>
    create(Mode mode, std::shared_ptr<StageSystem> system, std::shared_ptr<FakeStageSystem> fake,
           std::shared_ptr<JournalStore> store, StageSettings settings,
           std::optional<std::filesystem::path> settingsURL,
           std::optional<std::filesystem::path> sheetsURL, std::shared_ptr<ManualClock> clock,
           std::shared_ptr<StagePlatform> platform = nullptr);
    /// The real store: the files in `AppPaths::support()`, the system the factory makes.
    static std::shared_ptr<StageStore> live(std::shared_ptr<StagePlatform> platform,
                                            const SystemFactory& makeSystem);
    /// A store on a simulated Mac with a manual clock starting at `now`. With `dir`, its
    /// journal, settings and run sheets are files there; without, everything stays in
    /// memory, and `sheets` seeds three past shows.
    static std::shared_ptr<StageStore> demo(Date now, std::optional<std::filesystem::path> dir,
                                            std::optional<StageSettings> settings,
                                            std::shared_ptr<FakeStageSystem> sys, bool sheets,
                                            std::shared_ptr<StagePlatform> platform = nullptr);
    /// The settings of a demo run.
    static StageSettings demoSettings();
    /// The one process-wide store: a demo store in a scripted run, otherwise a live one.
    static std::shared_ptr<StageStore> makeShared(std::shared_ptr<StagePlatform> platform,
                                                  const SystemFactory& makeSystem);

    Mode mode() const { return mode_; }
    StageSystem& system() const { return *system_; }
    const std::shared_ptr<FakeStageSystem>& fake() const { return fake_; }
    Director& director() const { return *director_; }
    Show& show() const { return *show_; }
    SwitchBoard& board() const { return *board_; }
    CaptureWatcher& watcher() const { return *watcher_; }
    const std::shared_ptr<ManualClock>& demoClock() const { return demoClock_; }
    const std::optional<std::filesystem::path>& settingsURL() const { return settingsURL_; }
    const std::optional<std::filesystem::path>& sheetsURL() const { return sheetsURL_; }

    // Observable state.
    const StageSettings& settings() const { return settings_; }
    /// Every change of the settings goes through here: an equal value does nothing at all;
    /// any other is handed to the engines, saved at once, and acted on.
    void setSettings(StageSettings settings);
    const ShowPhase& phase() const { return phase_; }
    const std::optional<int>& countdown() const { return countdown_; }
    Date now() const { return now_; }
    const std::optional<CaptureSource>& detecting() const { return detecting_; }
    const std::map<EffectKind, Availability>& availability() const { return availability_; }
    PopoverRoute route = PopoverRoute::home;
    SettingsTab settingsTab = SettingsTab::stage;
    /// The sheet of a crashed show healed at this launch.
    std::optional<RunSheet> recovered;
    /// The sheet of the show that ended last, while it is fresh.
    std::optional<RunSheet> justEnded;
    const std::optional<std::string>& hotkeyProblem() const { return hotkeyProblem_; }
    const std::optional<std::string>& loginItemError() const { return loginItemError_; }
    const std::optional<Date>& shortcutsChecked() const { return shortcutsChecked_; }
    int lastSheetCount() const { return lastSheetCount_; }
    /// Sent once at the start of every `sync`, before anything is published.
    std::function<void()> onWillChange;

    // Operations.
    /// Live mode only: starts everything the running app needs, in order.
    void startLive();
    /// What every launch does first, before anything else touches the director: removes
    /// what saves cut short by a kill left behind, puts back what a crashed show left on
    /// the Mac and files its sheet as `recovered`.
    void recoverAtLaunch();
    /// Once a second.
    void tick();
    void startShow(const std::string& how, std::optional<bool> countdown = std::nullopt);
    void stopShow();
    void toggleSwitch(SwitchKind kind);
    void setSwitch(SwitchKind kind, bool on);
    /// Flips the plan item behind an effect; the resolution can only be taken off here.
    void togglePlan(EffectKind kind);
    std::vector<PlannedCue> plannedCues() const;
    /// The names of the running apps a show keeps visible, without this program's own.
    std::vector<std::string> keptAppNames() const;
    void sync();
    void refreshAvailability();
    void recheckShortcuts();
    void clearSheets();
    void didWake();
    void popoverWillOpen();
    /// At termination: everything put back, the run sheets saved.
    void shutdown();
    void setLoginItem(bool enabled);

    // Cues from outside.
    /// A link in the "scrimlet" scheme; anything else is ignored in silence.
    void handle(const std::string& url);
    /// The one entry for the verbs "start", "stop", "extend"; any other toggles.
    void cue(const std::string& verb, const std::string& how);
    /// Rebuilds every global hotkey from the settings.
    void registerHotkeys();

    // Driving a demo store.
    /// One driven second with a snapshot of the window list.
    void demoObserve(const CaptureSnapshot& snapshot);
    /// A stretch of time with no snapshot, in steps of `step` seconds.
    void demoAdvance(double seconds, double step = 1);

private:
    void wire();
    Date clockNow() const;
    void observe();
    void captureChanged(const CaptureWatcher::Change& change);
    void settingsChanged(const StageSettings& old);
    void saveSheets();
    void withCurtain(const std::function<void()>& change);
    void closePopover();
    bool isLive() const { return mode_ == Mode::live; }
    void seedSheets();
    /// A closure that runs `action` on this store while it lives, and does nothing after.
    std::function<void()> weakly(std::function<void(StageStore&)> action);

    Mode mode_;
    std::shared_ptr<StageSystem> system_;
    std::shared_ptr<FakeStageSystem> fake_;
    std::shared_ptr<Director> director_;
    std::unique_ptr<Show> show_;
    std::unique_ptr<SwitchBoard> board_;
    std::unique_ptr<CaptureWatcher> watcher_;
    std::shared_ptr<ManualClock> demoClock_;
    std::optional<std::filesystem::path> settingsURL_;
    std::optional<std::filesystem::path> sheetsURL_;
    std::shared_ptr<StagePlatform> platform_;
    StageSettings settings_;
    ShowPhase phase_ = ShowPhase::dark();
    std::optional<int> countdown_;
    Date now_;
    std::optional<CaptureSource> detecting_;
    std::map<EffectKind, Availability> availability_;
    std::optional<std::string> hotkeyProblem_;
    std::optional<std::string> loginItemError_;
    std::optional<Date> shortcutsChecked_;
    bool timerRunning_ = false;
    int lastSheetCount_ = 0;
};

std::string_view rawValue(StageStore::SettingsTab tab);

} // namespace scrimlet
