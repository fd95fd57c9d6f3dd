#pragma once

// The rules of the scenery, the single owner of the windows Scrimlet puts on the screens:
// which effect kinds are scenery, what turning each on or off does, the refusal in a test
// run, and what is rebuilt when the screens change. The platform supplies the panels.
// Main thread only.

#include "BackdropStyle.hpp"
#include "Effects.hpp"
#include "StagePlatform.hpp"

#include <functional>
#include <memory>
#include <utility>

namespace scrimlet {

/// The scene controllers as the platform implements them. Each is up or down, decided by
/// its own windows or tap alone, so that what `isOn` answers is what the screen shows.
class SceneryPanels {
public:
    virtual ~SceneryPanels() = default;

    virtual bool coverUp() const = 0;
    virtual void showCover() = 0;
    virtual void hideCover() = 0;

    virtual bool backdropUp() const = 0;
    /// No effect when already up.
    virtual void showBackdrop(const BackdropStyle& style) = 0;
    virtual void hideBackdrop() = 0;

    virtual bool spotlightUp() const = 0;
    /// No effect when already up.
    virtual void showSpotlight(double radius, double dim) = 0;
    virtual void hideSpotlight() = 0;

    virtual bool keyboardLocked() const = 0;
    /// Throws `StageError` when the system will not let the keyboard be locked. `done` runs
    /// when the user clicks the card's button. No effect when already locked.
    virtual void lockKeyboard(std::function<void()> done) = 0;
    virtual void unlockKeyboard() = 0;

    virtual bool menuBarCollapsed() const = 0;
    /// Throws `StageError` without a divider.
    virtual void setMenuBarCollapsed(bool collapsed) = 0;
};

class SceneryControl {
public:
    /// The spotlight of a run without a store: radius 110, dim 0.55.
    static constexpr std::pair<double, double> defaultSpotlight{110, 0.55};

    SceneryControl(SceneryPanels& panels, std::function<bool()> isTestRun);

    /// The store's closures; one that is missing keeps the default.
    void installHooks(SceneryHooks hooks);
    /// The style the backdrop shows: the store's, or the default mesh of footlights.
    BackdropStyle backdropStyle() const;
    /// The spotlight's radius and dim.
    std::pair<double, double> spotlight() const;

    /// Whether a scene effect is on screen: false for every kind that is not scenery.
    bool isOn(EffectKind kind) const;
    /// Puts a scene effect up or takes it down. In a test run it refuses before anything
    /// else, whatever the kind. Kinds that are not scenery do nothing. The keyboard lock and
    /// the menu bar can throw; their errors pass through.
    void set(EffectKind kind, bool on);
    /// Rebuilds what is up on the new screens: the cover, the backdrop in the current style,
    /// the spotlight with the current radius and dim. The keyboard lock and the countdown
    /// stay as they are.
    void screensChanged();
    /// Shows the backdrop again in the current style, if it is up.
    void restyleBackdrop();

private:
    SceneryPanels& panels_;
    std::function<bool()> isTestRun_;
    /// Shared with the keyboard lock's button, which must not outlive what it calls.
    std::shared_ptr<SceneryHooks> hooks_;
};

} // namespace scrimlet
