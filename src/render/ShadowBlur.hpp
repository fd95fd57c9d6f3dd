#pragma once

#include <cstdint>

namespace scrimlet::render {

/// Blurs one channel of 8-bit coverage in place, close to a Gaussian of `sigma` pixels:
/// three box blurs in each direction. A sigma below half a pixel leaves it as it is.
void blurAlpha(std::uint8_t* data, int width, int height, int stride, double sigma);

} // namespace scrimlet::render
