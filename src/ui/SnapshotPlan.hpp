#pragma once

// What the snapshot run photographs, and the demo store behind each picture: the order of
// the shots, their file names, and the state each one shows are rules of their own, so the
// macOS run only hosts each view in a window and saves it.

#include "BackdropStyle.hpp"
#include "Color.hpp"
#include "Drawing.hpp"
#include "Font.hpp"
#include "Harness.hpp"
#include "StageStore.hpp"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

/// One of the two looks every view is shot in.
struct SnapshotLook {
    std::string_view name;
    Appearance appearance;
};

struct SnapshotShot {
    enum class View {
        /// The dropdown's content.
        dropdown,
        /// The settings window on `tab`.
        settings,
    };

    /// The beginning of the file's name; the look and ".png" follow.
    std::string name;
    View view = View::dropdown;
    std::optional<StageStore::SettingsTab> tab;
    /// The backdrop page shows this kind.
    std::optional<BackdropStyle::Kind> backdrop;
    /// The store holds no data of its own: no past shows, no kept apps, no pinned apps.
    bool empty = false;

    bool operator==(const SnapshotShot&) const = default;
};

namespace SnapshotPlan {

/// "light" with the aqua look, then "dark" with the dark aqua one.
inline constexpr std::array<SnapshotLook, 2> looks{
    {{"light", Appearance::light}, {"dark", Appearance::dark}}};

/// Every shot taken in each look, in order: the dropdown through the states of a show, each
/// settings page, the backdrop page for each kind of backdrop, and each page without data.
std::vector<SnapshotShot> shots();

/// "popover-idle-" + "dark" + ".png".
std::string fileName(const SnapshotShot& shot, const SnapshotLook& look);

/// A demo store, moved on the simulated Mac into the state the shot shows. Nothing is
/// written anywhere.
std::shared_ptr<StageStore> stage(const SnapshotShot& shot);

/// Whether the process stays alive after the shots, to look at what was shot: when
/// "SCRIMLET_SNAPSHOT_STAY" is set, to anything at all.
bool staysAfterShots(const Harness::Environment& environment);

// Taken once, without the looks.

/// The three states of the menu-bar glyph, side by side.
inline constexpr std::string_view menuBarGlyphs = "menubar-glyphs.png";
inline constexpr std::string_view countdownOverlay = "overlay-countdown.png";
inline constexpr std::string_view keyboardLockOverlay = "overlay-keyboard-lock.png";
inline constexpr std::string_view spotlightOverlay = "overlay-spotlight.png";
/// The folder with a picture of each kind of backdrop.
inline constexpr std::string_view backdropsFolder = "backdrops";
/// The picture of one kind of backdrop in that folder: its raw name and ".png".
std::string backdropFileName(BackdropStyle::Kind kind);

/// The images the pictures name, which the platform supplies: the painted desktop picture,
/// standing for the user's own picture, and its blurred copy, standing for the wallpaper.
inline constexpr std::string_view paintedWallpaper = "demo-wallpaper";
inline constexpr std::string_view blurredWallpaper = "wallpaper";
/// The screen the scene windows and backdrops are shown for: the demo's one display.
Size screenSize();

/// A picture taken once: its file, under the run's folder, and what it shows.
struct Picture {
    std::string file;
    Drawing drawing;
};

/// The menu-bar glyphs, the three scene windows and the five backdrops, in that order. Text
/// is fitted by `measure`.
std::vector<Picture> pictures(const TextMeasurer& measure);

} // namespace SnapshotPlan

} // namespace scrimlet
