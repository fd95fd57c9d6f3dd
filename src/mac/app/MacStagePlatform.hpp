#pragma once

#include "StagePlatform.hpp"

#include <memory>

namespace scrimlet::mac {

/// The services a live store needs, on macOS: each is handed to the part of the shell that
/// does that one job.
std::shared_ptr<StagePlatform> makeMacStagePlatform();

} // namespace scrimlet::mac
