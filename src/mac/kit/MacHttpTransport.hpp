#pragma once

// The updater's network: the feed and the archive over the system's URL loading.

#include "HttpTransport.hpp"

#include <memory>

namespace scrimlet::mac {

/// A transport whose `send` may be called from any thread but the main one: it blocks while
/// the body arrives on a queue of the system's own.
std::shared_ptr<vantrel::HttpTransport> makeHttpTransport();

} // namespace scrimlet::mac
