#include "MenuBarDivider.hpp"

#include "StageStore.hpp"
#include "StageSystem.hpp"

#include <algorithm>
#include <cmath>

namespace scrimlet {

namespace {

/// The first macOS whose menu bar throws out an item that is too long instead of clamping
/// it.
constexpr int discardingSystem = 27;

/// A width to size for when no display is known (the screens are being rearranged): the
/// narrowest a Mac's display gets in any of its scaled modes.
constexpr double narrowestMacDisplay = 1024;

/// How far below half of the narrowest display the collapsed divider stays.
constexpr double shareOfNarrowest = 0.45;

} // namespace

// Up to macOS 26 the menu bar clamps a status item that is longer than the bar, so one
// enormous length pushes everything on the divider's left off the edge of every display.
// macOS 27 instead throws out an item whose length reaches about half the width of the
// display it is drawn on: the divider vanishes and hides nothing. There, the icons it
// displaces go into the system's own overflow menu, so the divider need not reach the edge:
// filling the bar's trailing part is enough. The limit holds per display, and one length
// serves the item on every display's bar, so the narrowest display sets it. Measurements
// reported on macOS 27 put the limit a little under half (884 of 1800 points on one Mac), so
// the divider keeps a tenth of that half in hand: 45% of the narrowest display. Never less
// than the resting length, never more than the old enormous one.
double collapsedLength(const MenuBarMetrics& metrics) {
    if (metrics.systemMajor < discardingSystem) {
        return MenuBarDivider::expandedLength;
    }
    double narrowest = 0;
    for (const double width : metrics.displayWidths) {
        if (width > 0 && (narrowest == 0 || width < narrowest)) {
            narrowest = width;
        }
    }
    if (narrowest == 0) {
        narrowest = narrowestMacDisplay;
    }
    return std::clamp(std::floor(narrowest * shareOfNarrowest), MenuBarDivider::restingLength,
                      MenuBarDivider::expandedLength);
}

bool showsSymbolWhileCollapsed(int systemMajor) {
    return systemMajor < discardingSystem;
}

MenuBarDivider::MenuBarDivider(DividerBar& bar, std::function<bool()> isTestRun,
                               std::function<MenuBarMetrics()> metrics)
    : bar_(bar)
    , isTestRun_(std::move(isTestRun))
    , metrics_(std::move(metrics)) {}

MenuBarDivider::State MenuBarDivider::state() const {
    if (!installed_) {
        return State::notInstalled;
    }
    return collapsed_ ? State::collapsed : State::open;
}

void MenuBarDivider::setInstalled(bool installed) {
    if (isTestRun_ && isTestRun_()) {
        return;
    }
    if (!installed) {
        if (installed_) {
            bar_.removeItem();
        }
        installed_ = false;
        collapsed_ = false;
        length_ = 0;
        return;
    }
    if (installed_) {
        return;
    }
    installed_ = true;
    length_ = restingLength;
    bar_.addItem(length_, openSymbol);
}

void MenuBarDivider::setCollapsed(bool collapsed) {
    if (!installed_) {
        throw StageError::failed(std::string(offMessage));
    }
    collapsed_ = collapsed;
    show();
}

void MenuBarDivider::displaysChanged() {
    if (!installed_ || !collapsed_) {
        return;
    }
    const MenuBarMetrics metrics = metrics_ ? metrics_() : MenuBarMetrics{};
    if (collapsedLength(metrics) != length_) {
        showCollapsed(metrics);
    }
}

void MenuBarDivider::show() {
    if (collapsed_) {
        showCollapsed(metrics_ ? metrics_() : MenuBarMetrics{});
        return;
    }
    length_ = restingLength;
    bar_.showItem(length_, openSymbol);
}

void MenuBarDivider::showCollapsed(const MenuBarMetrics& metrics) {
    length_ = collapsedLength(metrics);
    bar_.showItem(length_, showsSymbolWhileCollapsed(metrics.systemMajor)
                               ? std::optional<std::string_view>(collapsedSymbol)
                               : std::nullopt);
}

void dividerClicked(StageStore& store) {
    store.toggleSwitch(SwitchKind::tidyMenuBar);
}

} // namespace scrimlet
