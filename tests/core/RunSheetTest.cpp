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
    EXPECT_EQ(Fmt::clock(nan), "0:00");
    EXPECT_EQ(Fmt::clock(3599.9), "59:59");
    EXPECT_EQ(Fmt::clock(3600), "1:00:00");
    EXPECT_EQ(Fmt::clock(3661), "1:01:01");
    EXPECT_EQ(Fmt::duration(nan), "under a minute");
    EXPECT_EQ(Fmt::duration(59.9), "under a minute");
    EXPECT_EQ(Fmt::duration(60), "1 min");
    EXPECT_EQ(Fmt::duration(3569.9), "59 min");
    EXPECT_EQ(Fmt::duration(3570), "1 h"); // 59.5 minutes round up to the hour
    EXPECT_EQ(Fmt::minutes(59), "59 min");
    EXPECT_EQ(Fmt::minutes(61), "1 h 1 min");
    EXPECT_EQ(Fmt::minutes(1500), "25 h");
    // Far beyond any show, but must not overflow into nonsense or a crash.
    EXPECT_FALSE(Fmt::clock(std::numeric_limits<double>::infinity()).empty());
    EXPECT_FALSE(Fmt::duration(std::numeric_limits<double>::infinity()).empty());
}

TEST(RunSheet, CountsProblemsAndWhatWasLeftAlone) {
    const RunSheet sheet = finishedSheet();
    EXPECT_EQ(sheet.duration(), 1800.0);
    // Skipped, deferred and failed count; what the user changed does not.
    EXPECT_EQ(sheet.problems(), 3);
    // Noticed during the show and again at the strike: counted once.
    EXPECT_EQ(sheet.leftAlone(), 1);

    // The demo's sheet puts back in reverse order and leaves the first it puts back alone.
    const RunSheet demo = RunSheet::demo(start, 47, "Zoom is sharing your screen", std::nullopt,
                                         EndReason::captureEnded, 1);
    ASSERT_EQ(demo.strike.size(), demo.cues.size());
    for (size_t i = 0; i < demo.cues.size(); ++i) {
        EXPECT_EQ(demo.strike[demo.cues.size() - 1 - i].key, demo.cues[i].key);
    }
    EXPECT_EQ(demo.strike[0].outcome, CueOutcome::leftAlone());
    EXPECT_EQ(demo.strike[1].outcome, CueOutcome::restored());
    EXPECT_EQ(demo.leftAlone(), 1);
}

TEST(RunSheetFile, KeepsKeysInFieldOrderAndLosesAllToOneBadRecord) {
    TempDir dir;
    const auto url = dir / "deep" / "runsheets.json";
    const std::vector<RunSheet> sheets = {RunSheet(start + 7200, "Started"), finishedSheet()};
    RunSheetFile::save(sheets, url);
    EXPECT_EQ(RunSheetFile::load(url), sheets);

    const std::string text = *files::read(url);
    const Json good = Json::parse(text);
    std::vector<std::string> keys;
    for (const auto& [key, value] : good[1].items()) {
        keys.push_back(key);
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"id", "startedAt", "endedAt", "how", "source",
                                              "reason", "cues", "strike"}));
    // A running sheet leaves its optionals out rather than writing null.
    EXPECT_EQ(good[0].size(), 5u);
    EXPECT_EQ(text.find("null"), std::string::npos);

    const auto sheetsAfter = [&](const std::function<void(Json&)>& damage) {
        Json damaged = good;
        damage(damaged);
        files::writeAtomically(url, damaged.dump());
        return RunSheetFile::load(url).size();
    };
    EXPECT_EQ(sheetsAfter([](Json& d) { d[1]["reason"] = nullptr; }), 2u); // optional
    EXPECT_EQ(sheetsAfter([](Json& d) { d[1]["reason"] = "interval"; }), 0u);
    EXPECT_EQ(sheetsAfter([](Json& d) { d[0].erase("how"); }), 0u);
    EXPECT_EQ(sheetsAfter([](Json& d) { d[1]["strike"][2]["outcome"]["gone"] = 1; }), 0u);
    EXPECT_TRUE(RunSheetFile::load(dir / "missing.json").empty());
}

} // namespace
} // namespace scrimlet
