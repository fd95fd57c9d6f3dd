#include "KeyboardLockRules.hpp"
#include "SceneRecipe.hpp"
#include "SceneryControl.hpp"
#include "SpotlightView.hpp"

#include "StageSystem.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace scrimlet {
namespace {

// Panels as lists of calls, up or down as the calls left them.
class RecordingPanels : public SceneryPanels {
public:
    std::vector<std::string> calls;
    bool cover = false, backdrop = false, spot = false, locked = false, collapsed = false;
    std::function<void()> done;
    std::optional<StageError> lockError;
    BackdropStyle lastStyle;
    std::pair<double, double> lastSpot;

    bool coverUp() const override { return cover; }
    void showCover() override { record("showCover"), cover = true; }
    void hideCover() override { record("hideCover"), cover = false; }
    bool backdropUp() const override { return backdrop; }
    void showBackdrop(const BackdropStyle& style) override {
        record("showBackdrop"), lastStyle = style, backdrop = true;
    }
    void hideBackdrop() override { record("hideBackdrop"), backdrop = false; }
    bool spotlightUp() const override { return spot; }
    void showSpotlight(double radius, double dim) override {
        record("showSpotlight"), lastSpot = {radius, dim}, spot = true;
    }
    void hideSpotlight() override { record("hideSpotlight"), spot = false; }
    bool keyboardLocked() const override { return locked; }
    void lockKeyboard(std::function<void()> then) override {
        record("lock");
        if (lockError) {
            throw *lockError;
        }
        done = std::move(then);
        locked = true;
    }
    void unlockKeyboard() override { record("unlock"), locked = false; }
    bool menuBarCollapsed() const override { return collapsed; }
    void setMenuBarCollapsed(bool value) override {
        record(value ? "collapse" : "expand");
        if (value && lockError) {
            throw *lockError;
        }
        collapsed = value;
    }

private:
    void record(const char* call) { calls.emplace_back(call); }
};

TEST(SceneryControl, EachSceneKindPutsItsPanelsUpAndDown) {
    RecordingPanels panels;
    bool testRun = false;
    SceneryControl scenery(panels, [&] { return testRun; });

    // Without a store: the default mesh of footlights, and a spotlight of 110 at 0.55.
    scenery.set(EffectKind::backdrop, true);
    EXPECT_EQ(panels.lastStyle.kind, BackdropStyle::Kind::mesh);
    EXPECT_EQ(panels.lastStyle.colors, BackdropStyle::footlights());
    EXPECT_EQ(panels.lastStyle.angle, 135);
    EXPECT_EQ(panels.lastStyle.blur, 40);
    EXPECT_EQ(panels.lastStyle.dim, 0.15);
    EXPECT_FALSE(panels.lastStyle.picturePath.has_value());
    scenery.set(EffectKind::spotlight, true);
    EXPECT_EQ(panels.lastSpot, (std::pair<double, double>{110, 0.55}));

    for (const EffectKind kind :
         {EffectKind::desktopIcons, EffectKind::backdrop, EffectKind::spotlight,
          EffectKind::keyboardLock, EffectKind::menuBarTidy}) {
        scenery.set(kind, true);
        EXPECT_TRUE(scenery.isOn(kind)) << rawValue(kind);
        scenery.set(kind, false);
        EXPECT_FALSE(scenery.isOn(kind)) << rawValue(kind);
    }
    // Kinds that are not scenery: nothing, no error, never on.
    panels.calls.clear();
    for (const EffectKind kind : {EffectKind::darkMode, EffectKind::dockAutohide,
                                  EffectKind::keepAwake, EffectKind::appHidden}) {
        EXPECT_NO_THROW(scenery.set(kind, true));
        EXPECT_FALSE(scenery.isOn(kind));
    }
    EXPECT_TRUE(panels.calls.empty());

    // In a test run everything is refused before anything happens, even taking down.
    testRun = true;
    for (const EffectKind kind : effect_kind::allCases) {
        for (const bool on : {true, false}) {
            try {
                scenery.set(kind, on);
                ADD_FAILURE() << rawValue(kind) << " was not refused";
            } catch (const StageError& error) {
                EXPECT_EQ(error.kind(), StageError::Case::refusedInTestRun);
            }
        }
    }
    EXPECT_TRUE(panels.calls.empty());
}

TEST(SceneryControl, TheLockAsksTheStoreAndErrorsPassThrough) {
    RecordingPanels panels;
    SceneryControl scenery(panels, [] { return false; });
    scenery.set(EffectKind::keyboardLock, true);
    ASSERT_TRUE(panels.done);
    panels.done(); // no store yet: harmless

    int requests = 0;
    scenery.installHooks({{}, {}, [&] { ++requests; }});
    panels.done();
    EXPECT_EQ(requests, 1);
    // The click asks; it does not unlock by itself.
    EXPECT_TRUE(scenery.isOn(EffectKind::keyboardLock));

    // The button outlives the scenery harmlessly.
    auto orphan = panels.done;
    {
        RecordingPanels other;
        SceneryControl gone(other, [] { return false; });
        gone.installHooks({{}, {}, [&] { ++requests; }});
        gone.set(EffectKind::keyboardLock, true);
        orphan = other.done;
    }
    orphan();
    EXPECT_EQ(requests, 1);

    panels.lockError = StageError::failed(std::string(KeyboardLockRules::needsAccessibility));
    scenery.set(EffectKind::keyboardLock, false);
    try {
        scenery.set(EffectKind::keyboardLock, true);
        ADD_FAILURE() << "no error";
    } catch (const StageError& error) {
        EXPECT_EQ(error.description(), "Allow Scrimlet in Privacy & Security › Accessibility");
    }
    EXPECT_FALSE(scenery.isOn(EffectKind::keyboardLock));
    EXPECT_THROW(scenery.set(EffectKind::menuBarTidy, true), StageError);
}

TEST(SceneryControl, NewScreensRebuildOnlyWhatIsUp) {
    RecordingPanels panels;
    SceneryControl scenery(panels, [] { return false; });
    BackdropStyle style;
    style.kind = BackdropStyle::Kind::color;
    double radius = 140;
    scenery.installHooks({[&] { return style; }, [&] { return std::pair{radius, 0.7}; }, {}});

    scenery.set(EffectKind::desktopIcons, true);
    scenery.set(EffectKind::keyboardLock, true);
    panels.calls.clear();
    scenery.screensChanged();
    EXPECT_EQ(panels.calls, (std::vector<std::string>{"hideCover", "showCover"}));

    scenery.set(EffectKind::backdrop, true);
    scenery.set(EffectKind::spotlight, true);
    style.kind = BackdropStyle::Kind::gradient;
    radius = 90;
    panels.calls.clear();
    scenery.screensChanged();
    EXPECT_EQ(panels.calls,
              (std::vector<std::string>{"hideCover", "showCover", "hideBackdrop", "showBackdrop",
                                        "hideSpotlight", "showSpotlight"}));
    // Rebuilt in the style and the size of now.
    EXPECT_EQ(panels.lastStyle.kind, BackdropStyle::Kind::gradient);
    EXPECT_EQ(panels.lastSpot.first, 90);

    panels.calls.clear();
    scenery.restyleBackdrop();
    EXPECT_EQ(panels.calls, (std::vector<std::string>{"hideBackdrop", "showBackdrop"}));
    scenery.set(EffectKind::backdrop, false);
    panels.calls.clear();
    scenery.restyleBackdrop();
    EXPECT_TRUE(panels.calls.empty());
}

TEST(SceneryControl, RecipesAndTheLocksRules) {
    // Every scene window is on every Space and out of the cycle; all but the backdrop stand
    // beside full-screen apps.
    EXPECT_EQ(sceneRecipe(SceneWindow::cover).collectionBehavior, 337u);
    EXPECT_EQ(sceneRecipe(SceneWindow::backdrop).collectionBehavior, 81u);
    for (const SceneWindow window :
         {SceneWindow::spotlight, SceneWindow::keyboardLock, SceneWindow::countdown}) {
        EXPECT_EQ(sceneRecipe(window).collectionBehavior, 337u);
    }
    EXPECT_EQ(sceneRecipe(SceneWindow::cover).level, SceneRecipe::Level::aboveDesktopIcons);
    EXPECT_EQ(sceneRecipe(SceneWindow::backdrop).ordering, SceneRecipe::Ordering::behindFront);
    EXPECT_EQ(sceneRecipe(SceneWindow::keyboardLock).fixedLevel, 1000);
    // The mouse passes through the spotlight and the countdown, and only there.
    EXPECT_TRUE(sceneRecipe(SceneWindow::spotlight).ignoresMouse);
    EXPECT_TRUE(sceneRecipe(SceneWindow::countdown).ignoresMouse);
    EXPECT_FALSE(sceneRecipe(SceneWindow::keyboardLock).ignoresMouse);
    EXPECT_FALSE(sceneRecipe(SceneWindow::cover).ignoresMouse);
    EXPECT_TRUE(sceneRecipe(SceneWindow::countdown).hiddenFromSharing);
    EXPECT_FALSE(sceneRecipe(SceneWindow::countdown).perScreen);

    EXPECT_EQ(KeyboardLockRules::eventMask, 23552u);
    using KeyboardLockRules::TapVerdict;
    for (const std::uint32_t type : {10u, 11u, 12u, 14u, 0xFFFFFFFDu}) {
        EXPECT_EQ(KeyboardLockRules::verdict(type), TapVerdict::drop) << type;
    }
    EXPECT_EQ(KeyboardLockRules::verdict(0xFFFFFFFEu), TapVerdict::reenableAndPass);
    EXPECT_EQ(KeyboardLockRules::verdict(0xFFFFFFFFu), TapVerdict::reenableAndPass);

    // A resting pointer costs no drawing; a move of any size does.
    PointerWatch watch;
    EXPECT_EQ(watch.last(), PointerWatch::atRest);
    EXPECT_TRUE(watch.moved({100, 100}));
    EXPECT_FALSE(watch.moved({100, 100}));
    EXPECT_TRUE(watch.moved({100, 100.25}));
    watch.reset();
    EXPECT_TRUE(watch.moved({100, 100.25}));
}

} // namespace
} // namespace scrimlet
