#include "RunSheetFile.hpp"

#include "AtomicFile.hpp"
#include "JsonCoding.hpp"

namespace scrimlet::RunSheetFile {

using json::Json;

std::vector<RunSheet> load(const std::optional<std::filesystem::path>& url) noexcept {
    if (!url) {
        return {};
    }
    try {
        const auto text = files::read(*url);
        if (!text) {
            return {};
        }
        const auto document = json::parse(*text);
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

void save(const std::vector<RunSheet>& sheets,
          const std::optional<std::filesystem::path>& url) noexcept {
    if (!url) {
        return;
    }
    try {
        Json document = Json::array();
        for (const RunSheet& sheet : sheets) {
            document.push_back(toJson(sheet));
        }
        files::writeAtomically(*url, json::orderedText(document));
    } catch (...) {
        // The sheets in memory stay; the file keeps its old content.
    }
}

} // namespace scrimlet::RunSheetFile
