#include "SelfTest.hpp"

#include "AppleScript.hpp"
#include "AtomicFile.hpp"
#include "CaptureRules.hpp"
#include "DemoCapture.hpp"
#include "FakeStageSystem.hpp"
#include "Harness.hpp"
#include "JournalStore.hpp"
#include "RealStageSystem.hpp"
#include "RunSheetFile.hpp"
#include "SettingsFile.hpp"
#include "StageStore.hpp"
#include "TripwireFacilities.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace scrimlet::SelfTest {

namespace {

namespace fs = std::filesystem;

const EffectKey alertVolume(EffectKind::alertVolume);
const EffectKey dock(EffectKind::dockAutohide);

bool isOn(StageSystem& system, const EffectKey& key) {
    return system.read(key) == JournalValue::boolean(true);
}

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

std::string joined(const std::vector<std::string>& parts) {
    std::string out;
    for (const auto& part : parts) {
        out += (out.empty() ? "" : ", ") + part;
    }
    return out;
}

bool hasRecord(const std::vector<CueRecord>& records, EffectKind kind, CueOutcome::Case outcome) {
    return std::any_of(records.begin(), records.end(), [&](const CueRecord& record) {
        return record.key.kind == kind && record.outcome.kind() == outcome;
    });
}

// Feeds one snapshot a second until `done` holds, for at most `seconds`.
bool observeUntil(StageStore& store, const CaptureSnapshot& snapshot, int seconds,
                  const std::function<bool()>& done) {
    for (int i = 0; i < seconds && !done(); ++i) {
        store.demoObserve(snapshot);
    }
    return done();
}

void observeFor(StageStore& store, const CaptureSnapshot& snapshot, int seconds) {
    observeUntil(store, snapshot, seconds, [] { return false; });
}

class Scenario {
public:
    Scenario(fs::path dir, SelfTestShell* shell)
        : dir_(std::move(dir))
        , shell_(shell) {}

    Result run() {
        prepare();
        openTheHouse();
        automaticShow();
        manualShow();
        outsideCues();
        captures();
        wakeAndDisplays();
        switches();
        settingsAndPlan();
        crashAndRecovery();
        realSystem();
        noMicrophone();
        return finish();
    }

private:
    void step(const std::string& name, bool ok) {
        lines_.push_back((ok ? "✓ " : "✗ ") + name);
        ok ? ++passed_ : ++failed_;
    }

    void skip(const std::string& name) {
        lines_.push_back("– " + name + " (needs macOS)");
        ++skipped_;
    }

    void render(StageStore& store, const std::string& name) {
        if (!shell_) {
            skip("dropdown lays out (" + name + ")");
            return;
        }
        const DropdownSize size = shell_->render(store);
        step("dropdown lays out (" + name + ": " +
                 std::to_string(static_cast<long long>(size.width)) + "×" +
                 std::to_string(static_cast<long long>(size.height)) + ")",
             size.width >= 340 && size.height > 300 && size.height < 1100);
    }

    fs::path state() const { return dir_ / "state"; }
    fs::path crashDir() const { return dir_ / "crash"; }
    Show& show() const { return store_->show(); }
    FakeStageSystem& sys() const { return *sys_; }

    // Every run starts on empty folders, so that a second run in the same place is the same
    // run.
    void prepare() {
        std::error_code ignored;
        fs::create_directories(dir_, ignored);
        fs::remove_all(state(), ignored);
        fs::remove_all(crashDir(), ignored);
        sys_ = FakeStageSystem::demo();
        store_ = StageStore::demo(Harness::demoNow(), state(), StageSettings(), sys_, false);
        initial_ = sys().state(false);
    }

    void openTheHouse() {
        step("starts with the house open",
             store_->phase() == ShowPhase::dark() && !store_->director().hasOutstanding() &&
                 show().sheets().empty() && !store_->recovered && !store_->justEnded &&
                 store_->board().onCount() == 0 && !isThere(state() / "journal.json"));

        const int writes = sys().writeCount();
        observeFor(*store_, DemoCapture::screenshot(), 5);
        step("taking a screenshot doesn't start a show", store_->phase() == ShowPhase::dark() &&
                                                             !store_->detecting() &&
                                                             sys().writeCount() == writes);
    }

