#import "MacSelfTestShell.hpp"

#import "../system/MacSystem.hpp"
#import "../views/DropdownLayout.hpp"

namespace scrimlet::mac {

DropdownSize MacSelfTestShell::render(StageStore &store) { return layOutDropdown(store); }

std::optional<CaptureSnapshot> MacSelfTestShell::onScreenWindows() {
    return windowSnapshot(DetectionOptions());
}

} // namespace scrimlet::mac
