#include "SettingsModel.hpp"

#include "InterfaceRig.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using testing::InterfaceRig;

std::vector<std::string> sectionTitles(const SettingsPageModel& page) {
    std::vector<std::string> out;
    for (const PageBlock& block : page.blocks) {
        if (const auto* section = std::get_if<SettingsSection>(&block)) {
            out.push_back(section->title);
        }
    }
    return out;
}

std::vector<const SettingRow*> rowsOf(const SettingsSection& section) {
    std::vector<const SettingRow*> out;
    for (const SectionItem& item : section.items) {
        if (const auto* row = std::get_if<SettingRow>(&item)) {
            out.push_back(row);
        }
    }
    return out;
}

const SettingRow& rowOf(const SettingsPageModel& page, const std::string& title) {
    for (const PageBlock& block : page.blocks) {
        if (const auto* section = std::get_if<SettingsSection>(&block)) {
            for (const SettingRow* row : rowsOf(*section)) {
                if (row->title == title) {
                    return *row;
                }
            }
        }
    }
    ADD_FAILURE() << "no row " << title;
    static const SettingRow none;
    return none;
}

template <class Control>
const Control& control(const SettingsPageModel& page, const std::string& title) {
    const SettingRow& row = rowOf(page, title);
    if (const auto* found = std::get_if<Control>(&row.control)) {
        return *found;
    }
    ADD_FAILURE() << title << " has another control";
    static const Control none{};
    return none;
}

std::vector<std::string> choiceTitles(const MenuControl& menu) {
    std::vector<std::string> out;
    for (const MenuGroup& group : menu.groups) {
        for (const MenuChoice& choice : group.choices) {
            out.push_back(choice.title);
        }
    }
    return out;
}

const MenuChoice& choice(const MenuControl& menu, const std::string& title) {
    for (const MenuGroup& group : menu.groups) {
        for (const MenuChoice& found : group.choices) {
            if (found.title == title) {
                return found;
            }
        }
    }
    ADD_FAILURE() << "no choice " << title;
    static const MenuChoice none;
    return none;
}

TEST(SettingsPages, SevenTabsInOrderEachWithItsPage) {
    const auto& tabs = SettingsPages::tabs();
    std::vector<std::string> titles;
    for (const auto& tab : tabs) {
        titles.push_back(tab.title);
        EXPECT_EQ(&SettingsPages::tab(tab.tab), &tab);
    }
    EXPECT_EQ(titles, (std::vector<std::string>{"Stage", "Cues", "Backdrop", "Menu Bar", "Switches",
                                                "Quiet", "Run Sheets"}));
    EXPECT_EQ(tabs[3].symbol, "menubar.rectangle");
    EXPECT_EQ(tabs[6].symbol, "list.bullet.clipboard");

    InterfaceRig rig;
    for (const auto& tab : tabs) {
        EXPECT_EQ(SettingsPages::page(tab.tab, *rig.store).tab, tab.tab);
    }
    EXPECT_EQ(SettingsPages::windowWidth, 660);
    EXPECT_EQ(SettingsPages::windowHeight, 660);
}

