#pragma once

// The product film as a script: the scenes the demo store is moved through, what the
// painted cursor points at and clicks, and what the captions say. The platform hosts the
// dropdown and supplies the camera; the script decides everything the film shows.

#include "Color.hpp"
#include "DemoRecorder.hpp"
#include "StageStore.hpp"
#include "ViewModel.hpp"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

/// Where the film is shown: the dropdown, hosted for the filmed store.
class DemoFilmStage {
public:
    virtual ~DemoFilmStage() = default;
    /// The dropdown shows the store as it is now, laid out, its anchors where its views are.
    virtual void refresh() = 0;
    /// What the dropdown's actions reach beyond the store.
    virtual InterfaceHost& host() = 0;
};

namespace DemoFilmScript {

/// The film's name in its project file.
inline constexpr std::string_view name = "Scrimlet";
/// Frames a second.
inline constexpr int fps = 30;
/// Film seconds for each second the demo store is driven, so that a countdown counts in
/// real time.
inline constexpr double secondOnFilm = 1;
/// The most driven seconds a scene waits for the store to reach its state.
inline constexpr int patience = 10;

/// The film's folder from the value of "SCRIMLET_DEMO_DIR", made absolute against the
/// current folder. Throws `vantrel::DemoFailure` (`script`) for an empty value.
std::filesystem::path folder(const std::string& value);

/// What the film shows of the screen: the dropdown's window with room around it, tall
/// enough for the dropdown at its tallest, in global points with the origin at the top
/// left.
Rect region(const Rect& window);
/// The room around the window.
inline constexpr double margin = 40;
/// The dropdown's tallest, in points, which the region always holds.
inline constexpr double tallest = 720;

/// The ground behind the dropdown, from the top down: the curtain's velvet into the dark.
std::vector<Color> backdrop();

/// The store the film shows: the demo store with its past shows, kept in memory.
std::shared_ptr<StageStore> store();

/// Starts the recorder and plays every scene: the idle dropdown, a Zoom share that raises
/// the curtain by itself, its end and the run sheet's note, a start by hand with its
/// countdown and its end, a switch clicked. Leaves the recorder running for `finish`.
/// Throws `vantrel::DemoFailure`: `noAnchor` when a view the script points at has not
/// reported itself, `script` when the store does not reach a scene's state.
void play(StageStore& store, DemoFilmStage& stage, vantrel::DemoRecorder& recorder);

} // namespace DemoFilmScript

} // namespace scrimlet