    void automaticShow() {
        bool countedDown = false;
        const bool live = observeUntil(*store_, DemoCapture::zoomSharing(), 5, [&] {
            countedDown = countedDown || store_->countdown().has_value();
            return show().isLive();
        });
        step("Zoom's share frame starts the show (no countdown for automatic starts)",
             live && !countedDown && !show().manual() && show().source() &&
                 show().source()->bundleID == "us.zoom.xos");

        step("Dock hidden, Do Not Disturb on, desktop icons covered",
             isOn(sys(), dock) && sys().dnd && isOn(sys(), EffectKey(EffectKind::desktopIcons)));

        std::vector<std::string> visible;
        for (const auto& app : sys().apps) {
            if (!app.isHidden) {
                visible.push_back(app.name);
            }
        }
        step("only Keynote (front + kept), Zoom (sharing), Takeloom (recorder) and Scrimlet stay "
             "visible: " +
                 joined(visible),
             visible == std::vector<std::string>{"Keynote", "zoom.us", "Takeloom", "Scrimlet"});

        const auto journal = JournalStore(state() / "journal.json").load();
        step("journal on disk while live",
             !journal.empty() && journal.size() == store_->director().entries().size());
        render(*store_, "live");

        sys().userSet(alertVolume, JournalValue::number(0.50));
        const auto noticed = [&] {
            return show().current() && hasRecord(show().current()->cues, EffectKind::alertVolume,
                                                 CueOutcome::Case::leftAlone);
        };
        observeUntil(*store_, DemoCapture::zoomSharing(), 15, noticed);
        const auto entry = store_->director().entry(alertVolume);
        step("a hand-made change is noticed and marked “yours now”",
             noticed() && CueOutcome::leftAlone().shortLabel() == "Yours now" && entry &&
                 entry->state == EntryState::userChanged && show().isLive());
        render(*store_, "live-left-alone");

        const bool dark =
            observeUntil(*store_, DemoCapture::idle(), 10, [&] { return show().isDark(); });
        step("sharing stopped → curtain down",
             dark && !show().sheets().empty() &&
                 show().sheets().front().reason == EndReason::captureEnded);

        auto expected = initial_;
        expected[alertVolume.description()] = JournalValue::number(0.50).description();
        step("everything put back except the alert volume the user chose",
             sys().state(false) == expected);
        step("journal removed",
             !store_->director().hasOutstanding() && !isThere(state() / "journal.json"));

        const auto saved = RunSheetFile::load(state() / "runsheets.json");
        step("run sheet saved to disk",
             saved.size() == 1 && saved.front().id == show().sheets().front().id &&
                 saved.front().reason == EndReason::captureEnded &&
                 saved.front().strike.size() == show().sheets().front().strike.size());

        store_->popoverWillOpen();
        step("the dropdown shows a curtain-down note",
             store_->justEnded && store_->justEnded->id == show().sheets().front().id &&
                 store_->phase() == ShowPhase::dark() && !store_->recovered &&
                 store_->justEnded->leftAlone() == 1);
        render(*store_, "ended");
    }

    void manualShow() {
        const int writes = sys().writeCount();
        std::vector<int> counted;
        store_->startShow("Started from the menu");
        for (int second = 0; second < 3; ++second) {
            if (second > 0) {
                store_->demoAdvance(1);
            }
            counted.push_back(store_->countdown().value_or(0));
        }
        step("manual start counts down 3·2·1 with nothing changed yet",
             counted == std::vector<int>{3, 2, 1} &&
                 store_->phase().kind() == ShowPhase::Case::standby &&
                 sys().writeCount() == writes && !store_->director().hasOutstanding() &&
                 !store_->justEnded);
        render(*store_, "standby");

        store_->demoAdvance(1);
        step("live after the countdown", show().isLive() && show().manual() && show().current() &&
                                             show().current()->how == "Started from the menu");

        const double before = show().remaining().value_or(0);
        store_->handle("scrimlet://extend");
        step("scrimlet://extend adds 15 minutes",
             show().remaining() && std::abs(*show().remaining() - (before + 900)) < 0.5);
    }

