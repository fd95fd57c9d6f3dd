#include "SettingsPagesParts.hpp"

namespace scrimlet::SettingsPages {

using namespace SettingsParts;

namespace {

TextFieldControl shortcutField(const StageSettings& settings, const char* name,
                               std::string StageSettings::*member, std::string label) {
    const SettingsField<std::string> field{
        name, [member](const StageSettings& s) { return s.*member; },
        [member](StageSettings& s, const std::string& value) { s.*member = value; }};
    return {field.read(settings), std::move(label), field.name,
            [field](StageStore& store, std::string value) { field.assign(store, value); }};
}

} // namespace

bool shortcutsReady(const StageStore& store) {
    // The store asks the system whether both named shortcuts exist whenever the names change
    // or the user asks for a recheck; this is the same rule, already answered.
    const auto& availability = store.availability();
    const auto found = availability.find(EffectKind::doNotDisturb);
    return found != availability.end() && found->second.isReady();
}

SettingsPageModel quiet(const StageStore& store) {
    const StageSettings& settings = store.settings();
    SettingsPageModel page;
    page.tab = SettingsTab::quiet;
    page.title = "Quiet please";
    page.subtitle = "Notifications popping up mid-share are the classic blooper. Scrimlet turns "
                    "on Do Not Disturb and mutes alert sounds for the show, then puts both back.";

    SettingsSection dnd;
    dnd.title = "Do Not Disturb";
    dnd.items.push_back(paragraphs({
        "macOS has no public way for an app to switch a Focus on or off, so Scrimlet runs two "
        "shortcuts that you make once. They run silently through the built-in shortcuts "
        "command; no permission is needed.",
    }));
    dnd.items.push_back(
        row("Shortcut that turns it on", std::nullopt, std::nullopt,
            shortcutField(settings, "focusOnShortcut", &StageSettings::focusOnShortcut,
                          "Shortcut that turns it on")));
    dnd.items.push_back(
        row("Shortcut that turns it off", std::nullopt, std::nullopt,
            shortcutField(settings, "focusOffShortcut", &StageSettings::focusOffShortcut,
                          "Shortcut that turns it off")));
    if (shortcutsReady(store)) {
        dnd.items.push_back(
            StatusBlock{"checkmark.seal.fill", Theme::sage, "Ready", "Both shortcuts were found."});
    } else {
        dnd.items.push_back(
            StatusBlock{"exclamationmark.triangle", Theme::velvet, "Not set up yet",
                        "Scrimlet will skip Do Not Disturb until both shortcuts exist."});
    }
    dnd.items.push_back(ButtonsBlock{{
        button("Open Shortcuts", UiAction::openApplication("/System/Applications/Shortcuts.app")),
        button("Check again", UiAction::of(UiAction::Kind::recheckShortcuts)),
    }});
    page.blocks.push_back(std::move(dnd));

    SettingsSection make;
    make.title = "Make the two shortcuts";
    make.items.push_back(StepsBlock{{
        "In Shortcuts, choose File › New Shortcut and name it “" + settings.focusOnShortcut + "”.",
        "Add the action “Set Focus”, pick Do Not Disturb, set it to Turn On, until Turned Off.",
        "Optional: before it, add “Get Current Focus”, and at the end “Stop and Output” with "
        "that Current Focus. Then if a Focus was already on, Scrimlet leaves it on afterwards.",
        "Make a second shortcut named “" + settings.focusOffShortcut +
            "” with “Set Focus” › Do Not Disturb › Turn Off.",
        "Come back here and click Check again.",
    }});
    page.blocks.push_back(std::move(make));

    SettingsSection know;
    know.title = "Good to know";
    know.items.push_back(paragraphs({
        "Because a Focus can't be read, Scrimlet can't tell if you switch Do Not Disturb off "
        "yourself mid-show; it turns it off at the end either way (unless step 3 said it was "
        "already on).",
        "Alert sounds are muted by setting the alert volume to zero — no permission needed — and "
        "put back to your level afterwards.",
        "Keep Awake here is simple: no sleep while the show is on. For timed sessions, task "
        "watching and closed-lid mode, see our app Wakewell.",
    }));
    page.blocks.push_back(std::move(know));

    for (PageBlock& block : page.blocks) {
        markLastRows(std::get<SettingsSection>(block));
    }
    return page;
}

} // namespace scrimlet::SettingsPages
