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

// Where each of `parts` first shows up in `text`, in turn; npos once one is missing or out
// of order.
size_t inOrder(const std::string& text, const std::vector<std::string>& parts) {
    size_t at = 0;
    for (const auto& part : parts) {
        at = text.find(part, at);
        if (at == std::string::npos) {
            ADD_FAILURE() << "missing or out of order: " << part;
            return at;
        }
        at += part.size();
    }
    return at;
}

TEST(CommandLine, BadArgumentsSayWhatIsWrongAndFail) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"bogus"}, "unknown command 'bogus'"},
        {{"selftest"}, "exactly one folder"},
        {{"selftest", "a", "b"}, "exactly one folder"},
        {{"selftest", ""}, "must not be empty"},
        {{"demo", "--pace"}, "--pace needs a value"},
        {{"demo", "--pace", "fast"}, "not 'fast'"},
        {{"demo", "--pace=-1"}, "not '-1'"},
        {{"demo", "--pace", "nan"}, "not 'nan'"},
        {{"demo", "--pace", "2s"}, "not '2s'"},
        {{"demo", "--dir="}, "--dir must not be empty"},
        {{"demo", "tomorrow"}, "unexpected argument 'tomorrow'"},
        {{"demo", "--fast"}, "unknown option '--fast'"},
        {{"sheets", "--json=yes"}, "unknown option '--json=yes'"},
        {{"sheets", "--file"}, "--file needs a value"},
        {{"journal", "--json"}, "unknown option '--json'"},
        {{"journal", "old.json"}, "unexpected argument 'old.json'"},
    };
    for (const auto& [arguments, problem] : cases) {
        SCOPED_TRACE(arguments.front() + (arguments.size() > 1 ? " " + arguments[1] : ""));
        const auto ran = scrimlet(arguments);
        EXPECT_EQ(ran.status, CommandLine::usageError);
        EXPECT_NE(ran.err.find(problem), std::string::npos) << ran.err;
        EXPECT_NE(ran.err.find("Try 'scrimlet --help'."), std::string::npos);
        EXPECT_EQ(ran.out, "");
    }

    const auto bare = scrimlet({});
    EXPECT_EQ(bare.status, CommandLine::usageError);
    EXPECT_NE(bare.err.find("Usage: scrimlet"), std::string::npos);

    const auto emptyVariable = scrimlet({"demo"}, {{"SCRIMLET_SELFTEST", ""}});
    EXPECT_EQ(emptyVariable.status, CommandLine::usageError);
}

TEST(CommandLine, HelpNamesTheFilesOfThisUser) {
    const Harness::Environment env = {{"HOME", "/home/ada"}};
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"--help"}, {"help"}, {"demo", "--help"}, {"sheets", "-h"}}) {
        const auto ran = scrimlet(arguments, env);
        EXPECT_EQ(ran.status, 0);
        EXPECT_NE(ran.out.find("Usage: scrimlet"), std::string::npos);
        EXPECT_NE(ran.out.find((AppPaths::support(env) / "runsheets.json").string()),
                  std::string::npos);
    }
    const auto version = scrimlet({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.rfind("scrimlet 1.", 0), 0u) << version.out;
}