    void outsideCues() {
        store_->stopShow();
        store_->handle("scrimlet://start");
        const bool countingDown = store_->phase().kind() == ShowPhase::Case::standby;
        store_->handle("scrimlet://start");
        step("scrimlet://start, then a second cue skips the countdown",
             countingDown && show().isLive() && show().current() &&
                 show().current()->how == "Started from a Shortcut or link");

        store_->handle("scrimlet://toggle");
        step("a toggle cue stops it", show().isDark() && !show().sheets().empty() &&
                                          show().sheets().front().reason == EndReason::stopped);

        const EffectKey dark(EffectKind::darkMode);
        store_->handle("scrimlet://switch/darkMode/on");
        step("scrimlet://switch/darkMode/on",
             store_->board().isOn(SwitchKind::darkMode) && isOn(sys(), dark));
        store_->handle("scrimlet://switch/darkmode/off");
        step("…/off (case-insensitive)",
             !store_->board().isOn(SwitchKind::darkMode) && !isOn(sys(), dark));

        const int writes = sys().writeCount();
        store_->handle("notscrimlet://start");
        step("other schemes are ignored",
             store_->phase() == ShowPhase::dark() && sys().writeCount() == writes);
    }

    void captures() {
        const bool live =
            observeUntil(*store_, DemoCapture::zoomSharing(), 5, [&] { return show().isLive(); });
        step("Zoom again → live",
             live && show().source() && show().source()->bundleID == "us.zoom.xos");

        store_->stopShow();
        bool restarted = false;
        observeUntil(*store_, DemoCapture::zoomSharing(), 10, [&] {
            restarted = restarted || !show().isDark();
            return false;
        });
        step("stopped by hand: the same share doesn't restart it",
             !restarted && show().isDark() && show().dismissed() &&
                 show().dismissed()->bundleID == "us.zoom.xos");

        // The next show is to end by the clock.
        StageSettings limited = store_->settings();
        limited.timeLimitMinutes = 30;
        store_->setSettings(limited);
        const bool chrome =
            observeUntil(*store_, DemoCapture::chromeSharing(), 5, [&] { return show().isLive(); });
        step("a new share (Chrome) starts it again",
             chrome && show().source() && show().source()->bundleID == "com.google.Chrome" &&
                 !show().dismissed());

        store_->demoAdvance(30 * 60 - 1);
        const bool liveUntilTheLimit = show().isLive();
        store_->demoAdvance(1);
        step("the time limit ends the show",
             liveUntilTheLimit && show().isDark() && !show().sheets().empty() &&
                 show().sheets().front().reason == EndReason::timeLimit);

        StageSettings unlimited = store_->settings();
        unlimited.timeLimitMinutes.reset();
        store_->setSettings(unlimited);
        observeFor(*store_, DemoCapture::idle(), 5);
    }

    void wakeAndDisplays() {
        const bool automatic =
            observeUntil(*store_, DemoCapture::zoomSharing(), 5, [&] { return show().isLive(); }) &&
            !show().manual();
        // The share ended while the Mac slept: no end of it will ever be seen.
        store_->didWake();
        step("after wake with no share, an automatic show ends",
             automatic && show().isDark() && !show().sheets().empty() &&
                 show().sheets().front().reason == EndReason::captureEnded);
        observeFor(*store_, DemoCapture::idle(), 5);

        const auto beforeShow = sys().state(false);
        store_->startShow("Started from the menu", false);
        const bool live = show().isLive();
        store_->didWake();
        step("a manual show survives wake", live && show().isLive() && show().manual());

        const auto entries = store_->director().entries();
        sys().displayList.push_back(2);
        store_->show().displaysChanged();
        store_->sync();
        const bool unharmed = show().isLive() && store_->director().entries() == entries &&
                              show().current() && show().current()->problems() == 0;
        store_->stopShow();
        step("a display change mid-show is harmless",
             unharmed && show().isDark() && sys().state(false) == beforeShow);
    }

    void switches() {
        StageSettings quick = store_->settings();
        SwitchPrefs prefs = quick.prefs(SwitchKind::keepAwake);
        prefs.autoOffMinutes = 1;
        quick.setPrefs(SwitchKind::keepAwake, prefs);
        store_->setSettings(quick);

        const EffectKey awake(EffectKind::keepAwake);
        store_->setSwitch(SwitchKind::keepAwake, true);
        step("Keep Awake switch on", store_->board().isOn(SwitchKind::keepAwake) &&
                                         isOn(sys(), awake) &&
                                         store_->board().remaining(SwitchKind::keepAwake) == 60.0);

        store_->demoAdvance(59);
        const bool stillOn = store_->board().isOn(SwitchKind::keepAwake) && isOn(sys(), awake);
        store_->demoAdvance(1);
        step("auto-off after a minute",
             stillOn && !store_->board().isOn(SwitchKind::keepAwake) && !isOn(sys(), awake));

        const int starts = sys().screenSaverStarts();
        store_->setSwitch(SwitchKind::screenSaver, true);
        step("Screen Saver Now runs once", sys().screenSaverStarts() == starts + 1 &&
                                               !store_->board().isOn(SwitchKind::screenSaver));

        store_->setSwitch(SwitchKind::hideDock, true);
        store_->startShow("Started from the menu", false);
        const bool live = show().isLive();
        store_->stopShow();
        step("a switch on before the show keeps its change after it",
             live && show().isDark() && isOn(sys(), dock) &&
                 store_->board().isOn(SwitchKind::hideDock) &&
                 hasRecord(show().sheets().front().strike, EffectKind::dockAutohide,
                           CueOutcome::Case::stillHeld));

        store_->setSwitch(SwitchKind::hideDock, false);
        step("switch off restores it",
             !isOn(sys(), dock) && !store_->board().isOn(SwitchKind::hideDock) &&
                 !store_->director().hasOutstanding() && !isThere(state() / "journal.json"));

        store_->route = StageStore::PopoverRoute::switches;
        render(*store_, "all-switches");
        store_->route = StageStore::PopoverRoute::home;
    }

