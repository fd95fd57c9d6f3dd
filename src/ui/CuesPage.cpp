#include "SettingsPagesParts.hpp"

namespace scrimlet::SettingsPages {

using namespace SettingsParts;

namespace {

std::string detectingText(const StageStore& store) {
    if (!store.settings().autoStart) {
        return "Off — start shows by hand.";
    }
    if (const auto& source = store.detecting()) {
        return "Right now: " + source->sentence() + ".";
    }
    return "Right now: nothing is being shared.";
}

SettingsSection startWhenOpenSection(const StageStore& store) {
    const auto field = startWhenOpenField();
    const auto& list = store.settings().detection.startWhenOpen;
    SettingsSection section;
    section.title = "Start when these apps are open";
    section.footer = "For recorders without recognisable controls (OBS, Loom, Screen Studio…). "
                     "The show runs for as long as the app is open.";
    for (const std::string& bundleID : list) {
        ButtonControl remove = editButton("Remove", removeFrom(field, bundleID));
        remove.button.accessibilityLabel = "Remove " + appName(store, bundleID);
        section.items.push_back(
            row(appName(store, bundleID), std::nullopt, std::nullopt, std::move(remove)));
    }

    MenuControl menu;
    menu.title = "Add";
    menu.label = "Add";
    menu.field = field.name;
    MenuGroup recorders{"Recorders", {}};
    for (const auto& [bundleID, name] : KnownApps::recorders()) {
        if (std::find(list.begin(), list.end(), bundleID) == list.end()) {
            recorders.choices.push_back({name, std::nullopt, true, addTo(field, bundleID)});
        }
    }
    std::sort(recorders.choices.begin(), recorders.choices.end(),
              [](const MenuChoice& a, const MenuChoice& b) {
                  return CueSheet::plainNameOrder(a.title, b.title) < 0;
              });
    MenuGroup open{"Open now", {}};
    for (const AppInfo& app : otherRunningApps(store, list)) {
        open.choices.push_back({app.name, std::nullopt, true, addTo(field, app.bundleID)});
    }
    for (MenuGroup* group : {&recorders, &open}) {
        if (!group->choices.empty()) {
            menu.groups.push_back(std::move(*group));
        }
    }
    if (menu.groups.empty()) {
        menu.emptyText = "No other apps are open";
    }
    section.items.push_back(
        row(list.empty() ? "Add " : "Add another", std::nullopt, std::nullopt, std::move(menu)));
    return section;
}

} // namespace

SettingsPageModel cues(const StageStore& store) {
    const StageSettings& settings = store.settings();
    SettingsPageModel page;
    page.tab = SettingsTab::cues;
    page.title = "Cues";
    page.subtitle = "How a show starts. Scrimlet watches the window list for the signs that "
                    "sharing and recording leave on screen — it needs no Screen Recording "
                    "permission and never looks at what's on your screen.";

    SettingsSection automatic;
    automatic.title = "Automatic";
    automatic.items = {
        row("Start when sharing or recording begins", detectingText(store),
            "dot.radiowaves.left.and.right",
            toggle(flag("autoStart", &StageSettings::autoStart), settings, "Automatic start")),
        row("Calls sharing a screen",
            "Zoom, Teams, Webex, Slack, Discord… (the frame they draw around a shared screen)",
            "video",
            toggle(detectionFlag("watchCalls", &DetectionOptions::watchCalls), settings, "Calls")),
        row("Browsers sharing a tab or screen",
            "Chrome, Edge, Brave, Arc, Vivaldi, Opera, Firefox (their “sharing your screen” bar)",
            "globe",
            toggle(detectionFlag("watchBrowsers", &DetectionOptions::watchBrowsers), settings,
                   "Browsers")),
        row("macOS screen recording", "⌘⇧5 and QuickTime Player. Screenshots never count.",
            std::nullopt,
            toggle(detectionFlag("watchSystemRecording", &DetectionOptions::watchSystemRecording),
                   settings, "System recording")),
        row("Takeloom",
            "Sets the stage as soon as Takeloom's capture bar appears, before the first frame.",
            "film",
            toggle(detectionFlag("watchTakeloom", &DetectionOptions::watchTakeloom), settings,
                   "Takeloom")),
        row("Also when I'm on a call",
            "A call app running while the microphone or camera is in use. Off by default: a call "
            "isn't a share.",
            std::nullopt,
            toggle(detectionFlag("treatCallsAsSharing", &DetectionOptions::treatCallsAsSharing),
                   settings, "Calls count")),
    };
    page.blocks.push_back(std::move(automatic));

    page.blocks.push_back(startWhenOpenSection(store));

    SettingsSection unseen;
    unseen.title = "What Scrimlet can't see";
    unseen.footer = "For these, start the show by hand — it stays on until you bring it down.";
    TextBlock list = paragraphs({
        "Safari and other WebKit browsers (they show no sharing bar of their own)",
        "FaceTime and SharePlay screen sharing, and the macOS Screen Sharing app",
        "AirPlay mirroring",
        "Recorders that show nothing on screen while they record (add them above)",
    });
    list.symbol = "eye.trianglebadge.exclamationmark";
    list.symbolColor = Theme::ink3;
    unseen.items.push_back(std::move(list));
    page.blocks.push_back(std::move(unseen));

    SettingsSection byHand;
    byHand.title = "By hand";
    const SettingsField<std::optional<Hotkey>> hotkeyField{
        "stageHotkey", [](const StageSettings& s) { return s.stageHotkey; },
        [](StageSettings& s, const std::optional<Hotkey>& hotkey) { s.stageHotkey = hotkey; }};
    HotkeyControl hotkey{settings.stageHotkey, hotkeyField.name,
                         [hotkeyField](StageStore& target, std::optional<Hotkey> value) {
                             hotkeyField.assign(target, value);
                         }};
    byHand.items = {
        row("Hotkey", "Starts or stops the show from any app.", std::nullopt, std::move(hotkey)),
        row("⌥-click the menu bar icon", "Starts or stops without opening the dropdown.",
            "cursorarrow.click"),
    };
    page.blocks.push_back(std::move(byHand));

    SettingsSection links;
    links.title = "Shortcuts and links";
    links.lead = "Add an “Open URLs” action in Shortcuts, or use open in Terminal.";
    for (const char* link : {"scrimlet://start", "scrimlet://stop", "scrimlet://toggle",
                             "scrimlet://extend", "scrimlet://switch/darkMode/on"}) {
        ButtonControl copy = button("Copy", UiAction::copy(link));
        copy.button.accessibilityLabel = std::string("Copy ") + link;
        SettingRow line = row(link, std::nullopt, std::nullopt, std::move(copy));
        line.monospaced = true;
        links.items.push_back(std::move(line));
    }
    links.footer = "Other apps can cue it too: post the distributed notification "
                   "“app.vantrel.scrimlet.cue” with “start”, “stop” or “toggle”. A Shortcuts "
                   "action of its own (App Intents) needs a build step that isn't part of this "
                   "release, so links are the way in for now.";
    page.blocks.push_back(std::move(links));

    for (PageBlock& block : page.blocks) {
        markLastRows(std::get<SettingsSection>(block));
    }
    return page;
}

} // namespace scrimlet::SettingsPages
