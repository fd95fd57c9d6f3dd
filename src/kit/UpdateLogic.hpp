#pragma once

// The pure rules of an update: which version is newer, whether this system may run it, and
// whether an archive is the maker's. Free of any platform, so they are the same everywhere.

#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// The running system's version, as the platform reports it.
struct OperatingSystemVersion {
    int majorVersion = 0;
    int minorVersion = 0;
    int patchVersion = 0;

    bool operator==(const OperatingSystemVersion&) const = default;
};

namespace UpdateLogic {

/// True only when `a` orders after `than` in the numeric string comparison: runs of digits
/// compare by their value, everything else character by character. So "1.10" is newer than
/// "1.9", and no version is newer than itself. There is no parsing into components and no
/// rule for suffixes: the comparison alone decides.
bool isNewer(std::string_view a, std::string_view than);

/// Whether `system` is at or above the dotted `minimum`. None or empty means any system;
/// parts that are not numbers are left out, missing ones count as 0.
bool systemSupports(const std::optional<std::string>& minimum,
                    const OperatingSystemVersion& system);

/// Whether `signature` (Base64 of 64 bytes) is the Ed25519 signature of `data` under
/// `publicKey` (Base64 of the raw 32-byte key). Never throws: anything malformed is false.
bool verify(std::string_view data, std::string_view signature, std::string_view publicKey) noexcept;

} // namespace UpdateLogic

} // namespace vantrel