    void settingsAndPlan() {
        StageSettings kept = store_->settings();
        kept.keepVisible.push_back("com.apple.Notes");
        store_->setSettings(kept);
        const auto saved = SettingsFile::load(state() / "settings.json");
        step("settings saved to disk",
             saved == store_->settings() &&
                 std::count(saved.keepVisible.begin(), saved.keepVisible.end(),
                            "com.apple.Notes") == 1);

        const auto lamp = [&] {
            for (const auto& row : store_->plannedCues()) {
                if (row.kind == EffectKind::darkMode) {
                    return row.on;
                }
            }
            return false;
        };
        const bool was = lamp();
        store_->togglePlan(EffectKind::darkMode);
        const bool flipped = lamp() == !was && store_->settings().plan.darkMode == !was &&
                             SettingsFile::load(state() / "settings.json").plan.darkMode == !was;
        store_->togglePlan(EffectKind::darkMode);
        step("cue list lamp toggles the plan",
             flipped && lamp() == was && store_->settings().plan.darkMode == was);
    }

    void crashAndRecovery() {
        const Date now = store_->now();
        auto crashSys = FakeStageSystem::demo();
        const auto before = crashSys->state(true);
        auto doomed = StageStore::demo(now, crashDir(), StageSettings(), crashSys, false);
        // At the instant of death nothing more reaches the disk.
        crashSys->onCrash = [weak = std::weak_ptr<StageStore>(doomed)] {
            if (const auto store = weak.lock()) {
                store->director().store().freeze();
            }
        };
        crashSys->setCrash(FakeStageSystem::CrashPoint::afterWrite(5));
        doomed->startShow("Started from the menu", false);
        const auto journal = JournalStore(crashDir() / "journal.json").load();
        step("crash fixture: journal on disk mid-show",
             crashSys->crashed() && !journal.empty() &&
                 std::all_of(journal.begin(), journal.end(), [](const JournalEntry& entry) {
                     return entry.owners == std::vector<std::string>{Show::owner};
                 }));

        doomed.reset();
        crashSys->revive();
        crashSys->processDied();

        auto relaunched = StageStore::demo(now, crashDir(), StageSettings(), crashSys, false);
        relaunched->recoverAtLaunch();
        step("next launch puts everything back", crashSys->state(true) == before);

        const auto sheets = RunSheetFile::load(crashDir() / "runsheets.json");
        step("recovery run sheet recorded, journal cleared",
             relaunched->recovered && relaunched->recovered->reason == EndReason::recovered &&
                 !sheets.empty() && sheets.front().id == relaunched->recovered->id &&
                 !relaunched->director().hasOutstanding() && !isThere(crashDir() / "journal.json"));
        render(*relaunched, "recovered");
    }

