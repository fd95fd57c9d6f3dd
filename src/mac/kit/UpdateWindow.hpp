#pragma once

// The "Software Update" window: the app's icon beside what `UpdateScreen` says of the
// updater's phase. One window, reused. Main thread only.

#include "Color.hpp"
#include "Updater.hpp"

#include <memory>

namespace scrimlet::mac::UpdateWindow {

/// Opens the window on `updater`, or brings it forward, as `reason` says. `accent` paints
/// the default button.
void show(const std::shared_ptr<vantrel::Updater>& updater, vantrel::WindowReason reason,
          const Color& accent);

/// Says the updater's phase again, if the window was ever opened.
void refresh();

} // namespace scrimlet::mac::UpdateWindow
