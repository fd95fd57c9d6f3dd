#include "CueSheet.hpp"

#include <algorithm>
#include <cstdint>

namespace scrimlet::CueSheet {

NameOrder nameOrder = plainNameOrder;

namespace {

char asciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::vector<Cue> single(EffectKind kind, JournalValue value) {
    return {Cue{EffectKey(kind), std::move(value)}};
}

} // namespace

std::weak_ordering plainNameOrder(std::string_view a, std::string_view b) {
    const size_t common = std::min(a.size(), b.size());
    for (size_t i = 0; i < common; ++i) {
        const auto left = static_cast<unsigned char>(asciiLower(a[i]));
        const auto right = static_cast<unsigned char>(asciiLower(b[i]));
        if (left != right) {
            return left <=> right;
        }
    }
    return a.size() <=> b.size();
}

std::vector<Cue> hideApps(StageSystem& system, const std::set<std::string>& keep) {
    std::vector<AppInfo> apps = system.runningApps();
    std::erase_if(apps, [&](const AppInfo& app) {
        return !app.isRegular || app.isHidden || keep.contains(app.bundleID);
    });
    const NameOrder order = nameOrder ? nameOrder : NameOrder(plainNameOrder);
    std::stable_sort(apps.begin(), apps.end(),
                     [&](const AppInfo& a, const AppInfo& b) { return order(a.name, b.name) < 0; });
    std::vector<Cue> out;
    out.reserve(apps.size());
    for (const AppInfo& app : apps) {
        out.push_back(Cue{EffectKey::app(app), JournalValue::boolean(true)});
    }
    return out;
}

std::vector<Cue> cues(const StagePlan& plan, StageSystem& system,
                      const std::set<std::string>& keep) {
    std::vector<Cue> out;
    const auto add = [&](bool on, EffectKind kind, JournalValue value) {
        if (on) {
            out.push_back(Cue{EffectKey(kind), std::move(value)});
        }
    };
    const JournalValue on = JournalValue::boolean(true);
    add(plan.hideDesktopIcons, EffectKind::desktopIcons, on);
    if (plan.hideOtherApps) {
        for (Cue& cue : hideApps(system, keep)) {
            out.push_back(std::move(cue));
        }
    }
    add(plan.backdrop, EffectKind::backdrop, on);
    add(plan.tidyMenuBar, EffectKind::menuBarTidy, on);
    add(plan.hideDock, EffectKind::dockAutohide, on);
    add(plan.darkMode, EffectKind::darkMode, on);
    add(plan.muteAlerts, EffectKind::alertVolume, JournalValue::number(0));
    add(plan.doNotDisturb, EffectKind::doNotDisturb, on);
    add(plan.keepAwake, EffectKind::keepAwake, on);
    // A size the main display does not offer simply drops out; the show tells the user.
    if (plan.resolution) {
        if (const auto display = system.mainDisplay()) {
            if (auto value = system.displayModeValue(*plan.resolution, *display)) {
                out.push_back(Cue{EffectKey(EffectKind::displayMode, std::to_string(*display)),
                                  std::move(*value)});
            }
        }
    }
    return out;
}

std::vector<Cue> cues(SwitchKind kind, StageSystem& system, const std::set<std::string>& keep) {
    const JournalValue on = JournalValue::boolean(true);
    switch (kind) {
    case SwitchKind::hideOtherApps:
        return hideApps(system, keep);
    case SwitchKind::muteAlerts:
        return single(EffectKind::alertVolume, JournalValue::number(0));
    case SwitchKind::muteMic:
        if (auto device = system.defaultInputDevice()) {
            return {Cue{EffectKey(EffectKind::micMute, std::move(*device)), on}};
        }
        return {};
    case SwitchKind::screenSaver:
        return {};
    default:
        return single(*CueSheet::kind(kind), on);
    }
}

std::optional<EffectKind> kind(SwitchKind kind) {
    switch (kind) {
    case SwitchKind::hideDesktopIcons:
        return EffectKind::desktopIcons;
    case SwitchKind::hideDock:
        return EffectKind::dockAutohide;
    case SwitchKind::hideOtherApps:
        return EffectKind::appHidden;
    case SwitchKind::tidyMenuBar:
        return EffectKind::menuBarTidy;
    case SwitchKind::backdrop:
        return EffectKind::backdrop;
    case SwitchKind::darkMode:
        return EffectKind::darkMode;
    case SwitchKind::doNotDisturb:
        return EffectKind::doNotDisturb;
    case SwitchKind::keepAwake:
        return EffectKind::keepAwake;
    case SwitchKind::muteAlerts:
        return EffectKind::alertVolume;
    case SwitchKind::muteMic:
        return EffectKind::micMute;
    case SwitchKind::spotlight:
        return EffectKind::spotlight;
    case SwitchKind::lockKeyboard:
        return EffectKind::keyboardLock;
    case SwitchKind::screenSaver:
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace scrimlet::CueSheet
