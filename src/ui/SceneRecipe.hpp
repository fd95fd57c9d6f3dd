#pragma once

// How each of the scenery's windows is made: one borderless, non-activating panel per screen
// (or one in all for the countdown), at its own level, taking or ignoring the mouse, on every
// Space, and ordered in its own way. The platform applies the recipe; it decides nothing.

#include <cstdint>

namespace scrimlet {

enum class SceneWindow { cover, backdrop, spotlight, keyboardLock, countdown };

/// The window behaviours a recipe combines, as the system numbers them.
namespace SceneBehavior {
inline constexpr std::uint64_t canJoinAllSpaces = 1u << 0;
inline constexpr std::uint64_t stationary = 1u << 4;
inline constexpr std::uint64_t ignoresCycle = 1u << 6;
inline constexpr std::uint64_t fullScreenAuxiliary = 1u << 8;
} // namespace SceneBehavior

struct SceneRecipe {
    /// A panel that never activates the app.
    static constexpr std::uint64_t styleMask = 128;
    /// Drawn into a buffer.
    static constexpr std::uint64_t backing = 2;

    enum class Level {
        /// Just above the desktop icons, below every ordinary window.
        aboveDesktopIcons,
        /// The level of ordinary windows.
        normal,
        /// The assistive-technology level, above nearly everything.
        assistiveTechHigh,
        /// The number in `fixedLevel`.
        fixed,
    };
    enum class Ordering {
        front,
        /// Just behind the front window of the app in front.
        behindFront,
        /// In front even while another app is active.
        frontRegardless,
    };

    Level level = Level::normal;
    int fixedLevel = 0;
    bool ignoresMouse = false;
    std::uint64_t collectionBehavior = 0;
    Ordering ordering = Ordering::front;
    /// Kept out of what a screen share shows, where the system honours it.
    bool hiddenFromSharing = false;
    /// One panel for each screen, sized to it; otherwise one panel of its own size.
    bool perScreen = true;

    friend bool operator==(const SceneRecipe&, const SceneRecipe&) = default;
};

SceneRecipe sceneRecipe(SceneWindow window);

} // namespace scrimlet
