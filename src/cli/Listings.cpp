#include "Listings.hpp"

#include "AtomicFile.hpp"
#include "JournalStore.hpp"
#include "JsonCoding.hpp"
#include "Narration.hpp"
#include "RunSheetFile.hpp"

namespace scrimlet::Listings {

namespace {

bool isThere(const std::filesystem::path& file) {
    std::error_code ignored;
    return std::filesystem::exists(file, ignored);
}

// A journal that holds nothing is written as no file at all, but an object with an empty
// list reads as nothing outstanding just the same.
bool isEmptyJournal(const std::string& text) {
    const auto document = json::parse(text);
    if (!document || !document->is_object() || !document->contains("entries")) {
        return false;
    }
    try {
        json::decodeInteger(json::field(*document, "version"));
    } catch (const std::exception&) {
        return false;
    }
    const auto& entries = (*document)["entries"];
    return entries.is_array() && entries.empty();
}

} // namespace

int sheets(const std::filesystem::path& file, bool json, std::ostream& out, std::ostream& err) {
    const auto loaded = RunSheetFile::load(file);
    std::ostream& notes = json ? err : out;
    if (loaded.empty()) {
        const auto text = files::read(file);
        if (!isThere(file)) {
            notes << "No past shows: " << file.string() << " does not exist yet.\n";
        } else if (!text) {
            notes << file.string() << " could not be read, so it counts as no past shows.\n";
        } else if (const auto document = json::parse(*text);
                   !document || !document->is_array() || !document->empty()) {
            notes << file.string()
                  << " is damaged and could not be read, so it counts as no past shows. "
                     "Scrimlet writes it anew after the next show.\n";
        } else {
            notes << "No past shows in " << file.string() << ".\n";
        }
    }
    if (json) {
        json::Json document = json::Json::array();
        for (const auto& sheet : loaded) {
            document.push_back(toJson(sheet));
        }
        out << json::orderedText(document) << "\n";
        return 0;
    }
    if (!loaded.empty()) {
        out << loaded.size() << (loaded.size() == 1 ? " past show" : " past shows") << " in "
            << file.string() << ", newest first:\n";
        for (const auto& sheet : loaded) {
            out << "\n" << Narration::sheet(sheet);
        }
    }
    return 0;
}

int journal(const std::filesystem::path& file, std::ostream& out) {
    const auto entries = JournalStore(file).load();
    if (entries.empty()) {
        const auto text = files::read(file);
        if (!isThere(file)) {
            out << "Nothing outstanding: " << file.string()
                << " does not exist, so Scrimlet has nothing to put back.\n";
        } else if (!text || !isEmptyJournal(*text)) {
            out << file.string()
                << " is damaged and could not be read. Scrimlet counts it as holding "
                   "nothing, so nothing will be put back from it.\n";
        } else {
            out << "Nothing outstanding in " << file.string() << ".\n";
        }
        return 0;
    }
    out << entries.size() << (entries.size() == 1 ? " change" : " changes") << " outstanding in "
        << file.string()
        << ". While Scrimlet runs they belong to its show or switches; if it is not running, "
           "it puts them back at its next launch.\n";
    for (const auto& entry : entries) {
        out << "  " << Narration::entry(entry) << "\n";
    }
    return 0;
}

} // namespace scrimlet::Listings
