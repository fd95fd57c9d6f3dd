#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

/// `scrimlet art DIR`: every picture Scrimlet draws, in the light and the dark appearance,
/// rendered to PNG files. Linux only: it needs the cairo renderer.
namespace scrimlet::ArtCommand {

/// The names of the files `run` writes, in order.
std::vector<std::string> fileNames();

/// Writes the pictures into `dir`, creating it; tells each file on `out`. 0 when every file
/// was written, 1 otherwise.
int run(const std::filesystem::path& dir, std::ostream& out, std::ostream& err);

} // namespace scrimlet::ArtCommand
