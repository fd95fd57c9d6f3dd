// Every file the program reads is fed thousands of damaged copies of a good file: bytes
// changed, cut short, spans doubled or dropped, values of another JSON type or another
// value of the same type. A reader must come back every time, without throwing, with
// either what the file holds or its fallback, and never with half a list.

#include "JournalStore.hpp"
#include "JsonCoding.hpp"
#include "RunSheetFile.hpp"
#include "SettingsFile.hpp"

#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

namespace scrimlet {
namespace {

using json::Json;
using testing::TempDir;

const Date at{1793000000};

// Plain writes: the readers are under test, not the atomic writer, and flushing thousands
// of files would only make the test slow. A new file each time, since some file systems
// flush a file that is cut to nothing and written again.
void writePlain(const std::filesystem::path& url, const std::string& text) {
    std::filesystem::remove(url);
    std::ofstream(url, std::ios::binary) << text;
}

class Mutator {
public:
    explicit Mutator(std::uint32_t seed)
        : random_(seed) {}

    // One to three damages in a row: some inputs are barely touched, some are wrecked.
    std::string damage(std::string text) {
        for (size_t times = 1 + below(3); times > 0; --times) {
            text = damageOnce(std::move(text));
        }
        return text;
    }

private:
    size_t below(size_t n) {
        return n == 0 ? 0 : std::uniform_int_distribution<size_t>(0, n - 1)(random_);
    }

    std::string damageOnce(std::string text) {
        static const std::vector<std::string> tokens = {"\"",       "{",
                                                        "}",        "[",
                                                        "]",        ",",
                                                        ":",        "null",
                                                        "\\u0000",  "\\ud800",
                                                        "\xff\xfe", "1e999999",
                                                        "-0",       "99999999999999999999",
                                                        "\xe2\x80", "{\"_0\":1}"};
        switch (below(6)) {
        case 0:
            for (size_t n = 1 + below(8); n > 0 && !text.empty(); --n) {
                text[below(text.size())] = static_cast<char>(below(256));
            }
            return text;
        case 1:
            return text.substr(0, below(text.size() + 1));
        case 2:
            return text.insert(below(text.size() + 1),
                               text.substr(below(text.size() + 1), below(64)));
        case 3:
            return text.erase(below(text.size() + 1), below(64));
        case 4:
            return text.insert(below(text.size() + 1), tokens[below(tokens.size())]);
        default:
            return replaceValue(text);
        }
    }

    // Replaces one value anywhere in the tree, or drops one key of an object.
    std::string replaceValue(const std::string& text) {
        static const std::vector<Json> others = {nullptr,
                                                 true,
                                                 0,
                                                 -1,
                                                 4294967296LL,
                                                 1e308,
                                                 0.5,
                                                 "",
                                                 "2026-13-45T99:99:99Z",
                                                 Json::array(),
                                                 Json::object(),
                                                 Json{{"_0", 1}},
                                                 std::string(5000, 'w')};
        static const std::vector<Json> texts = {"#",
                                                "a#1",
                                                "a#+7#b#c",
                                                "a#2147483648#x",
                                                "é — ✓",
                                                "2026-01-02T10:00:00.75Z",
                                                "2026-01-02T10:00:00+05:30",
                                                "0000-01-01T00:00:00Z",
                                                "6ba7b810-9dad-11d1-80b4-00c04fd430c8",
                                                "stage",
                                                "captureEnded",
                                                "picture"};
        static const std::vector<Json> numbers = {
            -0.0, 1e-300, 2147483648LL, -2147483649LL, 1.5, 4294967295LL, 45.0, 9007199254740993LL};
        auto document = json::parse(text);
        if (!document) {
            return text;
        }
        std::vector<Json*> nodes;
        collect(*document, nodes);
        Json& node = *nodes[below(nodes.size())];
        if (node.is_object() && !node.empty() && below(2) == 0) {
            node.erase(std::next(node.begin(), static_cast<long>(below(node.size()))));
        } else if (node.is_string() && below(2) == 0) {
            node = texts[below(texts.size())];
        } else if (node.is_number() && below(2) == 0) {
            node = numbers[below(numbers.size())];
        } else {
            node = others[below(others.size())];
        }
        return document->dump(below(2) == 0 ? -1 : 2);
    }

    static void collect(Json& node, std::vector<Json*>& out) {
        out.push_back(&node);
        if (node.is_structured()) {
            for (Json& child : node) {
                collect(child, out);
            }
        }
    }

