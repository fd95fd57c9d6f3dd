#include "CommandLine.hpp"

#include "AppPaths.hpp"
#include "DemoDay.hpp"
#include "DetectCommand.hpp"
#include "Listings.hpp"
#include "Rehearsal.hpp"
#include "SelfTest.hpp"
#include "TerminationSignals.hpp"
#include "WindowsCommand.hpp"
#ifdef SCRIMLET_WITH_ART
#include "ArtCommand.hpp"
#endif

#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <set>

#ifndef SCRIMLET_VERSION
#define SCRIMLET_VERSION "unknown"
#endif

namespace scrimlet::CommandLine {

namespace {

namespace fs = std::filesystem;

void usage(std::ostream& out, const Harness::Environment& environment) {
    const fs::path support = AppPaths::support(environment);
    out << "Usage: scrimlet <command> [options]\n"
           "\n"
           "Scrimlet gets a Mac ready to be seen when a screen share or a recording starts, and\n"
           "puts everything back when it ends. This command runs its engine on a simulated Mac:\n"
           "nothing on this machine is changed.\n"
           "\n"
           "Commands:\n"
           "  demo [--pace SECONDS] [--dir DIR]\n"
           "        Plays a scripted day on the simulated Mac and tells what happens.\n"
           "        --pace SECONDS  waits that long between moments, so the day plays in real\n"
           "                        time; Ctrl-C or a kill then puts everything back and quits.\n"
           "        --dir DIR       keeps the journal, settings and run sheets in DIR\n"
           "                        (by default they stay in memory).\n"
           "  selftest DIR\n"
           "        Runs the self check with its files in DIR and writes DIR/selftest.txt.\n"
           "        Exit status 0 when no step failed, 1 otherwise. The same runs when the\n"
           "        environment holds SCRIMLET_SELFTEST=DIR.\n"
           "  sheets [--file FILE] [--json]\n"
           "        The run sheets of past shows, newest first; --json prints them as saved.\n"
           "        FILE is "
        << (support / "runsheets.json").string()
        << " by default.\n"
           "  journal [--file FILE]\n"
           "        What the journal holds outstanding, that is, what Scrimlet would put back.\n"
           "        FILE is "
        << (support / "journal.json").string()
        << " by default.\n"
           "        Both listings read FILE as Scrimlet does: a missing or damaged file counts\n"
           "        as empty, and they say so. Exit status 1 when FILE cannot be read at all:\n"
           "        a folder, a pipe or a device, larger than 10 MB, or refused by the system.\n"
           "  rehearse --dir DIR [--hold SECONDS] [--step SECONDS] [--launch-only]\n"
           "        Proves that a kill in mid-show is healed at the next launch. Each run is one\n"
           "        launch of Scrimlet on a simulated Mac whose lasting state is DIR/mac.json,\n"
           "        with the real journal and run sheets in DIR: it puts back what a killed\n"
           "        run left, then raises the curtain with the full plan, holds it and drops\n"
           "        it. Kill it with SIGKILL at any moment, run it again, and DIR shows the\n"
           "        Mac as it was before the show, no journal, and a run sheet that says so.\n"
           "        --hold SECONDS  how long the curtain stays up (1 by default).\n"
           "        --step SECONDS  a pause before and after each change to the Mac, so that\n"
           "                        a kill can land between any two steps (0 by default).\n"
           "        --launch-only   launch, heal and quit, without a show.\n"
           "  windows [--save FILE] [--label TEXT] [--watch]\n"
           "        On a Mac: the live window list as capture detection sees it, the verdict\n"
           "        and why each rule matched or not. --save FILE keeps the list for a report,\n"
           "        with --label saying what you were doing; --watch tells once a second what\n"
           "        the watcher decides, until Ctrl-C (with --save, each look is kept as\n"
           "        FILE-0001, FILE-0002, ...).\n"
           "  detect FILE... [--windows] [--json]\n"
           "        Judges saved window lists again, on any machine: each rule's finding, and\n"
           "        the lists replayed one a second through the watcher. --windows lists each\n"
           "        one's displays and windows too; --json is for tools.\n"
#ifdef SCRIMLET_WITH_ART
           "  art DIR\n"
           "        Draws every picture Scrimlet shows (menu bar glyphs, the curtain, each\n"
           "        backdrop, the spotlight, the countdown, the keyboard lock, the desktop\n"
           "        cover) in the light and the dark appearance, as PNG files in DIR.\n"
#endif
           "  help   This text. --version prints the version.\n";
}

int misuse(std::ostream& err, const std::string& problem) {
    err << "scrimlet: " << problem << "\nTry 'scrimlet --help'.\n";
    return usageError;
}

// For a command that counts its operands itself.
constexpr size_t anyNumber = std::numeric_limits<size_t>::max();

struct Options {
    std::map<std::string, std::string> values;
    std::set<std::string> flags;
    std::vector<std::string> operands;
    bool help = false;
};

// Reads "--name VALUE", "--name=VALUE", bare flags and up to `maxOperands` operands after
// the command word. Answers nothing when the command is done already: help was asked for
// (and given), or an argument is wrong (and said so); `status` is then the exit status.
std::optional<Options> parse(const std::vector<std::string>& arguments,
                             const std::set<std::string>& valued,
                             const std::set<std::string>& flags, size_t maxOperands,
                             const Harness::Environment& environment, std::ostream& out,
                             std::ostream& err, int& status) {
    status = usageError;
    Options options;
    const std::string& command = arguments.front();
    for (size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            options.help = true;
            continue;
        }
        if (argument.rfind("--", 0) != 0 || argument == "--") {
            options.operands.push_back(argument);
            continue;
        }
        const size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        if (valued.count(name)) {
            if (equals != std::string::npos) {
                options.values[name] = argument.substr(equals + 1);
            } else if (i + 1 < arguments.size()) {
                options.values[name] = arguments[++i];
            } else {
                misuse(err, command + ": " + name + " needs a value");
                return std::nullopt;
            }
        } else if (flags.count(name) && equals == std::string::npos) {
            options.flags.insert(name);
        } else {
            misuse(err, command + ": unknown option '" + argument + "'");
            return std::nullopt;
        }
    }
    if (options.help) {
        usage(out, environment);
        status = 0;
        return std::nullopt;
    }
    if (options.operands.size() > maxOperands) {
        misuse(err, command + ": unexpected argument '" + options.operands[maxOperands] + "'");
        return std::nullopt;
    }
    return options;
}

int selfTest(const std::string& dir, std::ostream& out, std::ostream& err) {
    if (dir.empty()) {
        return misuse(err, "selftest: the folder must not be empty");
    }
    const auto result = SelfTest::run(dir);
    out << result.report;
    out.flush();
    return result.exitStatus;
}

int demo(const std::vector<std::string>& arguments, const Harness::Environment& environment,
         std::ostream& out, std::ostream& err) {
    int status = 0;
    const auto options =
        parse(arguments, {"--pace", "--dir"}, {}, 0, environment, out, err, status);
    if (!options) {
        return status;
    }
    DemoDay::Options day;
    if (const auto pace = options->values.find("--pace"); pace != options->values.end()) {
        size_t used = 0;
        double seconds = -1;
        try {
            seconds = std::stod(pace->second, &used);
        } catch (const std::exception&) {
            used = 0;
        }
        if (used != pace->second.size() || !std::isfinite(seconds) || seconds < 0 ||
            seconds > 3600) {
            return misuse(err, "demo: --pace takes a number of seconds from 0 to 3600, not '" +
                                   pace->second + "'");
        }
        day.pace = seconds;
    }
    if (const auto dir = options->values.find("--dir"); dir != options->values.end()) {
        if (dir->second.empty()) {
            return misuse(err, "demo: --dir must not be empty");
        }
        std::error_code error;
        fs::create_directories(dir->second, error);
        if (error || !fs::is_directory(dir->second, error)) {
            err << "scrimlet: demo: cannot use the folder " << dir->second << "\n";
            return 1;
        }
        day.dir = fs::path(dir->second);
    }
    TerminationSignals signals;
    return DemoDay(out, day, &signals).play();
}

int listing(const std::vector<std::string>& arguments, const Harness::Environment& environment,
            std::ostream& out, std::ostream& err) {
    const bool sheets = arguments.front() == "sheets";
    int status = 0;
    const auto options = parse(arguments, {"--file"},
                               sheets ? std::set<std::string>{"--json"} : std::set<std::string>{},
                               0, environment, out, err, status);
    if (!options) {
        return status;
    }
    fs::path file = AppPaths::support(environment) / (sheets ? "runsheets.json" : "journal.json");
    if (const auto given = options->values.find("--file"); given != options->values.end()) {
        if (given->second.empty()) {
            return misuse(err, arguments.front() + ": --file must not be empty");
        }
        file = given->second;
    }
    return sheets ? Listings::sheets(file, options->flags.count("--json") > 0, out, err)
                  : Listings::journal(file, out, err);
}

} // namespace

