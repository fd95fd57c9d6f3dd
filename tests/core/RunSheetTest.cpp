#include "RunSheet.hpp"
#include "Fmt.hpp"
#include "RunSheetFile.hpp"

#include "AtomicFile.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>

namespace scrimlet {
namespace {

using Json = nlohmann::ordered_json;
using testing::TempDir;

const Date start{1793000000}; // whole seconds, as the file keeps them

RunSheet finishedSheet() {
    RunSheet sheet(start, "Zoom is sharing your screen",
                   CaptureSource{"us.zoom.xos", "Zoom", CaptureKind::callShare});
    sheet.endedAt = start + 1800;
    sheet.reason = EndReason::captureEnded;
    const auto record = [&](EffectKind kind, CueOutcome outcome) {
        return CueRecord(EffectKey(kind), std::move(outcome), start);
    };
    sheet.cues = {record(EffectKind::desktopIcons, CueOutcome::applied()),
                  record(EffectKind::doNotDisturb, CueOutcome::skipped("needs its shortcuts")),
                  record(EffectKind::darkMode, CueOutcome::leftAlone())};
    sheet.strike = {record(EffectKind::darkMode, CueOutcome::leftAlone()),
                    record(EffectKind::displayMode, CueOutcome::deferred()),
                    record(EffectKind::desktopIcons, CueOutcome::failed("it's gone"))};
    return sheet;
}

TEST(Fmt, TextsAtTheirBoundaries) {
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    for (const auto& [seconds, text] :
         std::vector<std::pair<double, std::string>>{{-5, "0:00"},
                                                     {nan, "0:00"},
                                                     {0.99, "0:00"},
                                                     {75, "1:15"},
                                                     {3599.9, "59:59"},
                                                     {3600, "1:00:00"},
                                                     {3661, "1:01:01"},
                                                     {360000, "100:00:00"}}) {
        EXPECT_EQ(Fmt::clock(seconds), text) << seconds;
    }
    for (const auto& [seconds, text] :
         std::vector<std::pair<double, std::string>>{{-30, "under a minute"},
                                                     {nan, "under a minute"},
                                                     {59.9, "under a minute"},
                                                     {60, "1 min"},
                                                     {89.9, "1 min"},
                                                     {90, "2 min"},
                                                     {3569.9, "59 min"},
                                                     {3570, "1 h"},
                                                     {5400, "1 h 30 min"},
                                                     {7170, "2 h"}}) {
        EXPECT_EQ(Fmt::duration(seconds), text) << seconds;
    }
    for (const auto& [minutes, text] : std::vector<std::pair<int, std::string>>{
             {0, "0 min"}, {59, "59 min"}, {60, "1 h"}, {61, "1 h 1 min"}, {1500, "25 h"}}) {
        EXPECT_EQ(Fmt::minutes(minutes), text) << minutes;
    }
    EXPECT_FALSE(Fmt::clock(infinity).empty());
    EXPECT_FALSE(Fmt::duration(infinity).empty());
}

TEST(RunSheet, CountsProblemsAndWhatWasLeftAlone) {
    EXPECT_FALSE(RunSheet(start, "Started").duration().has_value());
    const RunSheet sheet = finishedSheet();
    EXPECT_EQ(sheet.duration(), 1800.0);
    // Skipped, deferred and failed count; what the user changed does not.
    EXPECT_EQ(sheet.problems(), 3);
    // Noticed during the show and again at the strike: counted once.
    EXPECT_EQ(sheet.leftAlone(), 1);
}

TEST(RunSheet, DemoSheetPutsBackInReverseAndLeavesTheFirstAlone) {
    const RunSheet sheet = RunSheet::demo(start, 47, "Zoom is sharing your screen", std::nullopt,
                                          EndReason::captureEnded, 1);
    EXPECT_EQ(sheet.duration(), 47 * 60.0);
    EXPECT_EQ(sheet.reason, EndReason::captureEnded);
    ASSERT_EQ(sheet.cues.size(), 8u);
    ASSERT_EQ(sheet.strike.size(), 8u);
    EXPECT_EQ(sheet.cues[1].key.target, "com.apple.Safari#503#Safari");
    for (size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(sheet.strike[7 - i].key, sheet.cues[i].key);
        EXPECT_EQ(sheet.cues[i].outcome, CueOutcome::applied());
        EXPECT_EQ(sheet.strike[i].at, start + 47 * 60.0);
    }
    EXPECT_EQ(sheet.strike[0].key, EffectKey(EffectKind::keepAwake));
    EXPECT_EQ(sheet.strike[0].outcome, CueOutcome::leftAlone());
    EXPECT_EQ(sheet.strike[1].outcome, CueOutcome::restored());
    EXPECT_EQ(sheet.leftAlone(), 1);
}

TEST(RunSheetFile, KeepsSheetsNewestFirstWithKeysInFieldOrder) {
    TempDir dir;
    const auto url = dir / "deep" / "runsheets.json";
    const std::vector<RunSheet> sheets = {RunSheet(start + 7200, "Started"), finishedSheet()};
    RunSheetFile::save(sheets, url);
    EXPECT_EQ(RunSheetFile::load(url), sheets);

    const std::string text = *files::read(url);
    const Json document = Json::parse(text);
    std::vector<std::string> keys;
    for (const auto& [key, value] : document[1].items()) {
        keys.push_back(key);
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"id", "startedAt", "endedAt", "how", "source",
                                              "reason", "cues", "strike"}));
    EXPECT_EQ(document[1]["startedAt"], "2026-10-26T07:33:20Z");
    EXPECT_EQ(document[1]["reason"], "captureEnded");
    // A running sheet leaves its optionals out rather than writing null.
    EXPECT_EQ(document[0].size(), 5u);
    EXPECT_EQ(text.find("null"), std::string::npos);

    RunSheetFile::save({}, url);
    EXPECT_EQ(*files::read(url), "[]");
}

TEST(RunSheetFile, OneBadRecordCostsEverySheet) {
    TempDir dir;
    const auto url = dir / "runsheets.json";
    RunSheetFile::save({finishedSheet(), finishedSheet()}, url);
    const Json good = Json::parse(*files::read(url));
    const auto sheetsAfter = [&](const std::function<void(Json&)>& damage) {
        Json damaged = good;
        damage(damaged);
        files::writeAtomically(url, damaged.dump());
        return RunSheetFile::load(url).size();
    };
    EXPECT_EQ(sheetsAfter([](Json& d) { d[0]["reason"] = nullptr; }), 2u);
    EXPECT_EQ(sheetsAfter([](Json& d) { d[1]["reason"] = "interval"; }), 0u);
    EXPECT_EQ(sheetsAfter([](Json& d) { d[1].erase("how"); }), 0u);
    EXPECT_EQ(sheetsAfter([](Json& d) { d[0]["strike"][2]["outcome"]["gone"] = Json::object(); }),
              0u);
    EXPECT_EQ(sheetsAfter([](Json& d) { d = Json{{"sheets", d}}; }), 0u);

    EXPECT_TRUE(RunSheetFile::load(dir / "missing.json").empty());
    EXPECT_TRUE(RunSheetFile::load(std::nullopt).empty());
    RunSheetFile::save({finishedSheet()}, dir.path()); // a folder cannot be replaced: dropped
    EXPECT_TRUE(std::filesystem::is_directory(dir.path()));
}

} // namespace
} // namespace scrimlet
