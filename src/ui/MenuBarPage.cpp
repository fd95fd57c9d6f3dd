#include "SettingsPagesParts.hpp"

namespace scrimlet::SettingsPages {

using namespace SettingsParts;

namespace {

MenuBarDiagramModel diagram() {
    using Item = MenuBarDiagramModel::Item;
    MenuBarDiagramModel out;
    for (const char* name : {"cloud", "bubble.left", "chart.bar"}) {
        out.hidden.push_back(Item{name, std::nullopt, false, Theme::ink3});
    }
    out.hiddenCaption = "hidden during a show ↑";
    out.divider = Item{"chevron.compact.left", std::nullopt, false, Theme::light};
    out.shown = {
        Item{std::nullopt, std::nullopt, true, Theme::ink},
        Item{"wifi", std::nullopt, false, Theme::ink},
        Item{"switch.2", std::nullopt, false, Theme::ink},
        Item{std::nullopt, "Wed 15:42", false, Theme::ink},
    };
    out.accessibilityLabel = "Diagram: icons to the left of the divider are hidden during a show";
    return out;
}

} // namespace

SettingsPageModel menuBar(const StageStore& store) {
    const StageSettings& settings = store.settings();
    SettingsPageModel page;
    page.tab = SettingsTab::menuBar;
    page.title = "Menu bar";
    page.subtitle = "Scrimlet adds a small divider to your menu bar. Icons to its left disappear "
                    "during a show — or whenever you click the divider.";

    SettingsSection divider;
    divider.title = "Divider";
    divider.items.push_back(diagram());
    divider.items.push_back(row("Show the divider", "Needed for “Tidy the menu bar”.", std::nullopt,
                                toggle(flag("menuBarDivider", &StageSettings::menuBarDivider),
                                       settings, "Show the divider")));
    ToggleControl tidy =
        toggle(planFlag("tidyMenuBar", &StagePlan::tidyMenuBar), settings, "Tidy during shows");
    tidy.enabled = settings.menuBarDivider;
    divider.items.push_back(row("Tidy during shows", std::nullopt, std::nullopt, std::move(tidy)));
    page.blocks.push_back(std::move(divider));

    SettingsSection setUp;
    setUp.title = "Set it up once";
    setUp.items.push_back(StepsBlock{{
        "Turn on the divider. It appears just left of Scrimlet's icon.",
        "Hold ⌘ and drag the icons you'd rather not show to the left of the divider.",
        "That's it. During a show they're pushed out of sight; click the divider to hide or show "
        "them any time.",
    }});
    page.blocks.push_back(std::move(setUp));

    SettingsSection know;
    know.title = "Good to know";
    know.items.push_back(paragraphs({
        "This is the long-standing spacer technique: the divider simply grows wide and pushes the "
        "icons on its left off the edge. It uses no private APIs and needs no Accessibility "
        "permission.",
        "Icons macOS keeps on the right (Control Center, the clock) can't be moved left of the "
        "divider. On a MacBook with a notch, crowded icons may already be hiding behind it.",
    }));
    page.blocks.push_back(std::move(know));

    for (PageBlock& block : page.blocks) {
        markLastRows(std::get<SettingsSection>(block));
    }
    return page;
}

} // namespace scrimlet::SettingsPages