TEST(SettingsPages, TheStagePageBindsEveryRowToItsField) {
    StageSettings settings;
    settings.plan.resolution = ResolutionPreset{1440, 900};
    InterfaceRig rig(settings);
    SettingsPageModel page = SettingsPages::stage(*rig.store);
    EXPECT_EQ(page.title, "The stage");
    EXPECT_EQ(sectionTitles(page),
              (std::vector<std::string>{"Clear the stage", "Always keep visible", "Quiet please",
                                        "Timing and picture", "Scrimlet"}));
    const SettingsSection& clear = *page.section("Clear the stage");
    const auto rows = rowsOf(clear);
    ASSERT_EQ(rows.size(), 6u);
    EXPECT_EQ(rows[2]->title, "Backdrop behind the front window");
    EXPECT_EQ(rows[2]->detail, "Mesh · Footlights") << "the style's summary";
    EXPECT_EQ(rows[0]->symbol, "menubar.dock.rectangle");
    EXPECT_TRUE(rows.back()->last);
    EXPECT_FALSE(rows.front()->last);

    // Every plan row writes its own flag, and nothing else, through the store: to disk.
    const std::vector<std::pair<std::string, bool StagePlan::*>> flags = {
        {"Hide desktop icons", &StagePlan::hideDesktopIcons},
        {"Hide other apps", &StagePlan::hideOtherApps},
        {"Backdrop behind the front window", &StagePlan::backdrop},
        {"Hide the Dock", &StagePlan::hideDock},
        {"Tidy the menu bar", &StagePlan::tidyMenuBar},
        {"Dark Mode", &StagePlan::darkMode},
        {"Do Not Disturb", &StagePlan::doNotDisturb},
        {"Mute alert sounds", &StagePlan::muteAlerts},
        {"Keep the Mac awake", &StagePlan::keepAwake},
    };
    for (const auto& [title, member] : flags) {
        const StagePlan before = rig.store->settings().plan;
        const ToggleControl& toggle = control<ToggleControl>(page, title);
        EXPECT_EQ(toggle.on, before.*member) << title;
        EXPECT_EQ(toggle.label, title);
        EXPECT_EQ(toggle.field.rfind("plan.", 0), 0u) << toggle.field;
        toggle.set(*rig.store, !toggle.on);
        StagePlan expected = before;
        expected.*member = !toggle.on;
        EXPECT_EQ(rig.saved().plan, expected) << title;
    }

    page = SettingsPages::stage(*rig.store);
    const MenuControl& limit = control<MenuControl>(page, "Time limit");
    EXPECT_EQ(choiceTitles(limit), (std::vector<std::string>{"None", "15 min", "30 min", "45 min",
                                                             "1 h", "1 h 30 min", "2 h"}));
    EXPECT_EQ(limit.selected, 0u);
    choice(limit, "1 h 30 min").pick(*rig.store);
    EXPECT_EQ(rig.saved().timeLimitMinutes, 90);

    const MenuControl& resolution = control<MenuControl>(page, "Recording resolution");
    EXPECT_EQ(choiceTitles(resolution),
              (std::vector<std::string>{"Leave as is", "1280 × 720", "1440 × 900", "1920 × 1080",
                                        "2560 × 1440"}));
    EXPECT_EQ(resolution.selected, 2u);
    EXPECT_EQ(rowOf(page, "Recording resolution").symbol, "rectangle.dashed");
    choice(resolution, "Leave as is").pick(*rig.store);
    EXPECT_FALSE(rig.saved().plan.resolution);

    // A limit the menu doesn't offer stays, in its place, and chosen.
    StageSettings odd = rig.store->settings();
    odd.timeLimitMinutes = 20;
    rig.store->setSettings(odd);
    const MenuControl oddLimit =
        control<MenuControl>(SettingsPages::stage(*rig.store), "Time limit");
    EXPECT_EQ(choiceTitles(oddLimit)[2], "20 min");
    EXPECT_EQ(oddLimit.selected, 2u);

    control<ToggleControl>(page, "3·2·1 countdown").set(*rig.store, false);
    control<ToggleControl>(page, "Menu bar timer").set(*rig.store, false);
    EXPECT_FALSE(rig.saved().countdown);
    EXPECT_FALSE(rig.saved().showTimerInMenuBar);
}

