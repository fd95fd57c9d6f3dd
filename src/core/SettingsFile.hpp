#pragma once

#include "Settings.hpp"

#include <filesystem>
#include <optional>
#include <string_view>

/// Keeps the settings in one JSON file, pretty printed with sorted keys. Settings never
/// stop the program: whatever cannot be read takes its default, a file that is no JSON
/// object at all gives the defaults of a first run, and a write that fails leaves the old
/// file. Nothing here throws. Main thread only.
namespace scrimlet::SettingsFile {

/// The settings in the file, field by field; `StageSettings()` when there is no location,
/// no file, or no JSON object in it.
StageSettings load(const std::optional<std::filesystem::path>& url) noexcept;
/// The settings of a file's text, field by field, as `load` reads the file.
StageSettings decode(std::string_view text) noexcept;
/// Replaces the file atomically. Without a location nothing is written.
void save(const StageSettings& settings, const std::optional<std::filesystem::path>& url) noexcept;

} // namespace scrimlet::SettingsFile
