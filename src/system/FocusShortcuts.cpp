#include "FocusShortcuts.hpp"

#include "AsciiText.hpp"
#include "AtomicFile.hpp"
#include "StageSystem.hpp"
#include "Utf8.hpp"
#include "Uuid.hpp"

#include <algorithm>
#include <array>

namespace scrimlet {

namespace {

namespace fs = std::filesystem;

// Removes the file when it goes, whatever happened in between.
class RemovedAtEnd {
public:
    explicit RemovedAtEnd(fs::path path)
        : path_(std::move(path)) {}
    ~RemovedAtEnd() { files::remove(path_); }
    RemovedAtEnd(const RemovedAtEnd&) = delete;
    RemovedAtEnd& operator=(const RemovedAtEnd&) = delete;

private:
    fs::path path_;
};

} // namespace

FocusShortcuts::FocusShortcuts(Options options, std::function<bool()> isTestRun)
    : options_(std::move(options))
    , isTestRun_(std::move(isTestRun)) {}

std::set<std::string> FocusShortcuts::installed(bool refresh) {
    if (isTestRun_()) {
        return {};
    }
    const Date now = options_.clock();
    if (!refresh && cache_) {
        const double age = now - cache_->first;
        // A clock that went back cannot vouch for the listing's age.
        if (age >= 0 && age < listingLifetime) {
            return cache_->second;
        }
    }
    // The status is not examined: whatever names came out are the listing.
    const auto listing = options_.runner(options_.tool, {"list"}, options_.listingTimeout);
    std::set<std::string> names;
    std::string_view rest = listing.output;
    while (!rest.empty()) {
        const size_t end = rest.find('\n');
        const auto name = ascii::trimmed(rest.substr(0, end), " \t\r\f\v");
        if (!name.empty()) {
            names.emplace(name);
        }
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    cache_ = std::pair(now, names);
    return names;
}

std::optional<JournalValue> FocusShortcuts::run(const std::string& name) {
    if (isTestRun_()) {
        throw StageError::refusedInTestRun();
    }
    fs::path folder = options_.temporaryFolder;
    if (folder.empty()) {
        std::error_code error;
        folder = fs::temp_directory_path(error);
        if (error) {
            folder = "/tmp";
        }
    }
    const fs::path output = folder / ("scrimlet-focus-" + Uuid::random().string() + ".txt");
    const RemovedAtEnd removed(output);
    const auto result = options_.runner(
        options_.tool,
        {"run", name, "--output-path", output.string(), "--output-type", "public.plain-text"},
        options_.runTimeout);
    if (result.status != 0) {
        throw StageError::failed("The shortcut “" + name + "” didn't run");
    }
    const auto text = files::read(output);
    if (!text || !utf8::isValid(*text)) {
        return std::nullopt;
    }
    return parse(*text);
}

std::optional<JournalValue> FocusShortcuts::parse(std::string_view text) {
    const auto word = ascii::trimmed(text, " \t\n\r\f\v");
    if (word.empty()) {
        return std::nullopt;
    }
    static constexpr std::array<std::string_view, 5> offWords = {"none", "off", "no", "false", "0"};
    const std::string lower = ascii::lowercased(word);
    const bool off = std::find(offWords.begin(), offWords.end(), lower) != offWords.end();
    return JournalValue::boolean(!off);
}

std::optional<Date> FocusShortcuts::listedAt() const {
    if (!cache_) {
        return std::nullopt;
    }
    return cache_->first;
}

} // namespace scrimlet
