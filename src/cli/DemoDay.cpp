#include "DemoDay.hpp"

#include "DemoCapture.hpp"
#include "Dropdown.hpp"
#include "Fmt.hpp"
#include "Harness.hpp"
#include "JournalStore.hpp"
#include "Narration.hpp"
#include "StageStore.hpp"
#include "TerminationSignals.hpp"

#include <algorithm>
#include <functional>
#include <utility>

namespace scrimlet {

namespace {

// Continuation lines stand under the text, past the time stamp.
const std::string indent(10, ' ');

std::string joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string out;
    for (const auto& part : parts) {
        out += (out.empty() ? "" : separator) + part;
    }
    return out;
}

std::string signalName(int signal) {
    switch (signal) {
    case SIGTERM:
        return "SIGTERM";
    case SIGINT:
        return "SIGINT";
    case SIGHUP:
        return "SIGHUP";
    default:
        return "signal " + std::to_string(signal);
    }
}

// Feeds one snapshot a second until `done` holds, for at most `seconds`.
void observeUntil(StageStore& store, const CaptureSnapshot& snapshot, int seconds,
                  const std::function<bool()>& done) {
    for (int i = 0; i < seconds && !done(); ++i) {
        store.demoObserve(snapshot);
    }
}

std::vector<CueRecord> since(const std::vector<CueRecord>& log, size_t length) {
    return {log.begin() + static_cast<std::ptrdiff_t>(std::min(length, log.size())), log.end()};
}

} // namespace

DemoDay::DemoDay(std::ostream& out, Options options, TerminationSignals* signals)
    : out_(out)
    , options_(std::move(options))
    , signals_(signals)
    , sys_(FakeStageSystem::demo()) {}

int DemoDay::play() {
    const std::vector<void (DemoDay::*)()> moments = {
        &DemoDay::opening,      &DemoDay::screenshot,         &DemoDay::zoomShare,
        &DemoDay::changeByHand, &DemoDay::shareEnds,          &DemoDay::showByHand,
        &DemoDay::timeLimit,    &DemoDay::switchOutlivesShow, &DemoDay::crash,
    };
    try {
        for (const auto moment : moments) {
            (this->*moment)();
            pause();
        }
    } catch (const Interrupted& interrupted) {
        quit(interrupted.signal);
        return 0;
    }
    closing();
    return 0;
}

void DemoDay::pause(std::optional<double> seconds) {
    out_.flush();
    if (!signals_) {
        return;
    }
    if (const auto signal = signals_->wait(seconds.value_or(options_.pace))) {
        throw Interrupted{*signal};
    }
}

void DemoDay::say(const std::string& text) {
    out_ << Narration::time(store_->now()) << "  " << text << "\n";
}

void DemoDay::more(const std::string& text) {
    out_ << indent << text << "\n";
}

void DemoDay::curtainFell(const std::string& cause) {
    const RunSheet& sheet = store_->show().sheets().front();
    say(cause + " Down comes the curtain: " +
        std::string(label(sheet.reason.value_or(EndReason::stopped))) + ", after " +
        Fmt::duration(sheet.duration().value_or(0)) + ".");
    out_ << Narration::records(sheet.strike, indent + "  ");
    more(Dropdown::endedText(sheet));
}

void DemoDay::launch() {
    const Date now = store_ ? store_->now() : Harness::demoNow();
    const StageSettings settings = store_ ? store_->settings() : StageStore::demoSettings();
    if (options_.dir) {
        store_ = StageStore::demo(now, options_.dir, settings, sys_, false);
    } else if (!store_) {
        store_ = StageStore::demo(now, std::nullopt, settings, sys_, true);
    } else {
        auto journal = std::make_shared<JournalStore>();
        journal->save(carriedJournal_);
        store_ =
            StageStore::create(StageStore::Mode::demo, sys_, sys_, std::move(journal), settings,
                               std::nullopt, std::nullopt, std::make_shared<ManualClock>(now));
        store_->show().restoreSheets(carriedSheets_);
        store_->refreshAvailability();
    }
    store_->recoverAtLaunch();
}

