#include "ShadowBlur.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

namespace scrimlet::render {

namespace {

// One running-sum box blur of `radius` along a line of `count` values `step` apart; beyond
// the ends the line is clear.
void boxLine(std::uint8_t* line, int count, int step, int radius, std::vector<int>& scratch) {
    scratch.assign(static_cast<size_t>(count), 0);
    for (int i = 0; i < count; ++i) {
        scratch[static_cast<size_t>(i)] = line[i * step];
    }
    const int window = 2 * radius + 1;
    int sum = 0;
    for (int i = 0; i < std::min(radius, count); ++i) {
        sum += scratch[static_cast<size_t>(i)];
    }
    for (int i = 0; i < count; ++i) {
        const int entering = i + radius;
        const int leaving = i - radius - 1;
        if (entering < count) {
            sum += scratch[static_cast<size_t>(entering)];
        }
        if (leaving >= 0) {
            sum -= scratch[static_cast<size_t>(leaving)];
        }
        line[i * step] = static_cast<std::uint8_t>((sum + window / 2) / window);
    }
}

} // namespace

void blurAlpha(std::uint8_t* data, int width, int height, int stride, double sigma) {
    if (sigma < 0.5) {
        return;
    }
    // Three boxes of this half-width spread as far as a Gaussian of sigma.
    const int radius =
        std::max(1, static_cast<int>(std::lround((std::sqrt(4 * sigma * sigma + 1) - 1) / 2)));
    std::vector<int> scratch;
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < height; ++y) {
            boxLine(data + y * stride, width, 1, radius, scratch);
        }
        for (int x = 0; x < width; ++x) {
            boxLine(data + x, height, stride, radius, scratch);
        }
    }
}

} // namespace scrimlet::render
