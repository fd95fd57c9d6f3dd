#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace scrimlet::files {

/// The most any reader takes in. The program's own files stay far below it (thirty full run
/// sheets make about 220 KB); anything larger is not one of them, and parsing it would cost
/// seconds and hundreds of megabytes.
inline constexpr std::uintmax_t readLimit = 10'000'000;

/// Why a file was not read.
enum class Refusal {
    missing,    ///< Nothing at that path.
    folder,     ///< A folder, not a file.
    notRegular, ///< A pipe, a device or a socket: reading it could wait for ever or never end.
    tooLarge,   ///< More than `readLimit` bytes.
    unreadable, ///< There, but the system refused to open or read it.
};

/// The outcome of `readChecked`: the text, or why there is none.
struct Reading {
    std::optional<std::string> text;
    /// Set exactly when `text` is absent.
    std::optional<Refusal> refusal;
    /// The size found, for `tooLarge`.
    std::uintmax_t size = 0;
    /// The system's error, for `unreadable`.
    std::error_code error;
};

/// Reads a regular file of at most `limit` bytes, without ever blocking on a pipe or a
/// device. Never throws.
Reading readChecked(const std::filesystem::path& path, std::uintmax_t limit = readLimit) noexcept;

/// The whole content of a file, or nothing when it cannot be read for any reason, when it
/// is not a regular file, or when it is larger than `readLimit`.
std::optional<std::string> read(const std::filesystem::path& path) noexcept;

/// Writes `data` so that a crash or a power cut leaves either the old file or the new one,
/// never half of one: missing parent folders are created and each is flushed into its own
/// parent, a temporary file beside the target is written, flushed to the disk and renamed
/// over the target, and the folder itself is flushed. Never throws; answers whether the
/// file was replaced.
bool writeAtomically(const std::filesystem::path& path, std::string_view data) noexcept;

/// Deletes the file and flushes its folder, so that a file once gone stays gone after a
/// power cut; a missing file or a failure is not reported. Never throws.
void remove(const std::filesystem::path& path) noexcept;

/// Deletes the temporary files that saves of `path` left behind when their process was
/// killed in mid-write. Those of a process still running are left alone; this process has
/// none in flight, as saves are synchronous. Answers how many went. Never throws.
int removeLeftovers(const std::filesystem::path& path) noexcept;

} // namespace scrimlet::files
