#include "ViewModel.hpp"

#include <cstdio>

namespace scrimlet {

void perform(const UiAction& action, StageStore& store, InterfaceHost& host) {
    using Kind = UiAction::Kind;
    switch (action.kind) {
    case Kind::none:
        return;
    case Kind::startShow:
        store.startShow(startedFromMenu);
        return;
    case Kind::stopShow:
        store.stopShow();
        return;
    case Kind::extendShow:
        store.show().extend(15);
        break;
    case Kind::openSettings:
        if (action.tab) {
            store.settingsTab = *action.tab;
        }
        host.openSettings(action.tab);
        return;
    case Kind::dismissRecovered:
        store.recovered.reset();
        break;
    case Kind::dismissEnded:
        store.justEnded.reset();
        break;
    case Kind::togglePlan:
        if (action.effect) {
            store.togglePlan(*action.effect);
        }
        break;
    case Kind::removeResolution: {
        StageSettings settings = store.settings();
        settings.plan.resolution.reset();
        store.setSettings(std::move(settings));
        break;
    }
    case Kind::toggleSwitch:
        if (action.switchKind) {
            store.toggleSwitch(*action.switchKind);
        }
        return;
    case Kind::setSwitch:
        if (action.switchKind) {
            store.setSwitch(*action.switchKind, action.on);
        }
        return;
    case Kind::route:
        if (action.route) {
            store.route = *action.route;
        }
        break;
    case Kind::allSwitchesOff:
        store.board().allOff();
        store.refreshAvailability();
        break;
    case Kind::quit:
        host.quit();
        return;
    case Kind::clearSheets:
        store.clearSheets();
        break;
    case Kind::recheckShortcuts:
        store.recheckShortcuts();
        break;
    case Kind::openApplication:
        host.openApplication(action.text);
        return;
    case Kind::copy:
        host.copyToPasteboard(action.text);
        return;
    }
    // These changes are not all published by the store itself (the route, the banners, the
    // plan in a demo store); one sync tells every view.
    store.sync();
}

CueNumberModel cueNumber(long long n, bool lit) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "Q%lld", n);
    if (lit) {
        return {buffer, fixed(Theme::onLight), fixed(Theme::lightFill)};
    }
    return {buffer, Theme::ink2, std::nullopt};
}

TagModel outcomeBadge(const CueOutcome& outcome) {
    using Case = CueOutcome::Case;
    TagModel tag;
    tag.text = outcome.shortLabel();
    switch (outcome.kind()) {
    case Case::applied:
    case Case::alreadySo:
    case Case::joined:
    case Case::restored:
    case Case::alreadyBack:
        tag.tint = Theme::sage;
        tag.fill = faded(Theme::sage, 0.12);
        break;
    case Case::leftAlone:
    case Case::stillHeld:
        tag.tint = Theme::light;
        tag.fill = Theme::lightSoft;
        break;
    case Case::skipped:
    case Case::failed:
    case Case::gone:
    case Case::deferred:
        tag.tint = Theme::velvet;
        tag.fill = Theme::velvetSoft;
        tag.symbol = "exclamationmark.triangle";
        tag.help = outcome.label();
        break;
    }
    return tag;
}

std::string kickerText(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return out;
}

} // namespace scrimlet
