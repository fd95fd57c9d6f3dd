#include "Updater.hpp"

#include "UpdaterWorld.hpp"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <thread>

extern char** environ;

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using fakes::readText;

pid_t spawn(std::vector<std::string> arguments, char* const* environment = environ) {
    std::vector<char*> argv;
    for (auto& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    pid_t pid = 0;
    EXPECT_EQ(posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environment), 0);
    return pid;
}

int waitFor(pid_t pid) {
    int status = 0;
    EXPECT_EQ(waitpid(pid, &status, 0), pid);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// An installed app and a staged one, each with a nested file that tells them apart.
struct Apps {
    scrimlet::testing::TempDir temp;
    fs::path installed = temp / "Applications" / "Scrimlet.app";
    fs::path stagingFolder = temp / "Caches" / "VantrelUpdate" / "1.1";

    Apps() {
        fakes::writeText(installed / "Contents" / "Info.plist", "1.0");
        fakes::writeText(stagingFolder / "Scrimlet.app" / "Contents" / "Info.plist", "1.1");
    }
    pid_t install(pid_t waitingFor, char* const* environment = environ) const {
        return spawn({"/bin/sh", "-c", std::string(Updater::installScript), "vantrel-update",
                      std::to_string(waitingFor), (stagingFolder / "Scrimlet.app").string(),
                      installed.string(), "0"},
                     environment);
    }
};

TEST(InstallScript, FailedCopyRestoresTheOldAppOnceTheProcessHasGone) {
    if (fs::exists("/usr/bin/ditto")) {
        GTEST_SKIP() << "the copy cannot fail where /usr/bin/ditto exists";
    }
    Apps apps;
    const fs::path old = apps.installed.string() + ".vantrel-old";
    fakes::writeText(old / "stale", "from an earlier attempt");

    // A `sleep` that keeps count shows how long the script waited, in its own units.
    const fs::path sleeps = apps.temp / "sleeps";
    fakes::writeText(apps.temp / "bin" / "sleep",
                     "#!/bin/sh\necho >> '" + sleeps.string() + "'\nexec /bin/sleep \"$@\"\n");
    fs::permissions(apps.temp / "bin" / "sleep", fs::perms::owner_all);
    std::string path = "PATH=" + (apps.temp / "bin").string() + ":/usr/bin:/bin";
    char* environment[] = {path.data(), nullptr};

    const pid_t app = spawn({"/bin/sleep", "60"});
    const pid_t script = apps.install(app, environment);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(waitpid(script, nullptr, WNOHANG), 0) << "the script did not wait for the app";
    EXPECT_TRUE(fs::exists(old / "stale"));

    kill(app, SIGKILL);
    waitFor(app);
    EXPECT_EQ(waitFor(script), 0);
    const std::string counted = readText(sleeps);
    EXPECT_LT(std::count(counted.begin(), counted.end(), '\n'), 600) << "it waited out its limit";

    EXPECT_EQ(readText(apps.installed / "Contents" / "Info.plist"), "1.0");
    EXPECT_EQ(std::distance(fs::directory_iterator(apps.installed), fs::directory_iterator()), 1);
    EXPECT_FALSE(fs::exists(old));
    EXPECT_FALSE(fs::exists(apps.stagingFolder));
}

TEST(InstallScript, SwapsInTheNewAppAndClearsTheStaging) {
    if (!fs::exists("/usr/bin/ditto")) {
        GTEST_SKIP() << "needs /usr/bin/ditto";
    }
    Apps apps;
    const pid_t gone = spawn({"/usr/bin/true"});
    waitFor(gone);

    EXPECT_EQ(waitFor(apps.install(gone)), 0);
    EXPECT_EQ(readText(apps.installed / "Contents" / "Info.plist"), "1.1");
    EXPECT_FALSE(fs::exists(apps.installed.string() + ".vantrel-old"));
    EXPECT_FALSE(fs::exists(apps.stagingFolder));
}

} // namespace
} // namespace vantrel