TEST(CommandLine, SheetsAreToldNewestFirstAndPrintedAsSaved) {
    TempDir temp;
    const Date now{1'790'000'000};
    const std::vector<RunSheet> sheets = {
        RunSheet::demo(now - 3600, 47, "Zoom is sharing your screen",
                       CaptureSource{"us.zoom.xos", "Zoom", CaptureKind::callShare},
                       EndReason::captureEnded, 1),
        RunSheet::demo(now - 90'000, 90, "Started with ⌃⌥⌘S", std::nullopt, EndReason::timeLimit,
                       0),
    };
    // The default file lies in the support folder of the environment's user.
    const Harness::Environment env = {{"XDG_DATA_HOME", temp.path().string()},
                                      {"HOME", temp.path().string()}};
    const auto file = AppPaths::support(env) / "runsheets.json";
    RunSheetFile::save(sheets, file);

    const auto told = scrimlet({"sheets"}, env);
    EXPECT_EQ(told.status, 0);
    inOrder(told.out,
            {"2 past shows in " + file.string() + ", newest first:", "47 min · Sharing ended",
             "Zoom is sharing your screen · no problems · 1 left alone", "Cues:",
             "Hide Safari: Done", "Strike:", "Keep the Mac awake: Left alone — you changed it",
             "Hide desktop icons: Restored", "1 h 30 min · Time limit reached",
             "Started with ⌃⌥⌘S · no problems"});

    const auto json = scrimlet({"sheets", "--file", file.string(), "--json"});
    EXPECT_EQ(json.status, 0);
    EXPECT_EQ(json.out, *files::read(file) + "\n");
    EXPECT_EQ(json.err, "");
}

TEST(CommandLine, DamagedOrMissingFilesAreForgivenAndSaidToBe) {
    TempDir temp;
    const auto write = [&](const std::string& name, const std::string& text) {
        files::writeAtomically(temp / name, text);
        return (temp / name).string();
    };
    const auto expectSays = [](const Ran& ran, const std::string& words) {
        EXPECT_EQ(ran.status, 0);
        EXPECT_NE(ran.out.find(words), std::string::npos) << ran.out;
    };

    // One bad sheet costs them all, as when the program reads the file.
    const auto damaged = write("runsheets.json", "[{\"id\": \"not a sheet\"}]");
    expectSays(scrimlet({"sheets", "--file", damaged}),
               "is damaged and could not be read, so it counts as no past shows");
    const auto asJson = scrimlet({"sheets", "--file", damaged, "--json"});
    EXPECT_EQ(asJson.out, "[]\n");
    EXPECT_NE(asJson.err.find("could not be read"), std::string::npos);
    expectSays(scrimlet({"sheets", "--file", write("none.json", "[]")}), "No past shows in");
    expectSays(scrimlet({"sheets", "--file", (temp / "missing.json").string()}),
               "does not exist yet");

    expectSays(scrimlet({"journal", "--file", write("journal.json", "{\"version\": 1")}),
               "is damaged and could not be read. Scrimlet counts it as holding nothing");
    expectSays(scrimlet({"journal", "--file", write("j.json", "{\"version\":1,\"entries\":[]}")}),
               "Nothing outstanding in");
    expectSays(scrimlet({"journal", "--file", (temp / "gone.json").string()}),
               "does not exist, so Scrimlet has nothing to put back");
}

TEST(CommandLine, TheJournalIsToldInWords) {
    TempDir temp;
    const auto file = temp / "journal.json";
    auto clock = std::make_shared<ManualClock>(Date{1'790'000'000});
    Director director(FakeStageSystem::demo(), std::make_shared<JournalStore>(file),
                      ManualClock::reading(clock));
    director.claim(EffectKey(EffectKind::dockAutohide), JournalValue::boolean(true), "stage");
    director.claim(EffectKey(EffectKind::keepAwake), JournalValue::boolean(true), "stage");
    director.claim(EffectKey(EffectKind::keepAwake), JournalValue::boolean(true),
                   "switch.keepAwake");
    director.claim(EffectKey(EffectKind::alertVolume), JournalValue::number(0), "stage");

    const auto told = scrimlet({"journal", "--file", file.string()});
    EXPECT_EQ(told.status, 0);
    inOrder(told.out, {"3 changes outstanding in " + file.string(),
                       "Hide the Dock: set to on, was off · made · held by the show",
                       "Keep the Mac awake: set to on, was off · made · held by the show and the "
                       "Keep Awake switch",
                       "Mute alert sounds: set to 0, was 0.75 · made · held by the show"});
}

TEST(CommandLine, TheDemoTellsItsDayAndLeavesItsFolderTidy) {
    TempDir temp;
    const auto ran = scrimlet({"demo", "--dir", temp.path().string()});
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.err, "");
    inOrder(ran.out, {
                         "15:42:00  The curtain is down. No shows yet.",
                         "That is no share: the curtain stays down.",
                         "Zoom is sharing your screen. Up goes the curtain, with no countdown:",
                         "Hide Finder: Done",
                         "Kept visible: Takeloom, Keynote, zoom.us.",
                         "Mute alert sounds: Left alone — you changed it",
                         "Down comes the curtain: Sharing ended",
                         "Curtain down · 12 changes put back, 1 left as you set it.",
                         "The countdown: 3 · 2 · 1 · live:",
                         "Down comes the curtain: Time limit reached, after 20 min.",
                         "It turns itself off in 2:00:00.",
                         "Keep the Mac awake: Already on",
                         "Keep the Mac awake: Kept — a switch holds it",
                         "Keep Awake outlived the show: it turns itself off in 1:55:00.",
                         "The journal on disk holds 4 changes:",
                         "not confirmed: the change may or may not have been made",
                         "Scrimlet quit during a show. At launch it put back 3 things.",
                         "Nothing was left to put back.",
                         "Run sheets, newest first (4):",
                     });

    EXPECT_FALSE(files::read(temp / "journal.json"));
    const auto sheets = RunSheetFile::load(temp / "runsheets.json");
    std::vector<std::optional<EndReason>> reasons;
    for (const auto& sheet : sheets) {
        reasons.push_back(sheet.reason);
    }
    EXPECT_EQ(reasons, (std::vector<std::optional<EndReason>>{
                           EndReason::recovered, EndReason::stopped, EndReason::timeLimit,
                           EndReason::captureEnded}));

    // In memory, the day adds to the three shows of earlier days, and the crash is healed
    // all the same.
    const auto inMemory = scrimlet({"demo"});
    EXPECT_EQ(inMemory.status, 0);
    inOrder(inMemory.out, {"3 past shows on file.", "The journal holds 4 changes:",
                           "At launch it put back 3 things.", "Run sheets, newest first (7):"});
}

} // namespace
} // namespace scrimlet