    std::mt19937 random_;
};

// How many records a list holds when the text is JSON of that shape.
std::optional<size_t> listSize(const std::string& text, const char* key) {
    const auto document = json::parse(text);
    const Json* list = document && key && document->is_object() && document->contains(key)
                           ? &(*document)[key]
                           : (document && !key ? &*document : nullptr);
    return list && list->is_array() ? std::optional<size_t>(list->size()) : std::nullopt;
}

// Feeds damaged copies of `good` to `load`. A list it accepts must come out whole, with
// every record of the array (at `listKey`, or the whole text without one); and whatever it
// accepts must read back the same once written: what the reader lets in, the program can
// also keep.
template <typename Load, typename Encode>
int hammer(std::uint32_t seed, const std::filesystem::path& url, const std::string& good,
           const Load& load, const Encode& encode, const char* listKey = nullptr) {
    Mutator mutator(seed);
    std::vector<std::string> inputs = {"",
                                       "\xEF\xBB\xBF",
                                       "null",
                                       std::string(100000, '['),
                                       std::string(20000, '[') + std::string(20000, ']'),
                                       std::string(1 << 18, ' ')};
    for (int i = 0; i < 1000; ++i) {
        inputs.push_back(mutator.damage(good));
    }
    int accepted = 0;
    for (const std::string& input : inputs) {
        writePlain(url, input);
        const auto value = load();
        if constexpr (requires { value.empty(); }) {
            if (value.empty()) {
                continue;
            }
            EXPECT_EQ(value.size(), listSize(input, listKey)) << "part of a list from:\n" << input;
        }
        ++accepted;
        const std::string written = encode(value); // dates lose their fractions here
        writePlain(url, written);
        EXPECT_EQ(encode(load()), written) << "input:\n" << input;
        if (::testing::Test::HasFailure()) {
            break;
        }
    }
    return accepted;
}

std::string journalText(const std::vector<JournalEntry>& entries) {
    Json document = {{"version", 1}, {"entries", Json::array()}};
    for (const auto& entry : entries) {
        document["entries"].push_back(toJson(entry));
    }
    return json::sortedText(document);
}

std::string sheetsText(const std::vector<RunSheet>& sheets) {
    Json list = Json::array();
    for (const auto& sheet : sheets) {
        list.push_back(toJson(sheet));
    }
    return json::orderedText(list);
}

std::string settingsText(const StageSettings& settings) {
    return json::sortedText(toJson(settings));
}

TEST(FileRobustness, JournalReader) {
    TempDir dir;
    const JournalStore store(dir / "journal.json");
    const std::vector<JournalEntry> journal = {
        JournalEntry(EffectKey(EffectKind::dockAutohide), JournalValue::boolean(false),
                     JournalValue::boolean(true), {"stage"}, EntryState::applied, true, at),
        JournalEntry(EffectKey(EffectKind::alertVolume), JournalValue::number(0.35),
                     JournalValue::number(0), {"stage", "switch.muteAlerts"}, EntryState::pending,
                     false, at + 1),
        JournalEntry(EffectKey(EffectKind::appHidden, "com.apple.mail#504#Mail"), std::nullopt,
                     JournalValue::boolean(true), {}, EntryState::userChanged, true, at + 2),
        JournalEntry(EffectKey(EffectKind::displayMode, "1"), JournalValue::text("mode-7"),
                     JournalValue::number(13), {}, EntryState::deferred, true, at + 3)};
    const auto load = [&] { return store.load(); };
    const int accepted = hammer(0x5C41AAE7, dir / "journal.json", journalText(journal), load,
                                journalText, "entries");
    EXPECT_GT(accepted, 10); // else the checks on what was read were never reached
    EXPECT_TRUE(JournalStore(dir.path()).load().empty());
}

TEST(FileRobustness, SettingsReader) {
    TempDir dir;
    StageSettings settings;
    settings.timeLimitMinutes = 30;
    settings.keepVisible = {"com.apple.Keynote"};
    settings.plan.resolution = ResolutionPreset{1440, 900};
    settings.backdropStyle.picturePath = "/tmp/p.png";
    settings.setPrefs(SwitchKind::keepAwake,
                      SwitchPrefs{true, 120, Hotkey{0, Hotkey::option, "A"}});
    const auto url = dir / "settings.json";
    const auto load = [&] { return SettingsFile::load(url); };
    hammer(0x0005E771, url, settingsText(settings), load, settingsText);
    // Text that is no JSON object gives the defaults of a first run, hotkey and all.
    for (const char* text : {"[{}]", "{\"autoStart\":", "\"{}\""}) {
        writePlain(url, text);
        EXPECT_EQ(load(), StageSettings());
    }
    EXPECT_EQ(SettingsFile::load(dir.path()), StageSettings());
}

TEST(FileRobustness, RunSheetReader) {
    TempDir dir;
    RunSheet done(at, "Zoom is sharing your screen",
                  CaptureSource{"us.zoom.xos", "Zoom", CaptureKind::callShare});
    done.endedAt = at + 600;
    done.reason = EndReason::captureEnded;
    done.cues = {CueRecord(EffectKey(EffectKind::desktopIcons), CueOutcome::applied(), at),
                 CueRecord(EffectKey(EffectKind::doNotDisturb), CueOutcome::skipped("no"), at)};
    done.strike = {CueRecord(EffectKey(EffectKind::desktopIcons), CueOutcome::deferred(), at)};
    const auto url = dir / "runsheets.json";
    const auto load = [&] { return RunSheetFile::load(url); };
    const int accepted = hammer(0x00C0FFEE, url, sheetsText({RunSheet(at + 900, "Started"), done}),
                                load, sheetsText);
    EXPECT_GT(accepted, 10);
    EXPECT_TRUE(RunSheetFile::load(dir.path()).empty());
}

} // namespace
} // namespace scrimlet
