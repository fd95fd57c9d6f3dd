#include "JournalStore.hpp"

#include "AtomicFile.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using testing::TempDir;

JournalEntry sampleEntry() {
    JournalEntry e(EffectKey(EffectKind::appHidden, "com.apple.Notes#509#Notes — 📝 ideas"),
                   JournalValue::boolean(false), JournalValue::boolean(true), {"stage"},
                   EntryState::applied, true, Date{1'767'348'000.75});
    return e;
}

TEST(JournalStore, AnEmptyJournalIsNoFile) {
    TempDir dir;
    JournalStore store(dir / "sub" / "journal.json");
    store.save({});
    EXPECT_EQ(store.saves(), 1);
    EXPECT_FALSE(store.existsOnDisk());

    store.save({sampleEntry()});
    EXPECT_TRUE(store.existsOnDisk()) << "missing folders are made";
    store.save({});
    EXPECT_FALSE(store.existsOnDisk());
    EXPECT_EQ(store.saves(), 3);

    JournalStore memory;
    EXPECT_FALSE(memory.existsOnDisk());
    memory.save({sampleEntry()});
    EXPECT_TRUE(memory.existsOnDisk());
    EXPECT_EQ(memory.load().size(), 1u);
}

TEST(JournalStore, WritesSortedPrettyJsonWithWholeSecondsAndUpperCaseIds) {
    TempDir dir;
    JournalStore store(dir / "journal.json");
    const auto entry = sampleEntry();
    store.save({entry});
    const std::string text = *files::read(dir / "journal.json");
    EXPECT_LT(text.find("\"entries\""), text.find("\"version\"")) << text;
    EXPECT_LT(text.find("\"after\""), text.find("\"at\""));
    EXPECT_LT(text.find("\"owners\""), text.find("\"state\""));
    EXPECT_NE(text.find("\"version\": 1"), std::string::npos);
    EXPECT_NE(text.find("\"2026-01-02T10:00:00Z\""), std::string::npos);
    EXPECT_NE(text.find(entry.id.string()), std::string::npos);
    EXPECT_NE(text.find("{\n"), std::string::npos);

    const auto loaded = store.load();
    ASSERT_EQ(loaded.size(), 1u);
    EXPECT_EQ(loaded[0].at, Date{1'767'348'000}) << "the fraction of a second is lost";
    auto expected = entry;
    expected.at = loaded[0].at;
    EXPECT_EQ(loaded[0], expected);
}

TEST(JournalStore, AFrozenStoreKeepsTheFileByteForByte) {
    TempDir dir;
    JournalStore store(dir / "journal.json");
    store.save({sampleEntry()});
    const auto before = files::read(dir / "journal.json");
    store.freeze();
    store.save({});
    store.save({sampleEntry(), sampleEntry()});
    EXPECT_EQ(store.saves(), 1);
    EXPECT_EQ(files::read(dir / "journal.json"), before);
}

TEST(JournalStore, AnythingUnreadableLoadsAsAnEmptyJournal) {
    TempDir dir;
    const auto path = dir / "journal.json";
    JournalStore store(path);
    store.save({sampleEntry()});
    const std::string good = *files::read(path);
    const std::string entry =
        R"({"after":{"bool":{"_0":true}},"at":"2026-01-02T10:00:00Z","changed":true,)"
        R"("id":"0F3A9C2E-1B4D-4E5F-8A6B-7C8D9E0F1A2B","key":{"kind":"darkMode","target":""},)"
        R"("owners":["stage"],"state":"applied"})";

    // A newer version is no obstacle.
    files::writeAtomically(path, R"({"version":99,"entries":[)" + entry + "]}");
    EXPECT_EQ(store.load().size(), 1u);
    files::writeAtomically(path, R"({"version":99,"entries":[]})");
    EXPECT_TRUE(store.load().empty());

    const std::vector<std::string> broken = {
        "",
        good.substr(0, good.size() / 2),
        "not json at all",
        "[]",
        R"({"entries":[)" + entry + "]}",
        R"({"version":"1","entries":[)" + entry + "]}",
        R"({"version":1.5,"entries":[)" + entry + "]}",
        R"({"version":1,"entries":{}})",
        R"({"version":1,"entries":[)" +
            std::string(entry).replace(entry.find("darkMode"), 8, "warpDrive") + "]}",
        R"({"version":1,"entries":[)" +
            std::string(entry).replace(entry.find("applied"), 7, "halfway") + "]}",
        R"({"version":1,"entries":[)" +
            std::string(entry).replace(entry.find(R"({"bool")"), 20,
                                       R"({"bool":{"_0":true},"text":{"_0":"x"}})") +
            "]}",
        R"({"version":1,"entries":[)" +
            std::string(entry).replace(entry.find("\"changed\":true,"), 15, "") + "]}",
    };
    for (const auto& text : broken) {
        files::writeAtomically(path, text);
        EXPECT_TRUE(store.load().empty()) << text;
    }
    std::filesystem::remove(path);
    EXPECT_TRUE(store.load().empty());
}

} // namespace
} // namespace scrimlet
