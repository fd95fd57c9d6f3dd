#include "UpdateLogic.hpp"

#include <sodium.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace vantrel::UpdateLogic {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Orders two runs of digits by value: leading zeros do not count, so "01" and "1" are equal.
int compareNumbers(std::string_view a, std::string_view b) {
    const auto significant = [](std::string_view digits) {
        const auto first = digits.find_first_not_of('0');
        return first == std::string_view::npos ? std::string_view{} : digits.substr(first);
    };
    a = significant(a);
    b = significant(b);
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    const int order = a.compare(b);
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

std::string_view digitRun(std::string_view text, std::size_t from) {
    std::size_t end = from;
    while (end < text.size() && isDigit(text[end])) {
        ++end;
    }
    return text.substr(from, end - from);
}

/// Orders like the platform's numeric comparison. Text outside digit runs compares by code
/// point, which for UTF-8 is the order of its bytes taken as unsigned.
int numericCompare(std::string_view a, std::string_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            const auto left = digitRun(a, i);
            const auto right = digitRun(b, j);
            if (const int order = compareNumbers(left, right); order != 0) {
                return order;
            }
            i += left.size();
            j += right.size();
            continue;
        }
        const auto left = static_cast<unsigned char>(a[i]);
        const auto right = static_cast<unsigned char>(b[j]);
        if (left != right) {
            return left < right ? -1 : 1;
        }
        ++i;
        ++j;
    }
    const bool aLeft = i < a.size();
    const bool bLeft = j < b.size();
    return aLeft == bLeft ? 0 : (aLeft ? 1 : -1);
}

/// A whole part read as a decimal integer with an optional sign; nothing for anything else.
std::optional<long long> decimal(std::string_view part) {
    bool negative = false;
    if (!part.empty() && (part.front() == '+' || part.front() == '-')) {
        negative = part.front() == '-';
        part.remove_prefix(1);
    }
    if (part.empty()) {
        return std::nullopt;
    }
    long long value = 0;
    for (const char c : part) {
        if (!isDigit(c) || value > (std::numeric_limits<long long>::max() - (c - '0')) / 10) {
            return std::nullopt;
        }
        value = value * 10 + (c - '0');
    }
    return negative ? -value : value;
}

/// Strict standard Base64 with padding, as the maker's tools write it.
std::optional<std::vector<unsigned char>> base64Decoded(std::string_view text) {
    std::vector<unsigned char> bytes(text.size() / 4 * 3 + 3);
    std::size_t length = 0;
    if (sodium_base642bin(bytes.data(), bytes.size(), text.data(), text.size(), nullptr, &length,
                          nullptr, sodium_base64_VARIANT_ORIGINAL) != 0) {
        return std::nullopt;
    }
    bytes.resize(length);
    return bytes;
}

} // namespace

bool isNewer(std::string_view a, std::string_view than) {
    return numericCompare(a, than) > 0;
}

bool systemSupports(const std::optional<std::string>& minimum,
                    const OperatingSystemVersion& system) {
    if (!minimum || minimum->empty()) {
        return true;
    }
    std::array<long long, 3> wanted{0, 0, 0};
    std::size_t count = 0;
    std::string_view rest = *minimum;
    while (count < wanted.size()) {
        const auto dot = rest.find('.');
        const auto part = rest.substr(0, dot);
        if (const auto number = decimal(part)) {
            wanted[count++] = *number;
        }
        if (dot == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(dot + 1);
    }
    const std::array<long long, 3> actual{system.majorVersion, system.minorVersion,
                                          system.patchVersion};
    return actual >= wanted;
}

bool verify(std::string_view data, std::string_view signature,
            std::string_view publicKey) noexcept {
    try {
        if (sodium_init() < 0) {
            return false;
        }
        const auto signatureBytes = base64Decoded(signature);
        const auto keyBytes = base64Decoded(publicKey);
        if (!signatureBytes || !keyBytes || signatureBytes->size() != crypto_sign_BYTES ||
            keyBytes->size() != crypto_sign_PUBLICKEYBYTES) {
            return false;
        }
        return crypto_sign_verify_detached(signatureBytes->data(),
                                           reinterpret_cast<const unsigned char*>(data.data()),
                                           data.size(), keyBytes->data()) == 0;
    } catch (...) {
        return false;
    }
}

} // namespace vantrel::UpdateLogic
