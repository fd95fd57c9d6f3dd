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

// The real command plays its demo in real time in a child process, and gets the signal as
// soon as a show is live and its journal is on disk.
TEST(Termination, ASignalMidShowPutsEverythingBackSavesTheSheetAndExitsZero) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signal);
        TempDir dir;
        std::vector<std::string> arguments = {SCRIMLET_COMMAND,    "demo",   "--dir",
                                              dir.path().string(), "--pace", "1"};
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
        ASSERT_EQ(spawned, 0) << argv[0];

        std::error_code ignored;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!std::filesystem::exists(dir / "journal.json", ignored) &&
               std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        const bool live = std::filesystem::exists(dir / "journal.json", ignored);
        kill(child, live ? signal : SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(live) << "no show went live";
        ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
        EXPECT_EQ(WEXITSTATUS(status), 0);

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
