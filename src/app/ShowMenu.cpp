#include "ShowMenu.hpp"

#include "StageStore.hpp"

namespace scrimlet::ShowMenu {

std::vector<Item> items(const ShowPhase& phase) {
    const bool dark = phase.kind() == ShowPhase::Case::dark;
    const bool live = phase.kind() == ShowPhase::Case::live;
    return {
        dark ? Item{"Raise the Curtain", Action::raiseCurtain, true, "s"}
             : Item{"Bring It Down", Action::bringDown, true, "s"},
        Item{"Add 15 Minutes", Action::addFifteenMinutes, live, ""},
        Item{"", Action::raiseCurtain, true, "", true},
        Item{"Run Sheets…", Action::runSheets, true, ""},
    };
}

bool perform(Action action, StageStore& store) {
    switch (action) {
    case Action::raiseCurtain:
        store.startShow("Started from the menu", std::nullopt);
        return false;
    case Action::bringDown:
        store.stopShow();
        return false;
    case Action::addFifteenMinutes:
        // The menu may be stale by the time it is chosen: a show that went dark meanwhile
        // has nothing to extend.
        if (store.show().isLive()) {
            store.show().extend(15);
            store.sync();
        }
        return false;
    case Action::runSheets:
        store.settingsTab = StageStore::SettingsTab::runSheets;
        return true;
    }
    return false;
}

} // namespace scrimlet::ShowMenu
