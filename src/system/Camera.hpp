#pragma once

// Whether any camera is in use, through CoreMediaIO: one of the marks of a call.

#include "SystemFacilities.hpp"

namespace scrimlet::Camera {

/// True as soon as one camera says some process is running it; false when the cameras
/// cannot be listed.
bool inUse(SystemFacilities& facilities);

} // namespace scrimlet::Camera
