#include "Vantrel.hpp"

// Placeholder until the updater is connected to the Mac: no feed is ever checked.

namespace scrimlet::mac::Vantrel {

void start(const Color &, const Color &) {}

void checkForUpdates() {}

} // namespace scrimlet::mac::Vantrel
