#include "StagePlan.hpp"

#include "JsonCoding.hpp"

namespace scrimlet {

using json::Json;

int StagePlan::count() const {
    const bool items[] = {hideDesktopIcons, hideDock,     hideOtherApps, tidyMenuBar, backdrop,
                          darkMode,         doNotDisturb, muteAlerts,    keepAwake};
    int n = resolution ? 1 : 0;
    for (const bool on : items) {
        n += on ? 1 : 0;
    }
    return n;
}

Json toJson(const StagePlan& plan) {
    Json out = Json::object();
    out["hideDesktopIcons"] = plan.hideDesktopIcons;
    out["hideDock"] = plan.hideDock;
    out["hideOtherApps"] = plan.hideOtherApps;
    out["tidyMenuBar"] = plan.tidyMenuBar;
    out["backdrop"] = plan.backdrop;
    out["darkMode"] = plan.darkMode;
    out["doNotDisturb"] = plan.doNotDisturb;
    out["muteAlerts"] = plan.muteAlerts;
    out["keepAwake"] = plan.keepAwake;
    if (plan.resolution) {
        out["resolution"] = toJson(*plan.resolution);
    }
    return out;
}

StagePlan stagePlanFromJson(const Json& value) {
    StagePlan plan;
    plan.hideDesktopIcons = json::decodeBool(json::field(value, "hideDesktopIcons"));
    plan.hideDock = json::decodeBool(json::field(value, "hideDock"));
    plan.hideOtherApps = json::decodeBool(json::field(value, "hideOtherApps"));
    plan.tidyMenuBar = json::decodeBool(json::field(value, "tidyMenuBar"));
    plan.backdrop = json::decodeBool(json::field(value, "backdrop"));
    plan.darkMode = json::decodeBool(json::field(value, "darkMode"));
    plan.doNotDisturb = json::decodeBool(json::field(value, "doNotDisturb"));
    plan.muteAlerts = json::decodeBool(json::field(value, "muteAlerts"));
    plan.keepAwake = json::decodeBool(json::field(value, "keepAwake"));
    if (const Json* resolution = json::optionalField(value, "resolution")) {
        plan.resolution = resolutionPresetFromJson(*resolution);
    }
    return plan;
}

} // namespace scrimlet
