#include "SettingsPagesParts.hpp"

#include "Dropdown.hpp"
#include "Fmt.hpp"

namespace scrimlet::SettingsPages {

using namespace SettingsParts;

namespace {

/// A field of one switch's prefs.
template <class T>
SettingsField<T> prefsField(SwitchKind kind, const char* name, T SwitchPrefs::*member) {
    return {"switches." + std::string(rawValue(kind)) + "." + name,
            [kind, member](const StageSettings& s) { return s.prefs(kind).*member; },
            [kind, member](StageSettings& s, const T& value) {
                SwitchPrefs prefs = s.prefs(kind);
                prefs.*member = value;
                s.setPrefs(kind, prefs);
            }};
}

SwitchSettingsRow switchRow(const StageSettings& settings, SwitchKind kind) {
    SwitchSettingsRow out;
    out.kind = kind;
    out.symbol = std::string(symbol(kind));
    out.title = std::string(title(kind));
    out.note = std::string(note(kind));
    if (!isAction(kind)) {
        out.autoOff = minutesMenu(
            prefsField(kind, "autoOffMinutes", &SwitchPrefs::autoOffMinutes), settings, "Stays on",
            {5, 15, 30, 60, 120, 240},
            [](std::int64_t minutes) { return "Off after " + Fmt::minutes(minutes); },
            "Auto-off for " + out.title);
    }
    const auto hotkey = prefsField(kind, "hotkey", &SwitchPrefs::hotkey);
    out.hotkey = HotkeyControl{
        hotkey.read(settings), hotkey.name,
        [hotkey](StageStore& store, std::optional<Hotkey> value) { hotkey.assign(store, value); }};
    out.pin =
        toggle(prefsField(kind, "pinned", &SwitchPrefs::pinned), settings, "Pin " + out.title);
    out.pin.help = "Pin to the dropdown";
    return out;
}

SettingRow permissionRow(const StageStore& store, const char* title, const char* detail,
                         EffectKind kind) {
    StateMarkControl mark;
    const auto& availability = store.availability();
    const auto found = availability.find(kind);
    mark.ready = found != availability.end() && found->second.isReady();
    if (mark.ready) {
        mark.accessibilityLabel = "Ready";
    } else {
        const std::string text = found == availability.end()
                                     ? "Not checked yet"
                                     : Dropdown::shortNote(found->second.note().value_or(""));
        mark.tag = TagModel{text, std::nullopt, Theme::velvet, Theme::velvetSoft,
                            found == availability.end() ? std::nullopt : found->second.note()};
        mark.accessibilityLabel = text;
    }
    return row(title, detail, std::nullopt, std::move(mark));
}

} // namespace

SettingsPageModel switches(const StageStore& store) {
    const StageSettings& settings = store.settings();
    SettingsPageModel page;
    page.tab = SettingsTab::switches;
    page.title = "Switches";
    page.subtitle = "One-click toggles in the dropdown. Pinned ones show on the front; the rest "
                    "are under Show all. Each can turn itself off after a while and have its own "
                    "hotkey.";
    if (const auto& problem = store.hotkeyProblem()) {
        page.blocks.push_back(BannerModel{"keyboard", *problem, Theme::velvet, Theme::velvetSoft,
                                          std::nullopt, UiAction::none(), std::nullopt});
    }

    SettingsSection list;
    list.title = "Switches";
    list.items.push_back(ColumnHeader{{"Auto-off", "Hotkey", "Pin"}});
    for (const SwitchKind kind : switch_kind::allCases) {
        list.items.push_back(switchRow(settings, kind));
    }
    page.blocks.push_back(std::move(list));

    const auto number = [](const char* name, double StageSettings::*member) {
        return SettingsField<double>{
            name, [member](const StageSettings& s) { return s.*member; },
            [member](StageSettings& s, const double& value) { s.*member = value; }};
    };
    SettingsSection spotlight;
    spotlight.title = "Pointer Spotlight";
    spotlight.items = {
        row("Size", std::nullopt, std::nullopt,
            slider(number("spotlightRadius", &StageSettings::spotlightRadius), settings, 60, 260,
                   "Size")),
        row("Darkness", std::nullopt, "circle.lefthalf.filled",
            slider(number("spotlightDim", &StageSettings::spotlightDim), settings, 0.2, 0.85,
                   "Darkness")),
    };
    page.blocks.push_back(std::move(spotlight));

    SettingsSection left;
    left.title = "Not included, on purpose";
    left.items.push_back(paragraphs({
        "Night Shift and True Tone have no public API on macOS — only a private framework "
        "controls them, and private frameworks can break with any update or reach into things "
        "they shouldn't. Scrimlet leaves them out rather than use one.",
    }));
    page.blocks.push_back(std::move(left));

    SettingsSection permissions;
    permissions.title = "Permissions, asked only when first used";
    permissions.items = {
        permissionRow(store, "Hide Dock, Dark Mode", "Automation › System Events",
                      EffectKind::dockAutohide),
        permissionRow(store, "Lock Keyboard", "Accessibility", EffectKind::keyboardLock),
        permissionRow(store, "Do Not Disturb", "Two shortcuts you add once (Quiet)",
                      EffectKind::doNotDisturb),
    };
    permissions.footer = "Everything else — hiding apps and icons, the backdrop, the spotlight, "
                         "alert sounds, the microphone, keeping awake — needs no permission.";
    page.blocks.push_back(std::move(permissions));

    for (PageBlock& block : page.blocks) {
        if (auto* section = std::get_if<SettingsSection>(&block)) {
            markLastRows(*section);
        }
    }
    return page;
}

} // namespace scrimlet::SettingsPages
