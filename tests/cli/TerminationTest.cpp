#include "TerminationSignals.hpp"

#include "AtomicFile.hpp"
#include "FakeStageSystem.hpp"
#include "RunSheetFile.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>

extern char** environ;

namespace scrimlet {
namespace {

using testing::TempDir;

TEST(TerminationSignals, ASignalWaitsOnThePipeUntilTheLoopLooks) {
    struct sigaction before = {};
    sigaction(SIGHUP, nullptr, &before);
    {
        TerminationSignals signals;
        EXPECT_FALSE(signals.wait(0.02));
        EXPECT_THROW(TerminationSignals(), std::logic_error);
        // Without the handler this would end the test program.
        std::raise(SIGHUP);
        EXPECT_EQ(signals.received(), SIGHUP);
        // Once seen, it stays seen: a later wait does not wait.
        EXPECT_EQ(signals.wait(60), SIGHUP);
    }
    struct sigaction after = {};
    sigaction(SIGHUP, nullptr, &after);
    EXPECT_EQ(after.sa_handler, before.sa_handler);
    EXPECT_FALSE(TerminationSignals().received());
}

// Runs the real command with `arguments` in a child process with no output, sends it
// `signal` as soon as a show is live and its journal is on disk, and answers its wait status.
int signalledMidShow(const std::vector<std::string>& options, const TempDir& dir, int signal) {
    std::vector<std::string> arguments{SCRIMLET_COMMAND};
    arguments.insert(arguments.end(), options.begin(), options.end());
    std::vector<char*> argv;
    for (auto& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int spawned = posix_spawn(&child, argv[0], &quiet, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&quiet);
    EXPECT_EQ(spawned, 0) << argv[0];

    std::error_code ignored;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!std::filesystem::exists(dir / "journal.json", ignored) &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const bool live = std::filesystem::exists(dir / "journal.json", ignored);
    EXPECT_TRUE(live) << "no show went live";
    kill(child, live ? signal : SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

// The real command plays its demo in real time in a child process, and gets the signal as
// soon as a show is live and its journal is on disk.
TEST(Termination, ASignalMidShowPutsEverythingBackSavesTheSheetAndExitsZero) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signal);
        TempDir dir;
        const int status =
            signalledMidShow({"demo", "--dir", dir.path().string(), "--pace", "1"}, dir, signal);
        ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
        EXPECT_EQ(WEXITSTATUS(status), 0);

        EXPECT_FALSE(std::filesystem::exists(dir / "journal.json"));
        const auto sheets = RunSheetFile::load(dir / "runsheets.json");
        ASSERT_FALSE(sheets.empty());
        EXPECT_EQ(sheets.front().reason, EndReason::quit);
        EXPECT_FALSE(sheets.front().strike.empty());
        for (const auto& record : sheets.front().strike) {
            EXPECT_FALSE(record.outcome.isProblem()) << record.title;
        }
    }
}

// A rehearsal quits like the app: a signal while the curtain is being raised, slowly, lets
// the raise finish, then everything goes back and the sheet says "Scrimlet quit".
TEST(Termination, ARehearsalSignalledWhileRaisingPutsTheSimulatedMacBack) {
    TempDir dir;
    const int status = signalledMidShow(
        {"rehearse", "--dir", dir.path().string(), "--step", "0.05", "--hold", "60"}, dir, SIGTERM);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_FALSE(std::filesystem::exists(dir / "journal.json"));
    auto mac = FakeStageSystem::demo();
    mac->takePersistentState(files::read(dir / "mac.json").value_or(""));
    EXPECT_EQ(mac->state(true), FakeStageSystem::demo()->state(true));
    const auto sheets = RunSheetFile::load(dir / "runsheets.json");
    ASSERT_EQ(sheets.size(), 1u);
    EXPECT_EQ(sheets.front().reason, EndReason::quit);
    EXPECT_EQ(sheets.front().strike.size(), sheets.front().cues.size());
}

} // namespace
} // namespace scrimlet
