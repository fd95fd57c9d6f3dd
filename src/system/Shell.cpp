#include "Shell.hpp"

#include "Utf8.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace scrimlet::Shell {

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr auto pollInterval = std::chrono::milliseconds(20);
// How long a terminated child may take to go before it is killed.
constexpr auto terminationGrace = std::chrono::seconds(1);

// Both ends of a pipe, closed when it goes.
class Pipe {
public:
    Pipe() {
        int fds[2];
        if (::pipe(fds) == 0) {
            read = fds[0];
            write = fds[1];
            ::fcntl(read, F_SETFD, FD_CLOEXEC);
            ::fcntl(write, F_SETFD, FD_CLOEXEC);
        }
    }
    ~Pipe() {
        closeRead();
        closeWrite();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    bool isOpen() const { return read >= 0 && write >= 0; }
    void closeRead() { close(read); }
    void closeWrite() { close(write); }

    int read = -1;
    int write = -1;

private:
    static void close(int& fd) {
        if (fd >= 0) {
            ::close(fd);
            fd = -1;
        }
    }
};

class FileActions {
public:
    FileActions() { ok = ::posix_spawn_file_actions_init(&actions) == 0; }
    ~FileActions() {
        if (ok) {
            ::posix_spawn_file_actions_destroy(&actions);
        }
    }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    posix_spawn_file_actions_t actions;
    bool ok = false;
};

class SpawnAttributes {
public:
    SpawnAttributes() { ok = ::posix_spawnattr_init(&attributes) == 0; }
    ~SpawnAttributes() {
        if (ok) {
            ::posix_spawnattr_destroy(&attributes);
        }
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    posix_spawnattr_t attributes;
    bool ok = false;
};

// The child's wait status once it has ended; nothing while it runs. A child that someone
// else reaped counts as ended without a status.
std::optional<int> reap(pid_t pid, bool& reapedElsewhere) {
    for (;;) {
        int status = 0;
        const pid_t answer = ::waitpid(pid, &status, WNOHANG);
        if (answer == pid) {
            return status;
        }
        if (answer == 0) {
            return std::nullopt;
        }
        if (errno != EINTR) {
            reapedElsewhere = true;
            return -1;
        }
    }
}

// Reads what the pipe holds now; false once it is at its end.
bool drain(int fd, std::string& output) {
    char buffer[16384];
    for (;;) {
        const ssize_t count = ::read(fd, buffer, sizeof buffer);
        if (count > 0) {
            output.append(buffer, static_cast<size_t>(count));
        } else if (count == 0) {
            return false;
        } else if (errno == EINTR) {
            continue;
        } else {
            return errno == EAGAIN || errno == EWOULDBLOCK;
        }
    }
}

// Ends the child and everything it started (its process group), and reaps it.
void terminate(pid_t pid) {
    ::kill(-pid, SIGTERM);
    const auto giveUp = SteadyClock::now() + terminationGrace;
    bool elsewhere = false;
    while (!reap(pid, elsewhere)) {
        if (SteadyClock::now() >= giveUp) {
            ::kill(-pid, SIGKILL);
            int status = 0;
            while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
            }
            return;
        }
        std::this_thread::sleep_for(pollInterval);
    }
}

std::int32_t exitStatus(int status, bool reapedElsewhere) {
    if (reapedElsewhere) {
        return -1;
    }
    if (WIFEXITED(status)) {
        return WEXITSTATUS(status);
    }
    if (WIFSIGNALED(status)) {
        return 128 + WTERMSIG(status);
    }
    return -1;
}

} // namespace

Result run(const std::string& path, const std::vector<std::string>& arguments, double timeout) {
    const auto started = SteadyClock::now();
    // A time-out of days is as good as none; beyond that the clock's arithmetic would not hold.
    const double seconds = std::clamp(timeout > 0 ? timeout : 0.0, 0.0, 1e7);
    const auto deadline = started + std::chrono::duration_cast<SteadyClock::duration>(
                                        std::chrono::duration<double>(seconds));

    Pipe pipe;
    FileActions files;
    SpawnAttributes attributes;
    if (!pipe.isOpen() || !files.ok || !attributes.ok) {
        return {};
    }
    posix_spawn_file_actions_addopen(&files.actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files.actions, pipe.write, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&files.actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    // A group of its own, so that a time-out ends whatever the child started too.
    posix_spawnattr_setflags(&attributes.attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes.attributes, 0);

    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(path.c_str()));
    for (const auto& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);

    pid_t pid = 0;
    if (::posix_spawn(&pid, path.c_str(), &files.actions, &attributes.attributes, argv.data(),
                      environ) != 0) {
        return {};
    }
    pipe.closeWrite();
    ::fcntl(pipe.read, F_SETFL, ::fcntl(pipe.read, F_GETFL) | O_NONBLOCK);

    // The pipe is read while the child runs, so that a child that writes more than the pipe
    // holds is never stuck until its time-out.
    std::string output;
    bool pipeOpen = true;
    bool reapedElsewhere = false;
    for (;;) {
        if (const auto status = reap(pid, reapedElsewhere)) {
            // Everything the child wrote is in the pipe by now. Whatever it started may hold
            // the pipe open for longer; that is not waited for.
            if (pipeOpen) {
                drain(pipe.read, output);
            }
            return {exitStatus(*status, reapedElsewhere), utf8::repaired(output)};
        }
        const auto now = SteadyClock::now();
        if (now >= deadline) {
            terminate(pid);
            return {};
        }
        const auto wait = std::min<SteadyClock::duration>(pollInterval, deadline - now);
        if (pipeOpen) {
            pollfd watched{pipe.read, POLLIN, 0};
            const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(wait);
            if (::poll(&watched, 1, static_cast<int>(milliseconds.count())) != 0) {
                pipeOpen = drain(pipe.read, output);
            }
        } else {
            std::this_thread::sleep_for(wait);
        }
    }
}

} // namespace scrimlet::Shell