int run(const std::vector<std::string>& arguments, const Harness::Environment& environment,
        std::ostream& out, std::ostream& err, const LiveWindowList* liveWindows) {
    if (const auto dir = Harness::selfTestDir(environment)) {
        return selfTest(*dir, out, err);
    }
    if (arguments.empty()) {
        usage(err, environment);
        return usageError;
    }
    const std::string& command = arguments.front();
    if (command == "help" || command == "--help" || command == "-h") {
        usage(out, environment);
        return 0;
    }
    if (command == "--version") {
        out << "scrimlet " << SCRIMLET_VERSION << "\n";
        return 0;
    }
    if (command == "selftest") {
        int status = 0;
        const auto options = parse(arguments, {}, {}, anyNumber, environment, out, err, status);
        if (!options) {
            return status;
        }
        if (options->operands.size() != 1) {
            return misuse(err, "selftest needs exactly one folder: scrimlet selftest DIR");
        }
        return selfTest(options->operands.front(), out, err);
    }
    if (command == "demo") {
        return demo(arguments, environment, out, err);
    }
    if (command == "sheets" || command == "journal") {
        return listing(arguments, environment, out, err);
    }
    if (command == "rehearse") {
        int status = 0;
        const auto options = parse(arguments, {"--dir", "--hold", "--step"}, {"--launch-only"}, 0,
                                   environment, out, err, status);
        return options ? Rehearsal::command(options->values, options->flags, out, err) : status;
    }
    if (command == "detect" || command == "windows") {
        const bool detect = command == "detect";
        int status = 0;
        const auto options = detect ? parse(arguments, {}, {"--json", "--windows"}, anyNumber,
                                            environment, out, err, status)
                                    : parse(arguments, {"--save", "--label"}, {"--watch"}, 0,
                                            environment, out, err, status);
        if (!options) {
            return status;
        }
        return detect ? DetectCommand::run(options->operands,
                                           {options->flags.count("--json") > 0,
                                            options->flags.count("--windows") > 0},
                                           out, err)
                      : WindowsCommand::run(options->values, options->flags.count("--watch") > 0,
                                            environment, liveWindows, out, err);
    }
#ifdef SCRIMLET_WITH_ART
    if (command == "art") {
        int status = 0;
        const auto options = parse(arguments, {}, {}, anyNumber, environment, out, err, status);
        if (!options) {
            return status;
        }
        if (options->operands.size() != 1 || options->operands.front().empty()) {
            return misuse(err, "art needs exactly one folder: scrimlet art DIR");
        }
        return ArtCommand::run(options->operands.front(), out, err);
    }
#endif
    return misuse(err, "unknown command '" + command + "'");
}

} // namespace scrimlet::CommandLine
