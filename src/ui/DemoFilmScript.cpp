#include "DemoFilmScript.hpp"

#include "DemoCapture.hpp"
#include "Dropdown.hpp"
#include "DropdownAnchors.hpp"
#include "FakeStageSystem.hpp"
#include "Harness.hpp"
#include "Theme.hpp"

#include <algorithm>
#include <system_error>

#include <functional>
#include <string>

namespace scrimlet::DemoFilmScript {

namespace {

using vantrel::DemoFailure;
using Phase = ShowPhase::Case;

/// How long the cursor takes to travel to what it points at.
constexpr double travel = 0.9;
/// How long a caption stays up after its scene has settled, to be read.
constexpr double reading = 2.5;

class Player {
public:
    Player(StageStore& store, DemoFilmStage& stage, vantrel::DemoRecorder& recorder)
        : store_(store)
        , stage_(stage)
        , film_(recorder) {}

    void play() {
        stage_.refresh();
        // The cursor rests on the big button from the first frame.
        film_.moveToAnchor(std::string(DropdownAnchors::action), 0);
        film_.start();
        film_.wait(0.5);
        idle();
        shareArrives();
        shareEnds();
        startByHand();
        clickSwitch();
        film_.caption("Scrimlet. Share your screen, not your desktop.");
        film_.wait(reading);
        film_.clearCaption();
        film_.wait(0.5);
    }

private:
    void idle() {
        film_.caption("Scrimlet waits in the menu bar, curtain down.");
        film_.wait(1.5);
        film_.moveToAnchor(std::string(DropdownAnchors::cueList), travel);
        film_.caption("Its cue list: what it will tidy away the moment you share.");
        film_.wait(reading);
    }

    void shareArrives() {
        film_.caption("A Zoom call starts sharing the screen…");
        observeUntil(DemoCapture::zoomSharing(), Phase::live,
                     "demo: the curtain did not rise for the Zoom share");
        film_.caption("…and the curtain rose by itself. Nothing to click.");
        film_.moveToAnchor(std::string(DropdownAnchors::cueList), travel);
        film_.wait(reading);
    }

    void shareEnds() {
        film_.caption("The share ends, and everything comes back as it was.");
        observeUntil(DemoCapture::idle(), Phase::dark,
                     "demo: the curtain did not fall when the share ended");
        film_.wait(1);
        film_.moveToAnchor(std::string(DropdownAnchors::note), travel);
        film_.caption("Every show leaves a run sheet of what was done and put back.");
        film_.wait(reading);
    }

    void startByHand() {
        film_.caption("Or raise the curtain yourself, with a count of three.");
        clickAction();
        for (int second = 0; second < patience && store_.phase().kind() == Phase::standby;
             ++second) {
            store_.demoAdvance(1);
            stage_.refresh();
            film_.wait(secondOnFilm);
        }
        require(Phase::live, "demo: the countdown did not raise the curtain");
        film_.caption("Curtain up. One click brings it down again.");
        film_.wait(reading);
        clickAction();
        require(Phase::dark, "demo: the curtain did not fall from the dropdown");
        film_.wait(1.5);
    }

    void clickSwitch() {
        const DropdownModel model = Dropdown::model(store_);
        if (!model.home || model.home->switches.tiles.empty()) {
            throw DemoFailure::script("demo: no switch is pinned to the dropdown");
        }
        const SwitchTileModel tile = model.home->switches.tiles.front();
        film_.caption("One-click switches, put back just as safely.");
        film_.wait(1);
        film_.click(DropdownAnchors::switchTile(tile.kind), travel, [&] { perform(tile.action); });
        if (store_.board().isOn(tile.kind) == tile.on) {
            throw DemoFailure::script("demo: the switch " + std::string(rawValue(tile.kind)) +
                                      " did not change");
        }
        film_.wait(reading);
    }

    /// Clicks the action row's first button, whatever it is now.
    void clickAction() {
        const DropdownModel model = Dropdown::model(store_);
        if (!model.home || model.home->actionRow.buttons.empty()) {
            throw DemoFailure::script("demo: the dropdown shows no action");
        }
        const UiAction action = model.home->actionRow.buttons.front().action;
        film_.click(std::string(DropdownAnchors::action), travel, [&] { perform(action); });
    }

    void perform(const UiAction& action) {
        scrimlet::perform(action, store_, stage_.host());
        stage_.refresh();
    }

    /// Feeds the window list second by second until the show reaches `phase`.
    void observeUntil(const CaptureSnapshot& snapshot, Phase phase, const char* failure) {
        for (int second = 0; second < patience && store_.phase().kind() != phase; ++second) {
            store_.demoObserve(snapshot);
            stage_.refresh();
            film_.wait(secondOnFilm);
        }
        require(phase, failure);
    }

    void require(Phase phase, const char* failure) const {
        if (store_.phase().kind() != phase) {
            throw DemoFailure::script(failure);
        }
    }

    StageStore& store_;
    DemoFilmStage& stage_;
    vantrel::DemoRecorder& film_;
};

} // namespace

std::filesystem::path folder(const std::string& value) {
    if (value.empty()) {
        throw DemoFailure::script("demo: SCRIMLET_DEMO_DIR names no folder");
    }
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(value, error);
    return error ? std::filesystem::path(value) : absolute.lexically_normal();
}

Rect region(const Rect& window) {
    return {window.x - margin, window.y - margin, window.width + 2 * margin,
            std::max(window.height, tallest) + 2 * margin};
}

std::vector<Color> backdrop() {
    return {Theme::velvetMid, Theme::velvetDeep, Theme::stageBlack};
}

std::shared_ptr<StageStore> store() {
    return StageStore::demo(Harness::demoNow(), std::nullopt, std::nullopt, FakeStageSystem::demo(),
                            true);
}

void play(StageStore& store, DemoFilmStage& stage, vantrel::DemoRecorder& recorder) {
    Player(store, stage, recorder).play();
}

} // namespace scrimlet::DemoFilmScript
