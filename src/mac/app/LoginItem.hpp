#pragma once

#include <optional>
#include <string>

namespace scrimlet::mac::LoginItem {

/// Registers the app to open at login, or unregisters it; the system's words on failure.
std::optional<std::string> set(bool enabled);

} // namespace scrimlet::mac::LoginItem
