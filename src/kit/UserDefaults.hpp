#pragma once

#include <optional>
#include <string>

namespace vantrel {

/// The user's defaults of the app, as far as the updater keeps anything in them. Main thread.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// The value under `key` when it is there and is a Bool; nothing otherwise.
    virtual std::optional<bool> boolValue(const std::string& key) const = 0;
    virtual void setBool(const std::string& key, bool value) = 0;
};

} // namespace vantrel
