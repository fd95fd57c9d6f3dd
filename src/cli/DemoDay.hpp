#pragma once

#include "FakeStageSystem.hpp"
#include "RunSheet.hpp"

#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

namespace scrimlet {

class StageStore;
class TerminationSignals;

/// A scripted day on the simulated Mac, told as it happens: a screenshot that starts
/// nothing, a Zoom share that raises the curtain, a change made by hand and left alone, the
/// share ending, a show by hand with its countdown and a time limit, a switch that outlives a
/// show, a crash and its healing at the next launch, and the run sheets at the end. Main
/// thread only.
class DemoDay {
public:
    struct Options {
        /// Where the journal, settings and run sheets live; in memory without.
        std::optional<std::filesystem::path> dir;
        /// Seconds to wait between moments; 0 plays the day at once.
        double pace = 0;
    };

    /// With `signals`, a termination signal ends the day early, with everything put back.
    DemoDay(std::ostream& out, Options options, TerminationSignals* signals = nullptr);

    /// Plays the day; the exit status, 0 also when a signal cut it short.
    int play();

private:
    struct Interrupted {
        int signal;
    };

    void opening();
    void screenshot();
    void zoomShare();
    void changeByHand();
    void shareEnds();
    void showByHand();
    void timeLimit();
    void switchOutlivesShow();
    void crash();
    void closing();
    void quit(int signal);

    /// Makes the store of one launch and heals what the journal says a dead launch left.
    void launch();
    /// Waits a beat, or for `seconds` when given; throws `Interrupted` on a signal.
    void pause(std::optional<double> seconds = std::nullopt);
    void say(const std::string& text);
    void more(const std::string& text);
    void curtainFell(const std::string& cause);

    std::ostream& out_;
    Options options_;
    TerminationSignals* signals_;
    std::shared_ptr<FakeStageSystem> sys_;
    std::shared_ptr<StageStore> store_;
    /// In memory, what the journal file would keep across a crash.
    std::vector<JournalEntry> carriedJournal_;
    std::vector<RunSheet> carriedSheets_;
};

} // namespace scrimlet
