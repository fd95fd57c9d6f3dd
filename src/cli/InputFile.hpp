#pragma once

#include <filesystem>
#include <optional>
#include <string>

/// A file that the user names on the command line, read with the limits the program itself
/// reads its files with: never a pipe or a device, which could block for ever or never end,
/// never a folder, and never more than `files::readLimit` bytes. Every command that reads a
/// file the user names takes it through here, so that they all say the same about one that
/// cannot be read.
namespace scrimlet::InputFile {

struct Contents {
    /// The whole text, when the file could be read.
    std::optional<std::string> text;
    /// Nothing is there: for most commands not a fault, just nothing yet.
    bool missing = false;
    /// When there is neither text nor `missing`: why not, as a sentence that names the file
    /// ("/tmp/x is a folder, not a file.").
    std::string problem;
};

Contents read(const std::filesystem::path& file);

} // namespace scrimlet::InputFile
