#include "CommandLine.hpp"

#include "AppPaths.hpp"
#include "AtomicFile.hpp"
#include "DetectCommand.hpp"
#include "SettingsFile.hpp"
#include "TempDir.hpp"
#include "WindowListFile.hpp"
#include "WindowsCommand.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <map>
#include <sstream>
#include <sys/stat.h>

namespace scrimlet {
namespace {

using testing::TempDir;
namespace fs = std::filesystem;

const fs::path fixtures = fs::path(SCRIMLET_FIXTURES) / "windows";

struct Ran {
    int status;
    std::string out;
    std::string err;
};

Ran scrimlet(const std::vector<std::string>& arguments, const Harness::Environment& env = {},
             const LiveWindowList* live = nullptr) {
    std::ostringstream out, err;
    const int status = CommandLine::run(arguments, env, out, err, live);
    return {status, out.str(), err.str()};
}

std::string fixture(const std::string& name) {
    return (fixtures / (name + ".json")).string();
}

void expectInOrder(const std::string& text, const std::vector<std::string>& parts) {
    size_t at = 0;
    for (const auto& part : parts) {
        at = text.find(part, at);
        ASSERT_NE(at, std::string::npos) << "missing or out of order: " << part << "\n" << text;
        at += part.size();
    }
}

// What each saved list must be judged as. A list that matches names its source; a list
// that just misses names the rule and the limits of its nearest miss. The lists of current
// macOS record what the rules make of them today, which is nothing.
struct Expected {
    std::string verdict; ///< "bundleID kind", or empty for none
    std::string rule = {};
    std::vector<std::string> missed = {};
};

const std::map<std::string, Expected>& expectations() {
    static const std::map<std::string, Expected> table = {
        {"desk-idle", {""}},
        {"desk-two-displays", {""}},
        {"screenshot", {"", "systemRecording", {"layer", "height", "width"}}},

        {"recording-indicator", {"com.apple.screencaptureui systemRecording"}},
        {"recording-indicator-limits", {"com.apple.screencaptureui systemRecording"}},
        {"recording-indicator-layer-26-8-below", {"com.apple.screencaptureui systemRecording"}},
        {"recording-indicator-layer-23", {"", "systemRecording", {"layer"}}},
        {"recording-indicator-layer-27", {"", "systemRecording", {"layer"}}},
        {"recording-indicator-121-wide", {"", "systemRecording", {"width"}}},
        {"recording-indicator-45-high", {"", "systemRecording", {"height"}}},
        {"recording-indicator-2-above", {"", "systemRecording", {"topEdge"}}},
        {"recording-indicator-9-below", {"", "systemRecording", {"topEdge"}}},
        {"recording-indicator-alpha-0.01", {"", "systemRecording", {"alpha"}}},
        {"recording-indicator-1-wide", {"", "systemRecording", {"size"}}},
        {"recording-indicator-no-display", {"", "systemRecording", {"display"}}},

        {"zoom-share-frame", {"us.zoom.xos callShare"}},
        {"call-frame-limits", {"us.zoom.xos callShare"}},
        {"call-frame-layer-999", {"us.zoom.xos callShare"}},
        {"teams-share-second-display", {"com.microsoft.teams2 callShare"}},
        {"call-frame-layer-0", {"", "callShare", {"layer"}}},
        {"call-frame-layer-1000", {"", "callShare", {"layer"}}},
        {"call-frame-1360-wide", {"", "callShare", {"coverWidth"}}},
        {"call-frame-834-high", {"", "callShare", {"coverHeight"}}},
        {"call-frame-half-off", {"", "callShare", {"coverWidth"}}},
        {"call-frame-alpha-0.01", {"", "callShare", {"alpha"}}},
        {"call-frame-unknown-app", {"", "callShare", {"app"}}},

        {"chrome-sharing-bar", {"com.google.Chrome browserShare"}},
        {"browser-bar-limits-high", {"com.google.Chrome browserShare"}},
        {"browser-bar-limits-small", {"com.google.Chrome browserShare"}},
        {"browser-bar-ratio-3.5", {"com.google.Chrome browserShare"}},
        {"browser-bar-centre-453", {"com.google.Chrome browserShare"}},
        {"browser-bar-layer-0", {"", "browserShare", {"layer"}}},
        {"browser-bar-layer-24", {"", "browserShare", {"layer"}}},
        {"browser-bar-19-high", {"", "browserShare", {"height"}}},
        {"browser-bar-91-high", {"", "browserShare", {"height"}}},
        {"browser-bar-119-wide", {"", "browserShare", {"width"}}},
        {"browser-bar-1101-wide", {"", "browserShare", {"width"}}},
        {"browser-bar-ratio-3.475", {"", "browserShare", {"ratio"}}},
        {"browser-bar-bottom-761", {"", "browserShare", {"edge"}}},
        {"browser-bar-top-121", {"", "browserShare", {"edge"}}},
        {"browser-bar-centre-454", {"", "browserShare", {"centre"}}},
        {"safari-sharing", {"", "browserShare", {"app"}}},

        {"takeloom-capture-bar", {"app.vantrel.takeloom recorder"}},
        {"takeloom-bar-limits", {"app.vantrel.takeloom recorder"}},
        {"takeloom-square-overlay", {"app.vantrel.takeloom recorder"}},
        {"takeloom-square-limits", {"app.vantrel.takeloom recorder"}},
        {"takeloom-bar-399-wide", {"", "takeloom", {"barWidth"}}},
        {"takeloom-bar-121-high", {"", "takeloom", {"barHeight"}}},
        {"takeloom-bar-layer-4", {"", "takeloom", {"barLayer"}}},
        {"takeloom-square-4-apart", {"", "takeloom", {"squareSides"}}},
        {"takeloom-square-layer-999", {"", "takeloom", {"squareLayer"}}},
        {"takeloom-square-401-wide", {"", "takeloom", {"squareWidth"}}},

        {"start-when-open-obs", {"com.obsproject.obs-studio appOpen"}},
        {"start-when-open-not-running", {"", "startWhenOpen", {"running"}}},
        {"call-in-progress", {"com.tinyspeck.slackmacgap call"}},
        {"call-in-progress-no-devices", {"", "call", {"devices"}}},
        // Off by default, yet it would have matched: the explanation says so.
        {"call-not-counted", {"", "call", {}}},

        {"recording-and-zoom-frame", {"com.apple.screencaptureui systemRecording"}},
        {"zoom-frame-and-chrome-bar", {"us.zoom.xos callShare"}},

        {"macos26-status-items-control-center", {"", "systemRecording", {"app"}}},
        {"macos27-menubar-one-window", {"", "systemRecording", {"app"}}},
        {"single-window-share-pill", {"", "callShare", {"coverWidth", "coverHeight"}}},
        {"call-frame-off-status-indicator", {"", "call", {}}},
    };
    return table;
}

TEST(DetectCommand, JudgesEverySavedListAsExpected) {
    std::vector<std::string> arguments = {"detect", "--json"};
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(fixtures)) {
        names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    for (const auto& name : names) {
        ASSERT_TRUE(expectations().count(name)) << "no expectation for the list " << name;
        arguments.push_back(fixture(name));
    }
    ASSERT_EQ(names.size(), expectations().size());

    const auto ran = scrimlet(arguments);
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(ran.err, "");
    const auto document = nlohmann::json::parse(ran.out);
    ASSERT_EQ(document["lists"].size(), names.size());
    for (size_t i = 0; i < names.size(); ++i) {
        SCOPED_TRACE(names[i]);
        const auto& list = document["lists"][i];
        const Expected& expected = expectations().at(names[i]);
        EXPECT_TRUE(list["notes"].empty()) << list["notes"].dump();
        EXPECT_FALSE(list["label"].get<std::string>().empty());
        const auto& explanation = list["explanation"];
        const auto& verdict = explanation["verdict"];
        EXPECT_EQ(verdict.is_null() ? ""
                                    : verdict["bundleID"].get<std::string>() + " " +
                                          verdict["kind"].get<std::string>(),
                  expected.verdict);
        EXPECT_EQ(list["watcher"]["seen"], verdict);
        if (expected.rule.empty()) {
            continue;
        }
        bool found = false;
        for (const auto& rule : explanation["rules"]) {
            if (rule["rule"] != expected.rule) {
                continue;
            }
            found = true;
            std::vector<std::string> missed;
            for (const auto& miss : rule["misses"]) {
                missed.push_back(miss["limit"]);
            }
            EXPECT_EQ(missed, expected.missed) << rule["text"];
            EXPECT_EQ(rule["matched"], expected.missed.empty());
            EXPECT_EQ(rule["enabled"], !expected.missed.empty()) << rule["text"];
        }
        EXPECT_TRUE(found);
    }
}

TEST(DetectCommand, ExplainsEachRuleAndReplaysTheListsThroughTheWatcher) {
    const std::string zoom = fixture("zoom-share-frame");
    const std::string chrome = fixture("chrome-sharing-bar");
    const std::string idle = fixture("desk-idle");
    const auto ran = scrimlet({"detect", fixture("call-frame-layer-0"), zoom, zoom, zoom, chrome,
                               chrome, chrome, idle, idle, idle, "--windows"});
    ASSERT_EQ(ran.status, 0) << ran.err;
    expectInOrder(
        ran.out,
        {fixture("call-frame-layer-0") + ": “Frame at layer 0, among ordinary windows”",
         "  Taken 2026-11-20T10:00:00Z on macOS 15.3 by Scrimlet 1.0.0.",
         "  9 windows, 1 display, 7 running apps; microphone not in use, camera not in use.",
         "  Judged with the default options, as the list holds none.",
         "  Displays:",
         "    display 1  1512×982 at 0,0",
         "  Windows, front to back:",
         "       1     502           0  1512×982 at 0,0           1      zoom.us (us.zoom.xos)  "
         "[nearest miss of rule 2]",
         "       2     510          25  30×37 at 1250,0           1      Scrimlet "
         "(app.vantrel.scrimlet)  [ignored: owned by Scrimlet itself (pid 510), rule wants "
         "another process]",
         "Window Server (no bundle identifier)\n",
         "  Verdict: nothing is being shared or recorded.",
         "    1. macOS screen recording: no — no window of com.apple.screencaptureui",
         "    2. Calls sharing a screen: no — nearest is window 1, zoom.us window at layer 0, "
         "rule wants 1 to 999",
         "    3. Browsers sharing a tab or screen: no — no window of a known browser",
         "    4. Takeloom: no — no window of Takeloom",
         "    5. Start when these apps are open: off — no apps listed",
         "    6. Also when I'm on a call: off in the settings — neither microphone nor camera in "
         "use\n",
         zoom + ":",
         "  Verdict: Zoom is sharing your screen (Calls sharing a screen).",
         "    2. Calls sharing a screen: matches — window 1, zoom.us window at layer 3, 1512×982 "
         "at 0,0, on display 1",
         "Watcher, one list a second (a source counts once seen for 1.5 s and ends once unseen "
         "for 3 s):",
         "  0 s  " + fixture("call-frame-layer-0") + "  sees nothing; idle",
         "  1 s  " + zoom +
             "  sees Zoom is sharing your screen; waiting: it counts once seen "
             "for 1.5 s",
         "  2 s  " + zoom + "  sees Zoom is sharing your screen; waiting",
         "  3 s  " + zoom + "  sees Zoom is sharing your screen; started",
         "  4 s  " + chrome +
             "  sees Chrome is sharing your screen; waiting: Zoom stays in force "
             "until this is seen for 1.5 s",
         "  6 s  " + chrome + "  sees Chrome is sharing your screen; switched from Zoom to Chrome",
         "  7 s  " + idle + "  sees nothing; Chrome stays in force until unseen for 3 s",
         "  9 s  " + idle + "  sees nothing; ended: Chrome is gone"});

    // The same replay for tools: the changes are where the delays put them.
    const auto json = scrimlet({"detect", zoom, zoom, zoom, idle, idle, idle, "--json"});
    ASSERT_EQ(json.status, 0);
    const auto lists = nlohmann::json::parse(json.out)["lists"];
    std::vector<std::string> changes;
    for (const auto& list : lists) {
        changes.push_back(
            list["watcher"]["change"].is_null() ? "-" : list["watcher"]["change"].begin().key());
    }
    EXPECT_EQ(changes, (std::vector<std::string>{"-", "-", "started", "-", "-", "ended"}));
    EXPECT_EQ(lists[2]["watcher"]["change"]["started"]["_0"]["name"], "Zoom");
    EXPECT_EQ(lists[4]["watcher"]["active"]["bundleID"], "us.zoom.xos");
    EXPECT_TRUE(lists[5]["watcher"]["active"].is_null());

    // A list that brings the options it was taken with is judged by them.
    expectInOrder(scrimlet({"detect", fixture("start-when-open-obs")}).out,
                  {"Judged with the options it was taken with.",
                   "Verdict: OBS is open (Start when these apps are open).",
                   "1. macOS screen recording: off in the settings — no window of "
                   "com.apple.screencaptureui",
                   "5. Start when these apps are open: matches — com.obsproject.obs-studio is "
                   "running"});
}

TEST(DetectCommand, RefusesWhatIsNotAWindowListClearlyAndJudgesTheRest) {
    TempDir temp;
    files::writeAtomically(temp / "empty.json", "");
    files::writeAtomically(temp / "broken.json", "{\"formatVersion\": 1, \"windows\": [");
    files::writeAtomically(temp / "journal.json", "{\"version\": 1, \"entries\": []}");
    fs::create_directory(temp / "folder.json");
    ASSERT_EQ(::mkfifo((temp / "fifo.json").c_str(), 0600), 0);
    // Valid JSON padded with blanks, so that only the size can refuse it: at the limit it is
    // read, beyond it not.
    const auto padded = [&](const std::string& name, size_t size) {
        std::ofstream file(temp / name, std::ios::binary);
        file << "{\"formatVersion\": 1, \"windows\": []}" << std::string(size - 35, ' ');
    };
    padded("largest.json", DetectCommand::maxFileBytes);
    padded("huge.json", 9'000'000);
    EXPECT_EQ(scrimlet({"detect", (temp / "largest.json").string()}).status, 0);
    const std::vector<std::pair<std::string, std::string>> cases = {
        {(temp / "missing.json").string(), "does not exist"},
        {(temp / "empty.json").string(), "is empty"},
        {(temp / "broken.json").string(), "is not JSON: it ends too soon, at line 1, column 34"},
        {(temp / "journal.json").string(),
         "is not a saved window list: it has no \"formatVersion\""},
        {(temp / "folder.json").string(), "is a folder, not a file"},
        {(temp / "fifo.json").string(), "is not a regular file (a pipe, a device or a socket)"},
        {"/dev/zero", "is not a regular file (a pipe, a device or a socket)"},
        {(temp / "huge.json").string(), "is 9.0 MB, too large to read (at most 8.0 MB)"},
    };
    for (const auto& [file, problem] : cases) {
        SCOPED_TRACE(file);
        const auto ran = scrimlet({"detect", file});
        EXPECT_EQ(ran.status, 1);
        EXPECT_EQ(ran.err, "scrimlet: detect: " + file + " " + problem + "\n");
        EXPECT_EQ(ran.out, "");
        const auto json = scrimlet({"detect", "--json", file});
        EXPECT_EQ(json.status, 1);
        EXPECT_EQ(nlohmann::json::parse(json.out)["lists"][0]["problem"], problem);
    }

    // Good lists around a bad one are still judged, and the watcher skips the bad one.
    const auto mixed = scrimlet({"detect", fixture("zoom-share-frame"),
                                 (temp / "empty.json").string(), fixture("zoom-share-frame")});
    EXPECT_EQ(mixed.status, 1);
    expectInOrder(
        mixed.out,
        {"Verdict: Zoom is sharing your screen", "Verdict: Zoom is sharing your screen",
         "1 s  " + (temp / "empty.json").string() + "  skipped: it is empty",
         "2 s  " + fixture("zoom-share-frame") + "  sees Zoom is sharing your screen; started"});

    // A damaged window is left out with a note; the rest of the list is judged.
    files::writeAtomically(
        temp / "damaged.json",
        "{\"formatVersion\": 1, \"windows\": [{\"ownerPID\": 1}, {\"ownerPID\": 2, \"ownerName\": "
        "\"zoom.us\", \"bundleID\": \"us.zoom.xos\", \"layer\": 3, \"bounds\": {\"x\": 0, \"y\": "
        "0, \"width\": 100, \"height\": 100}, \"alpha\": 1}]}");
    const auto damaged = scrimlet({"detect", (temp / "damaged.json").string()});
    EXPECT_EQ(damaged.status, 0);
    expectInOrder(damaged.out, {"Taken on an unnamed system by Scrimlet (version unknown).",
                                "1 window, 0 displays, 0 running apps",
                                "Note: window 1: missing key ownerName, skipped",
                                "2. Calls sharing a screen: no — nearest is window 1, zoom.us "
                                "window on no display, as the list holds none"});

    const auto none = scrimlet({"detect", "--json"});
    EXPECT_EQ(none.status, CommandLine::usageError);
    EXPECT_NE(none.err.find("detect needs at least one saved window list"), std::string::npos);
}

// A stand-in for the Mac's window list: it plays saved lists in turn and remembers what it
// was asked.
struct RecordedLists {
    std::vector<std::string> names;
    size_t next = 0;
    std::vector<DetectionOptions> asked = {};
    std::function<void()> onLook = {};

