#pragma once

#include <compare>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace scrimlet {

/// An absolute point in time, as seconds since 1970-01-01 00:00:00 UTC. A plain value.
struct Date {
    double seconds = 0;

    /// The wall clock. The engine never calls this: it is handed a `Clock` instead.
    static Date now();
    /// Earlier than any date the program will meet; the starting value of "last looked at".
    static Date distantPast() { return Date{-62135596800.0}; }

    Date operator+(double s) const { return Date{seconds + s}; }
    Date operator-(double s) const { return Date{seconds - s}; }
    double operator-(Date other) const { return seconds - other.seconds; }
    friend auto operator<=>(Date, Date) = default;

    /// ISO 8601 in UTC with whole seconds ("2026-01-02T10:00:00Z"); fractions are cut off. A
    /// date before the year 0000 or after 9999 (or not a number) is written as the nearest
    /// one inside them, so that whatever is written reads back.
    std::string iso8601() const;
    /// Reads "YYYY-MM-DDTHH:MM:SS" followed by "Z" or "+hh:mm"/"-hh:mm", optionally with a
    /// fraction of a second. Anything else yields nothing, and so does a date that falls
    /// outside the years 0000 to 9999 in UTC, which `iso8601` could not write back.
    static std::optional<Date> parseIso8601(std::string_view text);
};

/// Where the engine takes the time from: the wall clock in the app, a `ManualClock` elsewhere.
using Clock = std::function<Date()>;

} // namespace scrimlet
