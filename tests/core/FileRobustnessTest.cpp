// Every file the program reads is fed a thousand damaged copies of a good file: bytes
// changed, cut short, spans doubled or dropped, values replaced by others at some edge of
// what decodes. A reader must come back every time, without throwing, with either what the
// file holds or its fallback, and never with half a list.

#include "AtomicFile.hpp"
#include "JournalStore.hpp"
#include "JsonCoding.hpp"
#include "RunSheetFile.hpp"
#include "SettingsFile.hpp"

#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <sstream>

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

// Replaces one value somewhere in the tree, or drops one key of an object.
void replaceValue(Json& document, const std::function<size_t(size_t)>& below) {
    static const Json others = Json::parse(R"([null, true, 0, -1, 4294967296, 1e308, 0.5,
        -0.0, 1e-300, 2147483648, -2147483649, 1.5, 4294967295, 45.0, 9007199254740993, [], {},
        {"_0": 1}, "", "#", "a#1", "a#+7#b#c", "a#2147483648#x", "é — ✓", "2026-13-45T99:99:99Z",
        "2026-01-02T10:00:00.75Z", "2026-01-02T10:00:00+05:30", "0000-01-01T00:00:00Z",
        "6ba7b810-9dad-11d1-80b4-00c04fd430c8", "stage", "captureEnded", "picture"])");
    // A walk down from the root that stops at some depth, mostly deep among the records.
    Json* node = &document;
    while (node->is_structured() && !node->empty() && below(4) != 0) {
        node = &*std::next(node->begin(), static_cast<long>(below(node->size())));
    }
    if (node->is_object() && !node->empty() && below(2) == 0) {
        node->erase(std::next(node->begin(), static_cast<long>(below(node->size()))));
    } else {
        // Half the time a value of the same kind, which gets further into the decoders.
        const bool sameKind = below(2) == 0;
        Json pick;
        do {
            pick = others[below(others.size())];
        } while (sameKind && pick.type_name() != node->type_name());
        *node = std::move(pick);
    }
}

// One to three damages in a row: some inputs are barely touched, some are wrecked.
std::string damage(std::string text, std::mt19937& random) {
    static const std::vector<std::string> tokens = [] {
        std::istringstream in("\" { } [ ] , : null \\u0000 \\ud800 \xff\xfe 1e999999 -0 "
                              "99999999999999999999 \xe2\x80 {\"_0\":1}");
        return std::vector<std::string>(std::istream_iterator<std::string>(in), {});
    }();
    const auto below = [&](size_t n) {
        return n == 0 ? 0 : std::uniform_int_distribution<size_t>(0, n - 1)(random);
    };
    for (size_t times = 1 + below(3); times > 0; --times) {
        const size_t where = below(text.size() + 1);
        const size_t kind = below(6);
        if (kind == 0) {
            for (size_t n = 1 + below(8); n > 0 && !text.empty(); --n) {
                text[below(text.size())] = static_cast<char>(below(256));
            }
        } else if (kind == 1) {
            text.resize(where);
        } else if (kind == 2) {
            text.insert(where, text.substr(below(text.size() + 1), below(64)));
        } else if (kind == 3) {
            text.erase(where, below(64));
        } else if (kind == 4) {
            text.insert(where, tokens[below(tokens.size())]);
        } else if (auto document = json::parse(text)) {
            replaceValue(*document, below);
            text = document->dump(below(2) == 0 ? -1 : 2);
        }
    }
    return text;
}

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
    std::mt19937 random(seed);
    // Nesting far deeper than any parser's stack, then the damaged copies.
    std::vector<std::string> inputs = {"", "null", std::string(100000, '[')};
    for (int i = 0; i < 1000; ++i) {
        inputs.push_back(damage(good, random));
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
    // Only what a reader accepts is written back, so the program's own writers serve.
    JournalStore side(dir / "side.json");
    const auto encode = [&](const std::vector<JournalEntry>& entries) {
        side.save(entries);
        return *files::read(dir / "side.json");
    };
    const auto load = [&] { return store.load(); };
    const int accepted =
        hammer(0x5C41AAE7, dir / "journal.json", encode(journal), load, encode, "entries");
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
    settings.setPrefs(SwitchKind::keepAwake, {true, 120, Hotkey{0, Hotkey::option, "A"}});
    const auto url = dir / "settings.json";
    const auto load = [&] { return SettingsFile::load(url); };
    const auto encode = [](const StageSettings& s) { return json::sortedText(toJson(s)); };
    hammer(0x0005E771, url, encode(settings), load, encode);
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
    const auto encode = [&](const std::vector<RunSheet>& sheets) {
        RunSheetFile::save(sheets, dir / "side.json");
        return *files::read(dir / "side.json");
    };
    const int accepted =
        hammer(0x00C0FFEE, url, encode({RunSheet(at + 900, "Started"), done}), load, encode);
    EXPECT_GT(accepted, 10);
    EXPECT_TRUE(RunSheetFile::load(dir.path()).empty());
}

} // namespace
} // namespace scrimlet
