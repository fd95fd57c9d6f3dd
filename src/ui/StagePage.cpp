#include "SettingsPagesParts.hpp"

#include "Fmt.hpp"

namespace scrimlet::SettingsPages {

using namespace SettingsParts;

namespace {

SettingRow planRow(const StageSettings& settings, const char* title, std::string detail,
                   const char* symbol, const char* field, bool StagePlan::*member) {
    return row(title, std::move(detail), symbol, toggle(planFlag(field, member), settings, title));
}

MenuControl addAppMenu(const StageStore& store) {
    const auto field = keepVisibleField();
    MenuControl menu;
    menu.title = "Add";
    menu.label = "Add";
    menu.field = field.name;
    MenuGroup group;
    for (const AppInfo& app : otherRunningApps(store, store.settings().keepVisible)) {
        group.choices.push_back({app.name, std::nullopt, true, addTo(field, app.bundleID)});
    }
    if (group.choices.empty()) {
        menu.emptyText = "No other apps are open";
    } else {
        menu.groups.push_back(std::move(group));
    }
    return menu;
}

SettingsSection keepVisibleSection(const StageStore& store) {
    SettingsSection section;
    section.title = "Always keep visible";
    section.footer = "The app in front when the show starts, the app that's sharing, recorders "
                     "such as Takeloom, and Scrimlet itself are always kept.";
    const auto& list = store.settings().keepVisible;
    if (list.empty()) {
        section.items.push_back(row("No apps yet",
                                    "Add apps you present from, like Keynote or a terminal.",
                                    std::nullopt, addAppMenu(store)));
        return section;
    }
    const auto field = keepVisibleField();
    for (const std::string& bundleID : list) {
        const std::string name = appName(store, bundleID);
        ButtonControl remove = editButton("", removeFrom(field, bundleID));
        remove.button.symbol = "minus.circle";
        remove.button.style = ButtonModel::Style::plain;
        remove.button.ink = Theme::ink3;
        remove.button.accessibilityLabel = "Remove " + name;
        section.items.push_back(row(name, std::nullopt, std::nullopt, std::move(remove)));
    }
    section.items.push_back(row("Add an app", std::nullopt, std::nullopt, addAppMenu(store)));
    return section;
}

MenuControl resolutionMenu(const StageSettings& settings) {
    const auto current = settings.plan.resolution;
    std::vector<ResolutionPreset> presets = ResolutionPreset::common();
    if (current && std::find(presets.begin(), presets.end(), *current) == presets.end()) {
        presets.insert(std::upper_bound(presets.begin(), presets.end(), *current), *current);
    }
    const SettingsField<std::optional<ResolutionPreset>> field{
        "plan.resolution", [](const StageSettings& s) { return s.plan.resolution; },
        [](StageSettings& s, const std::optional<ResolutionPreset>& value) {
            s.plan.resolution = value;
        }};
    const auto choose = [field](std::optional<ResolutionPreset> value) {
        return [field, value](StageStore& store) { field.assign(store, value); };
    };
    MenuControl menu;
    menu.label = "Recording resolution";
    menu.field = field.name;
    MenuGroup group;
    group.choices.push_back({"Leave as is", std::nullopt, true, choose(std::nullopt)});
    menu.selected = 0;
    for (const ResolutionPreset& preset : presets) {
        if (current == preset) {
            menu.selected = group.choices.size();
        }
        group.choices.push_back({preset.label(), std::nullopt, true, choose(preset)});
    }
    menu.groups.push_back(std::move(group));
    return menu;
}

} // namespace

SettingsPageModel stage(const StageStore& store) {
    const StageSettings& settings = store.settings();
    SettingsPageModel page;
    page.tab = SettingsTab::stage;
    page.title = "The stage";
    page.subtitle = "What Scrimlet does when a show starts. Every change is written to a journal "
                    "before it's made and undone in reverse when the show ends — anything you "
                    "change back yourself in the meantime is left alone.";

    SettingsSection clear;
    clear.title = "Clear the stage";
    clear.items = {
        planRow(settings, "Hide desktop icons",
                "Covers them with your wallpaper. Finder isn't touched.", "menubar.dock.rectangle",
                "hideDesktopIcons", &StagePlan::hideDesktopIcons),
        planRow(settings, "Hide other apps",
                "Keeps the app in front, the one sharing, recorders and your list below.",
                "eye.slash", "hideOtherApps", &StagePlan::hideOtherApps),
        planRow(settings, "Backdrop behind the front window", settings.backdropStyle.summary(),
                "rectangle.inset.filled", "backdrop", &StagePlan::backdrop),
        planRow(settings, "Hide the Dock", "Turns on Dock hiding through System Events.",
                "dock.rectangle", "hideDock", &StagePlan::hideDock),
        planRow(settings, "Tidy the menu bar", "Hides the icons left of Scrimlet's divider.",
                "menubar.rectangle", "tidyMenuBar", &StagePlan::tidyMenuBar),
        planRow(settings, "Dark Mode", "Switches the Mac to Dark Mode for the show.",
                "circle.lefthalf.filled", "darkMode", &StagePlan::darkMode),
    };
    page.blocks.push_back(std::move(clear));

    page.blocks.push_back(keepVisibleSection(store));

    SettingsSection quiet;
    quiet.title = "Quiet please";
    quiet.items = {
        planRow(settings, "Do Not Disturb", "Runs your two Scrimlet shortcuts (see Quiet).",
                "moon.fill", "doNotDisturb", &StagePlan::doNotDisturb),
        planRow(settings, "Mute alert sounds", "Sets the alert volume to zero.", "bell.slash.fill",
                "muteAlerts", &StagePlan::muteAlerts),
        planRow(settings, "Keep the Mac awake", "No screen dimming or sleep mid-show.",
                "cup.and.saucer.fill", "keepAwake", &StagePlan::keepAwake),
    };
    page.blocks.push_back(std::move(quiet));

    SettingsSection timing;
    timing.title = "Timing and picture";
    timing.footer = "The resolution is applied for Scrimlet's lifetime only: if it quits, macOS "
                    "puts your usual resolution back by itself.";
    const SettingsField<std::optional<std::int64_t>> limit{
        "timeLimitMinutes", [](const StageSettings& s) { return s.timeLimitMinutes; },
        [](StageSettings& s, const std::optional<std::int64_t>& value) {
            s.timeLimitMinutes = value;
        }};
    timing.items = {
        row("Time limit", "Ends the show after this long. +15 min from the dropdown.", std::nullopt,
            minutesMenu(limit, settings, "None", {15, 30, 45, 60, 90, 120}, Fmt::minutes,
                        "Time limit")),
        row("Recording resolution", "Switches the main display for the show.", "rectangle.dashed",
            resolutionMenu(settings)),
        row("3·2·1 countdown", "Before a show you start by hand. Automatic shows start at once.",
            std::nullopt,
            toggle(flag("countdown", &StageSettings::countdown), settings, "3·2·1 countdown")),
        row("Menu bar timer", "Red dot and timer in the menu bar", std::nullopt,
            toggle(flag("showTimerInMenuBar", &StageSettings::showTimerInMenuBar), settings,
                   "Menu bar timer")),
    };
    page.blocks.push_back(std::move(timing));

    SettingsSection scrimlet;
    scrimlet.title = "Scrimlet";
    SettingRow login = row(
        "Open at login", store.loginItemError(), std::nullopt,
        toggle(flag("launchAtLogin", &StageSettings::launchAtLogin), settings, "Open at login"));
    if (store.loginItemError()) {
        login.detailColor = Theme::velvet;
    }
    scrimlet.items.push_back(std::move(login));
    page.blocks.push_back(std::move(scrimlet));

    for (PageBlock& block : page.blocks) {
        markLastRows(std::get<SettingsSection>(block));
    }
    return page;
}

} // namespace scrimlet::SettingsPages