TEST(SettingsPages, KeepVisibleAddsAndRemovesAppsAndFallsBackToItsEmptyRow) {
    InterfaceRig rig;
    SettingsPageModel page = SettingsPages::stage(*rig.store);
    auto rows = rowsOf(*page.section("Always keep visible"));
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0]->title, "No apps yet");
    EXPECT_EQ(rows[0]->detail, "Add apps you present from, like Keynote or a terminal.");
    const MenuControl add = std::get<MenuControl>(rows[0]->control);
    EXPECT_EQ(add.title, "Add");
    // The running ordinary apps by name, without this program.
    EXPECT_EQ(choiceTitles(add),
              (std::vector<std::string>{"Finder", "Keynote", "Mail", "Messages", "Notes — 📝 ideas",
                                        "Safari", "Slack", "Takeloom", "zoom.us"}));
    choice(add, "Keynote").pick(*rig.store);
    EXPECT_EQ(rig.saved().keepVisible, std::vector<std::string>{"com.apple.Keynote"});

    page = SettingsPages::stage(*rig.store);
    rows = rowsOf(*page.section("Always keep visible"));
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0]->title, "Keynote");
    const ButtonControl& remove = std::get<ButtonControl>(rows[0]->control);
    EXPECT_EQ(remove.button.symbol, "minus.circle");
    EXPECT_EQ(remove.button.ink, Theme::ink3);
    EXPECT_EQ(remove.button.accessibilityLabel, "Remove Keynote");
    EXPECT_EQ(rows[1]->title, "Add an app");
    EXPECT_EQ(choiceTitles(std::get<MenuControl>(rows[1]->control)).size(), 8u)
        << "Keynote is no longer offered";

    remove.press(*rig.store, rig.host);
    EXPECT_TRUE(rig.saved().keepVisible.empty());
    EXPECT_EQ(rowsOf(*SettingsPages::stage(*rig.store).section("Always keep visible"))[0]->title,
              "No apps yet");

    // With every app listed, the menu says so.
    rig.sys->apps = {rig.sys->apps.front()};
    StageSettings all = rig.store->settings();
    all.keepVisible = {rig.sys->apps.front().bundleID};
    rig.store->setSettings(all);
    const SettingsPageModel listed = SettingsPages::stage(*rig.store);
    const auto full = rowsOf(*listed.section("Always keep visible"));
    const MenuControl none = std::get<MenuControl>(full.back()->control);
    EXPECT_TRUE(none.groups.empty());
    EXPECT_EQ(none.emptyText, "No other apps are open");
}

TEST(SettingsPages, TheLoginItemErrorStandsUnderItsRow) {
    InterfaceRig rig;
    rig.platform->fromAppBundle = false;
    const ToggleControl login =
        control<ToggleControl>(SettingsPages::stage(*rig.store), "Open at login");
    login.set(*rig.store, true);
    const SettingsPageModel after = SettingsPages::stage(*rig.store);
    const SettingRow& row = rowOf(after, "Open at login");
    EXPECT_EQ(row.detail, "Available in the installed app.");
    EXPECT_EQ(row.detailColor, Theme::velvet);
    EXPECT_TRUE(std::get<ToggleControl>(row.control).on) << "the setting stays as set";
}

