#include "InputFile.hpp"

#include "AtomicFile.hpp"

#include <cstdio>

namespace scrimlet::InputFile {

namespace {

// "52.4 MB": decimal megabytes, as the limit itself is told.
std::string megabytes(std::uintmax_t bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / 1e6);
    return text;
}

} // namespace

Contents read(const std::filesystem::path& file) {
    auto reading = files::readChecked(file);
    Contents contents;
    if (reading.text) {
        contents.text = std::move(reading.text);
        return contents;
    }
    const std::string name = file.string();
    switch (reading.refusal.value_or(files::Refusal::unreadable)) {
    case files::Refusal::missing:
        contents.missing = true;
        break;
    case files::Refusal::folder:
        contents.problem = name + " is a folder, not a file.";
        break;
    case files::Refusal::notRegular:
        contents.problem =
            name + " is not a regular file (a pipe, a device or a socket), so it was not read.";
        break;
    case files::Refusal::tooLarge:
        contents.problem = name + " is " + megabytes(reading.size) + ", larger than the " +
                           std::to_string(files::readLimit / 1'000'000) +
                           " MB that any Scrimlet file can be, so it was not read.";
        break;
    case files::Refusal::unreadable:
        contents.problem = name + " could not be read: " + reading.error.message() + ".";
        break;
    }
    return contents;
}

} // namespace scrimlet::InputFile
