#include "InputFile.hpp"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace scrimlet::InputFile {

namespace {

class Descriptor {
public:
    explicit Descriptor(int fd)
        : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

private:
    int fd_;
};

Result failed(std::string problem) {
    return Result{std::nullopt, std::move(problem)};
}

std::string becauseOf(int error) {
    switch (error) {
    case ENOENT:
        return "does not exist";
    case EACCES:
    case EPERM:
        return "could not be read: permission denied";
    case ENOTDIR:
        return "does not exist (a part of its path is not a folder)";
    default:
        return std::string("could not be read: ") + std::strerror(error);
    }
}

std::string tooLarge(std::size_t found, std::size_t maxBytes) {
    return "is " + byteCount(found) + ", too large to read (at most " + byteCount(maxBytes) + ")";
}

} // namespace

std::string byteCount(std::size_t bytes) {
    if (bytes < 1000) {
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    }
    char text[32];
    const double kb = static_cast<double>(bytes) / 1000;
    if (kb < 1000) {
        std::snprintf(text, sizeof text, "%.1f KB", kb);
    } else {
        std::snprintf(text, sizeof text, "%.1f MB", kb / 1000);
    }
    return text;
}

Result read(const std::filesystem::path& path, std::size_t maxBytes) {
    // O_NONBLOCK: opening a FIFO that no one writes to would otherwise wait forever.
    Descriptor fd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (fd.get() < 0) {
        return failed(becauseOf(errno));
    }
    struct stat info = {};
    if (::fstat(fd.get(), &info) != 0) {
        return failed(becauseOf(errno));
    }
    if (S_ISDIR(info.st_mode)) {
        return failed("is a folder, not a file");
    }
    if (!S_ISREG(info.st_mode)) {
        return failed("is not a regular file (a pipe, a device or a socket)");
    }
    if (info.st_size > 0 && static_cast<std::uintmax_t>(info.st_size) > maxBytes) {
        return failed(tooLarge(static_cast<std::size_t>(info.st_size), maxBytes));
    }
    // The size can change while we read, so the limit is kept while reading too.
    std::string text;
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(fd.get(), buffer, sizeof buffer);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return failed(becauseOf(errno));
        }
        if (got == 0) {
            break;
        }
        text.append(buffer, static_cast<std::size_t>(got));
        if (text.size() > maxBytes) {
            return failed(tooLarge(text.size(), maxBytes));
        }
    }
    return Result{std::move(text), ""};
}

} // namespace scrimlet::InputFile
