#pragma once

#include <filesystem>
#include <map>
#include <ostream>
#include <set>
#include <string>

namespace scrimlet {

class TerminationSignals;

/// One show on a simulated Mac that outlives its process: the Mac's lasting state is a file
/// ("mac.json") in a folder that also holds the real journal and run sheets. Each run is one
/// launch, which heals what a killed run left, then by default one show with the full plan:
/// the curtain raised, held, dropped. It exists to be killed: a process killed at any moment
/// of it must leave a folder that the next launch heals completely, and a test can check
/// that from the files alone. Main thread only.
class Rehearsal {
public:
    struct Options {
        std::filesystem::path dir;
        /// Launch, heal, and quit without a show.
        bool launchOnly = false;
        /// How long the curtain stays up, in seconds.
        double hold = 1;
        /// A pause before and after each change to the Mac, in seconds, so that a kill can
        /// land between any two steps of the write-ahead order.
        double step = 0;
    };

    /// The name of the simulated Mac's file in the folder.
    static constexpr const char* macFile = "mac.json";

    /// SIGTERM, SIGINT or SIGHUP, seen through `signals`, cut the run short the way the app
    /// quits: everything is put back and the sheet is filed.
    Rehearsal(std::ostream& out, Options options, TerminationSignals& signals);

    /// Runs it; the exit status.
    int run();

    /// The command line's side: reads `--dir`, `--hold`, `--step` and `--launch-only`, says
    /// what is wrong in `err` with the status 2, or runs.
    static int command(const std::map<std::string, std::string>& values,
                       const std::set<std::string>& flags, std::ostream& out, std::ostream& err);

private:
    void say(const std::string& text);

    std::ostream& out_;
    Options options_;
    TerminationSignals& signals_;
};

} // namespace scrimlet
