#include "Rehearsal.hpp"

#include "Dropdown.hpp"
#include "FakeStageSystem.hpp"
#include "JournalStore.hpp"
#include "Narration.hpp"
#include "StageStore.hpp"
#include "TerminationSignals.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace scrimlet {

namespace {

namespace fs = std::filesystem;

// The simulated Mac as the engine sees it, with a pause on each side of every write: a kill
// during the first pause finds the journal saved and the Mac untouched, during the second the
// Mac changed and the journal not yet told.
class PacedStage : public StageSystem {
public:
    PacedStage(std::shared_ptr<FakeStageSystem> mac, double pause, TerminationSignals& signals)
        : mac_(std::move(mac))
        , pause_(pause)
        , signals_(signals) {}

    std::optional<JournalValue> read(const EffectKey& key) override { return mac_->read(key); }
    std::optional<JournalValue> write(const EffectKey& key, const JournalValue& value) override {
        wait();
        auto result = mac_->write(key, value);
        wait();
        return result;
    }
    Availability availability(EffectKind kind) override { return mac_->availability(kind); }
    std::vector<AppInfo> runningApps() override { return mac_->runningApps(); }
    std::optional<std::string> frontmostBundleID() override { return mac_->frontmostBundleID(); }
    std::vector<std::uint32_t> displays() override { return mac_->displays(); }
    std::optional<JournalValue> displayModeValue(const ResolutionPreset& preset,
                                                 std::uint32_t display) override {
        return mac_->displayModeValue(preset, display);
    }
    std::optional<std::uint32_t> mainDisplay() override { return mac_->mainDisplay(); }
    std::optional<std::string> defaultInputDevice() override { return mac_->defaultInputDevice(); }
    void startScreenSaver() override { mac_->startScreenSaver(); }

private:
    // Once a termination signal has come, the rest goes at full speed to the orderly end.
    void wait() const {
        if (pause_ > 0) {
            signals_.wait(pause_);
        }
    }

    std::shared_ptr<FakeStageSystem> mac_;
    double pause_;
    TerminationSignals& signals_;
};

// Everything a show can do, on one simulated display that has the size asked for.
StageSettings fullPlan() {
    StageSettings settings;
    StagePlan& plan = settings.plan;
    plan.hideDesktopIcons = plan.hideDock = plan.hideOtherApps = plan.tidyMenuBar = true;
    plan.backdrop = plan.darkMode = plan.doNotDisturb = plan.muteAlerts = plan.keepAwake = true;
    plan.resolution = ResolutionPreset{1920, 1080};
    settings.menuBarDivider = true;
    settings.countdown = false;
    settings.timeLimitMinutes.reset();
    return settings;
}

std::optional<double> seconds(const std::string& text) {
    size_t used = 0;
    double value = -1;
    try {
        value = std::stod(text, &used);
    } catch (const std::exception&) {
        return std::nullopt;
    }
    if (used != text.size() || !std::isfinite(value) || value < 0 || value > 3600) {
        return std::nullopt;
    }
    return value;
}

} // namespace

Rehearsal::Rehearsal(std::ostream& out, Options options, TerminationSignals& signals)
    : out_(out)
    , options_(std::move(options))
    , signals_(signals) {}

void Rehearsal::say(const std::string& text) {
    // Flushed at once: whoever watches the run acts on each line as it comes.
    out_ << text << std::endl;
}

int Rehearsal::run() {
    auto mac = FakeStageSystem::demo();
    mac->keepPersistentState(options_.dir / macFile);
    auto stage = std::make_shared<PacedStage>(mac, options_.step, signals_);
    auto store =
        StageStore::create(StageStore::Mode::demo, stage, mac,
                           std::make_shared<JournalStore>(options_.dir / "journal.json"),
                           fullPlan(), std::nullopt, options_.dir / "runsheets.json", nullptr);

    store->recoverAtLaunch();
    if (const auto& healed = store->recovered) {
        say("Launched: " + Dropdown::recoveredText(*healed));
        out_ << Narration::records(healed->strike, "  ");
    } else {
        say("Launched: nothing to put back.");
    }
    if (options_.launchOnly) {
        return 0;
    }

    const auto quit = [&](int signal) {
        store->shutdown();
        say("Quit on signal " + std::to_string(signal) + ": " +
            Dropdown::endedText(store->show().sheets().front()));
        return 0;
    };
    say("Raising the curtain.");
    store->startShow("Started for a rehearsal", false);
    if (const auto& sheet = store->show().current()) {
        say("Live: " + std::to_string(sheet->cues.size()) + " cues.");
    }
    say("Holding.");
    const auto until =
        std::chrono::steady_clock::now() + std::chrono::duration<double>(options_.hold);
    while (std::chrono::steady_clock::now() < until) {
        const double left =
            std::chrono::duration<double>(until - std::chrono::steady_clock::now()).count();
        if (const auto signal = signals_.wait(std::min(1.0, std::max(0.0, left)))) {
            return quit(*signal);
        }
        store->tick();
    }
    if (const auto signal = signals_.received()) {
        return quit(*signal);
    }
    say("Dropping the curtain.");
    store->stopShow();
    say("Dark: " + Dropdown::endedText(store->show().sheets().front()));
    return 0;
}

int Rehearsal::command(const std::map<std::string, std::string>& values,
                       const std::set<std::string>& flags, std::ostream& out, std::ostream& err) {
    const auto wrong = [&](const std::string& problem) {
        err << "scrimlet: rehearse: " << problem << "\nTry 'scrimlet --help'.\n";
        return 2;
    };
    Options options;
    const auto dir = values.find("--dir");
    if (dir == values.end() || dir->second.empty()) {
        return wrong("--dir DIR is needed: the folder of the simulated Mac and its files");
    }
    options.dir = dir->second;
    const std::pair<std::string, double*> timings[] = {{"--hold", &options.hold},
                                                       {"--step", &options.step}};
    for (const auto& [name, target] : timings) {
        if (const auto given = values.find(name); given != values.end()) {
            const auto value = seconds(given->second);
            if (!value) {
                return wrong(name + " takes a number of seconds from 0 to 3600, not '" +
                             given->second + "'");
            }
            *target = *value;
        }
    }
    options.launchOnly = flags.count("--launch-only") > 0;
    std::error_code error;
    fs::create_directories(options.dir, error);
    if (error || !fs::is_directory(options.dir, error)) {
        err << "scrimlet: rehearse: cannot use the folder " << options.dir.string() << "\n";
        return 1;
    }
    TerminationSignals signals;
    return Rehearsal(out, std::move(options), signals).run();
}

} // namespace scrimlet
