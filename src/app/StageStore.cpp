#include "StageStore.hpp"

#include "AppPaths.hpp"
#include "AsciiCase.hpp"
#include "AtomicFile.hpp"
#include "CaptureRules.hpp"
#include "Harness.hpp"
#include "RunSheetFile.hpp"
#include "SettingsFile.hpp"

#include <algorithm>
#include <cctype>
#include <utility>

namespace scrimlet {

namespace {

// How long a finished show's sheet stays fresh for the dropdown.
constexpr double justEndedLifetime = 600;

} // namespace

std::string_view rawValue(StageStore::SettingsTab tab) {
    switch (tab) {
    case StageStore::SettingsTab::stage:
        return "stage";
    case StageStore::SettingsTab::cues:
        return "cues";
    case StageStore::SettingsTab::backdrop:
        return "backdrop";
    case StageStore::SettingsTab::menuBar:
        return "menuBar";
    case StageStore::SettingsTab::switches:
        return "switches";
    case StageStore::SettingsTab::quiet:
        return "quiet";
    case StageStore::SettingsTab::runSheets:
        return "runSheets";
    }
    return "stage";
}

StageStore::StageStore(Passkey, Mode mode, std::shared_ptr<StageSystem> system,
                       std::shared_ptr<FakeStageSystem> fake, std::shared_ptr<JournalStore> store,
                       StageSettings settings, std::optional<std::filesystem::path> settingsURL,
                       std::optional<std::filesystem::path> sheetsURL,
                       std::shared_ptr<ManualClock> clock, std::shared_ptr<StagePlatform> platform)
    : mode_(mode)
    , system_(std::move(system))
    , fake_(std::move(fake))
    , demoClock_(std::move(clock))
    , settingsURL_(std::move(settingsURL))
    , sheetsURL_(std::move(sheetsURL))
    , platform_(std::move(platform)) {
    const Clock engineClock = demoClock_ ? ManualClock::reading(demoClock_) : Clock(Date::now);
    director_ = std::make_shared<Director>(system_, std::move(store), engineClock);
    show_ =
        std::make_unique<Show>(director_, settings, RunSheetFile::load(sheetsURL_), engineClock);
    board_ = std::make_unique<SwitchBoard>(director_, settings, engineClock);
    watcher_ = std::make_unique<CaptureWatcher>(settings.detection);
    settings_ = std::move(settings);
    now_ = engineClock();
    lastSheetCount_ = static_cast<int>(show_->sheets().size());
    if (isLive() && platform_) {
        if (const auto bundleID = platform_->mainBundleIdentifier()) {
            show_->selfBundleID = *bundleID;
            board_->selfBundleID = *bundleID;
        }
    }
}

std::shared_ptr<StageStore>
StageStore::create(Mode mode, std::shared_ptr<StageSystem> system,
                   std::shared_ptr<FakeStageSystem> fake, std::shared_ptr<JournalStore> store,
                   StageSettings settings, std::optional<std::filesystem::path> settingsURL,
                   std::optional<std::filesystem::path> sheetsURL,
                   std::shared_ptr<ManualClock> clock, std::shared_ptr<StagePlatform> platform) {
    auto made = std::make_shared<StageStore>(
        Passkey(), mode, std::move(system), std::move(fake), std::move(store), std::move(settings),
        std::move(settingsURL), std::move(sheetsURL), std::move(clock), std::move(platform));
    made->wire();
    return made;
}

std::function<void()> StageStore::weakly(std::function<void(StageStore&)> action) {
    return [self = weak_from_this(), action = std::move(action)] {
        if (const auto store = self.lock()) {
            action(*store);
        }
    };
}

void StageStore::wire() {
    show_->onChange = weakly([](StageStore& s) { s.sync(); });
    board_->onChange = weakly([](StageStore& s) { s.sync(); });
    show_->onEnded = [self = weak_from_this()](const RunSheet& sheet) {
        if (const auto store = self.lock()) {
            store->justEnded = sheet;
            store->saveSheets();
        }
    };
}

std::shared_ptr<StageStore> StageStore::live(std::shared_ptr<StagePlatform> platform,
                                             const SystemFactory& makeSystem) {
    const auto support = AppPaths::support();
    // The system reads the settings of a store that does not exist yet; until it does, and
    // after it is gone, it sees the defaults.
    auto holder = std::make_shared<std::weak_ptr<StageStore>>();
    auto system = makeSystem([holder] {
        const auto store = holder->lock();
        return store ? store->settings() : StageSettings();
    });
    auto store = create(Mode::live, std::move(system), nullptr,
                        std::make_shared<JournalStore>(support / "journal.json"),
                        SettingsFile::load(support / "settings.json"), support / "settings.json",
                        support / "runsheets.json", nullptr, std::move(platform));
    *holder = store;
    return store;
}

std::shared_ptr<StageStore> StageStore::makeShared(std::shared_ptr<StagePlatform> platform,
                                                   const SystemFactory& makeSystem) {
    if (Harness::isTestRun()) {
        return demo(Harness::demoNow(), std::nullopt, std::nullopt, FakeStageSystem::demo(), true,
                    std::move(platform));
    }
    return live(std::move(platform), makeSystem);
}

Date StageStore::clockNow() const {
    return demoClock_ ? demoClock_->now : Date::now();
}

void StageStore::saveSheets() {
    lastSheetCount_ = static_cast<int>(show_->sheets().size());
    RunSheetFile::save(show_->sheets(), sheetsURL_);
}

void StageStore::startLive() {
    if (!isLive() || !platform_) {
        return;
    }
    platform_->startFrontTracker();

    SceneryHooks hooks;
    hooks.backdropStyle = [self = weak_from_this()] {
        const auto store = self.lock();
        return store ? store->settings().backdropStyle : BackdropStyle();
    };
    hooks.spotlight = [self = weak_from_this()] {
        const auto store = self.lock();
        return store ? std::pair(store->settings().spotlightRadius, store->settings().spotlightDim)
                     : std::pair(110.0, 0.55);
    };
    hooks.onUnlockRequest = weakly([](StageStore& s) {
        if (s.board().isOn(SwitchKind::lockKeyboard)) {
            s.board().turnOff(SwitchKind::lockKeyboard);
        }
        s.refreshAvailability();
        s.sync();
    });
    platform_->installSceneryHooks(std::move(hooks));
    platform_->setMenuBarDividerInstalled(settings_.menuBarDivider);
    platform_->installStatusItem(*this);

    recoverAtLaunch();
    registerHotkeys();
    refreshAvailability();
    observe();
    platform_->startTimer(1.0, 0.15, weakly([](StageStore& s) { s.tick(); }));
    timerRunning_ = true;
}

void StageStore::recoverAtLaunch() {
    // A save cut short by a kill leaves its temporary file beside the real one; nothing
    // else would ever remove it.
    for (const auto& file : {director_->store().url(), settingsURL_, sheetsURL_}) {
        if (file) {
            files::removeLeftovers(*file);
        }
    }
    if (auto sheet = show_->recoverAtLaunch()) {
        recovered = std::move(sheet);
        saveSheets();
    }
}

void StageStore::observe() {
    NotificationHandlers handlers;
    handlers.onWake = weakly([](StageStore& s) { s.didWake(); });
    handlers.onScreensChanged = weakly([](StageStore& s) {
        const auto& sheets = s.show().sheets();
        const size_t struck = sheets.empty() ? 0 : sheets.front().strike.size();
        s.show().displaysChanged();
        // A display mode put back late lands on the last sheet, which must reach the disk
        // although the number of sheets did not change.
        if (!sheets.empty() && sheets.front().strike.size() != struck) {
            s.saveSheets();
        }
        if (s.isLive()) {
            s.platform_->screensChanged();
        }
        s.sync();
    });
    handlers.onCue = [self = weak_from_this()](std::optional<std::string> verb) {
        if (const auto store = self.lock()) {
            store->cue(verb.value_or("toggle"), "Cued by another app");
        }
    };
    platform_->observeNotifications(std::move(handlers));
}

void StageStore::tick() {
    now_ = clockNow();
    // A user who turned automatic starts off pays for no window scan while nothing is on.
    if (isLive() && platform_ &&
        (settings_.autoStart || show_->isLive() || show_->countdownRemaining())) {
        const auto snapshot = platform_->windowSnapshot(settings_.detection);
        if (const auto change = watcher_->observe(snapshot, now_)) {
            captureChanged(*change);
        }
    }
    show_->tick();
    board_->tick();
    sync();
}

void StageStore::captureChanged(const CaptureWatcher::Change& change) {
    show_->captureChanged(change);
    detecting_ = watcher_->active();
}

void StageStore::withCurtain(const std::function<void()>& change) {
    if (platform_) {
        platform_->animateCurtain(change);
    } else {
        change();
    }
}

void StageStore::closePopover() {
    if (platform_) {
        platform_->closePopover();
    }
}

void StageStore::startShow(const std::string& how, std::optional<bool> countdown) {
    justEnded.reset();
    if (isLive()) {
        closePopover();
    }
    withCurtain([&] { show_->start(how, countdown); });
    sync();
}

void StageStore::stopShow() {
    withCurtain([&] { show_->stop(EndReason::stopped); });
    sync();
}

void StageStore::toggleSwitch(SwitchKind kind) {
    setSwitch(kind, board_->isOn(kind) ? isAction(kind) : true);
}

void StageStore::setSwitch(SwitchKind kind, bool on) {
    if (!on) {
        if (board_->isOn(kind)) {
            board_->turnOff(kind);
        }
    } else {
        // An action fires again each time; a switch that is on stays as it is.
        if (!board_->isOn(kind) || isAction(kind)) {
            board_->turnOn(kind);
        }
        if (isAction(kind)) {
            closePopover();
        }
    }
    refreshAvailability();
    sync();
}

void StageStore::togglePlan(EffectKind kind) {
    StageSettings changed = settings_;
    StagePlan& plan = changed.plan;
    switch (kind) {
    case EffectKind::dockAutohide:
        plan.hideDock = !plan.hideDock;
        break;
    case EffectKind::darkMode:
        plan.darkMode = !plan.darkMode;
        break;
    case EffectKind::alertVolume:
        plan.muteAlerts = !plan.muteAlerts;
        break;
    case EffectKind::doNotDisturb:
        plan.doNotDisturb = !plan.doNotDisturb;
        break;
    case EffectKind::appHidden:
        plan.hideOtherApps = !plan.hideOtherApps;
        break;
    case EffectKind::displayMode:
        // The row can only be taken off here: choosing a size is the settings' job.
        plan.resolution.reset();
        break;
    case EffectKind::keepAwake:
        plan.keepAwake = !plan.keepAwake;
        break;
    case EffectKind::desktopIcons:
        plan.hideDesktopIcons = !plan.hideDesktopIcons;
        break;
    case EffectKind::backdrop:
        plan.backdrop = !plan.backdrop;
        break;
    case EffectKind::menuBarTidy:
        plan.tidyMenuBar = !plan.tidyMenuBar;
        break;
    case EffectKind::micMute:
    case EffectKind::spotlight:
    case EffectKind::keyboardLock:
        return;
    }
    setSettings(std::move(changed));
}

std::vector<StageStore::PlannedCue> StageStore::plannedCues() const {
    const StagePlan& plan = settings_.plan;
    std::vector<PlannedCue> rows = {
        {EffectKind::desktopIcons, "Hide desktop icons", plan.hideDesktopIcons},
        {EffectKind::appHidden, "Hide other apps", plan.hideOtherApps},
        {EffectKind::backdrop,
         "Backdrop · " + lowercased(std::string(title(settings_.backdropStyle.kind))),
         plan.backdrop},
        {EffectKind::dockAutohide, "Hide the Dock", plan.hideDock},
        {EffectKind::menuBarTidy, "Tidy the menu bar", plan.tidyMenuBar},
        {EffectKind::doNotDisturb, "Do Not Disturb", plan.doNotDisturb},
        {EffectKind::alertVolume, "Mute alert sounds", plan.muteAlerts},
        {EffectKind::keepAwake, "Keep the Mac awake", plan.keepAwake},
        {EffectKind::darkMode, "Dark Mode", plan.darkMode},
    };
    if (plan.resolution) {
        rows.push_back({EffectKind::displayMode, "Resolution " + plan.resolution->label(), true});
    }
    return rows;
}

std::vector<std::string> StageStore::keptAppNames() const {
    const auto apps = system_->runningApps();
    std::vector<std::string> names;
    for (const auto& bundleID : show_->kept()) {
        const auto app = std::find_if(apps.begin(), apps.end(),
                                      [&](const AppInfo& a) { return a.bundleID == bundleID; });
        if (app != apps.end() && app->name != "Scrimlet") {
            names.push_back(app->name);
        }
    }
    return names;
}

void StageStore::sync() {
    if (onWillChange) {
        onWillChange();
    }
    phase_ = show_->phase();
    countdown_ = show_->countdownRemaining();
    detecting_ = watcher_->active();
    if (isLive() && platform_) {
        if (countdown_) {
            platform_->showCountdown(*countdown_);
        } else {
            platform_->hideCountdown();
        }
        platform_->updateStatusItem(*this);
    }
    // A safety net: whoever changed the number of sheets has saved them already.
    if (static_cast<int>(show_->sheets().size()) != lastSheetCount_) {
        saveSheets();
    }
}

void StageStore::refreshAvailability() {
    std::map<EffectKind, Availability> answers;
    for (const auto kind : effect_kind::allCases) {
        answers.insert_or_assign(kind, system_->availability(kind));
    }
    availability_ = std::move(answers);
}

void StageStore::recheckShortcuts() {
    if (isLive() && platform_) {
        platform_->refreshShortcuts();
    }
    shortcutsChecked_ = now_;
    refreshAvailability();
}

void StageStore::clearSheets() {
    show_->clearSheets();
    recovered.reset();
    justEnded.reset();
    saveSheets();
}

void StageStore::didWake() {
    // Every date the watcher holds is stale after a sleep.
    watcher_->reset();
    std::optional<CaptureSource> source;
    if (isLive() && platform_) {
        source = CaptureRules::evaluate(platform_->windowSnapshot(settings_.detection),
                                        settings_.detection);
    }
    show_->wake(source);
    if (source && show_->isLive()) {
        show_->captureChanged(CaptureWatcher::Change::started(*source));
    }
    sync();
}

void StageStore::popoverWillOpen() {
    route = PopoverRoute::home;
    refreshAvailability();
    if (justEnded) {
        const Date ended = justEnded->endedAt.value_or(now_);
        if (now_ - ended > justEndedLifetime) {
            justEnded.reset();
        }
    }
}

void StageStore::shutdown() {
    if (timerRunning_) {
        platform_->stopTimer();
        timerRunning_ = false;
    }
    show_->stop(EndReason::quit);
    board_->allOff();
    saveSheets();
    if (isLive() && platform_) {
        platform_->hideCountdown();
    }
}

void StageStore::setLoginItem(bool enabled) {
    loginItemError_.reset();
    if (!platform_ || !platform_->runsFromAppBundle()) {
        loginItemError_ = "Available in the installed app.";
        return;
    }
    // The setting stays as the user set it, whatever the system says.
    loginItemError_ = platform_->setLoginItem(enabled);
}

void StageStore::setSettings(StageSettings settings) {
    if (settings == settings_) {
        return;
    }
    const StageSettings old = std::exchange(settings_, std::move(settings));
    show_->settings = settings_;
    board_->settings = settings_;
    watcher_->options = settings_.detection;
    SettingsFile::save(settings_, settingsURL_);
    settingsChanged(old);
}

void StageStore::settingsChanged(const StageSettings& old) {
    if (!isLive() || !platform_) {
        return;
    }
    if (settings_.stageHotkey != old.stageHotkey || settings_.switches != old.switches) {
        registerHotkeys();
    }
    if (settings_.menuBarDivider != old.menuBarDivider) {
        // The tidy needs the divider: it goes off before the divider does.
        if (!settings_.menuBarDivider && board_->isOn(SwitchKind::tidyMenuBar)) {
            board_->turnOff(SwitchKind::tidyMenuBar);
        }
        platform_->setMenuBarDividerInstalled(settings_.menuBarDivider);
        refreshAvailability();
    }
    if (settings_.backdropStyle != old.backdropStyle && platform_->backdropShowing()) {
        platform_->restyleBackdrop();
    }
    if (settings_.launchAtLogin != old.launchAtLogin) {
        setLoginItem(settings_.launchAtLogin);
    }
    if (settings_.focusOnShortcut != old.focusOnShortcut ||
        settings_.focusOffShortcut != old.focusOffShortcut) {
        refreshAvailability();
    }
    platform_->updateStatusItem(*this);
}

} // namespace scrimlet