void DemoDay::opening() {
    launch();
    out_ << "Scrimlet demo: a day on a simulated Mac. Nothing on this machine is touched.\n";
    if (options_.dir) {
        out_ << "The journal, settings and run sheets are kept in " << options_.dir->string()
             << ".\n";
    }
    out_ << "\n";
    if (const auto& healed = store_->recovered) {
        say("At launch Scrimlet found a show that never ended and put the Mac back:");
        out_ << Narration::records(healed->strike, indent + "  ");
        more(Dropdown::recoveredText(*healed));
    }
    const size_t past = store_->show().sheets().size();
    say("The curtain is down. " +
        (past == 0
             ? std::string("No shows yet.")
             : std::to_string(past) + (past == 1 ? " past show" : " past shows") + " on file.") +
        " Scrimlet watches the window list for shares and recordings.");
    std::vector<std::string> plan;
    for (const auto& row : store_->plannedCues()) {
        if (row.on) {
            plan.push_back(row.title);
        }
    }
    more("The plan: " + joined(plan, ", ") + ".");
}

void DemoDay::screenshot() {
    observeUntil(*store_, DemoCapture::screenshot(), 3, [] { return false; });
    observeUntil(*store_, DemoCapture::idle(), 2, [] { return false; });
    say("You take a screenshot. The system's capture window covers the screen for a moment.");
    more(store_->show().isDark() ? "That is no share: the curtain stays down."
                                 : "The curtain went up for it.");
}

void DemoDay::zoomShare() {
    Show& show = store_->show();
    observeUntil(*store_, DemoCapture::zoomSharing(), 5, [&] { return show.isLive(); });
    if (!show.isLive() || !show.current()) {
        say("Zoom starts sharing your screen, but the curtain stays down.");
        return;
    }
    say(show.current()->how + ". Up goes the curtain, with no countdown:");
    out_ << Narration::records(show.current()->cues, indent + "  ");
    more("Kept visible: " + joined(store_->keptAppNames(), ", ") + ".");
}

void DemoDay::changeByHand() {
    Show& show = store_->show();
    const size_t seen = show.current() ? show.current()->cues.size() : 0;
    sys_->userSet(EffectKey(EffectKind::alertVolume), JournalValue::number(0.5));
    observeUntil(*store_, DemoCapture::zoomSharing(), 15,
                 [&] { return !show.current() || show.current()->cues.size() > seen; });
    say("Mid-call you turn the alert volume up by hand, to 0.50.");
    if (show.current() && show.current()->cues.size() > seen) {
        more("Scrimlet notices, and leaves it to you:");
        out_ << Narration::records(since(show.current()->cues, seen), indent + "  ");
    }
}

void DemoDay::shareEnds() {
    const auto sheets = store_->show().sheets().size();
    observeUntil(*store_, DemoCapture::idle(), 10, [&] { return store_->show().isDark(); });
    if (store_->show().sheets().size() > sheets) {
        curtainFell("Zoom stops sharing.");
    }
}

void DemoDay::showByHand() {
    StageSettings limited = store_->settings();
    limited.timeLimitMinutes = 20;
    store_->setSettings(limited);
    say("You set a time limit of " + Fmt::minutes(20) +
        " and raise the curtain from the menu for a talk.");
    store_->startShow("Started from the menu");
    std::string counted = "The countdown: ";
    while (const auto left = store_->countdown()) {
        counted += std::to_string(*left) + " · ";
        pause(std::min(options_.pace, 1.0));
        store_->demoAdvance(1);
    }
    more(counted + "live:");
    if (const auto& sheet = store_->show().current()) {
        out_ << Narration::records(sheet->cues, indent + "  ");
    }
}

void DemoDay::timeLimit() {
    const auto sheets = store_->show().sheets().size();
    if (const auto left = store_->show().remaining()) {
        store_->demoAdvance(*left);
    }
    if (store_->show().sheets().size() > sheets) {
        curtainFell("The talk runs long.");
    }
    StageSettings unlimited = store_->settings();
    unlimited.timeLimitMinutes.reset();
    store_->setSettings(unlimited);
}