TEST(SettingsPages, TheCuesPageSaysWhatItWatchesAndHowToCueByHand) {
    InterfaceRig rig;
    SettingsPageModel page = SettingsPages::cues(*rig.store);
    EXPECT_EQ(
        sectionTitles(page),
        (std::vector<std::string>{"Automatic", "Start when these apps are open",
                                  "What Scrimlet can't see", "By hand", "Shortcuts and links"}));
    const auto automatic = rowsOf(*page.section("Automatic"));
    std::vector<std::string> labels;
    std::vector<std::string> fields;
    for (const SettingRow* row : automatic) {
        labels.push_back(std::get<ToggleControl>(row->control).label);
        fields.push_back(std::get<ToggleControl>(row->control).field);
    }
    EXPECT_EQ(labels, (std::vector<std::string>{"Automatic start", "Calls", "Browsers",
                                                "System recording", "Takeloom", "Calls count"}));
    EXPECT_EQ(fields, (std::vector<std::string>{
                          "autoStart", "detection.watchCalls", "detection.watchBrowsers",
                          "detection.watchSystemRecording", "detection.watchTakeloom",
                          "detection.treatCallsAsSharing"}));
    EXPECT_EQ(automatic[0]->detail, "Right now: nothing is being shared.");
    EXPECT_EQ(automatic[2]->detail, "Chrome, Edge, Brave, Arc, Vivaldi, Opera, Firefox (their "
                                    "“sharing your screen” bar)");
    EXPECT_FALSE(automatic[3]->symbol);
    EXPECT_FALSE(std::get<ToggleControl>(automatic[5]->control).on) << "a call isn't a share";

    rig.zoomShare();
    EXPECT_EQ(SettingsPages::cues(*rig.store).section("Automatic")->items.size(), 6u);
    const auto detecting = [&] {
        const SettingsPageModel now = SettingsPages::cues(*rig.store);
        return *rowOf(now, "Start when sharing or recording begins").detail;
    };
    EXPECT_EQ(detecting(), "Right now: Zoom is sharing your screen.");
    std::get<ToggleControl>(automatic[0]->control).set(*rig.store, false);
    EXPECT_EQ(detecting(), "Off — start shows by hand.");

    std::get<ToggleControl>(automatic[1]->control).set(*rig.store, false);
    EXPECT_FALSE(rig.saved().detection.watchCalls);
    EXPECT_FALSE(rig.store->watcher().options.watchCalls) << "the watcher follows at once";

    const SettingsSection& unseen = *page.section("What Scrimlet can't see");
    const auto& lines = std::get<TextBlock>(unseen.items[0]);
    EXPECT_EQ(lines.symbol, "eye.trianglebadge.exclamationmark");
    ASSERT_EQ(lines.lines.size(), 4u);
    EXPECT_EQ(lines.lines[2].text, "AirPlay mirroring");
    EXPECT_EQ(lines.lines[2].color, Theme::ink2);

    const HotkeyControl& hotkey = control<HotkeyControl>(page, "Hotkey");
    EXPECT_EQ(hotkey.hotkey, Hotkey::defaultStage());
    EXPECT_EQ(hotkey.field, "stageHotkey");
    hotkey.set(*rig.store, std::nullopt);
    EXPECT_FALSE(rig.saved().stageHotkey);
    EXPECT_TRUE(
        std::holds_alternative<std::monostate>(rowOf(page, "⌥-click the menu bar icon").control));

    const SettingsSection& links = *page.section("Shortcuts and links");
    const auto linkRows = rowsOf(links);
    ASSERT_EQ(linkRows.size(), 5u);
    EXPECT_EQ(linkRows[4]->title, "scrimlet://switch/darkMode/on");
    EXPECT_TRUE(linkRows[4]->monospaced);
    const ButtonControl& copy = std::get<ButtonControl>(linkRows[0]->control);
    EXPECT_EQ(copy.button.title, "Copy");
    copy.press(*rig.store, rig.host);
    EXPECT_EQ(rig.host.calls.back(), "copy scrimlet://start");
}

TEST(SettingsPages, StartWhenOpenOffersRecordersAndRunningApps) {
    InterfaceRig rig;
    auto section = *SettingsPages::cues(*rig.store).section("Start when these apps are open");
    auto rows = rowsOf(section);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0]->title, "Add ");
    const MenuControl menu = std::get<MenuControl>(rows[0]->control);
    ASSERT_EQ(menu.groups.size(), 2u);
    EXPECT_EQ(menu.groups[0].title, "Recorders");
    EXPECT_EQ(menu.groups[0].choices.size(), KnownApps::recorders().size());
    EXPECT_EQ(menu.groups[1].title, "Open now");
    choice(menu, "Messages").pick(*rig.store);
    EXPECT_EQ(rig.saved().detection.startWhenOpen, std::vector<std::string>{"com.apple.MobileSMS"});
    EXPECT_EQ(rig.store->watcher().options.startWhenOpen,
              std::vector<std::string>{"com.apple.MobileSMS"});

    section = *SettingsPages::cues(*rig.store).section("Start when these apps are open");
    rows = rowsOf(section);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0]->title, "Messages");
    EXPECT_EQ(rows[1]->title, "Add another");
    std::get<ButtonControl>(rows[0]->control).press(*rig.store, rig.host);
    EXPECT_TRUE(rig.saved().detection.startWhenOpen.empty());
}

