#include "MenuBarDivider.hpp"

#include "LiveStoreRig.hpp"
#include "StageSystem.hpp"
#include "SystemVersion.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

/// The status bar, written down call by call.
class RecordingBar : public DividerBar {
public:
    std::vector<std::string> calls;

    void addItem(double length, std::string_view symbol) override {
        calls.push_back("add " + std::to_string(static_cast<int>(length)) + " " +
                        std::string(symbol));
    }
    void removeItem() override { calls.push_back("remove"); }
    void showItem(double length, std::optional<std::string_view> symbol) override {
        calls.push_back("show " + std::to_string(static_cast<int>(length)) + " " +
                        std::string(symbol.value_or("no symbol")));
    }
};

struct DividerRig {
    RecordingBar bar;
    bool testRun = false;
    MenuBarMetrics metrics{{1512}, 26};
    MenuBarDivider divider{bar, [this] { return testRun; }, [this] { return metrics; }};

    std::string offError(bool collapsed) {
        try {
            divider.setCollapsed(collapsed);
        } catch (const StageError& error) {
            return error.description();
        }
        return "no error";
    }
};

TEST(MenuBarDivider, MovesThroughItsThreeStatesAndFailsOnlyWithoutAnItem) {
    DividerRig rig;
    auto& divider = rig.divider;
    EXPECT_EQ(divider.state(), MenuBarDivider::State::notInstalled);
    // Without an item both ways fail, with the one message, and nothing changes.
    EXPECT_EQ(rig.offError(true), "The menu bar divider is off");
    EXPECT_EQ(rig.offError(false), "The menu bar divider is off");
    EXPECT_FALSE(divider.isCollapsed());

    divider.setInstalled(true);
    EXPECT_EQ(divider.state(), MenuBarDivider::State::open);
    EXPECT_EQ(divider.length(), 14);
    divider.setCollapsed(true);
    EXPECT_EQ(divider.state(), MenuBarDivider::State::collapsed);
    EXPECT_EQ(divider.length(), 10000);
    // Installing again keeps the one item, collapsed as it was.
    divider.setInstalled(true);
    EXPECT_EQ(divider.state(), MenuBarDivider::State::collapsed);
    divider.setCollapsed(false);
    EXPECT_EQ(divider.length(), 14);
    divider.setCollapsed(true);
    // Removing it while collapsed brings the icons back: the long item is gone.
    divider.setInstalled(false);
    EXPECT_EQ(divider.state(), MenuBarDivider::State::notInstalled);
    EXPECT_FALSE(divider.isCollapsed());
    EXPECT_EQ(divider.length(), 0);
    divider.setInstalled(false);
    EXPECT_EQ(rig.bar.calls,
              (std::vector<std::string>{
                  "add 14 chevron.compact.left", "show 10000 chevron.compact.right",
                  "show 14 chevron.compact.left", "show 10000 chevron.compact.right", "remove"}));

    // A scripted run never makes the item, so collapsing it fails as without one.
    rig.testRun = true;
    rig.bar.calls.clear();
    divider.setInstalled(true);
    EXPECT_EQ(rig.offError(true), "The menu bar divider is off");
    EXPECT_TRUE(rig.bar.calls.empty());

    EXPECT_EQ(MenuBarDivider::autosaveName, "ScrimletDivider");
    EXPECT_EQ(MenuBarDivider::symbolDescription, "Scrimlet divider");
    EXPECT_EQ(MenuBarDivider::toolTip,
              "Scrimlet divider — ⌘-drag icons to the left of this to hide them during a show. "
              "Click to hide or show them now.");
}

