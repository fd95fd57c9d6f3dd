#include "StatusItemPresence.hpp"

#include "StageStore.hpp"

namespace scrimlet::StatusItemPresence {

Placement judge(bool visible, std::optional<Rect> itemWindow, const std::vector<Rect>& displays) {
    if (!visible) {
        return Placement::notPlaced;
    }
    if (!itemWindow || itemWindow->isEmpty() || displays.empty()) {
        return Placement::unknown;
    }
    const Rect& item = *itemWindow;
    for (const Rect& display : displays) {
        const bool across = item.maxX() > display.minX() && item.minX() < display.maxX();
        const bool atTop =
            item.minY() >= display.minY() - bandReach && item.maxY() <= display.minY() + bandReach;
        if (across && atTop) {
            return Placement::placed;
        }
    }
    return Placement::notPlaced;
}

Decision decide(int systemMajor, Placement placement, bool noticedBefore, bool busy) {
    if (systemMajor < firstSystemWithSwitch) {
        return {false, noticedBefore};
    }
    switch (placement) {
    case Placement::placed:
        return {false, false};
    case Placement::notPlaced:
        if (busy) {
            break;
        }
        return {!noticedBefore, true};
    case Placement::unknown:
        break;
    }
    return {false, noticedBefore};
}

bool isBusy(const StageStore& store) {
    return !store.show().isDark() || store.detecting().has_value();
}

Notice notice(const std::optional<Hotkey>& stageHotkey) {
    Notice out;
    out.title = "Scrimlet’s menu bar icon is hidden";
    std::string ways;
    if (stageHotkey) {
        ways = "Until then, " + stageHotkey->display() +
               " raises and brings down the curtain from any app, and so does the link "
               "scrimlet://toggle from Shortcuts or a browser.";
    } else {
        ways = "Until then, the link scrimlet://toggle raises and brings down the curtain from "
               "Shortcuts or a browser. A hotkey for it can be set in Scrimlet’s settings.";
    }
    out.message = "macOS is keeping Scrimlet out of the menu bar. To bring it back, turn "
                  "Scrimlet on in System Settings › Menu Bar, under “Allow in the Menu Bar”.\n\n" +
                  ways;
    out.openSystemSettings = "Open System Settings";
    out.openScrimletSettings = "Scrimlet Settings";
    out.dismiss = "OK";
    return out;
}

} // namespace scrimlet::StatusItemPresence
