#include "ControlLooks.hpp"

#include <algorithm>
#include <cmath>

namespace scrimlet {

Color mix(const Color& a, const Color& b, double t) {
    const double u = std::clamp(t, 0.0, 1.0);
    // Weighted this way, the ends are the colours themselves, to the last bit.
    const auto between = [u](double from, double to) { return from * (1 - u) + to * u; };
    return {between(a.red, b.red), between(a.green, b.green), between(a.blue, b.blue),
            between(a.alpha, b.alpha)};
}

AdaptiveColor mix(const AdaptiveColor& a, const AdaptiveColor& b, double t) {
    return {mix(a.light, b.light, t), mix(a.dark, b.dark, t)};
}

LampToggleLook LampToggleLook::at(double on, bool enabled) {
    const double u = std::clamp(on, 0.0, 1.0);
    LampToggleLook look;
    look.track = Rect::of(size);
    const double travel = size.width - 2 * padding - lampSide;
    look.lamp = {padding + travel * u, padding, lampSide, lampSide};
    look.trackFill = mix(Theme::wash, Theme::lightSoft, u);
    look.border = Theme::ruleStrong;
    // Off, the lamp is a dark bulb in the ink of the page; on, it burns with the stage light.
    const AdaptiveColor lit{Theme::lightFill, Theme::lightFill};
    look.lampColor = mix(Theme::ink3, lit, u);
    if (u > 0) {
        look.glow = Theme::lightFill.opacity(0.7 * u);
        look.glowRadius = 4 * u;
    }
    look.opacity = enabled ? 1 : 0.4;
    return look;
}

double motionProgress(const Animation& animation, double elapsed) {
    if (elapsed <= 0) {
        return 0;
    }
    if (animation.curve == Animation::Curve::easeInOut) {
        if (!(animation.duration > 0) || elapsed >= animation.duration) {
            return 1;
        }
        const double t = elapsed / animation.duration;
        return t < 0.5 ? 4 * t * t * t : 1 - std::pow(-2 * t + 2, 3) / 2;
    }
    if (!(animation.response > 0)) {
        return 1;
    }
    // A unit mass let go one unit from rest: the damped oscillator's step response.
    const SpringParameters spring = Motion::springParameters(animation);
    const double omega = std::sqrt(spring.stiffness / spring.mass);
    const double zeta = animation.dampingFraction;
    if (zeta >= 1) {
        return 1 - std::exp(-omega * elapsed) * (1 + omega * elapsed);
    }
    const double damped = omega * std::sqrt(1 - zeta * zeta);
    return 1 -
           std::exp(-zeta * omega * elapsed) *
               (std::cos(damped * elapsed) + zeta * omega / damped * std::sin(damped * elapsed));
}

double motionDuration(const Animation& animation) {
    if (animation.curve == Animation::Curve::easeInOut) {
        return std::max(animation.duration, 0.0);
    }
    if (!(animation.response > 0)) {
        return 0;
    }
    const SpringParameters spring = Motion::springParameters(animation);
    const double omega = std::sqrt(spring.stiffness / spring.mass);
    const double zeta = std::max(animation.dampingFraction, 0.05);
    if (zeta < 1) {
        // The swing around the end stays within its envelope, e^(-ζωt) / √(1 - ζ²).
        return std::log(1000.0 / std::sqrt(1 - zeta * zeta)) / (zeta * omega);
    }
    // Without a swing, the step comes in as (1 + ωt) e^(-ωt): walk until it is small.
    double t = 0;
    while ((1 + omega * t) * std::exp(-omega * t) > 1e-3) {
        t += 0.001;
    }
    return t;
}

} // namespace scrimlet
