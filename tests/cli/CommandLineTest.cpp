#include "CommandLine.hpp"

#include "AppPaths.hpp"
#include "AtomicFile.hpp"
#include "Director.hpp"
#include "FakeStageSystem.hpp"
#include "JournalStore.hpp"
#include "ManualClock.hpp"
#include "RunSheetFile.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <sys/stat.h>

namespace scrimlet {
namespace {

using testing::TempDir;

struct Ran {
    int status;
    std::string out;
    std::string err;
};

Ran scrimlet(const std::vector<std::string>& arguments, const Harness::Environment& env = {}) {
    std::ostringstream out, err;
    const int status = CommandLine::run(arguments, env, out, err);
    return {status, out.str(), err.str()};
}

// Fails unless each of `parts` shows up in `text`, in this order.
void expectInOrder(const Ran& ran, const std::vector<std::string>& parts) {
    EXPECT_EQ(ran.status, 0) << ran.err;
    size_t at = 0;
    for (const auto& part : parts) {
        at = ran.out.find(part, at);
        ASSERT_NE(at, std::string::npos) << "missing or out of order: " << part << "\n" << ran.out;
        at += part.size();
    }
}

TEST(CommandLine, BadArgumentsSayWhatIsWrongAndFail) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"bogus"}, "unknown command 'bogus'"},
        {{"selftest", "a", "b"}, "exactly one folder"},
        {{"demo", "--pace"}, "--pace needs a value"},
        {{"demo", "--pace", "fast"}, "not 'fast'"},
        {{"demo", "--pace=-1"}, "not '-1'"},
        {{"demo", "--pace", "nan"}, "not 'nan'"},
        {{"demo", "--pace", "2s"}, "not '2s'"},
        {{"demo", "--dir="}, "--dir must not be empty"},
        {{"demo", "tomorrow"}, "unexpected argument 'tomorrow'"},
        {{"sheets", "--json=yes"}, "unknown option '--json=yes'"},
        {{"journal", "--json"}, "unknown option '--json'"},
        {{"journal", "old.json"}, "unexpected argument 'old.json'"},
        {{"rehearse", "--hold", "1"}, "--dir DIR is needed"},
        {{"rehearse", "--dir", "/tmp/x", "--step", "-0.1"}, "not '-0.1'"},
        {{"rehearse", "--dir", "/tmp/x", "--launch-only=yes"}, "unknown option"},
    };
    for (const auto& [arguments, problem] : cases) {
        const auto ran = scrimlet(arguments);
        EXPECT_EQ(ran.status, CommandLine::usageError) << problem;
        EXPECT_NE(ran.err.find(problem), std::string::npos) << ran.err;
        EXPECT_NE(ran.err.find("Try 'scrimlet --help'."), std::string::npos);
        EXPECT_EQ(ran.out, "");
    }
    const auto bare = scrimlet({});
    EXPECT_EQ(bare.status, CommandLine::usageError);
    EXPECT_NE(bare.err.find("Usage: scrimlet"), std::string::npos);
    const auto noFolder = scrimlet({"demo"}, {{"SCRIMLET_SELFTEST", ""}});
    EXPECT_EQ(noFolder.status, CommandLine::usageError);
    EXPECT_NE(noFolder.err.find("must not be empty"), std::string::npos);
}

TEST(CommandLine, HelpNamesTheFilesOfThisUser) {
    const Harness::Environment env = {{"HOME", "/home/ada"}};
    expectInOrder(scrimlet({"sheets", "-h"}, env),
                  {"Usage: scrimlet", (AppPaths::support(env) / "runsheets.json").string()});
    expectInOrder(scrimlet({"--version"}), {"scrimlet 1."});
}