TEST(SettingsPages, TheBackdropPageShowsWhatEachKindUses) {
    InterfaceRig rig;
    SettingsPageModel page = SettingsPages::backdrop(*rig.store);
    ASSERT_GE(page.blocks.size(), 3u);
    const auto& preview = std::get<BackdropPreviewBlock>(page.blocks[0]);
    EXPECT_EQ(preview.accessibilityLabel, "Backdrop preview: Mesh · Footlights");
    const KindPicker picker = std::get<KindPicker>(page.blocks[1]);
    ASSERT_EQ(picker.segments.size(), 5u);
    EXPECT_EQ(picker.segments[picker.selected].kind, BackdropStyle::Kind::mesh);
    EXPECT_EQ(sectionTitles(page), (std::vector<std::string>{"Palette", "Try it"}));
    const auto& grid = std::get<PaletteGrid>(page.section("Palette")->items[0]);
    ASSERT_EQ(grid.swatches.size(), BackdropStyle::palettes().size());
    EXPECT_TRUE(grid.swatches[0].chosen);
    EXPECT_EQ(grid.swatches[1].accessibilityLabel, "Palette Velvet");
    grid.swatches[1].choose(*rig.store);
    EXPECT_EQ(rig.saved().backdropStyle.colors, BackdropStyle::palettes()[1].colors);

    const auto sectionsFor = [&](BackdropStyle::Kind kind) {
        picker.choose(*rig.store,
                      static_cast<size_t>(std::find(backdrop_kind::allCases.begin(),
                                                    backdrop_kind::allCases.end(), kind) -
                                          backdrop_kind::allCases.begin()));
        EXPECT_EQ(rig.saved().backdropStyle.kind, kind);
        return SettingsPages::backdrop(*rig.store);
    };
    page = sectionsFor(BackdropStyle::Kind::gradient);
    EXPECT_EQ(sectionTitles(page), (std::vector<std::string>{"Palette", "Colours", "Try it"}));
    const SliderControl& angle = control<SliderControl>(page, "Angle");
    EXPECT_EQ(angle.minimum, 0);
    EXPECT_EQ(angle.maximum, 360);
    angle.set(*rig.store, 400);
    EXPECT_EQ(rig.saved().backdropStyle.angle, 360) << "held to the slider's range";
    EXPECT_EQ(rowsOf(*page.section("Colours")).size(), 2u);

    page = sectionsFor(BackdropStyle::Kind::color);
    EXPECT_EQ(sectionTitles(page), (std::vector<std::string>{"Colour", "Try it"}));
    StageSettings bare = rig.store->settings();
    bare.backdropStyle.colors.clear();
    rig.store->setSettings(bare);
    const ColorWellControl well =
        control<ColorWellControl>(SettingsPages::backdrop(*rig.store), "Colour");
    EXPECT_EQ(well.color, 0x15100Du) << "an empty list paints with the dark canvas";
    well.set(*rig.store, 0xFF336699);
    EXPECT_EQ(rig.saved().backdropStyle.colors, std::vector<std::uint32_t>{0x336699});

    page = sectionsFor(BackdropStyle::Kind::picture);
    EXPECT_EQ(sectionTitles(page), (std::vector<std::string>{"Picture", "Try it"}));
    const SettingRow& none = rowOf(page, "No picture chosen");
    EXPECT_EQ(none.detail, "Until you choose one, the mesh is used.");
    rig.host.chosenImage = "/Users/me/Pictures/beach.jpg";
    std::get<ButtonControl>(none.control).press(*rig.store, rig.host);
    EXPECT_EQ(rig.saved().backdropStyle.picturePath, "/Users/me/Pictures/beach.jpg");
    page = SettingsPages::backdrop(*rig.store);
    EXPECT_EQ(rowsOf(*page.section("Picture"))[0]->title, "beach.jpg");
    const SliderControl& dim = control<SliderControl>(page, "Darken");
    EXPECT_EQ(dim.maximum, 0.6);
    dim.set(*rig.store, 0);
    EXPECT_EQ(rig.saved().backdropStyle.dim, 0) << "the lowest end is reachable";

    page = sectionsFor(BackdropStyle::Kind::wallpaper);
    EXPECT_EQ(sectionTitles(page), (std::vector<std::string>{"Wallpaper", "Try it"}));
    control<SliderControl>(page, "Blur").set(*rig.store, 0);
    EXPECT_EQ(rig.saved().backdropStyle.blur, 0);
    EXPECT_EQ(control<SliderControl>(page, "Blur").maximum, 80);

    const ToggleControl& now = control<ToggleControl>(page, "Show the backdrop now");
    EXPECT_EQ(rowOf(page, "Show the backdrop now").detail, "The same as the Backdrop switch.");
    now.set(*rig.store, true);
    EXPECT_TRUE(rig.store->board().isOn(SwitchKind::backdrop));
    EXPECT_TRUE(
        control<ToggleControl>(SettingsPages::backdrop(*rig.store), "Show the backdrop now").on);
}

