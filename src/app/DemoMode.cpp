// The store on the simulated Mac: the self check, the snapshots, the recorder and the
// command line's demo all drive it this way, moving a manual clock by hand.

#include "StageStore.hpp"

#include "RunSheet.hpp"

namespace scrimlet {

std::shared_ptr<StageStore> StageStore::demo(Date now, std::optional<std::filesystem::path> dir,
                                             std::optional<StageSettings> settings,
                                             std::shared_ptr<FakeStageSystem> sys, bool sheets,
                                             std::shared_ptr<StagePlatform> platform) {
    auto clock = std::make_shared<ManualClock>(now);
    std::optional<std::filesystem::path> journalURL, settingsURL, sheetsURL;
    if (dir) {
        journalURL = *dir / "journal.json";
        settingsURL = *dir / "settings.json";
        sheetsURL = *dir / "runsheets.json";
    }
    auto store = create(Mode::demo, sys, sys, std::make_shared<JournalStore>(journalURL),
                        settings.value_or(demoSettings()), settingsURL, sheetsURL, std::move(clock),
                        std::move(platform));
    if (sheets && !dir) {
        store->seedSheets();
    }
    store->refreshAvailability();
    return store;
}

StageSettings StageStore::demoSettings() {
    StageSettings settings;
    settings.plan.tidyMenuBar = true;
    settings.plan.backdrop = true;
    settings.menuBarDivider = true;
    settings.timeLimitMinutes.reset();
    settings.keepVisible = {"com.apple.Keynote"};
    settings.setPrefs(SwitchKind::keepAwake,
                      SwitchPrefs{true, 120, Hotkey{0, Hotkey::control | Hotkey::option, "A"}});
    settings.setPrefs(
        SwitchKind::darkMode,
        SwitchPrefs{true, std::nullopt, Hotkey{2, Hotkey::control | Hotkey::option, "D"}});
    return settings;
}

void StageStore::demoObserve(const CaptureSnapshot& snapshot) {
    if (demoClock_) {
        demoClock_->advance(1.0);
        now_ = demoClock_->now;
    }
    // Unlike the live tick, a driven second always looks, whatever the settings say.
    if (const auto change = watcher_->observe(snapshot, now_)) {
        captureChanged(*change);
    }
    show_->tick();
    board_->tick();
    sync();
}

void StageStore::demoAdvance(double seconds, double step) {
    if (!demoClock_) {
        return;
    }
    // A step that does not move time forward would never end the stretch.
    for (double elapsed = 0; step > 0 && elapsed < seconds; elapsed += step) {
        demoClock_->advance(step);
        show_->tick();
        board_->tick();
    }
    now_ = demoClock_->now;
    sync();
}

void StageStore::seedSheets() {
    if (!demoClock_) {
        return;
    }
    const Date t = demoClock_->now;
    // Oldest first, each in front of the others, so that the newest ends up first.
    const std::vector<RunSheet> seeds = {
        RunSheet::demo(
            t - 180'000, 31, "Takeloom is recording",
            CaptureSource{std::string(KnownApps::takeloom), "Takeloom", CaptureKind::recorder},
            EndReason::captureEnded, 0),
        RunSheet::demo(t - 93'600, 12, "Started with ⌃⌥⌘S", std::nullopt, EndReason::timeLimit, 0),
        RunSheet::demo(t - 10'800, 47, "Zoom is sharing your screen",
                       CaptureSource{"us.zoom.xos", "Zoom", CaptureKind::callShare},
                       EndReason::captureEnded, 1),
    };
    for (const auto& sheet : seeds) {
        std::vector<RunSheet> sheets = {sheet};
        sheets.insert(sheets.end(), show_->sheets().begin(), show_->sheets().end());
        show_->restoreSheets(std::move(sheets));
    }
    lastSheetCount_ = static_cast<int>(show_->sheets().size());
}

} // namespace scrimlet
