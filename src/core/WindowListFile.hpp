#pragma once

// A saved look at the window list, as capture detection sees it, so that a list taken on one
// Mac can be judged again anywhere: when a share went unnoticed, the list is what a user
// attaches to the report. It holds what the rules read (windows front to back, displays,
// running apps, microphone and camera) and never a window's title or picture.

#include "CaptureModel.hpp"
#include "Date.hpp"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

struct RecordedWindowList {
    CaptureSnapshot snapshot;
    /// The system it was taken on, as the system names itself ("macOS 26.0 (25A354)").
    std::string systemVersion;
    /// The version of Scrimlet that took it.
    std::string scrimletVersion;
    std::optional<Date> recorded;
    /// What the user was doing, in their words ("Teams, sharing the whole screen").
    std::optional<std::string> label;
    /// The options in force where it was taken; a replay without them uses the defaults.
    std::optional<DetectionOptions> detection;

    friend bool operator==(const RecordedWindowList&, const RecordedWindowList&) = default;
};

/// The file: one JSON object with a format version. Reading forgives what it can: a damaged
/// window or display is skipped, a damaged detail takes its default, and only a document
/// that is not a window list at all reads as nothing. Nothing here throws.
namespace WindowListFile {

inline constexpr std::int64_t formatVersion = 1;

struct Reading {
    /// Nothing when the text is not a window list at all; `problem` then says why, as the
    /// end of a sentence that begins with the file's name ("is not JSON: ...").
    std::optional<RecordedWindowList> list;
    std::string problem;
    /// What was skipped or defaulted on the way, one line each ("window 3: missing key
    /// layer, skipped").
    std::vector<std::string> notes;
};

/// Reads a document as written by `encode`, or by a later version of it.
Reading decode(std::string_view text) noexcept;
std::string encode(const RecordedWindowList& list);

/// The list in `path`, or nothing when the file is missing or is not a window list.
std::optional<RecordedWindowList> load(const std::filesystem::path& path) noexcept;
/// Replaces the file atomically; whether it was written.
bool save(const RecordedWindowList& list, const std::filesystem::path& path) noexcept;

} // namespace WindowListFile

} // namespace scrimlet
