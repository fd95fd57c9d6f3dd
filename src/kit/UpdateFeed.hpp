#pragma once

// The small JSON document the maker publishes for each release. Only the archive it points
// to is signed, so nothing read here is trusted beyond deciding whether to look further.

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vantrel {

struct UpdateFeed {
    /// The archive for an update in place.
    struct Download {
        std::string url;
        /// The exact size of the archive in bytes; the download is held to it.
        std::int64_t length = 0;
        /// Base64 of the Ed25519 signature over the archive's bytes.
        std::string edSignature;

        bool operator==(const Download&) const = default;
    };

    /// The version on offer, in the form of the bundle's short version string.
    std::string version;
    /// The web page for a download by hand.
    std::string url;
    std::optional<std::string> notes;
    /// The lowest macOS version, dotted.
    std::optional<std::string> minimumSystemVersion;
    /// Without it the app can only point the user to `url`.
    std::optional<Download> download;

    bool operator==(const UpdateFeed&) const = default;

    /// Decodes a feed document. Required keys must be there with the right type, optional ones
    /// may be missing or null, unknown keys are ignored. Nothing for anything else.
    static std::optional<UpdateFeed> decode(std::string_view text);
    static std::optional<UpdateFeed> fromJson(const nlohmann::json& value);
    /// Absent optionals are left out, as the maker's tools write them.
    nlohmann::json toJson() const;
};

/// A step of an update that failed, with the sentence the user is shown.
struct UpdateError : std::exception {
    explicit UpdateError(std::string text)
        : message(std::move(text)) {}
    const char* what() const noexcept override { return message.c_str(); }

    std::string message;
};

} // namespace vantrel