    LiveWindowList live() {
        return LiveWindowList{[this](const DetectionOptions& options) {
                                  asked.push_back(options);
                                  if (onLook) {
                                      onLook();
                                  }
                                  const auto& name = names[std::min(next++, names.size() - 1)];
                                  return WindowListFile::load(fixture(name))->snapshot;
                              },
                              [] { return std::string("macOS 26.1 (test)"); }};
    }
};

TEST(WindowsCommand, ShowsTheLiveListSavesItAndAnswersPlainlyWithoutAMac) {
    TempDir temp;
    const Harness::Environment env = {{"HOME", temp.path().string()}};
    RecordedLists source{{"teams-share-second-display"}};
    const auto live = source.live();

    const auto file = (temp / "reports" / "teams.json").string();
    const auto ran =
        scrimlet({"windows", "--save", file, "--label", "Teams, the external display"}, env, &live);
    ASSERT_EQ(ran.status, 0) << ran.err;
    expectInOrder(ran.out,
                  {"Window list on macOS 26.1 (test): 10 windows, 2 displays, 7 running apps",
                   "Displays:", "  display 2  2560×1440 at 1512,-98", "Windows, front to back:",
                   "     1     520           3  2560×1440 at 1512,-98     1      Microsoft Teams "
                   "(com.microsoft.teams2)  [matches rule 2]",
                   "Verdict: Microsoft Teams is sharing your screen (Calls sharing a screen).",
                   "Saved to " + file + ". Replay it anywhere with: scrimlet detect " + file});
    // The microphone and camera are always asked, so that the list tells of a call.
    ASSERT_EQ(source.asked.size(), 1u);
    EXPECT_TRUE(source.asked[0].treatCallsAsSharing);

    const auto saved = WindowListFile::load(file);
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->label, "Teams, the external display");
    EXPECT_EQ(saved->systemVersion, "macOS 26.1 (test)");
    EXPECT_EQ(saved->detection, DetectionOptions());
    EXPECT_EQ(saved->snapshot,
              WindowListFile::load(fixture("teams-share-second-display"))->snapshot);
    EXPECT_TRUE(saved->recorded);
    expectInOrder(scrimlet({"--version"}).out, {"scrimlet " + saved->scrimletVersion + "\n"});
    expectInOrder(scrimlet({"detect", file}).out,
                  {"“Teams, the external display”", "on macOS 26.1 (test)",
                   "Verdict: Microsoft Teams is sharing your screen"});

