#include "CueSheet.hpp"

#include "FakeStageSystem.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace scrimlet {
namespace {

using CueSheet::Cue;
using Keys = std::vector<std::string>;

AppInfo app(std::string bundleID, std::string name, std::int32_t pid, bool hidden = false,
            bool regular = true) {
    return AppInfo{std::move(bundleID), std::move(name), pid, hidden, regular};
}

Keys keys(const std::vector<Cue>& cues) {
    Keys out;
    for (const Cue& cue : cues) {
        out.push_back(cue.key.description());
    }
    return out;
}

StagePlan plan(bool on, std::optional<ResolutionPreset> resolution = std::nullopt) {
    return StagePlan{on, on, on, on, on, on, on, on, on, resolution};
}

TEST(CueSheet, FullPlanOrderAndTheSwitchesThatShareItsCues) {
    FakeStageSystem mac({app("com.apple.mail", "Mail", 504), app("com.apple.Safari", "Safari", 503),
                         app("app.vantrel.scrimlet", "Scrimlet", 510)},
                        std::nullopt, {7, 8}, {"BuiltInMic"});
    const std::set<std::string> keep{"app.vantrel.scrimlet"};
    const auto planCues = CueSheet::cues(plan(true, {{1920, 1080}}), mac, keep);
    ASSERT_EQ(keys(planCues), (Keys{"desktopIcons", "appHidden[com.apple.mail#504#Mail]",
                                    "appHidden[com.apple.Safari#503#Safari]", "backdrop",
                                    "menuBarTidy", "dockAutohide", "darkMode", "alertVolume",
                                    "doNotDisturb", "keepAwake", "displayMode[7]"}));
    EXPECT_EQ(planCues[7].value, JournalValue::number(0));
    EXPECT_EQ(planCues[10].value, *mac.displayModeValue({1920, 1080}, 7));

    // A switch asks for exactly what its plan item asks for, so the two share journal entries.
    for (const SwitchKind kind : switch_kind::allCases) {
        const auto cues = CueSheet::cues(kind, mac, keep);
        const auto effect = CueSheet::kind(kind);
        ASSERT_EQ(effect.has_value(), !cues.empty()) << rawValue(kind);
        for (const Cue& cue : cues) {
            EXPECT_EQ(cue.key.kind, *effect);
            const bool inPlan = std::find(planCues.begin(), planCues.end(), cue) != planCues.end();
            const bool switchOnly = kind == SwitchKind::muteMic || kind == SwitchKind::spotlight ||
                                    kind == SwitchKind::lockKeyboard;
            EXPECT_NE(inPlan, switchOnly) << cue.key.description();
        }
    }
    EXPECT_EQ(keys(CueSheet::cues(SwitchKind::muteMic, mac, {})), Keys{"micMute[BuiltInMic]"});
    mac.inputDevices.clear();
    EXPECT_TRUE(CueSheet::cues(SwitchKind::muteMic, mac, {}).empty());
}

TEST(CueSheet, EmptyPlansAndAResolutionThatCannotBeHad) {
    FakeStageSystem mac({app("a.hidden", "Hidden", 1, true), app("a.kept", "Kept", 2),
                         app("a.agent", "Agent", 3, false, false)},
                        std::nullopt, {1}, {});
    EXPECT_TRUE(CueSheet::cues(plan(false), mac, {}).empty());
    EXPECT_EQ(plan(false).count(), 0);
    EXPECT_EQ(plan(true, ResolutionPreset{1280, 720}).count(), 10);
    StagePlan size = plan(false, ResolutionPreset{1280, 720});
    EXPECT_EQ(size.count(), 1);
    EXPECT_EQ(keys(CueSheet::cues(size, mac, {})), Keys{"displayMode[1]"});
    size.resolution = ResolutionPreset{800, 600};
    EXPECT_TRUE(CueSheet::cues(size, mac, {}).empty());
    size.resolution = ResolutionPreset{1280, 720};
    mac.displayList.clear();
    EXPECT_TRUE(CueSheet::cues(size, mac, {}).empty());

    // Every app hidden already, kept or no ordinary app: nothing to hide.
    StagePlan hide = plan(false);
    hide.hideOtherApps = true;
    EXPECT_TRUE(CueSheet::cues(hide, mac, {"a.kept"}).empty());
    EXPECT_EQ(hide.count(), 1) << "hiding counts as one item, whatever it hides";
}

TEST(CueSheet, HidesEachProcessByNameAndKeepsEveryProcessOfAKeptApp) {
    FakeStageSystem mac({app("c.gamma", "gamma", 3), app("b.beta", "Beta", 2),
                         app("a.alpha", "alpha", 1), app("m.mail", "Mail", 20),
                         app("m.mail", "Mail", 10), app("m.other", "mail", 5)},
                        std::nullopt, {}, {});
    // Case plays no part; names that compare equal stay in the system's order.
    EXPECT_EQ(keys(CueSheet::hideApps(mac, {})),
              (Keys{"appHidden[a.alpha#1#alpha]", "appHidden[b.beta#2#Beta]",
                    "appHidden[c.gamma#3#gamma]", "appHidden[m.mail#20#Mail]",
                    "appHidden[m.mail#10#Mail]", "appHidden[m.other#5#mail]"}));
    EXPECT_EQ(keys(CueSheet::hideApps(mac, {"m.mail", "a.alpha", "b.beta", "c.gamma"})),
              Keys{"appHidden[m.other#5#mail]"});

    // The shell may hand in the system's own order; without one the plain order serves.
    const CueSheet::NameOrder saved = CueSheet::nameOrder;
    const std::set<std::string> keep{"m.mail", "m.other", "b.beta"};
    CueSheet::nameOrder = [](std::string_view a, std::string_view b) { return b <=> a; };
    EXPECT_EQ(keys(CueSheet::hideApps(mac, keep)),
              (Keys{"appHidden[c.gamma#3#gamma]", "appHidden[a.alpha#1#alpha]"}));
    CueSheet::nameOrder = nullptr;
    EXPECT_EQ(keys(CueSheet::hideApps(mac, keep)),
              (Keys{"appHidden[a.alpha#1#alpha]", "appHidden[c.gamma#3#gamma]"}));
    CueSheet::nameOrder = saved;
}

} // namespace
} // namespace scrimlet
