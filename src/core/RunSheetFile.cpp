#include "RunSheetFile.hpp"

#include "AtomicFile.hpp"
#include "JsonCoding.hpp"

namespace scrimlet::RunSheetFile {

using json::Json;

std::vector<RunSheet> load(const std::optional<std::filesystem::path>& url) noexcept {
    if (!url) {
        return {};
    }
    const auto text = files::read(*url);
    return text ? decode(*text) : std::vector<RunSheet>();
}

std::vector<RunSheet> decode(std::string_view text) noexcept {
    try {
        const auto document = json::parse(text);
        if (!document || !document->is_array()) {
            return {};
        }
        std::vector<RunSheet> sheets;
        sheets.reserve(document->size());
        for (const Json& item : *document) {
            sheets.push_back(runSheetFromJson(item));
        }
        return sheets;
    } catch (...) {
        return {};
    }
}

std::string encode(const std::vector<RunSheet>& sheets) {
    Json document = Json::array();
    for (const RunSheet& sheet : sheets) {
        document.push_back(toJson(sheet));
    }
    return json::orderedText(document);
}

void save(const std::vector<RunSheet>& sheets,
          const std::optional<std::filesystem::path>& url) noexcept {
    if (!url) {
        return;
    }
    try {
        files::writeAtomically(*url, encode(sheets));
    } catch (...) {
        // The sheets in memory stay; the file keeps its old content.
    }
}

} // namespace scrimlet::RunSheetFile
