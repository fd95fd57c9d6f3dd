#include "Date.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace scrimlet {

namespace {

// Days since 1970-01-01 of a civil date, and back (proleptic Gregorian calendar).
long long daysFromCivil(long long y, unsigned m, unsigned d) {
    y -= m <= 2 ? 1 : 0;
    const long long era = (y >= 0 ? y : y - 399) / 400;
    const auto yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long long>(doe) - 719468;
}

struct Civil {
    long long year;
    unsigned month;
    unsigned day;
};

Civil civilFromDays(long long z) {
    z += 719468;
    const long long era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const long long y = static_cast<long long>(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    const unsigned d = doy - (153 * mp + 2) / 5 + 1;
    const unsigned m = mp < 10 ? mp + 3 : mp - 9;
    return {y + (m <= 2 ? 1 : 0), m, d};
}

bool digits(std::string_view text, size_t at, size_t count, int& out) {
    if (at + count > text.size()) {
        return false;
    }
    out = 0;
    for (size_t i = at; i < at + count; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return false;
        }
        out = out * 10 + (text[i] - '0');
    }
    return true;
}

// The files write four-digit years, so these are the first and last whole seconds a file
// can hold: 0000-01-01T00:00:00Z and 9999-12-31T23:59:59Z.
constexpr long long earliestWritable = -62167219200;
constexpr long long latestWritable = 253402300799;

} // namespace

Date Date::now() {
    using namespace std::chrono;
    return Date{duration<double>(system_clock::now().time_since_epoch()).count()};
}

std::string Date::iso8601() const {
    // Out of range, or not a number at all: the nearest date a reader takes back, so that one
    // odd date never costs the whole file it lies in.
    const double bounded =
        std::isnan(seconds) ? static_cast<double>(earliestWritable)
                            : std::clamp(std::floor(seconds), static_cast<double>(earliestWritable),
                                         static_cast<double>(latestWritable));
    const auto whole = static_cast<long long>(bounded);
    long long days = whole / 86400;
    long long rest = whole % 86400;
    if (rest < 0) {
        rest += 86400;
        days -= 1;
    }
    const Civil c = civilFromDays(days);
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%04lld-%02u-%02uT%02lld:%02lld:%02lldZ", c.year, c.month,
                  c.day, rest / 3600, rest / 60 % 60, rest % 60);
    return buffer;
}

std::optional<Date> Date::parseIso8601(std::string_view text) {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (!digits(text, 0, 4, year) || text.size() < 19 || text[4] != '-' ||
        !digits(text, 5, 2, month) || text[7] != '-' || !digits(text, 8, 2, day) ||
        (text[10] != 'T' && text[10] != 't') || !digits(text, 11, 2, hour) || text[13] != ':' ||
        !digits(text, 14, 2, minute) || text[16] != ':' || !digits(text, 17, 2, second)) {
        return std::nullopt;
    }
    if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60) {
        return std::nullopt;
    }
    size_t at = 19;
    double fraction = 0;
    if (at < text.size() && text[at] == '.') {
        double scale = 0.1;
        ++at;
        const size_t start = at;
        while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
            fraction += (text[at] - '0') * scale;
            scale /= 10;
            ++at;
        }
        if (at == start) {
            return std::nullopt;
        }
    }
    int offset = 0;
    if (at < text.size() && (text[at] == 'Z' || text[at] == 'z')) {
        ++at;
    } else if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
        int oh = 0, om = 0;
        if (!digits(text, at + 1, 2, oh) || at + 3 >= text.size() || text[at + 3] != ':' ||
            !digits(text, at + 4, 2, om) || oh > 23 || om > 59) {
            return std::nullopt;
        }
        offset = (oh * 3600 + om * 60) * (text[at] == '-' ? -1 : 1);
        at += 6;
    } else {
        return std::nullopt;
    }
    if (at != text.size()) {
        return std::nullopt;
    }
    const long long days =
        daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day));
    const long long whole = days * 86400 + hour * 3600 + minute * 60 + second - offset;
    // An offset or a leap second can carry a date past the years the writer has digits for.
    if (whole < earliestWritable || whole > latestWritable) {
        return std::nullopt;
    }
    return Date{static_cast<double>(whole) + fraction};
}

} // namespace scrimlet