TEST(SettingsPages, TheMenuBarPageNeedsTheDividerForTheTidy) {
    InterfaceRig rig;
    SettingsPageModel page = SettingsPages::menuBar(*rig.store);
    EXPECT_EQ(sectionTitles(page),
              (std::vector<std::string>{"Divider", "Set it up once", "Good to know"}));
    const auto& diagram = std::get<MenuBarDiagramModel>(page.section("Divider")->items[0]);
    EXPECT_EQ(diagram.accessibilityLabel,
              "Diagram: icons to the left of the divider are hidden during a show");
    EXPECT_EQ(diagram.hiddenCaption, "hidden during a show ↑");
    ASSERT_EQ(diagram.hidden.size(), 3u);
    EXPECT_EQ(diagram.hidden[1].symbol, "bubble.left");
    EXPECT_EQ(diagram.divider.symbol, "chevron.compact.left");
    EXPECT_EQ(diagram.divider.color, Theme::light);
    EXPECT_TRUE(diagram.shown[0].glyph);
    EXPECT_EQ(diagram.shown[3].text, "Wed 15:42");

    EXPECT_FALSE(control<ToggleControl>(page, "Tidy during shows").enabled);
    EXPECT_EQ(rowOf(page, "Show the divider").detail, "Needed for “Tidy the menu bar”.");
    control<ToggleControl>(page, "Show the divider").set(*rig.store, true);
    EXPECT_TRUE(rig.saved().menuBarDivider);
    EXPECT_EQ(rig.platform->calls.back(), "updateStatusItem");
    page = SettingsPages::menuBar(*rig.store);
    const ToggleControl& tidy = control<ToggleControl>(page, "Tidy during shows");
    EXPECT_TRUE(tidy.enabled);
    EXPECT_EQ(tidy.field, "plan.tidyMenuBar");
    tidy.set(*rig.store, true);
    EXPECT_TRUE(rig.saved().plan.tidyMenuBar);
    const auto& steps = std::get<StepsBlock>(page.section("Set it up once")->items[0]);
    ASSERT_EQ(steps.steps.size(), 3u);
    EXPECT_EQ(steps.steps[1],
              "Hold ⌘ and drag the icons you'd rather not show to the left of the divider.");
}

