#include "WindowListFile.hpp"

#include "AtomicFile.hpp"
#include "TempDir.hpp"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <string>

namespace scrimlet {
namespace {

using testing::TempDir;

RecordedWindowList fullList() {
    RecordedWindowList list;
    list.snapshot.windows = {
        WindowInfo{502, "zoom.us", "us.zoom.xos", 3, {0, 0, 1512, 982}, 1},
        WindowInfo{160, "Window Server", std::nullopt, 2147483630, {1228.5, 0, 22, 22}, 0.75},
        WindowInfo{-1, "", "com.example.odd", -20, {-3000.25, -98, 0, 1e6}, 0},
    };
    list.snapshot.displays = {DisplayInfo{1, {0, 0, 1512, 982}},
                              DisplayInfo{4294967295u, {1512, -98, 2560, 1440}}};
    list.snapshot.runningBundleIDs = {"us.zoom.xos", "com.apple.finder", "ünïcode.app"};
    list.snapshot.micInUse = true;
    list.snapshot.cameraInUse = false;
    list.snapshot.selfPID = 510;
    list.systemVersion = "macOS 26.0 (25A354)";
    list.scrimletVersion = "1.0.0";
    list.recorded = Date{1795170000};
    list.label = "Teams, sharing “the whole screen”\nsecond line";
    list.detection =
        DetectionOptions{true, false, true, false, true, {"com.obsproject.obs-studio"}};
    return list;
}

TEST(WindowListFile, RoundTripsEverythingThroughTheDisk) {
    TempDir dir;
    const auto full = fullList();
    RecordedWindowList bare;
    bare.snapshot.windows = {WindowInfo{1, "a", std::nullopt, 0, {0, 0, 10, 10}, 1}};
    for (const auto& list : {full, bare}) {
        const auto path = dir / "deep" / "list.json";
        ASSERT_TRUE(WindowListFile::save(list, path));
        EXPECT_EQ(WindowListFile::load(path), list);
        const auto reading = WindowListFile::decode(*files::read(path));
        EXPECT_TRUE(reading.notes.empty());
        EXPECT_EQ(reading.list, list);
    }
    // Written atomically: nothing but the file is left beside it.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir / "deep"),
                            std::filesystem::directory_iterator()),
              1);
    // Never a title or a picture: a window is written with these six keys and no more.
    const auto document = nlohmann::json::parse(WindowListFile::encode(full));
    for (const auto& window : document.at("windows")) {
        std::set<std::string> keys;
        for (const auto& item : window.items()) {
            keys.insert(item.key());
        }
        keys.insert("bundleID");
        EXPECT_EQ(keys, (std::set<std::string>{"ownerPID", "ownerName", "bundleID", "layer",
                                               "bounds", "alpha"}));
    }
    EXPECT_FALSE(WindowListFile::save(full, dir / "deep" / "list.json" / "under-a-file.json"));
    EXPECT_EQ(WindowListFile::load(dir / "missing.json"), std::nullopt);
}