    // The user's own settings decide, and say so.
    StageSettings settings;
    settings.autoStart = false;
    settings.detection.watchCalls = false;
    SettingsFile::save(settings, AppPaths::support(env) / "settings.json");
    expectInOrder(scrimlet({"windows"}, env, &live).out,
                  {"Automatic starts are off in the settings",
                   "Verdict: nothing is being shared or recorded.",
                   "2. Calls sharing a screen: off in the settings, would match — window 1"});

    const std::vector<std::pair<std::vector<std::string>, std::string>> misuses = {
        {{"windows", "--label", "x"}, "--label goes into a saved list; give --save FILE too"},
        {{"windows", "--save="}, "--save must not be empty"},
        {{"windows", "--json"}, "unknown option '--json'"},
        {{"windows", "now"}, "unexpected argument 'now'"},
    };
    for (const auto& [arguments, problem] : misuses) {
        const auto wrong = scrimlet(arguments, env, &live);
        EXPECT_EQ(wrong.status, CommandLine::usageError);
        EXPECT_NE(wrong.err.find(problem), std::string::npos) << wrong.err;
    }
    const auto unwritable = scrimlet(
        {"windows", "--save", (temp / "reports" / "teams.json" / "x").string()}, env, &live);
    EXPECT_EQ(unwritable.status, 1);
    EXPECT_NE(unwritable.err.find("could not write"), std::string::npos);