TEST(SettingsPages, TheSwitchesPageEditsEachSwitchsPrefs) {
    InterfaceRig rig;
    SettingsPageModel page = SettingsPages::switches(*rig.store);
    EXPECT_TRUE(std::holds_alternative<SettingsSection>(page.blocks[0])) << "no problem, no banner";
    EXPECT_EQ(sectionTitles(page),
              (std::vector<std::string>{"Switches", "Pointer Spotlight", "Not included, on purpose",
                                        "Permissions, asked only when first used"}));
    const SettingsSection& list = *page.section("Switches");
    EXPECT_EQ(std::get<ColumnHeader>(list.items[0]).columns,
              (std::vector<std::string>{"Auto-off", "Hotkey", "Pin"}));
    std::vector<SwitchSettingsRow> rows;
    for (const SectionItem& item : list.items) {
        if (const auto* row = std::get_if<SwitchSettingsRow>(&item)) {
            rows.push_back(*row);
        }
    }
    ASSERT_EQ(rows.size(), 13u);
    EXPECT_TRUE(rows.back().last);
    EXPECT_FALSE(rows.back().autoOff) << "the screen saver is an action";
    const SwitchSettingsRow& lock = rows[11];
    EXPECT_EQ(lock.title, "Lock Keyboard");
    EXPECT_EQ(choiceTitles(*lock.autoOff),
              (std::vector<std::string>{"Stays on", "Off after 2 min", "Off after 5 min",
                                        "Off after 15 min", "Off after 30 min", "Off after 1 h",
                                        "Off after 2 h", "Off after 4 h"}))
        << "the lock's default two minutes stay on offer";
    EXPECT_EQ(lock.autoOff->selected, 1u);
    EXPECT_EQ(lock.pin.label, "Pin Lock Keyboard");
    EXPECT_EQ(lock.pin.help, "Pin to the dropdown");
    EXPECT_EQ(lock.pin.field, "switches.lockKeyboard.pinned");

    const SwitchSettingsRow& dark = rows[5];
    choice(*dark.autoOff, "Off after 15 min").pick(*rig.store);
    dark.pin.set(*rig.store, false);
    const Hotkey chord{2, Hotkey::control | Hotkey::option, "D"};
    dark.hotkey.set(*rig.store, chord);
    const SwitchPrefs saved = rig.saved().prefs(SwitchKind::darkMode);
    EXPECT_EQ(saved.autoOffMinutes, 15);
    EXPECT_FALSE(saved.pinned);
    EXPECT_EQ(saved.hotkey, chord);
    EXPECT_EQ(rig.platform->count("registerHotkeys 2"), 1u) << "the new hotkey is registered";

    const SliderControl& size = control<SliderControl>(page, "Size");
    EXPECT_EQ(size.value, 110);
    EXPECT_EQ(size.minimum, 60);
    EXPECT_EQ(size.maximum, 260);
    size.set(*rig.store, 260);
    control<SliderControl>(page, "Darkness").set(*rig.store, 0.1);
    EXPECT_EQ(rig.saved().spotlightRadius, 260);
    EXPECT_EQ(rig.saved().spotlightDim, 0.2);
}

TEST(SettingsPages, PermissionsAndHotkeyProblemsShowOnTheSwitchesPage) {
    InterfaceRig rig;
    rig.sys->availabilityOverrides = {
        {EffectKind::keyboardLock, Availability::needsPermission("Allow Accessibility")}};
    rig.store->refreshAvailability();
    rig.platform->taken = {1};
    rig.store->registerHotkeys();
    const SettingsPageModel page = SettingsPages::switches(*rig.store);
    const auto& banner = std::get<BannerModel>(page.blocks[0]);
    EXPECT_EQ(banner.text, *rig.store->hotkeyProblem());
    EXPECT_EQ(banner.tint, Theme::velvet);
    EXPECT_EQ(banner.fill, Theme::velvetSoft);

    const auto perms = rowsOf(*page.section("Permissions, asked only when first used"));
    ASSERT_EQ(perms.size(), 3u);
    EXPECT_EQ(perms[0]->title, "Hide Dock, Dark Mode");
    EXPECT_EQ(perms[0]->detail, "Automation › System Events");
    EXPECT_TRUE(std::get<StateMarkControl>(perms[0]->control).ready);
    const auto& lock = std::get<StateMarkControl>(perms[1]->control);
    EXPECT_FALSE(lock.ready);
    EXPECT_EQ(lock.tag->text, "Needs permission");
    EXPECT_EQ(lock.tag->tint, Theme::velvet);
    EXPECT_EQ(lock.tag->fill, Theme::velvetSoft);
    EXPECT_EQ(perms[2]->detail, "Two shortcuts you add once (Quiet)");
}

