#include "AtomicFile.hpp"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <random>
#include <sstream>
#include <unistd.h>

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

std::string temporaryName(const std::filesystem::path& target) {
    thread_local std::mt19937 engine{std::random_device{}()};
    std::string name = ".";
    name.append(target.filename().string());
    name.append(".tmp-");
    name.append(std::to_string(::getpid()));
    name.push_back('-');
    name.append(std::to_string(engine() % 1000000));
    return name;
}

} // namespace

std::optional<std::string> read(const std::filesystem::path& path) noexcept {
    try {
        std::ifstream in(path, std::ios::binary);
        if (!in) {
            return std::nullopt;
        }
        std::ostringstream content;
        content << in.rdbuf();
        if (in.bad()) {
            return std::nullopt;
        }
        return std::move(content).str();
    } catch (...) {
        return std::nullopt;
    }
}

bool writeAtomically(const std::filesystem::path& path, std::string_view data) noexcept {
    try {
        const std::filesystem::path folder =
            path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
        std::error_code ignored;
        std::filesystem::create_directories(folder, ignored);

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
        // The rename itself lives in the folder's entry list, which must reach the disk too.
        const int dirFd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (dirFd >= 0) {
            flushToDisk(dirFd);
            ::close(dirFd);
        }
        return true;
    } catch (...) {
        return false;
    }
}

void remove(const std::filesystem::path& path) noexcept {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

} // namespace scrimlet::files
