#include "TerminationSignals.hpp"

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
        EXPECT_FALSE(signals.received());
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
    // A new instance may take over once the old one is gone.
    TerminationSignals again;
    EXPECT_FALSE(again.received());
}

// Plays the demo of the command as a child process, with its files in `dir`, and sends it
// `signal` as soon as a show is live and its journal is on disk. Answers the wait status.
int interruptLiveShow(const std::filesystem::path& dir, int signal) {
    const std::string command = SCRIMLET_COMMAND;
    const std::string folder = dir.string();
    std::vector<char*> argv = {const_cast<char*>(command.c_str()),
                               const_cast<char*>("demo"),
                               const_cast<char*>("--dir"),
                               const_cast<char*>(folder.c_str()),
                               const_cast<char*>("--pace"),
                               const_cast<char*>("1"),
                               nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int spawned =
        posix_spawn(&child, command.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        ADD_FAILURE() << "could not start " << command;
        return -1;
    }

    const auto journal = dir / "journal.json";
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    std::error_code ignored;
    while (!std::filesystem::exists(journal, ignored) &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const bool live = std::filesystem::exists(journal, ignored);
    EXPECT_TRUE(live) << "no show went live";
    kill(child, live ? signal : SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

TEST(Termination, ASignalMidShowPutsEverythingBackSavesTheSheetAndExitsZero) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signal);
        TempDir dir;
        const int status = interruptLiveShow(dir.path(), signal);
        ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
        EXPECT_EQ(WEXITSTATUS(status), 0);

        std::error_code ignored;
        EXPECT_FALSE(std::filesystem::exists(dir / "journal.json", ignored));
        const auto sheets = RunSheetFile::load(dir / "runsheets.json");
        ASSERT_FALSE(sheets.empty());
        EXPECT_EQ(sheets.front().reason, EndReason::quit);
        EXPECT_FALSE(sheets.front().strike.empty());
        for (const auto& record : sheets.front().strike) {
            EXPECT_FALSE(record.outcome.isProblem()) << record.title;
        }
    }
}

} // namespace
} // namespace scrimlet