TEST(CommandLine, SheetsAreToldNewestFirstPrintedAsSavedAndForgivenWhenDamaged) {
    TempDir temp;
    const Date now{1'790'000'000};
    // The default file lies in the support folder of the environment's user.
    const Harness::Environment env = {{"XDG_DATA_HOME", temp.path().string()},
                                      {"HOME", temp.path().string()}};
    const auto file = AppPaths::support(env) / "runsheets.json";
    RunSheetFile::save({RunSheet::demo(now - 3600, 47, "Zoom is sharing your screen",
                                       CaptureSource{"us.zoom.xos", "Zoom", CaptureKind::callShare},
                                       EndReason::captureEnded, 1),
                        RunSheet::demo(now - 90'000, 90, "Started with ⌃⌥⌘S", std::nullopt,
                                       EndReason::timeLimit, 0)},
                       file);
    expectInOrder(scrimlet({"sheets"}, env),
                  {"2 past shows in " + file.string() + ", newest first:", "47 min · Sharing ended",
                   "Zoom is sharing your screen · no problems · 1 left alone",
                   "Keep the Mac awake: Left alone — you changed it",
                   "1 h 30 min · Time limit reached", "Started with ⌃⌥⌘S · no problems"});
    const auto json = scrimlet({"sheets", "--file", file.string(), "--json"});
    EXPECT_EQ(json.out, *files::read(file) + "\n");
    EXPECT_EQ(json.err, "");

    // One bad sheet costs them all, as when the program reads the file.
    files::writeAtomically(file, "[{\"id\": \"not a sheet\"}]");
    expectInOrder(scrimlet({"sheets"}, env),
                  {"is damaged and could not be read, so it counts as no past shows"});
    const auto asJson = scrimlet({"sheets", "--json"}, env);
    EXPECT_EQ(asJson.out, "[]\n");
    EXPECT_NE(asJson.err.find("could not be read"), std::string::npos);
    files::writeAtomically(file, "[]");
    expectInOrder(scrimlet({"sheets"}, env), {"No past shows in"});
    expectInOrder(scrimlet({"sheets", "--file", (temp / "missing.json").string()}),
                  {"does not exist yet"});
}

TEST(CommandLine, TheJournalIsToldInWordsAndForgivenWhenDamaged) {
    TempDir temp;
    const auto file = temp / "journal.json";
    auto clock = std::make_shared<ManualClock>(Date{1'790'000'000});
    Director director(FakeStageSystem::demo(), std::make_shared<JournalStore>(file),
                      ManualClock::reading(clock));
    director.claim(EffectKey(EffectKind::dockAutohide), JournalValue::boolean(true), "stage");
    director.claim(EffectKey(EffectKind::keepAwake), JournalValue::boolean(true), "stage");
    director.claim(EffectKey(EffectKind::keepAwake), JournalValue::boolean(true),
                   "switch.keepAwake");
    expectInOrder(scrimlet({"journal", "--file", file.string()}),
                  {"2 changes outstanding in " + file.string(),
                   "Hide the Dock: set to on, was off · made · held by the show",
                   "Keep the Mac awake: set to on, was off · made · held by the show and the "
                   "Keep Awake switch"});

    files::writeAtomically(file, "{\"version\": 1");
    expectInOrder(scrimlet({"journal", "--file", file.string()}),
                  {"is damaged and could not be read. Scrimlet counts it as holding nothing"});
    expectInOrder(scrimlet({"journal", "--file", (temp / "gone.json").string()}),
                  {"does not exist, so Scrimlet has nothing to put back"});
}

TEST(CommandLine, FilesThatCannotBeReadAreRefusedInTheSameWordsByBothListings) {
    TempDir temp;
    const auto fifo = temp / "fifo.json";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const auto big = temp / "big.json";
    files::writeAtomically(big, "[");
    std::filesystem::resize_file(big, 50'000'000);
    const std::vector<std::pair<std::string, std::string>> refused = {
        {fifo.string(), " is not a regular file (a pipe, a device or a socket)"},
        {"/dev/zero", " is not a regular file (a pipe, a device or a socket)"},
        {temp.path().string(), " is a folder, not a file"},
        {big.string(), " is 50.0 MB, too large to read (at most 10.0 MB)"},
    };
    for (const auto& [file, words] : refused) {
        for (const std::string command : {"sheets", "journal"}) {
            const auto ran = scrimlet({command, "--file", file});
            EXPECT_EQ(ran.status, 1) << command << " " << file;
            EXPECT_EQ(ran.err, "scrimlet: " + command + ": " + file + words + "\n");
            EXPECT_EQ(ran.out, "");
        }
    }

    // Nested far past any stack: damaged, not a crash.
    const auto deep = temp / "deep.json";
    const std::string nested = std::string(100'000, '[') + std::string(100'000, ']');
    files::writeAtomically(deep, R"({"version": 1, "entries": )" + nested + "}");
    expectInOrder(scrimlet({"journal", "--file", deep.string()}), {"is damaged"});
    files::writeAtomically(deep, nested);
    expectInOrder(scrimlet({"sheets", "--file", deep.string()}), {"is damaged"});
}

TEST(CommandLine, TheDemoTellsItsDayAndLeavesItsFolderTidy) {
    TempDir temp;
    const auto ran = scrimlet({"demo", "--dir", temp.path().string()});
    EXPECT_EQ(ran.err, "");
    expectInOrder(ran, {"15:42:00  The curtain is down. No shows yet.",
                        "Zoom is sharing your screen. Up goes the curtain, with no countdown:",
                        "Curtain down · 12 changes put back, 1 left as you set it.",
                        "Down comes the curtain: Time limit reached, after 20 min.",
                        "Keep the Mac awake: Kept — a switch holds it",
                        "The journal on disk holds 4 changes:",
                        "Scrimlet quit during a show. At launch it put back 3 things.",
                        "Run sheets, newest first (4):"});

    EXPECT_FALSE(files::read(temp / "journal.json"));
    const auto sheets = RunSheetFile::load(temp / "runsheets.json");
    ASSERT_EQ(sheets.size(), 4u);
    EXPECT_EQ(sheets.front().reason, EndReason::recovered);
    EXPECT_EQ(sheets.back().reason, EndReason::captureEnded);

    // In memory, the day adds to the three shows of earlier days, and the crash is healed
    // all the same.
    expectInOrder(scrimlet({"demo"}), {"3 past shows on file.", "At launch it put back 3 things.",
                                       "Run sheets, newest first (7):"});
}

} // namespace
} // namespace scrimlet
