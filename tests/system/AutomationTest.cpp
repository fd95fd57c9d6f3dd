// Running other programs for real: the shell with its time-out, and Do Not Disturb through a
// stand-in for the shortcuts tool that lists, writes its output file, sleeps or fails.

#include "FocusShortcuts.hpp"
#include "ManualClock.hpp"
#include "Shell.hpp"
#include "StageSystem.hpp"
#include "TempDir.hpp"
#include "Utf8.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <sys/stat.h>

namespace scrimlet {
namespace {

using testing::TempDir;
namespace fs = std::filesystem;

// An executable shell script in the folder.
fs::path script(const TempDir& dir, const std::string& name, const std::string& body) {
    const auto path = dir / name;
    std::ofstream(path) << "#!/bin/sh\n" << body << "\n";
    ::chmod(path.c_str(), 0755);
    return path;
}

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Whether the process is gone for good (ended and reaped).
bool gone(const fs::path& pidFile) {
    std::ifstream in(pidFile);
    pid_t pid = 0;
    in >> pid;
    return pid > 0 && ::kill(pid, 0) == -1 && errno == ESRCH;
}

TEST(Shell, ReadsWhatAChildPrintsAndHowItEnded) {
    TempDir dir;
    EXPECT_EQ(Shell::run("/bin/sh", {"-c", "printf 'one\\ntwo'; echo err >&2"}, 5),
              (Shell::Result{0, "one\ntwo"}));
    EXPECT_EQ(Shell::run("/bin/sh", {"-c", "printf partial; exit 3"}, 5),
              (Shell::Result{3, "partial"}));
    EXPECT_EQ(Shell::run("/bin/sh", {"-c", "kill -9 $$"}, 5), (Shell::Result{137, ""}));
    // Ill-formed UTF-8 is repaired, one replacement per broken piece.
    EXPECT_EQ(Shell::run("/bin/sh", {"-c", "printf 'a\\377b\\342\\202c'"}, 5).output,
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD"
              "c");
    // Standard input is the null device: a reader ends at once.
    EXPECT_EQ(Shell::run("/bin/cat", {}, 5), (Shell::Result{0, ""}));

    // More than a pipe holds comes through whole, long before the time-out.
    const auto big = Shell::run("/bin/sh", {"-c", "head -c 1000000 /dev/zero | tr '\\0' a"}, 30);
    EXPECT_EQ(big.status, 0);
    EXPECT_EQ(big.output, std::string(1000000, 'a'));

    // A child that is done answers at once, even if what it started still holds the pipe.
    const auto start = std::chrono::steady_clock::now();
    const auto early = Shell::run(
        "/bin/sh", {"-c", "sleep 30 & echo $! > '" + (dir / "orphan").string() + "'; echo done"},
        20);
    EXPECT_EQ(early, (Shell::Result{0, "done\n"}));
    EXPECT_LT(secondsSince(start), 10);
    std::ifstream orphan(dir / "orphan");
    pid_t pid = 0;
    orphan >> pid;
    ASSERT_GT(pid, 0);
    ::kill(pid, SIGKILL);
}

TEST(Utf8, EachBrokenPieceBecomesOneReplacement) {
    const std::string fffd = "\xEF\xBF\xBD";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"plain €, ✓ and 🎬", "plain €, ✓ and 🎬"},
        {"\xC0\xAF", fffd + fffd},                       // overlong
        {"\xED\xA0\x80", fffd + fffd + fffd},            // a surrogate
        {"\xF4\x90\x80\x80", fffd + fffd + fffd + fffd}, // beyond U+10FFFF
        {"\xE2\x82", fffd},                              // cut short at the end
        {"\xF0\x9F\x8Ex", fffd + "x"},                   // cut short inside
        {"\x80\xBF", fffd + fffd},                       // lone continuations
    };
    for (const auto& [bytes, expected] : rows) {
        EXPECT_EQ(utf8::repaired(bytes), expected);
        EXPECT_EQ(utf8::isValid(bytes), bytes == expected);
    }
}

TEST(Shell, AChildThatOutlivesItsTimeOutIsEndedAndSaysNothing) {
    TempDir dir;
    const auto pid = dir / "pid";
    const auto sleeper =
        script(dir, "sleeper", "echo early; echo $$ > '" + pid.string() + "'; exec sleep 30");
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Shell::run(sleeper.string(), {}, 0.3), (Shell::Result{-1, ""}));
    const double took = secondsSince(start);
    EXPECT_GE(took, 0.3);
    EXPECT_LT(took, 3);
    EXPECT_TRUE(gone(pid));

    // One that ignores the request to end is killed after a grace second.
    const auto stubborn =
        script(dir, "stubborn",
               "trap '' TERM; echo $$ > '" + pid.string() + "'; while :; do sleep 1; done");
    start = std::chrono::steady_clock::now();
    EXPECT_EQ(Shell::run(stubborn.string(), {}, 0.3), (Shell::Result{-1, ""}));
    EXPECT_GE(secondsSince(start), 1.3);
    EXPECT_TRUE(gone(pid));
}

TEST(Shell, WhatCannotBeStartedIsStatusMinusOne) {
    TempDir dir;
    std::ofstream(dir / "plain") << "not a program";
    for (const auto& path : {(dir / "missing").string(), (dir / "plain").string(),
                             dir.path().string(), std::string()}) {
        EXPECT_EQ(Shell::run(path, {}, 5), (Shell::Result{-1, ""})) << path;
    }
}

