#import "MacFacilities.hpp"

#import "StageSystem.hpp"

// The program's own scenery and menu bar divider, reached through what the app connected.

namespace scrimlet::mac {

bool MacFacilities::sceneryIsOn(EffectKind kind) { return scenery_.isOn && scenery_.isOn(kind); }

void MacFacilities::setScenery(EffectKind kind, bool on) {
    if (!scenery_.set) {
        throw StageError::failed("There is no scenery in this program");
    }
    scenery_.set(kind, on);
}

bool MacFacilities::menuBarDividerInstalled() {
    return scenery_.dividerInstalled && scenery_.dividerInstalled();
}

} // namespace scrimlet::mac