    // The real stage system, over a Mac that must never be touched: in a test run every
    // change and every outside action is refused before any facility is reached.
    void realSystem() {
        // The self check is a test run wherever it runs, also when the command line started
        // it by name rather than through the variable.
        Harness::Environment environment = Harness::env();
        environment["SCRIMLET_SELFTEST"] = dir_.string();
        const auto wire = std::make_shared<TripwireFacilities>();
        RealStageSystem::Options options;
        options.isTestRun = [environment] { return Harness::isTestRun(environment); };
        options.micLevelsFile = state() / "mic-levels.json";
        options.shortcuts.runner = wire->runner();
        options.shortcuts.temporaryFolder = state();
        RealStageSystem real(wire, options);
        const auto refusedInTestRun = [](const std::function<void()>& action) {
            try {
                action();
            } catch (const StageError& error) {
                return error.kind() == StageError::Case::refusedInTestRun;
            } catch (...) {
                return false;
            }
            return false;
        };

        std::vector<std::string> kinds;
        for (const auto kind : effect_kind::allCases) {
            const EffectKey key(kind,
                                kind == EffectKind::appHidden ? "com.apple.finder#1#Finder" : "");
            const auto value = kind == EffectKind::alertVolume || kind == EffectKind::displayMode
                                   ? JournalValue::number(0)
                                   : JournalValue::boolean(true);
            if (refusedInTestRun([&] { real.write(key, value); })) {
                kinds.emplace_back(rawValue(kind));
            }
        }
        step("the real system refused all " + std::to_string(kinds.size()) + " kinds of change (" +
                 joined(kinds) + ")",
             kinds.size() == effect_kind::allCases.size() && wire->calls().empty());

        step("and won't start the screen saver",
             refusedInTestRun([&] { real.startScreenSaver(); }) && wire->calls().empty());

        const bool holdRefused = refusedInTestRun([&] { real.keepAwake().hold(); });
        step("no power assertion is taken",
             holdRefused && !real.keepAwake().isHolding() && !wire->called("createPowerAssertion"));

        const bool nothingRead = !real.read(alertVolume);
        const bool quietNeedsSetup = !real.availability(EffectKind::doNotDisturb).isReady();
        const bool shortcutRefused =
            refusedInTestRun([&] { real.shortcuts().run(StageSettings().focusOnShortcut); });
        step("no shortcuts or AppleScript run", nothingRead && quietNeedsSetup && shortcutRefused &&
                                                    real.shortcuts().installed(true).empty() &&
                                                    !wire->called("runAppleScript") &&
                                                    !wire->called("shortcuts"));

        const bool ready = real.availability(EffectKind::dockAutohide).isReady() &&
                           real.availability(EffectKind::darkMode).isReady();
        step("no Automation check is made",
             ready &&
                 AppleScript::systemEventsPermission(*wire, options.isTestRun()) ==
                     AppleScript::Permission::unknown &&
                 !wire->called("automationPermission"));

        if (!shell_) {
            skip("read the on-screen windows; detector gives its verdict");
            return;
        }
        const auto windows = shell_->onScreenWindows();
        const auto verdict =
            windows ? CaptureRules::evaluate(*windows, DetectionOptions()) : std::nullopt;
        step("read " + std::to_string(windows ? windows->windows.size() : 0) +
                 " on-screen windows; detector says: " +
                 (verdict ? verdict->sentence() : "nothing is being shared"),
             windows.has_value());
    }

    void noMicrophone() {
        auto silent = std::make_shared<FakeStageSystem>(demoApps(), "com.apple.Keynote",
                                                        std::vector<std::uint32_t>{1},
                                                        std::vector<std::string>{});
        auto store = StageStore::demo(store_->now(), std::nullopt, StageSettings(), silent, false);
        store->setSwitch(SwitchKind::muteMic, true);
        const auto& notes = store->board().notes();
        const auto note = notes.find(SwitchKind::muteMic);
        step("no microphone: explained", !store->board().isOn(SwitchKind::muteMic) &&
                                             note != notes.end() &&
                                             note->second == "No microphone found");
        render(*store, "empty");
    }

    Result finish() {
        Result result;
        result.passed = passed_;
        result.failed = failed_;
        result.skipped = skipped_;
        result.exitStatus = failed_ == 0 ? 0 : 1;
        result.report = std::to_string(passed_) + " passed, " + std::to_string(failed_) + " failed";
        if (skipped_ > 0) {
            result.report += ", " + std::to_string(skipped_) + " skipped";
        }
        result.report += "\n";
        for (const auto& line : lines_) {
            result.report += line + "\n";
        }
        files::writeAtomically(dir_ / "selftest.txt", result.report);
        return result;
    }

    fs::path dir_;
    SelfTestShell* shell_;
    std::shared_ptr<FakeStageSystem> sys_;
    std::shared_ptr<StageStore> store_;
    std::map<std::string, std::string> initial_;
    std::vector<std::string> lines_;
    int passed_ = 0;
    int failed_ = 0;
    int skipped_ = 0;
};

} // namespace

Result run(const std::filesystem::path& dir, SelfTestShell* shell) {
    return Scenario(dir, shell).run();
}

} // namespace scrimlet::SelfTest
