#include "JournalStore.hpp"

#include "AtomicFile.hpp"
#include "JsonCoding.hpp"

namespace scrimlet {

using json::Json;

JournalStore::JournalStore(std::optional<std::filesystem::path> url)
    : url_(std::move(url)) {}

std::vector<JournalEntry> JournalStore::load() const {
    if (!url_) {
        return memory_;
    }
    const auto text = files::read(*url_);
    return text ? decode(*text) : std::vector<JournalEntry>();
}

std::vector<JournalEntry> JournalStore::decode(std::string_view text) noexcept {
    try {
        const auto document = json::parse(text);
        if (!document) {
            return {};
        }
        // The version must be a whole number, but a newer one is no obstacle.
        json::decodeInteger(json::field(*document, "version"));
        const Json& list = json::field(*document, "entries");
        if (!list.is_array()) {
            return {};
        }
        std::vector<JournalEntry> entries;
        entries.reserve(list.size());
        for (const Json& item : list) {
            entries.push_back(journalEntryFromJson(item));
        }
        return entries;
    } catch (...) {
        return {};
    }
}

void JournalStore::save(const std::vector<JournalEntry>& entries) {
    if (frozen_) {
        return;
    }
    ++saves_;
    if (!url_) {
        memory_ = entries;
        return;
    }
    if (entries.empty()) {
        files::remove(*url_);
        return;
    }
    try {
        files::writeAtomically(*url_, encode(entries));
    } catch (const std::exception&) {
        // Nothing to do: the director's list in memory stays the truth.
    }
}

std::string JournalStore::encode(const std::vector<JournalEntry>& entries) {
    Json document = Json::object();
    document["version"] = 1;
    Json list = Json::array();
    for (const auto& entry : entries) {
        list.push_back(toJson(entry));
    }
    document["entries"] = std::move(list);
    return json::sortedText(document);
}

bool JournalStore::existsOnDisk() const {
    if (!url_) {
        return !memory_.empty();
    }
    std::error_code error;
    return std::filesystem::exists(*url_, error);
}

} // namespace scrimlet