// The shortcuts tool as the user's Mac would answer: two shortcuts of ours among others.
class ShortcutsStandIn {
public:
    ShortcutsStandIn() {
        tool_ = script(dir_, "shortcuts", R"(echo "$1 $2" >> ')" + (dir_ / "log").string() + R"('
case "$1" in
list) printf 'Scrimlet Quiet On\n\n  Scrimlet Quiet Off  \nMorning\r\n   \n' ;;
run)
  case "$2" in
  "Scrimlet Quiet On") printf 'Off\n' > "$4" ;;
  Work) printf 'Work' > "$4" ;;
  Blank) printf '  \n' > "$4" ;;
  Garbled) printf 'Of\377f' > "$4" ;;
  Broken) printf 'Work' > "$4"; exit 1 ;;
  Slow) printf 'Work' > "$4"; sleep 30 ;;
  esac ;;
esac)");
        fs::create_directories(temporary());
    }

    fs::path temporary() const { return dir_ / "tmp"; }
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(Date{1'790'000'000});
    bool testRun = false;

    FocusShortcuts make() {
        FocusShortcuts::Options options;
        options.tool = tool_.string();
        options.clock = ManualClock::reading(clock);
        options.temporaryFolder = temporary();
        options.runTimeout = 0.5;
        return FocusShortcuts(options, [this] { return testRun; });
    }
    /// What the tool was asked, one line per run.
    std::vector<std::string> log() const {
        std::ifstream in(dir_ / "log");
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);) {
            lines.push_back(line);
        }
        return lines;
    }
    bool leftFiles() const { return !fs::is_empty(temporary()); }

private:
    TempDir dir_;
    fs::path tool_;
};

TEST(FocusShortcuts, TheListingIsCachedForAMinute) {
    ShortcutsStandIn standIn;
    auto shortcuts = standIn.make();
    const std::set<std::string> names = {"Scrimlet Quiet On", "Scrimlet Quiet Off", "Morning"};
    EXPECT_EQ(shortcuts.installed(false), names);
    standIn.clock->advance(59.9);
    EXPECT_EQ(shortcuts.installed(false), names);
    EXPECT_EQ(standIn.log().size(), 1u);
    standIn.clock->advance(0.1);
    shortcuts.installed(false);
    shortcuts.installed(true);
    EXPECT_EQ(standIn.log().size(), 3u);
    EXPECT_EQ(shortcuts.listedAt(), standIn.clock->now);
    // A clock that went back cannot vouch for the listing.
    standIn.clock->advance(-10);
    shortcuts.installed(false);
    EXPECT_EQ(standIn.log().size(), 4u);

    // A test run lists nothing and leaves the cache as it was.
    standIn.testRun = true;
    EXPECT_TRUE(shortcuts.installed(true).empty());
    EXPECT_EQ(standIn.log().size(), 4u);
    standIn.testRun = false;
    EXPECT_EQ(shortcuts.installed(false), names);

    // A tool that fails gives an empty listing, cached like any other.
    FocusShortcuts::Options missing;
    missing.tool = (standIn.temporary() / "none").string();
    missing.clock = ManualClock::reading(standIn.clock);
    int runs = 0;
    missing.runner = [&](const std::string& path, const std::vector<std::string>& arguments,
                         double timeout) {
        ++runs;
        return Shell::run(path, arguments, timeout);
    };
    FocusShortcuts broken(missing, [] { return false; });
    EXPECT_TRUE(broken.installed(false).empty());
    EXPECT_TRUE(broken.installed(false).empty());
    EXPECT_EQ(runs, 1);
}

TEST(FocusShortcuts, ARunAnswersTheStateBeforeAndNeverLeavesItsFile) {
    ShortcutsStandIn standIn;
    auto shortcuts = standIn.make();
    EXPECT_EQ(shortcuts.run("Scrimlet Quiet On"), JournalValue::boolean(false));
    EXPECT_EQ(shortcuts.run("Work"), JournalValue::boolean(true));
    EXPECT_EQ(shortcuts.run("Blank"), std::nullopt);
    EXPECT_EQ(shortcuts.run("Garbled"), std::nullopt);
    // No output file at all: the state before stays unknown.
    EXPECT_EQ(shortcuts.run("Scrimlet Quiet Off"), std::nullopt);
    EXPECT_FALSE(standIn.leftFiles());

    for (const std::string name : {"Broken", "Slow"}) {
        try {
            shortcuts.run(name);
            ADD_FAILURE() << name << " did not fail";
        } catch (const StageError& error) {
            EXPECT_EQ(error.description(), "The shortcut “" + name + "” didn't run");
        }
        EXPECT_FALSE(standIn.leftFiles()) << name;
    }
    EXPECT_EQ(standIn.log().back(), "run Slow");

    standIn.testRun = true;
    const size_t runs = standIn.log().size();
    try {
        shortcuts.run("Work");
        ADD_FAILURE() << "a test run ran a shortcut";
    } catch (const StageError& error) {
        EXPECT_EQ(error.kind(), StageError::Case::refusedInTestRun);
    }
    EXPECT_EQ(standIn.log().size(), runs);
}

TEST(FocusShortcuts, ParseReadsTheWordsForOff) {
    const std::vector<std::pair<std::string, std::optional<bool>>> rows = {
        {"Off\n", false},   {"NONE", false},   {" no ", false},
        {"False", false},   {"0", false},      {"Work", true},
        {"on", true},       {"offline", true}, {"  \t\r\n", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, expected] : rows) {
        const auto parsed = FocusShortcuts::parse(text);
        EXPECT_EQ(parsed ? parsed->boolValue() : std::nullopt, expected) << text;
    }
}

} // namespace
} // namespace scrimlet
