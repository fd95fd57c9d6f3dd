#include "Effects.hpp"
#include "Journal.hpp"
#include "JsonCoding.hpp"
#include "StageSystem.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace scrimlet {
namespace {

TEST(Effects, AppTargetsParseForgivinglyAndKeepHashesInNames) {
    EXPECT_EQ(AppTarget::parse("tool#123")->name, "tool");
    EXPECT_EQ(AppTarget::parse("tool#123#My#App")->name, "My#App");
    EXPECT_EQ(AppTarget::parse("tool#+7#X")->pid, 7);
    EXPECT_EQ(AppTarget::parse("tool#-7#X")->pid, -7);
    for (const char* bad : {"tool", "tool#", "tool#12x#Name", "tool##Name", "tool#99999999999#N",
                            "tool#+#N", "tool#+-1#N", "tool# 1#N"}) {
        EXPECT_FALSE(AppTarget::parse(bad)) << bad;
    }
    const AppInfo notes{"com.apple.Notes", "Notes — 📝 ideas", 509, false, true};
    const auto key = EffectKey::app(notes);
    EXPECT_EQ(key.target, "com.apple.Notes#509#Notes — 📝 ideas");
    EXPECT_EQ(AppTarget::parse(key.target), AppTarget(notes));
    EXPECT_EQ(key.title(), "Hide Notes — 📝 ideas");
    EXPECT_EQ(EffectKey(EffectKind::appHidden, "garbage").title(), "Hide garbage");
    EXPECT_EQ(EffectKey(EffectKind::displayMode, "2").title(), "Resolution · display 2");
    EXPECT_EQ(EffectKey(EffectKind::micMute, "dev").title(), "Mute the microphone");
    EXPECT_EQ(EffectKey(EffectKind::micMute, "dev").description(), "micMute[dev]");
    EXPECT_EQ(EffectKey(EffectKind::spotlight).description(), "spotlight");
}

TEST(Effects, ValuesMatchWithATolerantNumberComparison) {
    const auto n = JournalValue::number;
    EXPECT_TRUE(n(0.35).matches(n(0.36)));
    EXPECT_FALSE(n(0.35).matches(n(0.37)));
    EXPECT_FALSE(n(1).matches(JournalValue::boolean(true)));
    EXPECT_FALSE(JournalValue::boolean(true).matches(std::nullopt));
    EXPECT_TRUE(JournalValue::text("a").matches(JournalValue::text("a")));
    EXPECT_NE(n(0.35), n(0.36));
    EXPECT_EQ(n(1440).description(), "1440");
    EXPECT_EQ(n(0).description(), "0");
    EXPECT_EQ(n(0.5).description(), "0.50");
    EXPECT_EQ(JournalValue::boolean(false).description(), "off");
}

TEST(Effects, OutcomesSpeakTheirLabelsAndCodeAsOneKeyObjects) {
    EXPECT_EQ(CueOutcome::skipped("no Dock").label(), "Skipped · no Dock");
    EXPECT_EQ(CueOutcome::leftAlone().label(), "Left alone — you changed it");
    EXPECT_EQ(CueOutcome::leftAlone().shortLabel(), "Yours now");
    EXPECT_EQ(CueOutcome::stillHeld().label(), "Kept — a switch holds it");
    EXPECT_TRUE(CueOutcome::deferred().isProblem());
    EXPECT_FALSE(CueOutcome::leftAlone().isProblem());
    EXPECT_FALSE(CueOutcome::gone().isProblem());

    EXPECT_EQ(toJson(CueOutcome::failed("it's gone")).dump(), R"({"failed":{"_0":"it's gone"}})");
    EXPECT_EQ(toJson(CueOutcome::applied()).dump(), R"({"applied":{}})");
    EXPECT_EQ(toJson(JournalValue::number(0.35)).dump(), R"({"number":{"_0":0.35}})");
    EXPECT_EQ(cueOutcomeFromJson(json::Json::parse(R"({"skipped":{"_0":"x"}})")),
              CueOutcome::skipped("x"));
    EXPECT_THROW(cueOutcomeFromJson(json::Json::parse(R"({"applied":{},"gone":{}})")),
                 json::DecodeError);
    EXPECT_THROW(cueOutcomeFromJson(json::Json::parse(R"({"failed":{}})")), json::DecodeError);
    EXPECT_THROW(journalValueFromJson(json::Json::parse(R"({"bool":{"_0":1}})")),
                 json::DecodeError);

    const CueRecord record(EffectKey::app({"com.apple.mail", "Mail", 504, false, true}),
                           CueOutcome::gone(), Date{100});
    EXPECT_EQ(record.title, "Hide Mail");
    auto decoded = cueRecordFromJson(json::Json::parse(toJson(record).dump()));
    EXPECT_EQ(decoded, record);
    EXPECT_EQ(StageError::targetGone().description(), "it's gone");
    EXPECT_EQ(StageError::refusedInTestRun().description(), "refused: test run");
    EXPECT_EQ(Availability::needsSetup("x").note(), "x");
    EXPECT_FALSE(Availability::ready().note());
}

TEST(Effects, DatesAndIdsUseTheFileForms) {
    EXPECT_EQ(Date{1'767'348'000.9}.iso8601(), "2026-01-02T10:00:00Z");
    EXPECT_EQ(Date{-1}.iso8601(), "1969-12-31T23:59:59Z");
    EXPECT_EQ(Date::parseIso8601("2026-01-02T10:00:00Z"), Date{1'767'348'000});
    EXPECT_EQ(Date::parseIso8601("2026-01-02T11:00:00+01:00"), Date{1'767'348'000});
    for (const char* bad : {"2026-01-02", "2026-01-02T10:00:00", "2026-13-02T10:00:00Z",
                            "2026-01-02T10:00:00Zjunk", "x026-01-02T10:00:00Z"}) {
        EXPECT_FALSE(Date::parseIso8601(bad)) << bad;
    }
    // What the reader takes, the writer writes back in a form the reader takes again: the
    // four-digit years bound both, whatever offset a date came with.
    for (const char* edge :
         {"0000-01-01T00:00:00Z", "9999-12-31T23:59:59Z", "0000-01-01T00:00:00-00:01",
          "9999-12-31T23:59:59.999+00:01", "9999-12-31T23:00:00+05:30"}) {
        const auto date = Date::parseIso8601(edge);
        ASSERT_TRUE(date) << edge;
        EXPECT_EQ(Date::parseIso8601(date->iso8601()), Date{std::floor(date->seconds)}) << edge;
    }
    for (const char* beyond : {"0000-01-01T00:00:00+00:01", "9999-12-31T23:59:59-00:01",
                               "9999-12-31T23:59:60Z", "0000-01-01T05:29:59+05:30"}) {
        EXPECT_FALSE(Date::parseIso8601(beyond)) << beyond;
    }
    // Dates the clock could never give still come out readable, at the nearest bound.
    EXPECT_EQ(Date{-1e18}.iso8601(), "0000-01-01T00:00:00Z");
    EXPECT_EQ(Date{1e300}.iso8601(), "9999-12-31T23:59:59Z");
    EXPECT_EQ(Date{std::nan("")}.iso8601(), "0000-01-01T00:00:00Z");

    const Uuid id = Uuid::random();
    EXPECT_EQ(Uuid::parse(id.string()), id);
    EXPECT_EQ(id.string().size(), 36u);
    EXPECT_EQ(id.string()[14], '4');
    EXPECT_EQ(Uuid::parse("0f3a9c2e-1b4d-4e5f-8a6b-7c8d9e0f1a2b")->string(),
              "0F3A9C2E-1B4D-4E5F-8A6B-7C8D9E0F1A2B");
    EXPECT_FALSE(Uuid::parse("0f3a9c2e-1b4d-4e5f-8a6b-7c8d9e0f1a2"));
    EXPECT_FALSE(Uuid::parse("0f3a9c2e11b4d-4e5f-8a6b-7c8d9e0f1a2b"));
}

} // namespace
} // namespace scrimlet
