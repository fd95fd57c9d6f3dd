#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

/// Reads a file that a person named on the command line, where anything may turn up: a
/// folder, a pipe that never ends, a device, a file far too big. Only a regular file of at
/// most `maxBytes` is read; everything else is answered with a sentence that says what was
/// found instead. Opening never blocks, so a FIFO without a writer cannot hang the command.
namespace scrimlet::InputFile {

struct Result {
    /// The whole content; nothing when `problem` says why not.
    std::optional<std::string> text;
    /// Finishes a sentence that begins with the file's name: "is a folder, not a file".
    std::string problem;
};

Result read(const std::filesystem::path& path, std::size_t maxBytes);

/// "512 bytes", "3.2 KB", "50.0 MB".
std::string byteCount(std::size_t bytes);

} // namespace scrimlet::InputFile
