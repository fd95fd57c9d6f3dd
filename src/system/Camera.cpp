#include "Camera.hpp"

namespace scrimlet::Camera {

bool inUse(SystemFacilities& facilities) {
    const auto cameras = facilities.cameraObjects(properties::systemObject, properties::devices);
    if (!cameras) {
        return false;
    }
    for (const auto camera : *cameras) {
        const auto running = facilities.cameraUInt32(camera, properties::cameraRunningSomewhere);
        if (running && *running != 0) {
            return true;
        }
    }
    return false;
}

} // namespace scrimlet::Camera