void DemoDay::switchOutlivesShow() {
    SwitchBoard& board = store_->board();
    store_->setSwitch(SwitchKind::keepAwake, true);
    const auto left = board.remaining(SwitchKind::keepAwake);
    say("You switch on Keep Awake" +
        (left ? ". It turns itself off in " + Fmt::clock(*left) + "." : std::string(".")));
    pause();

    store_->handle("scrimlet://start");
    store_->handle("scrimlet://start");
    say("A Shortcut sends scrimlet://start twice: the second cue skips the countdown. Live:");
    if (const auto& sheet = store_->show().current()) {
        out_ << Narration::records(sheet->cues, indent + "  ");
    }
    pause();

    store_->demoAdvance(5 * 60);
    store_->handle("scrimlet://stop");
    curtainFell("Five minutes later a Shortcut sends scrimlet://stop.");
    if (board.isOn(SwitchKind::keepAwake)) {
        const auto remaining = board.remaining(SwitchKind::keepAwake);
        more("Keep Awake outlived the show" +
             (remaining ? ": it turns itself off in " + Fmt::clock(*remaining) + "."
                        : std::string(".")));
    }
    pause();

    const size_t length = store_->director().log().size();
    store_->setSwitch(SwitchKind::keepAwake, false);
    say("You switch Keep Awake off:");
    out_ << Narration::records(since(store_->director().log(), length), indent + "  ");
}

void DemoDay::crash() {
    // The instant the process dies nothing more reaches the journal.
    sys_->onCrash = [weak = std::weak_ptr<StageStore>(store_)] {
        if (const auto store = weak.lock()) {
            store->director().store().freeze();
        }
    };
    sys_->setCrash(FakeStageSystem::CrashPoint::afterWrite(4));
    observeUntil(*store_, DemoCapture::chromeSharing(), 5,
                 [&] { return sys_->crashed() || store_->show().isLive(); });
    say("Google Chrome starts sharing your screen, and halfway through raising the curtain "
        "Scrimlet is killed.");

    JournalStore& journal = store_->director().store();
    carriedJournal_ = journal.load();
    carriedSheets_ = store_->show().sheets();
    const size_t outstanding = carriedJournal_.size();
    more(std::string(options_.dir ? "The journal on disk holds " : "The journal holds ") +
         std::to_string(outstanding) + (outstanding == 1 ? " change:" : " changes:"));
    for (const auto& entry : carriedJournal_) {
        more("  " + Narration::entry(entry));
    }
    sys_->revive();
    sys_->processDied();

    launch();
    if (const auto& healed = store_->recovered) {
        say("Scrimlet starts again. Before anything else it reads the journal and puts the Mac "
            "back:");
        out_ << Narration::records(healed->strike, indent + "  ");
        more(Dropdown::recoveredText(*healed));
    } else {
        say("Scrimlet starts again; the journal holds nothing to put back.");
    }
}

void DemoDay::closing() {
    const auto sheets = store_->show().sheets().size();
    const size_t length = store_->director().log().size();
    store_->shutdown();
    say("The day is over and you quit Scrimlet.");
    const auto undone = since(store_->director().log(), length);
    if (undone.empty() && store_->show().sheets().size() == sheets) {
        more("Nothing was left to put back.");
    } else {
        out_ << Narration::records(undone, indent + "  ");
    }
    const auto& all = store_->show().sheets();
    out_ << "\nRun sheets, newest first (" << all.size() << "):\n\n";
    for (const auto& sheet : all) {
        out_ << Narration::sheet(sheet) << "\n";
    }
    out_.flush();
}

void DemoDay::quit(int signal) {
    out_ << "\n";
    const size_t length = store_->director().log().size();
    say("Caught " + signalName(signal) + ": putting everything back before quitting.");
    store_->shutdown();
    out_ << Narration::records(since(store_->director().log(), length), indent + "  ");
    more("Everything is put back and the run sheets are saved.");
    out_.flush();
}

} // namespace scrimlet
