#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace vantrel {

/// What an app bundle says about itself.
struct BundleFacts {
    std::filesystem::path path;
    std::optional<std::string> bundleIdentifier;
    /// The text values of its Info dictionary; keys with values of other types are absent.
    std::map<std::string, std::string> info;

    std::optional<std::string> infoString(const std::string& key) const {
        const auto found = info.find(key);
        return found == info.end() ? std::nullopt : std::optional<std::string>(found->second);
    }

    bool operator==(const BundleFacts&) const = default;
};

/// The questions about files that plain file access cannot answer the platform's way. Any
/// thread.
class BundleFiles {
public:
    virtual ~BundleFiles() = default;

    /// Opens the app bundle at `path`; nothing when it is not one.
    virtual std::optional<BundleFacts> open(const std::filesystem::path& path) const = 0;
    /// Whether the user may write to the file or folder at `path`.
    virtual bool isWritable(const std::filesystem::path& path) const = 0;
};

} // namespace vantrel
