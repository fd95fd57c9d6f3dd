#pragma once

// The Mac around the updater: the running bundle, the caches, the system's version, and the
// services the updater reaches the system through. Main thread only.

#include "Updater.hpp"

#include <filesystem>
#include <functional>
#include <memory>

namespace scrimlet::mac::UpdaterPlatform {

/// The running app, as its bundle describes it.
vantrel::BundleFacts mainBundle();
/// The user's caches folder.
std::filesystem::path cachesFolder();
vantrel::OperatingSystemVersion systemVersion();

/// The defaults, files, tools, network and run loop of this process. `showWindow` opens the
/// "Software Update" window; it is called on the main thread.
vantrel::Updater::Services services(std::function<void(vantrel::WindowReason)> showWindow);

} // namespace scrimlet::mac::UpdaterPlatform
