#pragma once

#include "Journal.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

/// Keeps the journal on disk so that a crash in mid-show can be healed at the next launch.
/// It never reports a failure: a journal that cannot be written must not stop a show, and
/// one that cannot be read must not stop a launch. Without a location it keeps the list in
/// memory. Main thread only; saves are synchronous, which the write-ahead promise rests on.
class JournalStore {
public:
    explicit JournalStore(std::optional<std::filesystem::path> url = std::nullopt);

    /// What the file holds; an empty list for anything that cannot be read.
    std::vector<JournalEntry> load() const;
    /// The entries of a journal file's text, read as `load` reads the file: an empty list
    /// for anything that is not a whole journal. Never throws.
    static std::vector<JournalEntry> decode(std::string_view text) noexcept;
    /// The text `save` writes for `entries`: pretty-printed JSON with sorted keys. Throws
    /// only what the JSON library throws when memory runs out.
    static std::string encode(const std::vector<JournalEntry>& entries);
    /// Replaces the whole journal. An empty list deletes the file.
    void save(const std::vector<JournalEntry>& entries);
    /// From now on nothing is saved: the file stays as a dead process would have left it.
    void freeze() { frozen_ = true; }

    bool frozen() const { return frozen_; }
    int saves() const { return saves_; }
    /// Whether something is outstanding: the file exists, or the memory holds entries.
    bool existsOnDisk() const;
    const std::optional<std::filesystem::path>& url() const { return url_; }

private:
    std::optional<std::filesystem::path> url_;
    std::vector<JournalEntry> memory_;
    bool frozen_ = false;
    int saves_ = 0;
};

} // namespace scrimlet
