#include "Utf8.hpp"

#include <cstdint>

namespace scrimlet::utf8 {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

// The length of the well-formed character at `at`, or 0 with `bad` set to how many bytes
// form the maximal ill-formed part there.
size_t character(std::string_view bytes, size_t at, size_t& bad) {
    const auto byte = [&](size_t i) { return static_cast<std::uint8_t>(bytes[i]); };
    const std::uint8_t lead = byte(at);
    if (lead < 0x80) {
        return 1;
    }
    size_t length = 0;
    std::uint8_t low = 0x80;
    std::uint8_t high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        // No overlong forms, no surrogates.
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        // No overlong forms, nothing above U+10FFFF.
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        bad = 1;
        return 0;
    }
    for (size_t i = 1; i < length; ++i) {
        const bool inRange = at + i < bytes.size() && byte(at + i) >= (i == 1 ? low : 0x80) &&
                             byte(at + i) <= (i == 1 ? high : 0xBF);
        if (!inRange) {
            bad = i;
            return 0;
        }
    }
    return length;
}

} // namespace

bool isValid(std::string_view bytes) {
    size_t bad = 0;
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = character(bytes, at, bad);
        if (length == 0) {
            return false;
        }
        at += length;
    }
    return true;
}

std::string repaired(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    size_t bad = 0;
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = character(bytes, at, bad);
        if (length == 0) {
            out += replacement;
            at += bad;
        } else {
            out.append(bytes.substr(at, length));
            at += length;
        }
    }
    return out;
}

} // namespace scrimlet::utf8
