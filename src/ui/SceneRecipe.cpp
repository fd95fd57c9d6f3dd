#include "SceneRecipe.hpp"

namespace scrimlet {

namespace {

using namespace SceneBehavior;

// Every Space, fixed in place, out of the window cycle, and beside full-screen apps.
constexpr std::uint64_t everywhere =
    canJoinAllSpaces | stationary | ignoresCycle | fullScreenAuxiliary;

} // namespace

SceneRecipe sceneRecipe(SceneWindow window) {
    using Level = SceneRecipe::Level;
    using Ordering = SceneRecipe::Ordering;
    switch (window) {
    case SceneWindow::cover:
        return {Level::aboveDesktopIcons, 0, false, everywhere, Ordering::front, false, true};
    case SceneWindow::backdrop:
        // Not beside full-screen apps: a backdrop there would hide the app it stands behind.
        return {Level::normal,         0,     false, everywhere & ~fullScreenAuxiliary,
                Ordering::behindFront, false, true};
    case SceneWindow::spotlight:
        return {Level::assistiveTechHigh,  0,     true, everywhere,
                Ordering::frontRegardless, false, true};
    case SceneWindow::keyboardLock:
        // The mouse stays alive: the card's button is the only way out.
        return {Level::fixed, 1000, false, everywhere, Ordering::frontRegardless, false, true};
    case SceneWindow::countdown:
        return {Level::fixed, 1000, true, everywhere, Ordering::frontRegardless, true, false};
    }
    return {};
}

} // namespace scrimlet
