#pragma once

// The set of global hotkeys the app holds, over the system's hot-key service. The set is
// replaced whole on each `registerAll`, never patched, so that what is registered is always
// exactly what the settings say. Main thread only: the platform hops each key press to the
// main queue before it calls `pressed`.

#include "StagePlatform.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace scrimlet {

/// The system's hot-key service, as plain calls.
class HotkeyService {
public:
    using Token = std::uintptr_t;

    virtual ~HotkeyService() = default;
    /// Installs the one handler for key presses; called once, before the first registration.
    virtual void installHandler() = 0;
    /// Claims a key for the app under `identifier`; nothing if the system refused it, for
    /// instance because another app holds it.
    virtual std::optional<Token> registerKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                             std::uint32_t identifier) = 0;
    virtual void unregisterKey(Token token) = 0;
};

class HotkeySet {
public:
    /// `isTestRun` is asked at each registration: a scripted run registers nothing.
    HotkeySet(HotkeyService& service, std::function<bool()> isTestRun);

    /// Drops every key held, then claims each entry in order; answers the identifiers that
    /// could not be had. An entry that is not usable (`Hotkey::isUsable`) is left out in
    /// silence: it is no failure.
    std::vector<std::uint32_t> registerAll(std::vector<HotkeyEntry> entries);
    /// A registered key was pressed. An identifier with no action does nothing.
    void pressed(std::uint32_t identifier) const;

    size_t registered() const { return tokens_.size(); }
    const std::vector<std::uint32_t>& failures() const { return failures_; }

private:
    HotkeyService& service_;
    std::function<bool()> isTestRun_;
    bool installed_ = false;
    std::map<std::uint32_t, HotkeyService::Token> tokens_;
    std::map<std::uint32_t, std::function<void()>> actions_;
    std::vector<std::uint32_t> failures_;
};

} // namespace scrimlet
