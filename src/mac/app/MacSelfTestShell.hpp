#pragma once

#include "SelfTest.hpp"

namespace scrimlet::mac {

/// What only the app can do for the self check: lay out the real dropdown, and read the real
/// window list. Nothing here changes the Mac.
class MacSelfTestShell final : public SelfTestShell {
public:
    DropdownSize render(StageStore& store) override;
    std::optional<CaptureSnapshot> onScreenWindows() override;
};

} // namespace scrimlet::mac
