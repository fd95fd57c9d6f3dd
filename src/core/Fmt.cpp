#include "Fmt.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace scrimlet::Fmt {

namespace {

// Far beyond any show, and small enough that the conversion to an integer stays defined.
constexpr double longestTime = 1e15;

} // namespace

std::string clock(double seconds) {
    const auto whole =
        static_cast<long long>(seconds > 0 ? std::floor(std::min(seconds, longestTime)) : 0.0);
    char buffer[64];
    if (whole < 3600) {
        std::snprintf(buffer, sizeof buffer, "%lld:%02lld", whole / 60, whole % 60);
    } else {
        std::snprintf(buffer, sizeof buffer, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60,
                      whole % 60);
    }
    return buffer;
}

std::string duration(double seconds) {
    if (!(seconds >= 60)) {
        return "under a minute";
    }
    return minutes(std::llround(std::min(seconds, longestTime) / 60));
}

std::string minutes(std::int64_t minutes) {
    if (minutes < 60) {
        return std::to_string(minutes) + " min";
    }
    const std::string hours = std::to_string(minutes / 60) + " h";
    if (minutes % 60 == 0) {
        return hours;
    }
    return hours + " " + std::to_string(minutes % 60) + " min";
}

} // namespace scrimlet::Fmt
