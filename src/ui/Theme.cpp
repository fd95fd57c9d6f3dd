#include "Theme.hpp"

#include <numbers>

namespace scrimlet::Motion {

Animation forView(const Animation& wanted, bool reduceMotion) {
    return reduceMotion ? fade : wanted;
}

std::optional<Animation> forCurtain(bool reduceMotion) {
    if (reduceMotion) {
        return std::nullopt;
    }
    return curtain;
}

SpringParameters springParameters(const Animation& spring) {
    // ω = 2π / response, k = ω² m, c = 2 ζ ω m.
    const double omega = 2 * std::numbers::pi / spring.response;
    return {1, omega * omega, 2 * spring.dampingFraction * omega};
}

} // namespace scrimlet::Motion
