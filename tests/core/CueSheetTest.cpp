#include "CueSheet.hpp"

#include "FakeStageSystem.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace scrimlet {
namespace {

using CueSheet::Cue;

AppInfo app(std::string bundleID, std::string name, std::int32_t pid, bool hidden = false,
            bool regular = true) {
    return AppInfo{std::move(bundleID), std::move(name), pid, hidden, regular};
}

std::vector<std::string> keys(const std::vector<Cue>& cues) {
    std::vector<std::string> out;
    for (const Cue& cue : cues) {
        out.push_back(cue.key.description());
    }
    return out;
}

StagePlan plan(bool on, std::optional<ResolutionPreset> resolution = std::nullopt) {
    return StagePlan{on, on, on, on, on, on, on, on, on, resolution};
}

TEST(CueSheet, FullPlanRunsInItsOwnOrderNotTheFieldOrder) {
    FakeStageSystem mac({app("com.apple.mail", "Mail", 504), app("com.apple.Safari", "Safari", 503),
                         app("app.vantrel.scrimlet", "Scrimlet", 510)},
                        std::nullopt, {7, 8}, {});
    const StagePlan all = plan(true, ResolutionPreset{1920, 1080});
    const auto cues = CueSheet::cues(all, mac, {"app.vantrel.scrimlet"});
    EXPECT_EQ(keys(cues),
              (std::vector<std::string>{"desktopIcons", "appHidden[com.apple.mail#504#Mail]",
                                        "appHidden[com.apple.Safari#503#Safari]", "backdrop",
                                        "menuBarTidy", "dockAutohide", "darkMode", "alertVolume",
                                        "doNotDisturb", "keepAwake", "displayMode[7]"}));
    for (const Cue& cue : cues) {
        const auto kind = cue.key.kind;
        EXPECT_EQ(cue.value, kind == EffectKind::alertVolume ? JournalValue::number(0)
                             : kind == EffectKind::displayMode
                                 ? *mac.displayModeValue({1920, 1080}, 7)
                                 : JournalValue::boolean(true));
    }
    EXPECT_EQ(all.count(), 10);
    mac.apps.push_back(app("com.apple.Notes", "Notes", 509));
    const auto more = CueSheet::cues(all, mac, {"app.vantrel.scrimlet"});
    ASSERT_EQ(more.size(), 12u);
    EXPECT_EQ(more[2].key.description(), "appHidden[com.apple.Notes#509#Notes]");
}

TEST(CueSheet, EmptyPlansAndAResolutionThatCannotBeHad) {
    FakeStageSystem mac({app("a.hidden", "Hidden", 1, true), app("a.kept", "Kept", 2),
                         app("a.agent", "Agent", 3, false, false)},
                        std::nullopt, {1}, {});
    EXPECT_TRUE(CueSheet::cues(plan(false), mac, {}).empty());
    EXPECT_EQ(plan(false).count(), 0);

    StagePlan size = plan(false, ResolutionPreset{1280, 720});
    EXPECT_EQ(size.count(), 1);
    EXPECT_EQ(keys(CueSheet::cues(size, mac, {})), std::vector<std::string>{"displayMode[1]"});
    size.resolution = ResolutionPreset{800, 600};
    EXPECT_TRUE(CueSheet::cues(size, mac, {}).empty());
    size.resolution = ResolutionPreset{1280, 720};
    mac.displayList.clear();
    EXPECT_TRUE(CueSheet::cues(size, mac, {}).empty());

    // Every app hidden already, kept or no ordinary app: nothing to do, still a plan item.
    StagePlan hide = plan(false);
    hide.hideOtherApps = true;
    EXPECT_TRUE(CueSheet::cues(hide, mac, {"a.kept"}).empty());
    EXPECT_EQ(hide.count(), 1);
}

TEST(CueSheet, HidesEachProcessByNameAndKeepsEveryProcessOfAKeptApp) {
    FakeStageSystem mac({app("c.gamma", "gamma", 3), app("b.beta", "Beta", 2),
                         app("a.alpha", "alpha", 1), app("m.mail", "Mail", 20),
                         app("m.mail", "Mail", 10), app("m.other", "mail", 5)},
                        std::nullopt, {}, {});
    // Case plays no part; names that compare equal stay in the system's order.
    EXPECT_EQ(keys(CueSheet::hideApps(mac, {})),
              (std::vector<std::string>{"appHidden[a.alpha#1#alpha]", "appHidden[b.beta#2#Beta]",
                                        "appHidden[c.gamma#3#gamma]", "appHidden[m.mail#20#Mail]",
                                        "appHidden[m.mail#10#Mail]", "appHidden[m.other#5#mail]"}));
    EXPECT_EQ(keys(CueSheet::hideApps(mac, {"m.mail", "a.alpha", "b.beta", "c.gamma"})),
              std::vector<std::string>{"appHidden[m.other#5#mail]"});
}

TEST(CueSheet, PortableNameOrderComparesLettersNotCodePoints) {
    const auto less = [](std::string_view a, std::string_view b) {
        return CueSheet::portableNameOrder(a, b) < 0;
    };
    EXPECT_TRUE(CueSheet::portableNameOrder("ŁÓDŹ ÉCLAIR", "łódź éclair") == 0);
    EXPECT_TRUE(CueSheet::portableNameOrder("ЯРЛЫК", "ярлык") == 0);
    // Accents yield to the letters after them and only break a tie.
    for (const auto& [a, b] :
         std::vector<std::pair<std::string, std::string>>{{"Émile", "Eve"},
                                                          {"Zoe", "Zoë"},
                                                          {"Zoë", "Zoey"},
                                                          {"Ölfarbe", "Pages"},
                                                          {"Straße", "Strasser"},
                                                          {"Æther", "Affinity"},
                                                          {"Zulu", "Þorn"},
                                                          {"App Store", "App1"},
                                                          {"1Password", "Affinity"},
                                                          {"_tool", "app"},
                                                          {"Zed", "Ярлык"},
                                                          {"Mail", "Mailbox"},
                                                          {"a\xC3", "a\xFF"}}) {
        EXPECT_TRUE(less(a, b)) << a << " < " << b;
        EXPECT_FALSE(less(b, a)) << b << " < " << a;
    }
}

TEST(CueSheet, TheShellCanHandInTheSystemsNameOrder) {
    const CueSheet::NameOrder saved = CueSheet::nameOrder;
    FakeStageSystem mac({app("a.a", "Alpha", 1), app("b.b", "Beta", 2)}, std::nullopt, {}, {});
    CueSheet::nameOrder = [](std::string_view a, std::string_view b) -> std::weak_ordering {
        return b <=> a;
    };
    const auto reversed = keys(CueSheet::hideApps(mac, {}));
    CueSheet::nameOrder = nullptr;
    const auto fallback = keys(CueSheet::hideApps(mac, {}));
    CueSheet::nameOrder = saved;
    EXPECT_EQ(reversed,
              (std::vector<std::string>{"appHidden[b.b#2#Beta]", "appHidden[a.a#1#Alpha]"}));
    EXPECT_EQ(fallback,
              (std::vector<std::string>{"appHidden[a.a#1#Alpha]", "appHidden[b.b#2#Beta]"}));
}

TEST(CueSheet, ASwitchAsksForTheSameKeyAndValueAsThePlan) {
    FakeStageSystem mac({app("com.apple.mail", "Mail", 504)}, std::nullopt, {1}, {"BuiltInMic"});
    const auto planCues = CueSheet::cues(plan(true), mac, {});
    for (const SwitchKind kind : switch_kind::allCases) {
        const auto cues = CueSheet::cues(kind, mac, {});
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
    EXPECT_FALSE(CueSheet::kind(SwitchKind::screenSaver).has_value());
    EXPECT_EQ(keys(CueSheet::cues(SwitchKind::muteMic, mac, {})),
              std::vector<std::string>{"micMute[BuiltInMic]"});
    mac.inputDevices.clear();
    EXPECT_TRUE(CueSheet::cues(SwitchKind::muteMic, mac, {}).empty());
    EXPECT_EQ(CueSheet::kind(SwitchKind::muteMic), EffectKind::micMute);
}

} // namespace
} // namespace scrimlet