// A damaged window or display costs only itself; a damaged detail takes its default; each
// leaves a note the command line can show.
TEST(WindowListFile, ForgivesDamageAndSaysWhat) {
    const std::string text = R"({
      "formatVersion": 1,
      "label": 42,
      "recorded": "yesterday",
      "systemVersion": "macOS 15.3",
      "selfPID": "510",
      "micInUse": true,
      "cameraInUse": "no",
      "detection": {"watchCalls": false},
      "displays": [{"id": 1, "frame": {"x": 0, "y": 0, "width": 1512, "height": 982}},
                   {"id": -1, "frame": {"x": 0, "y": 0, "width": 1, "height": 1}}, 7],
      "runningBundleIDs": ["us.zoom.xos", 5, null],
      "windows": [
        {"ownerPID": 502, "ownerName": "zoom.us", "bundleID": "us.zoom.xos", "layer": 3,
         "bounds": {"x": 0, "y": 0, "width": 1512, "height": 982}, "alpha": 1},
        {"ownerPID": 503, "ownerName": "no layer",
         "bounds": {"x": 0, "y": 0, "width": 1, "height": 1}, "alpha": 1},
        {"ownerPID": 504, "ownerName": "null bundle", "bundleID": null, "layer": 3.0,
         "bounds": {"x": 0, "y": 0, "width": null, "height": 1}, "alpha": 1},
        {"ownerPID": 9999999999, "ownerName": "pid too big", "layer": 0,
         "bounds": {"x": 0, "y": 0, "width": 1, "height": 1}, "alpha": 1},
        "not a window",
        {"ownerPID": 505, "ownerName": "kept", "bundleID": null, "layer": 3.0,
         "bounds": {"x": 0, "y": 0, "width": 5, "height": 1}, "alpha": 0.5, "title": "ignored"}
      ],
      "somethingNew": {"from": "a later version"}
    })";
    const auto reading = WindowListFile::decode(text);
    ASSERT_TRUE(reading.list) << reading.problem;
    const auto& list = *reading.list;
    ASSERT_EQ(list.snapshot.windows.size(), 2u);
    EXPECT_EQ(list.snapshot.windows[0].ownerName, "zoom.us");
    EXPECT_EQ(list.snapshot.windows[1],
              (WindowInfo{505, "kept", std::nullopt, 3, {0, 0, 5, 1}, 0.5}));
    EXPECT_EQ(list.snapshot.displays.size(), 1u);
    EXPECT_EQ(list.snapshot.runningBundleIDs, std::set<std::string>{"us.zoom.xos"});
    EXPECT_TRUE(list.snapshot.micInUse);
    EXPECT_FALSE(list.snapshot.cameraInUse);
    EXPECT_EQ(list.snapshot.selfPID, 0);
    EXPECT_EQ(list.systemVersion, "macOS 15.3");
    EXPECT_EQ(list.scrimletVersion, "");
    EXPECT_FALSE(list.label);
    EXPECT_FALSE(list.recorded);
    EXPECT_FALSE(list.detection);
    EXPECT_EQ(reading.notes, (std::vector<std::string>{
                                 "window 2: missing key layer, skipped",
                                 "window 3: expected a number, skipped",
                                 "window 4: integer out of range, skipped",
                                 "window 5: expected an object, skipped",
                                 "display 2: integer out of range, skipped",
                                 "display 3: expected an object, skipped",
                                 "running app 2: expected a string, skipped",
                                 "running app 3: expected a string, skipped",
                                 "cameraInUse: expected a boolean, left out",
                                 "selfPID: expected a whole number, left out",
                                 "recorded: expected an ISO 8601 date, left out",
                                 "label: expected a string, left out",
                                 "detection: missing key watchBrowsers, left out",
                             }));

    // A later format is read as far as this one understands it.
    const auto later = WindowListFile::decode(R"({"formatVersion": 2, "windows": []})");
    ASSERT_TRUE(later.list);
    EXPECT_EQ(later.notes, std::vector<std::string>{
                               "written in format 2, read as format 1: what is new is left out"});
}

TEST(WindowListFile, WhatIsNoWindowListAtAllReadsAsNothingWithTheReason) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "is empty"},
        {" \n\t ", "is empty"},
        {"{\"formatVersion\": 1,\n  \"windows\": [}",
         "is not JSON: a syntax error at line 2, column 15"},
        {"{\"formatVersion\": 1,\n\"windows\": [",
         "is not JSON: it ends too soon, at line 2, column 13"},
        {"\xff\xfe{", "is not JSON: a syntax error at line 1, column 1"},
        {"[]", "is not a saved window list: the document is not a JSON object"},
        {"{\"windows\": []}", "is not a saved window list: it has no \"formatVersion\""},
        {"{\"formatVersion\": \"1\", \"windows\": []}",
         "is not a saved window list: \"formatVersion\" is not a whole number"},
        {"{\"formatVersion\": 0, \"windows\": []}",
         "is not a saved window list: format version 0 is unknown"},
        {"{\"formatVersion\": 1, \"windows\": {}}",
         "is not a saved window list: it has no \"windows\" list"},
        {"{\"formatVersion\": 1}", "is not a saved window list: it has no \"windows\" list"},
        {"{\"version\": 1, \"entries\": []}",
         "is not a saved window list: it has no \"formatVersion\""},
    };
    for (const auto& [text, problem] : cases) {
        SCOPED_TRACE(text);
        const auto reading = WindowListFile::decode(text);
        EXPECT_FALSE(reading.list);
        EXPECT_EQ(reading.problem, problem);
    }
    // Nesting far deeper than any list is refused without exhausting the stack.
    const std::string deep = "{\"formatVersion\": 1, \"windows\": [" + std::string(100000, '[') +
                             std::string(100000, ']') + "]}";
    const auto reading = WindowListFile::decode(deep);
    ASSERT_TRUE(reading.list);
    EXPECT_TRUE(reading.list->snapshot.windows.empty());
    EXPECT_EQ(reading.notes, std::vector<std::string>{"window 1: expected an object, skipped"});
}

} // namespace
} // namespace scrimlet
