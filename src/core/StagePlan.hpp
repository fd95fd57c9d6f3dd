#pragma once

#include "Effects.hpp"

#include <nlohmann/json_fwd.hpp>

#include <optional>

namespace scrimlet {

/// What a show does: nine items to switch on and an optional display size. The order in
/// which they are carried out is the cue sheet's, never the order of these fields.
struct StagePlan {
    bool hideDesktopIcons = true;
    bool hideDock = true;
    bool hideOtherApps = true;
    bool tidyMenuBar = false;
    bool backdrop = false;
    bool darkMode = false;
    bool doNotDisturb = true;
    bool muteAlerts = true;
    bool keepAwake = true;
    std::optional<ResolutionPreset> resolution;

    /// How many items the plan switches on: hiding other apps counts once, however many
    /// apps it hides, and a resolution counts once.
    int count() const;

    friend bool operator==(const StagePlan&, const StagePlan&) = default;
};

/// `resolution` is left out when absent.
nlohmann::ordered_json toJson(const StagePlan& plan);
/// Strict: all nine flags are required; only `resolution` may be missing.
StagePlan stagePlanFromJson(const nlohmann::ordered_json& value);

} // namespace scrimlet