TEST(MenuBarDivider, OnMacOS27ItStaysUnderHalfTheNarrowestDisplay) {
    // Up to 26 the bar clamps the item, whatever the displays.
    EXPECT_EQ(collapsedLength({{1512}, 26}), 10000);
    EXPECT_EQ(collapsedLength({{1512, 5120}, 13}), 10000);
    EXPECT_EQ(collapsedLength({{}, 26}), 10000);
    // From 27 on: 45% of the narrowest display, under the half where the bar discards it.
    EXPECT_EQ(collapsedLength({{1512}, 27}), 680);
    EXPECT_EQ(collapsedLength({{1800}, 27}), 810) << "below the 884 measured on such a Mac";
    EXPECT_EQ(collapsedLength({{3840, 1512}, 27}), 680);
    EXPECT_EQ(collapsedLength({{1512, 3840}, 28}), 680);
    EXPECT_EQ(collapsedLength({{2560, 2560}, 27}), 1152);
    for (const double width : {1024.0, 1280.0, 1440.0, 1512.0, 1728.0, 3008.0, 6016.0}) {
        const double length = collapsedLength({{width, 6016}, 27});
        EXPECT_LT(length, width / 2) << width;
        EXPECT_GT(length, width * 0.4) << width;
    }
    // Displays that report no width are not displays; with none at all, the narrowest a
    // Mac's screen gets stands in.
    EXPECT_EQ(collapsedLength({{0, -5, 1512}, 27}), 680);
    EXPECT_EQ(collapsedLength({{}, 27}), 460);
    EXPECT_EQ(collapsedLength({{20}, 27}), 14) << "never shorter than at rest";

    EXPECT_TRUE(showsSymbolWhileCollapsed(26));
    EXPECT_FALSE(showsSymbolWhileCollapsed(27));
}

TEST(MenuBarDivider, ACollapsedDividerFollowsTheDisplays) {
    DividerRig rig;
    rig.metrics = {{1512}, 27};
    auto& divider = rig.divider;
    divider.setInstalled(true);
    divider.displaysChanged();
    divider.setCollapsed(true);
    EXPECT_EQ(divider.length(), 680);
    // A narrower display joins: the divider shrinks under its limit.
    rig.metrics.displayWidths = {1512, 1280};
    divider.displaysChanged();
    EXPECT_EQ(divider.length(), 576);
    // A wider one changes nothing, and a change that keeps the length re-sizes nothing.
    rig.metrics.displayWidths = {1512, 1280, 3840};
    divider.displaysChanged();
    // The narrow one goes away: the divider grows back.
    rig.metrics.displayWidths = {1512, 3840};
    divider.displaysChanged();
    EXPECT_EQ(divider.length(), 680);
    divider.setCollapsed(false);
    rig.metrics.displayWidths = {1024};
    divider.displaysChanged();
    EXPECT_EQ(divider.length(), 14) << "an open divider keeps its resting length";
    EXPECT_EQ(rig.bar.calls,
              (std::vector<std::string>{"add 14 chevron.compact.left", "show 680 no symbol",
                                        "show 576 no symbol", "show 680 no symbol",
                                        "show 14 chevron.compact.left"}));

    // Before 27 the enormous length serves every arrangement, so nothing is re-sized.
    DividerRig older;
    older.divider.setInstalled(true);
    older.divider.setCollapsed(true);
    older.metrics.displayWidths = {1512, 1024};
    older.divider.displaysChanged();
    EXPECT_EQ(older.bar.calls.size(), 2u);
}

TEST(SystemVersion, CompatibilityNumbersAndTheKernelBothCount) {
    using SystemVersion::macOSMajor;
    EXPECT_EQ(macOSMajor("13.6.1", "22.6.0"), 13);
    EXPECT_EQ(macOSMajor("15.5", "24.5.0"), 15);
    EXPECT_EQ(macOSMajor("26.1", "25.1.0"), 26);
    EXPECT_EQ(macOSMajor("27.0", "26.0.0"), 27);
    // An app built against an older SDK is told 16 on macOS 26, and so on.
    EXPECT_EQ(macOSMajor("16.0", "25.0.0"), 26);
    EXPECT_EQ(macOSMajor("17.0", ""), 27);
    // If it were told 16 on macOS 27 as well, the kernel still tells the truth.
    EXPECT_EQ(macOSMajor("16.0", "26.2.0"), 27);
    EXPECT_EQ(macOSMajor("", "26.0.0"), 27);
    EXPECT_EQ(macOSMajor("", ""), 0);
    EXPECT_EQ(macOSMajor("banana", "x"), 0);
    EXPECT_EQ(macOSMajor("99999999999", ""), 0) << "an absurd number is no version";

    // The two sides of the change, as the divider sees them.
    EXPECT_EQ(collapsedLength({{1512}, macOSMajor("16.0", "25.4.0")}), 10000);
    EXPECT_EQ(collapsedLength({{1512}, macOSMajor("16.0", "26.0.0")}), 680);
}

