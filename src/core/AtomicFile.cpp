#include "AtomicFile.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace scrimlet::files {

namespace {

// Makes the data reach the disk itself. On macOS fsync only reaches the drive's cache;
// F_FULLFSYNC asks the drive to flush it, and fsync is the fallback where that is refused.
bool flushToDisk(int fd) {
#ifdef F_FULLFSYNC
    if (::fcntl(fd, F_FULLFSYNC) == 0) {
        return true;
    }
#endif
    return ::fsync(fd) == 0;
}

bool writeAll(int fd, std::string_view data) {
    while (!data.empty()) {
        const ssize_t written = ::write(fd, data.data(), data.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

// Built by appending: GCC 12 at -O3 misreads `"." + string` as an overflow.
std::string temporaryPrefix(const std::filesystem::path& target) {
    std::string prefix = ".";
    prefix.append(target.filename().string());
    prefix.append(".tmp-");
    return prefix;
}

// The process id goes into the name, so that a leftover tells whose it was.
std::string temporaryName(const std::filesystem::path& target) {
    thread_local std::mt19937 engine{std::random_device{}()};
    return temporaryPrefix(target) + std::to_string(::getpid()) + "-" +
           std::to_string(engine() % 1000000);
}

std::filesystem::path folderOf(const std::filesystem::path& path) {
    return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

// A folder's list of entries lives in the folder itself: a file created, renamed or deleted
// in it survives a power cut only once the folder is flushed too.
void flushFolder(const std::filesystem::path& folder) {
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        flushToDisk(fd);
        ::close(fd);
    }
}

// Like `create_directories`, but each new folder is flushed into its parent: a support
// folder made just before the first journal must not vanish with it in a power cut.
void createFolders(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> missing;
    std::error_code error;
    for (std::filesystem::path at = folder; !std::filesystem::exists(at, error);
         at = at.parent_path()) {
        missing.push_back(at);
        if (!at.has_parent_path() || at.parent_path() == at) {
            break;
        }
    }
    for (auto at = missing.rbegin(); at != missing.rend(); ++at) {
        if (::mkdir(at->c_str(), 0755) != 0 && errno != EEXIST) {
            return;
        }
        flushFolder(folderOf(*at));
    }
}

bool isRunning(pid_t pid) {
    return pid > 0 && pid != ::getpid() && (::kill(pid, 0) == 0 || errno == EPERM);
}

// The writer's process id in what follows the prefix of a temporary file: "<pid>-<n>".
std::optional<pid_t> writerOf(std::string_view rest) {
    const size_t dash = rest.find('-');
    if (dash == std::string_view::npos || dash + 1 == rest.size() ||
        rest.find_first_not_of("0123456789", dash + 1) != std::string_view::npos) {
        return std::nullopt;
    }
    pid_t pid = 0;
    const auto [end, problem] = std::from_chars(rest.data(), rest.data() + dash, pid);
    if (problem != std::errc() || end != rest.data() + dash) {
        return std::nullopt;
    }
    return pid;
}

Reading refused(Refusal refusal, int error = 0, std::uintmax_t size = 0) {
    Reading reading;
    reading.refusal = refusal;
    reading.error = std::error_code(error, std::generic_category());
    reading.size = size;
    return reading;
}

// Reads an open regular file to its end, or to one byte past `limit`, since it may grow.
Reading readOpen(int fd, std::uintmax_t size, std::uintmax_t limit) {
    std::string text(static_cast<size_t>(size), '\0');
    size_t filled = 0;
    for (;;) {
        if (filled == text.size()) {
            if (text.size() > limit) {
                return refused(Refusal::tooLarge, 0, text.size());
            }
            text.resize(static_cast<size_t>(
                std::min<std::uintmax_t>(limit + 1, std::max<size_t>(4096, text.size() * 2))));
        }
        const ssize_t got = ::read(fd, text.data() + filled, text.size() - filled);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return refused(Refusal::unreadable, errno);
        }
        if (got == 0) {
            break;
        }
        filled += static_cast<size_t>(got);
    }
    text.resize(filled);
    Reading reading;
    reading.text = std::move(text);
    return reading;
}

} // namespace

Reading readChecked(const std::filesystem::path& path, std::uintmax_t limit) noexcept {
    try {
        // A look before opening: opening a device can have effects of its own.
        struct stat status = {};
        if (::stat(path.c_str(), &status) != 0) {
            const int error = errno;
            return refused(error == ENOENT || error == ENOTDIR ? Refusal::missing
                                                               : Refusal::unreadable,
                           error);
        }
        if (S_ISDIR(status.st_mode)) {
            return refused(Refusal::folder);
        }
        if (!S_ISREG(status.st_mode)) {
            return refused(Refusal::notRegular);
        }
        // Never blocking, should the path have become a pipe since the look.
        const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
        if (fd < 0) {
            const int error = errno;
            return refused(error == ENOENT ? Refusal::missing : Refusal::unreadable, error);
        }
        Reading reading;
        if (::fstat(fd, &status) != 0) {
            reading = refused(Refusal::unreadable, errno);
        } else if (!S_ISREG(status.st_mode)) {
            reading = refused(S_ISDIR(status.st_mode) ? Refusal::folder : Refusal::notRegular);
        } else if (static_cast<std::uintmax_t>(status.st_size) > limit) {
            reading = refused(Refusal::tooLarge, 0, static_cast<std::uintmax_t>(status.st_size));
        } else {
            reading = readOpen(fd, static_cast<std::uintmax_t>(status.st_size), limit);
        }
        ::close(fd);
        return reading;
    } catch (...) {
        return refused(Refusal::unreadable, ENOMEM);
    }
}

std::optional<std::string> read(const std::filesystem::path& path) noexcept {
    return readChecked(path).text;
}

bool writeAtomically(const std::filesystem::path& path, std::string_view data) noexcept {
    try {
        const std::filesystem::path folder = folderOf(path);
        createFolders(folder);

        const std::filesystem::path temporary = folder / temporaryName(path);
        const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0) {
            return false;
        }
        const bool written = writeAll(fd, data) && flushToDisk(fd);
        const bool closed = ::close(fd) == 0;
        if (!written || !closed || ::rename(temporary.c_str(), path.c_str()) != 0) {
            ::unlink(temporary.c_str());
            return false;
        }
        flushFolder(folder);
        return true;
    } catch (...) {
        return false;
    }
}

void remove(const std::filesystem::path& path) noexcept {
    try {
        if (::unlink(path.c_str()) == 0) {
            flushFolder(folderOf(path));
        }
    } catch (...) {
        // Not reported: a journal that could not be deleted is healed at the next launch.
    }
}

int removeLeftovers(const std::filesystem::path& path) noexcept {
    try {
        const std::filesystem::path folder = folderOf(path);
        const std::string prefix = temporaryPrefix(path);
        std::vector<std::filesystem::path> leftovers;
        std::error_code error;
        for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
             entry.increment(error)) {
            const std::string name = entry->path().filename().string();
            if (name.rfind(prefix, 0) != 0) {
                continue;
            }
            const auto writer = writerOf(std::string_view(name).substr(prefix.size()));
            if (writer && !isRunning(*writer)) {
                leftovers.push_back(entry->path());
            }
        }
        int removed = 0;
        for (const auto& leftover : leftovers) {
            removed += ::unlink(leftover.c_str()) == 0 ? 1 : 0;
        }
        if (removed > 0) {
            flushFolder(folder);
        }
        return removed;
    } catch (...) {
        return 0;
    }
}

} // namespace scrimlet::files
