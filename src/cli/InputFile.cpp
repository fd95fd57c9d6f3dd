#include "InputFile.hpp"

#include <cerrno>
#include <cstdio>

namespace scrimlet::InputFile {

namespace {

std::string becauseOf(const std::error_code& error) {
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted) {
        return "could not be read: permission denied";
    }
    return "could not be read: " + error.message();
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
    auto reading = files::readChecked(path, maxBytes);
    Result result;
    if (reading.text) {
        result.text = std::move(reading.text);
        return result;
    }
    switch (reading.refusal.value_or(files::Refusal::unreadable)) {
    case files::Refusal::missing:
        result.missing = true;
        result.problem = reading.error == std::errc::not_a_directory
                             ? "does not exist (a part of its path is not a folder)"
                             : "does not exist";
        break;
    case files::Refusal::folder:
        result.problem = "is a folder, not a file";
        break;
    case files::Refusal::notRegular:
        result.problem = "is not a regular file (a pipe, a device or a socket)";
        break;
    case files::Refusal::tooLarge:
        result.problem = "is " + byteCount(static_cast<std::size_t>(reading.size)) +
                         ", too large to read (at most " + byteCount(maxBytes) + ")";
        break;
    case files::Refusal::unreadable:
        result.problem = becauseOf(reading.error);
        break;
    }
    return result;
}

} // namespace scrimlet::InputFile