/// The simulated Mac, with the menu bar effect handed to a real divider, as the real system
/// hands it to the app's.
class DividerSystem : public StageSystem {
public:
    std::shared_ptr<FakeStageSystem> fake = FakeStageSystem::demo();
    MenuBarDivider* divider = nullptr;

    std::optional<JournalValue> read(const EffectKey& key) override {
        if (key.kind == EffectKind::menuBarTidy) {
            return JournalValue::boolean(divider->isCollapsed());
        }
        return fake->read(key);
    }
    std::optional<JournalValue> write(const EffectKey& key, const JournalValue& value) override {
        if (key.kind == EffectKind::menuBarTidy) {
            divider->setCollapsed(value.boolValue().value_or(false));
            return std::nullopt;
        }
        return fake->write(key, value);
    }
    Availability availability(EffectKind kind) override { return fake->availability(kind); }
    std::vector<AppInfo> runningApps() override { return fake->runningApps(); }
    std::optional<std::string> frontmostBundleID() override { return fake->frontmostBundleID(); }
    std::vector<std::uint32_t> displays() override { return fake->displays(); }
    std::optional<JournalValue> displayModeValue(const ResolutionPreset& preset,
                                                 std::uint32_t display) override {
        return fake->displayModeValue(preset, display);
    }
    std::optional<std::uint32_t> mainDisplay() override { return fake->mainDisplay(); }
    std::optional<std::string> defaultInputDevice() override { return fake->defaultInputDevice(); }
    void startScreenSaver() override { fake->startScreenSaver(); }
};

/// A platform whose divider setting reaches the real divider.
class DividerPlatform : public testing::RecordingPlatform {
public:
    RecordingBar bar;
    MenuBarDivider divider{bar, nullptr, [] { return MenuBarMetrics{{1512, 2560}, 27}; }};

    void setMenuBarDividerInstalled(bool installed) override { divider.setInstalled(installed); }
};

TEST(MenuBarDivider, AClickGoesThroughTheSwitchBoardAndTheJournal) {
    testing::TempDir dir;
    auto system = std::make_shared<DividerSystem>();
    auto platform = std::make_shared<DividerPlatform>();
    system->divider = &platform->divider;
    StageSettings settings;
    settings.menuBarDivider = true;
    auto journal = std::make_shared<JournalStore>(dir / "journal.json");
    auto store = StageStore::create(StageStore::Mode::live, system, nullptr, journal, settings,
                                    dir / "settings.json", dir / "runsheets.json",
                                    std::make_shared<ManualClock>(Date{1'790'000'000}), platform);
    store->startLive();
    ASSERT_TRUE(platform->divider.isInstalled());

    dividerClicked(*store);
    EXPECT_TRUE(store->board().isOn(SwitchKind::tidyMenuBar));
    EXPECT_TRUE(platform->divider.isCollapsed());
    EXPECT_EQ(platform->divider.length(), 680);
    const auto held = JournalStore(dir / "journal.json").load();
    ASSERT_EQ(held.size(), 1u) << "the journal holds the change before the bar shows it";
    EXPECT_EQ(held[0].key.kind, EffectKind::menuBarTidy);
    EXPECT_EQ(held[0].owners, (std::vector<std::string>{"switch.tidyMenuBar"}));

    dividerClicked(*store);
    EXPECT_FALSE(store->board().isOn(SwitchKind::tidyMenuBar));
    EXPECT_FALSE(platform->divider.isCollapsed());
    EXPECT_TRUE(JournalStore(dir / "journal.json").load().empty());

    // Turning the divider off while it hides icons lets the switch go first, then removes
    // the item.
    dividerClicked(*store);
    platform->bar.calls.clear();
    settings.menuBarDivider = false;
    store->setSettings(settings);
    EXPECT_FALSE(store->board().isOn(SwitchKind::tidyMenuBar));
    EXPECT_EQ(platform->bar.calls,
              (std::vector<std::string>{"show 14 chevron.compact.left", "remove"}));
    EXPECT_TRUE(JournalStore(dir / "journal.json").load().empty());
}

} // namespace
} // namespace scrimlet
