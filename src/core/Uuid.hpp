#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace scrimlet {

/// A random (version 4) UUID; written in the usual upper-case form. A plain value.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    static Uuid random();
    /// Accepts the 8-4-4-4-12 hexadecimal form in either case; anything else yields nothing.
    static std::optional<Uuid> parse(std::string_view text);
    std::string string() const;

    friend bool operator==(const Uuid&, const Uuid&) = default;
    // Byte order, spelt out: not every standard library compares arrays with <=>.
    friend std::strong_ordering operator<=>(const Uuid& a, const Uuid& b) {
        return std::memcmp(a.bytes.data(), b.bytes.data(), a.bytes.size()) <=> 0;
    }
};

} // namespace scrimlet
