#include "Interface.hpp"

// Placeholder until the interface lands: no settings window, and changes happen at once.

namespace scrimlet::mac::Interface {

void showSettingsWindow(StageStore &) {}

void animateCurtain(const std::function<void()> &change) { change(); }

} // namespace scrimlet::mac::Interface
