#include "SettingsFile.hpp"

#include "AtomicFile.hpp"
#include "JsonCoding.hpp"

namespace scrimlet::SettingsFile {

StageSettings load(const std::optional<std::filesystem::path>& url) noexcept {
    if (!url) {
        return StageSettings();
    }
    const auto text = files::read(*url);
    return text ? decode(*text) : StageSettings();
}

StageSettings decode(std::string_view text) noexcept {
    try {
        const auto document = json::parse(text);
        if (!document) {
            return StageSettings();
        }
        return stageSettingsFromJson(*document);
    } catch (...) {
        return StageSettings();
    }
}

void save(const StageSettings& settings, const std::optional<std::filesystem::path>& url) noexcept {
    if (!url) {
        return;
    }
    try {
        files::writeAtomically(*url, json::sortedText(toJson(settings)));
    } catch (...) {
        // The settings in memory stay in force; the file keeps its old content.
    }
}

} // namespace scrimlet::SettingsFile
