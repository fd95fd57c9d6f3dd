#include "HotkeySet.hpp"

namespace scrimlet {

HotkeySet::HotkeySet(HotkeyService& service, std::function<bool()> isTestRun)
    : service_(service)
    , isTestRun_(std::move(isTestRun)) {}

std::vector<std::uint32_t> HotkeySet::registerAll(std::vector<HotkeyEntry> entries) {
    if (isTestRun_ && isTestRun_()) {
        return {};
    }
    if (!installed_) {
        service_.installHandler();
        installed_ = true;
    }
    for (const auto& [identifier, token] : tokens_) {
        service_.unregisterKey(token);
    }
    tokens_.clear();
    actions_.clear();
    failures_.clear();
    for (auto& entry : entries) {
        if (!entry.hotkey.isUsable()) {
            continue;
        }
        const auto token =
            service_.registerKey(entry.hotkey.keyCode, entry.hotkey.modifiers, entry.identifier);
        if (!token) {
            failures_.push_back(entry.identifier);
            continue;
        }
        // Two entries under one identifier would leak the first key; the later one wins,
        // and the earlier is given back at once.
        if (const auto held = tokens_.find(entry.identifier); held != tokens_.end()) {
            service_.unregisterKey(held->second);
        }
        tokens_[entry.identifier] = *token;
        actions_[entry.identifier] = std::move(entry.action);
    }
    return failures_;
}

void HotkeySet::pressed(std::uint32_t identifier) const {
    const auto action = actions_.find(identifier);
    if (action != actions_.end() && action->second) {
        // A copy, so that an action that registers the set anew doesn't run from a freed slot.
        const auto run = action->second;
        run();
    }
}

} // namespace scrimlet
