#include "SceneryControl.hpp"

#include "StageSystem.hpp"

namespace scrimlet {

SceneryControl::SceneryControl(SceneryPanels& panels, std::function<bool()> isTestRun)
    : panels_(panels)
    , isTestRun_(std::move(isTestRun))
    , hooks_(std::make_shared<SceneryHooks>()) {}

void SceneryControl::installHooks(SceneryHooks hooks) {
    *hooks_ = std::move(hooks);
}

BackdropStyle SceneryControl::backdropStyle() const {
    return hooks_->backdropStyle ? hooks_->backdropStyle() : BackdropStyle{};
}

std::pair<double, double> SceneryControl::spotlight() const {
    return hooks_->spotlight ? hooks_->spotlight() : defaultSpotlight;
}

bool SceneryControl::isOn(EffectKind kind) const {
    switch (kind) {
    case EffectKind::desktopIcons:
        return panels_.coverUp();
    case EffectKind::backdrop:
        return panels_.backdropUp();
    case EffectKind::menuBarTidy:
        return panels_.menuBarCollapsed();
    case EffectKind::spotlight:
        return panels_.spotlightUp();
    case EffectKind::keyboardLock:
        return panels_.keyboardLocked();
    default:
        return false;
    }
}

void SceneryControl::set(EffectKind kind, bool on) {
    if (isTestRun_()) {
        throw StageError::refusedInTestRun();
    }
    switch (kind) {
    case EffectKind::desktopIcons:
        on ? panels_.showCover() : panels_.hideCover();
        break;
    case EffectKind::backdrop:
        on ? panels_.showBackdrop(backdropStyle()) : panels_.hideBackdrop();
        break;
    case EffectKind::menuBarTidy:
        panels_.setMenuBarCollapsed(on);
        break;
    case EffectKind::spotlight: {
        const auto [radius, dim] = spotlight();
        on ? panels_.showSpotlight(radius, dim) : panels_.hideSpotlight();
        break;
    }
    case EffectKind::keyboardLock:
        if (on) {
            // The way back goes through the store and the journal, never straight to the
            // lock, so that the journal stays true.
            panels_.lockKeyboard([weak = std::weak_ptr<SceneryHooks>(hooks_)] {
                const auto hooks = weak.lock();
                if (hooks && hooks->onUnlockRequest) {
                    hooks->onUnlockRequest();
                }
            });
        } else {
            panels_.unlockKeyboard();
        }
        break;
    default:
        break;
    }
}

void SceneryControl::screensChanged() {
    if (panels_.coverUp()) {
        panels_.hideCover();
        panels_.showCover();
    }
    if (panels_.backdropUp()) {
        panels_.hideBackdrop();
        panels_.showBackdrop(backdropStyle());
    }
    if (panels_.spotlightUp()) {
        const auto [radius, dim] = spotlight();
        panels_.hideSpotlight();
        panels_.showSpotlight(radius, dim);
    }
}

void SceneryControl::restyleBackdrop() {
    if (panels_.backdropUp()) {
        panels_.hideBackdrop();
        panels_.showBackdrop(backdropStyle());
    }
}

} // namespace scrimlet
