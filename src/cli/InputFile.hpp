#pragma once

#include "AtomicFile.hpp"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

/// Reads a file that a person named on the command line, where anything may turn up: a
/// folder, a pipe that never ends, a device, a file far too big. Only a regular file of at
/// most `maxBytes` is read, with the same checks as the program's own readers, and opening
/// never blocks, so a FIFO without a writer cannot hang the command. Everything else is
/// answered with a sentence that says what was found instead, the same for every command.
namespace scrimlet::InputFile {

struct Result {
    /// The whole content; nothing when `problem` says why not.
    std::optional<std::string> text;
    /// Nothing is there at all, which some commands take as "nothing yet" rather than a fault.
    bool missing = false;
    /// Finishes a sentence that begins with the file's name: "is a folder, not a file".
    std::string problem;
};

/// By default at most what the program itself reads of its own files.
Result read(const std::filesystem::path& path, std::size_t maxBytes = files::readLimit);

/// "512 bytes", "3.2 KB", "50.0 MB".
std::string byteCount(std::size_t bytes);

} // namespace scrimlet::InputFile
