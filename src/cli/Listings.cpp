#include "Listings.hpp"

#include "InputFile.hpp"
#include "JournalStore.hpp"
#include "JsonCoding.hpp"
#include "Narration.hpp"
#include "RunSheetFile.hpp"

namespace scrimlet::Listings {

namespace {

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

bool isEmptyList(const std::string& text) {
    const auto document = json::parse(text);
    return document && document->is_array() && document->empty();
}

} // namespace

int sheets(const std::filesystem::path& file, bool json, std::ostream& out, std::ostream& err) {
    const auto contents = InputFile::read(file);
    if (!contents.text && !contents.missing) {
        err << "scrimlet: sheets: " << file.string() << " " << contents.problem << "\n";
        return unreadable;
    }
    const auto loaded =
        contents.text ? RunSheetFile::decode(*contents.text) : std::vector<RunSheet>();
    std::ostream& notes = json ? err : out;
    if (contents.missing) {
        notes << "No past shows: " << file.string() << " does not exist yet.\n";
    } else if (loaded.empty() && !isEmptyList(*contents.text)) {
        notes << file.string()
              << " is damaged and could not be read, so it counts as no past shows. "
                 "Scrimlet writes it anew after the next show.\n";
    } else if (loaded.empty()) {
        notes << "No past shows in " << file.string() << ".\n";
    }
    if (json) {
        out << RunSheetFile::encode(loaded) << "\n";
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

int journal(const std::filesystem::path& file, std::ostream& out, std::ostream& err) {
    const auto contents = InputFile::read(file);
    if (!contents.text && !contents.missing) {
        err << "scrimlet: journal: " << file.string() << " " << contents.problem << "\n";
        return unreadable;
    }
    const auto entries =
        contents.text ? JournalStore::decode(*contents.text) : std::vector<JournalEntry>();
    if (contents.missing) {
        out << "Nothing outstanding: " << file.string()
            << " does not exist, so Scrimlet has nothing to put back.\n";
    } else if (entries.empty() && !isEmptyJournal(*contents.text)) {
        out << file.string()
            << " is damaged and could not be read. Scrimlet counts it as holding nothing, so "
               "nothing will be put back from it.\n";
    } else if (entries.empty()) {
        out << "Nothing outstanding in " << file.string() << ".\n";
    } else {
        out << entries.size() << (entries.size() == 1 ? " change" : " changes")
            << " outstanding in " << file.string()
            << ". While Scrimlet runs they belong to its show or switches; if it is not "
               "running, it puts them back at its next launch.\n";
        for (const auto& entry : entries) {
            out << "  " << Narration::entry(entry) << "\n";
        }
    }
    return 0;
}

} // namespace scrimlet::Listings