TEST(SettingsPages, TheQuietPageFollowsTheShortcutsAndTheirNames) {
    InterfaceRig rig;
    rig.sys->availabilityOverrides = {
        {EffectKind::doNotDisturb,
         Availability::needsSetup("Add the two Scrimlet shortcuts (Settings › Quiet)")}};
    rig.store->refreshAvailability();
    SettingsPageModel page = SettingsPages::quiet(*rig.store);
    EXPECT_EQ(page.title, "Quiet please");
    const SettingsSection& dnd = *page.section("Do Not Disturb");
    const auto status = [](const SettingsPageModel& p) {
        for (const SectionItem& item : p.section("Do Not Disturb")->items) {
            if (const auto* found = std::get_if<StatusBlock>(&item)) {
                return *found;
            }
        }
        return StatusBlock{};
    };
    EXPECT_EQ(status(page).title, "Not set up yet");
    EXPECT_EQ(status(page).detail, "Scrimlet will skip Do Not Disturb until both shortcuts exist.");
    EXPECT_EQ(status(page).symbolColor, Theme::velvet);

    const auto& buttons = std::get<ButtonsBlock>(dnd.items.back()).buttons;
    ASSERT_EQ(buttons.size(), 2u);
    EXPECT_EQ(buttons[0].button.title, "Open Shortcuts");
    buttons[0].press(*rig.store, rig.host);
    EXPECT_EQ(rig.host.calls.back(), "open /System/Applications/Shortcuts.app");

    rig.sys->availabilityOverrides.clear();
    EXPECT_EQ(buttons[1].button.title, "Check again");
    buttons[1].press(*rig.store, rig.host);
    EXPECT_EQ(rig.store->shortcutsChecked(), rig.store->now());
    EXPECT_EQ(rig.platform->count("refreshShortcuts"), 1u);
    page = SettingsPages::quiet(*rig.store);
    EXPECT_EQ(status(page).title, "Ready");
    EXPECT_EQ(status(page).symbol, "checkmark.seal.fill");
    EXPECT_EQ(status(page).detail, "Both shortcuts were found.");

    const TextFieldControl& on = control<TextFieldControl>(page, "Shortcut that turns it on");
    EXPECT_EQ(on.value, "Scrimlet Quiet On");
    on.set(*rig.store, "Focus On");
    EXPECT_EQ(rig.saved().focusOnShortcut, "Focus On");
    page = SettingsPages::quiet(*rig.store);
    const auto& steps = std::get<StepsBlock>(page.section("Make the two shortcuts")->items[0]);
    ASSERT_EQ(steps.steps.size(), 5u);
    EXPECT_EQ(steps.steps[0], "In Shortcuts, choose File › New Shortcut and name it “Focus On”.");
    EXPECT_EQ(steps.steps[3], "Make a second shortcut named “Scrimlet Quiet Off” with “Set "
                              "Focus” › Do Not Disturb › Turn Off.");
}

} // namespace
} // namespace scrimlet

namespace scrimlet {
namespace {

TEST(SettingsPages, APageIsDrawnAgainOnlyWhenWhatItShowsChanges) {
    testing::InterfaceRig rig;
    const auto described = [&](SettingsTab tab) {
        return SettingsPages::describe(SettingsPages::page(tab, *rig.store));
    };
    const std::string stage = described(SettingsTab::stage);
    rig.seconds(30);
    EXPECT_EQ(described(SettingsTab::stage), stage) << "the clock alone changes nothing here";

    StageSettings dark = rig.store->settings();
    dark.plan.darkMode = true;
    rig.store->setSettings(dark);
    EXPECT_NE(described(SettingsTab::stage), stage);

    const std::string switches = described(SettingsTab::switches);
    StageSettings bigger = rig.store->settings();
    bigger.spotlightRadius = 111;
    rig.store->setSettings(bigger);
    EXPECT_NE(described(SettingsTab::switches), switches) << "a slider's value shows";

    const std::string backdrop = described(SettingsTab::backdrop);
    StageSettings tinted = rig.store->settings();
    tinted.backdropStyle.colors[0] = 0x123456;
    rig.store->setSettings(tinted);
    EXPECT_NE(described(SettingsTab::backdrop), backdrop) << "the preview follows the colours";
}

} // namespace
} // namespace scrimlet