    const auto noMac = scrimlet({"windows", "--watch"}, env);
    EXPECT_EQ(noMac.status, 1);
    EXPECT_EQ(noMac.err, "scrimlet: windows: the live window list exists only on a Mac. Here, "
                         "judge a list saved on one: scrimlet detect FILE\n");
}

TEST(WindowsCommand, WatchTellsTheWatchersDecisionsEachSecondAndKeepsEachLook) {
    TempDir temp;
    const Harness::Environment env = {{"HOME", temp.path().string()}};
    RecordedLists source{{"zoom-share-frame", "zoom-share-frame", "zoom-share-frame", "desk-idle",
                          "desk-idle", "desk-idle", "desk-idle"}};
    const auto live = source.live();
    Date now{1'795'170'000};
    int waits = 0;
    WindowsCommand::Pacing pacing{[&](double seconds) {
                                      now = now + seconds;
                                      return ++waits < 7;
                                  },
                                  [&] { return now; }};
    std::ostringstream out, err;
    const fs::path file = temp / "watch.json";
    const int status =
        WindowsCommand::run({{"--save", file.string()}}, true, env, &live, out, err, pacing);
    ASSERT_EQ(status, 0) << err.str();
    expectInOrder(out.str(),
                  {"Watching the window list on macOS 26.1 (test) once a second (a source counts "
                   "once seen for 1.5 s and ends once unseen for 3 s). Ctrl-C ends.",
                   "  0.0 s  sees Zoom is sharing your screen; waiting: it counts once seen for "
                   "1.5 s  [watch-0001.json]",
                   "  2.0 s  sees Zoom is sharing your screen; started  [watch-0003.json]",
                   "  3.0 s  sees nothing; Zoom stays in force until unseen for 3 s",
                   "  5.0 s  sees nothing; ended: Zoom is gone  [watch-0006.json]",
                   "  6.0 s  sees nothing; idle  [watch-0007.json]",
                   "Stopped. Saved 7 lists from " + (temp / "watch-0001.json").string() +
                       " on; replay them with: scrimlet detect " +
                       (temp / "watch-0001.json").string() + " ..."});

    // The kept looks replay to the same decisions anywhere.
    std::vector<std::string> replay = {"detect", "--json"};
    for (int i = 1; i <= 7; ++i) {
        replay.push_back((temp / ("watch-000" + std::to_string(i) + ".json")).string());
    }
    const auto lists = nlohmann::json::parse(scrimlet(replay).out)["lists"];
    EXPECT_EQ(lists[2]["watcher"]["change"].begin().key(), "started");
    EXPECT_EQ(lists[5]["watcher"]["change"].begin().key(), "ended");
}

// Through the real entry and a real signal: Ctrl-C ends the watch cleanly, after the look
// in hand is told.
TEST(WindowsCommand, CtrlCEndsTheWatchCleanly) {
    TempDir temp;
    RecordedLists source{{"chrome-sharing-bar"}};
    source.onLook = [] { std::raise(SIGINT); };
    const auto live = source.live();
    const auto ran = scrimlet({"windows", "--watch"}, {{"HOME", temp.path().string()}}, &live);
    EXPECT_EQ(ran.status, 0) << ran.err;
    expectInOrder(ran.out, {"Ctrl-C ends.",
                            "  0.0 s  sees Chrome is sharing your screen; waiting: it counts once "
                            "seen for 1.5 s\nStopped.\n"});
    EXPECT_EQ(source.asked.size(), 1u);
}

} // namespace
} // namespace scrimlet
