#include "HotkeySet.hpp"

#include "LiveStoreRig.hpp"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <tuple>

namespace scrimlet {
namespace {

/// The hot-key service as a table: keys another app holds are refused.
class FakeHotkeyService : public HotkeyService {
public:
    int handlersInstalled = 0;
    std::set<std::pair<std::uint32_t, std::uint32_t>> takenElsewhere;
    std::map<Token, std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>> held;
    Token next = 1;

    void installHandler() override { ++handlersInstalled; }
    std::optional<Token> registerKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                     std::uint32_t identifier) override {
        if (takenElsewhere.count({keyCode, modifiers})) {
            return std::nullopt;
        }
        held[next] = {keyCode, modifiers, identifier};
        return next++;
    }
    void unregisterKey(Token token) override { EXPECT_EQ(held.erase(token), 1u); }
};

/// A platform whose hotkeys go through the real set, over the fake service.
class HotkeyPlatform : public testing::RecordingPlatform {
public:
    FakeHotkeyService service;
    bool testRun = false;
    HotkeySet set{service, [this] { return testRun; }};

    std::vector<std::uint32_t> registerHotkeys(std::vector<HotkeyEntry> entries) override {
        return set.registerAll(std::move(entries));
    }
};

TEST(HotkeySet, ReplacesTheWholeSetAndReportsOnlyRealClashes) {
    StageSettings settings;
    settings.countdown = false;
    // Dark Mode's key is taken by another app; Hide Dock's has no usable modifier.
    settings.setPrefs(SwitchKind::darkMode,
                      SwitchPrefs{true, std::nullopt, Hotkey{2, Hotkey::control, "D"}});
    settings.setPrefs(SwitchKind::hideDock,
                      SwitchPrefs{true, std::nullopt, Hotkey{0, Hotkey::shift, "A"}});
    testing::LiveStoreRig<HotkeyPlatform> rig(settings);
    auto& platform = *rig.platform;
    platform.service.takenElsewhere = {{2, Hotkey::control}};
    rig.store->startLive();

    EXPECT_EQ(platform.service.handlersInstalled, 1);
    EXPECT_EQ(platform.set.registered(), 1u) << "only the stage hotkey is held";
    EXPECT_EQ(platform.set.failures(), (std::vector<std::uint32_t>{105}));
    EXPECT_EQ(rig.store->hotkeyProblem(), "A hotkey is already used by another app.");

    // Pressing the stage hotkey twice runs it twice; an identifier nobody holds does
    // nothing.
    platform.set.pressed(1);
    ASSERT_TRUE(rig.store->show().isLive());
    EXPECT_EQ(rig.store->show().current()->how, "Started with ⌃⌥⌘S");
    platform.set.pressed(1);
    EXPECT_TRUE(rig.store->show().isDark());
    platform.set.pressed(105);
    platform.set.pressed(77);
    EXPECT_FALSE(rig.store->board().isOn(SwitchKind::darkMode));

    // A second clash makes the plural; moving both keys clears the message, and the old
    // keys are given back rather than held twice.
    platform.service.takenElsewhere.insert({1, Hotkey::control | Hotkey::option | Hotkey::cmd});
    rig.store->registerHotkeys();
    EXPECT_EQ(rig.store->hotkeyProblem(), "Some hotkeys are already used by another app.");
    EXPECT_TRUE(platform.service.held.empty());
    StageSettings moved = rig.store->settings();
    moved.stageHotkey = Hotkey{1, Hotkey::cmd | Hotkey::shift, "S"};
    moved.setPrefs(SwitchKind::darkMode,
                   SwitchPrefs{true, std::nullopt, Hotkey{2, Hotkey::option, "D"}});
    rig.store->setSettings(moved);
    EXPECT_EQ(rig.store->hotkeyProblem(), std::nullopt);
    EXPECT_EQ(platform.service.held.size(), 2u);
    platform.set.pressed(105);
    EXPECT_TRUE(rig.store->board().isOn(SwitchKind::darkMode));

    // Clearing every hotkey unregisters everything; the handler stays, installed once.
    StageSettings none = rig.store->settings();
    none.stageHotkey.reset();
    none.switches.clear();
    rig.store->setSettings(none);
    EXPECT_TRUE(platform.service.held.empty());
    EXPECT_EQ(platform.set.registered(), 0u);
    platform.set.pressed(1);
    EXPECT_FALSE(rig.store->show().isLive());
    EXPECT_EQ(platform.service.handlersInstalled, 1);

    // A scripted run registers nothing and reports nothing, and leaves the set alone.
    platform.testRun = true;
    rig.store->setSettings(moved);
    EXPECT_EQ(rig.store->hotkeyProblem(), std::nullopt);
    EXPECT_TRUE(platform.service.held.empty());
}

TEST(HotkeySet, OneIdentifierTwiceHoldsOnlyTheLaterKey) {
    FakeHotkeyService service;
    HotkeySet set(service, nullptr);
    int first = 0;
    int second = 0;
    const auto failed = set.registerAll({{7, Hotkey{0, Hotkey::cmd, "A"}, [&] { ++first; }},
                                         {7, Hotkey{11, Hotkey::cmd, "B"}, [&] { ++second; }}});
    EXPECT_TRUE(failed.empty());
    ASSERT_EQ(service.held.size(), 1u);
    EXPECT_EQ(std::get<0>(service.held.begin()->second), 11u);
    set.pressed(7);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

} // namespace
} // namespace scrimlet
