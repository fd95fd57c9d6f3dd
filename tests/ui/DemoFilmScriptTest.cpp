#include "DemoFilmScript.hpp"

#include "Dropdown.hpp"
#include "DropdownAnchors.hpp"
#include "FakeStageSystem.hpp"
#include "FilmFakes.hpp"
#include "Harness.hpp"
#include "InterfaceRig.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <set>

namespace scrimlet {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using vantrel::DemoAnchors;
using vantrel::DemoFailure;

/// The dropdown as the views lay it out, each part reporting its anchor while it is shown,
/// and the states of the store it was asked to show, each once.
class FilmedDropdown : public DemoFilmStage {
public:
    FilmedDropdown(StageStore& store, DemoAnchors& anchors)
        : store_(store)
        , anchors_(anchors) {}

    void refresh() override {
        const auto reported = anchors_.frames();
        for (const auto& [id, frame] : reported) {
            anchors_.remove(id);
        }
        const DropdownModel model = Dropdown::model(store_);
        const HomeModel& home = *model.home;
        double y = 180;
        anchors_.set(std::string(DropdownAnchors::action), {112, y, 336, 32});
        y += 40;
        if (home.note) {
            anchors_.set(std::string(DropdownAnchors::note), {112, y, 336, 48});
            y += 56;
        }
        anchors_.set(std::string(DropdownAnchors::cueList), {112, y, 336, 180});
        y += 190;
        for (size_t i = 0; i < home.switches.tiles.size(); ++i) {
            const SwitchKind kind = home.switches.tiles[i].kind;
            if (!hiddenTiles.contains(kind)) {
                anchors_.set(DropdownAnchors::switchTile(kind),
                             {112 + (i % 2) * 170.0, y + (i / 2) * 52.0, 166, 46});
            }
        }
        std::string state(phaseName());
        if (const auto& count = store_.countdown()) {
            state += " " + std::to_string(*count);
        }
        if (home.note) {
            state += " · note";
        }
        for (const SwitchKind kind : switch_kind::allCases) {
            if (store_.board().isOn(kind)) {
                state += " · " + std::string(rawValue(kind));
            }
        }
        if (states.empty() || states.back() != state) {
            states.push_back(state);
        }
    }

    InterfaceHost& host() override { return host_; }

    std::vector<std::string> states;
    std::set<SwitchKind> hiddenTiles;
    testing::RecordingHost host_;

private:
    std::string_view phaseName() const {
        switch (store_.phase().kind()) {
        case ShowPhase::Case::dark:
            return "dark";
        case ShowPhase::Case::standby:
            return "standby";
        case ShowPhase::Case::live:
            return "live";
        }
        return "";
    }

    StageStore& store_;
    DemoAnchors& anchors_;
};

Json readJson(const fs::path& path) {
    std::ifstream in(path);
    return Json::parse(in);
}

class DemoFilmScriptTest : public ::testing::Test {
protected:
    testing::TempDir temp;
    fs::path folder = temp / "film";
    std::shared_ptr<vantrel::testing::FakeClock> clock =
        std::make_shared<vantrel::testing::FakeClock>();
    std::shared_ptr<vantrel::testing::FakeCamera> camera =
        std::make_shared<vantrel::testing::FakeCamera>();
    std::shared_ptr<DemoAnchors> anchors = std::make_shared<DemoAnchors>();

    std::shared_ptr<vantrel::DemoRecorder> recorder() {
        return vantrel::DemoRecorder::create(folder, {80, 60, 420, 580}, DemoFilmScript::fps,
                                             {{{0, 0, 1512, 982}, 2}}, {clock, camera, anchors});
    }

    Point centreOf(const std::string& id) const { return anchors->frame(id)->center(); }
};

TEST_F(DemoFilmScriptTest, FilmsTheShowThroughEveryStateAndLeavesTheEditorsFiles) {
    const auto store = DemoFilmScript::store();
    FilmedDropdown stage(*store, *anchors);
    const auto film = recorder();
    DemoFilmScript::play(*store, stage, *film);

    // A share raises the curtain with no countdown, its end leaves the run sheet's note, a
    // start by hand counts three down, and the first pinned switch is on at the end.
    const SwitchKind clicked = Dropdown::model(*store).home->switches.tiles.front().kind;
    EXPECT_EQ(stage.states, (std::vector<std::string>{
                                "dark",
                                "live",
                                "dark · note",
                                "standby 3",
                                "standby 2",
                                "standby 1",
                                "live",
                                "dark · note",
                                "dark · note · " + std::string(rawValue(clicked)),
                            }));
    EXPECT_EQ(store->show().sheets().size(), 5U) << "the seeded three and the film's two";
    EXPECT_TRUE(stage.host_.calls.empty()) << "no click leaves the store";

    const fs::path written = film->finish(std::string(DemoFilmScript::name));
    EXPECT_EQ(written, folder);
    EXPECT_GT(film->framesWritten(), 30 * 30) << "half a minute at least";

    // Each click lands on the centre of what it clicks: the big button twice, then the tile.
    const Json events = readJson(folder / "events.json");
    const Json clicks = events["clicks"];
    ASSERT_EQ(clicks.size(), 3U);
    const std::vector<Point> targets = {
        centreOf(std::string(DropdownAnchors::action)),
        centreOf(std::string(DropdownAnchors::action)),
        centreOf(DropdownAnchors::switchTile(clicked)),
    };
    double last = 0;
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_GT(clicks[i][0].get<double>(), last);
        last = clicks[i][0].get<double>();
        EXPECT_EQ(clicks[i][1].get<double>(), targets[i].x) << i;
        EXPECT_EQ(clicks[i][2].get<double>(), targets[i].y) << i;
    }
    // The cursor starts on the big button and never jumps: each row is a frame's move away.
    const Json cursor = events["cursor"];
    ASSERT_FALSE(cursor.empty());
    EXPECT_EQ(cursor[0][1].get<double>(), targets[0].x);
    EXPECT_EQ(cursor[0][2].get<double>(), targets[0].y);
    EXPECT_EQ(events["duration"].get<double>(), film->elapsed());

    // The captions follow one another without overlap, each long enough to read, and the
    // manual start's stays up through its whole countdown.
    const Json captions = readJson(folder / "captions.json");
    std::vector<std::string> texts;
    double end = 0;
    for (const Json& caption : captions) {
        texts.push_back(caption["text"]);
        EXPECT_GE(caption["start"].get<double>(), end - 1e-9) << caption["text"];
        EXPECT_GE(caption["end"].get<double>() - caption["start"].get<double>(), 1.5)
            << caption["text"];
        end = caption["end"];
    }
    EXPECT_EQ(texts, (std::vector<std::string>{
                         "Scrimlet waits in the menu bar, curtain down.",
                         "Its cue list: what it will tidy away the moment you share.",
                         "A Zoom call starts sharing the screen…",
                         "…and the curtain rose by itself. Nothing to click.",
                         "The share ends, and everything comes back as it was.",
                         "Every show leaves a run sheet of what was done and put back.",
                         "Or raise the curtain yourself, with a count of three.",
                         "Curtain up. One click brings it down again.",
                         "One-click switches, put back just as safely.",
                         "Scrimlet. Share your screen, not your desktop.",
                     }));
    const Json& byHand = captions[6];
    EXPECT_LT(byHand["start"].get<double>(), clicks[0][0].get<double>());
    EXPECT_GE(byHand["end"].get<double>() - clicks[0][0].get<double>(),
              3 * DemoFilmScript::secondOnFilm);
    EXPECT_EQ(readJson(folder / "project.json")["name"], "Scrimlet");
}

TEST_F(DemoFilmScriptTest, StopsWithTheReasonWhenTheAppDoesNotDoWhatTheFilmShows) {
    // A view the script clicks never reported where it is.
    {
        const auto store = DemoFilmScript::store();
        FilmedDropdown stage(*store, *anchors);
        const SwitchKind first = Dropdown::model(*store).home->switches.tiles.front().kind;
        stage.hiddenTiles = {first};
        const auto film = recorder();
        try {
            DemoFilmScript::play(*store, stage, *film);
            FAIL() << "played without the tile";
        } catch (const DemoFailure& failure) {
            EXPECT_EQ(failure.kind, DemoFailure::Kind::noAnchor);
            EXPECT_EQ(failure.message,
                      "demo: no anchor dropdown.switch." + std::string(rawValue(first)));
        }
        EXPECT_FALSE(store->board().isOn(first)) << "nothing was clicked blind";
    }
    // With automatic start off, a share raises no curtain, and the film says so rather than
    // show a curtain that never rose.
    {
        StageSettings settings = StageStore::demoSettings();
        settings.autoStart = false;
        const auto store = StageStore::demo(Harness::demoNow(), std::nullopt, settings,
                                            FakeStageSystem::demo(), true);
        FilmedDropdown stage(*store, *anchors);
        const auto film = recorder();
        try {
            DemoFilmScript::play(*store, stage, *film);
            FAIL() << "played a share that raised nothing";
        } catch (const DemoFailure& failure) {
            EXPECT_EQ(failure.kind, DemoFailure::Kind::script);
            EXPECT_EQ(failure.message, "demo: the curtain did not rise for the Zoom share");
        }
        EXPECT_EQ(stage.states, std::vector<std::string>{"dark"});
    }
}

TEST(DemoFilmScriptRules, FilmsTheDropdownWithRoomAroundItIntoAnAbsoluteFolder) {
    // A short dropdown still leaves room below it for its tallest state.
    EXPECT_EQ(DemoFilmScript::region({300, 120, 360, 480}), (Rect{260, 80, 440, 800}));
    EXPECT_EQ(DemoFilmScript::region({300, 120, 360, 900}), (Rect{260, 80, 440, 980}));

    EXPECT_EQ(DemoFilmScript::folder("/tmp/a/../film"), fs::path("/tmp/film"));
    EXPECT_EQ(DemoFilmScript::folder("film"), fs::current_path() / "film");
    try {
        DemoFilmScript::folder("");
        FAIL() << "an empty folder was taken";
    } catch (const DemoFailure& failure) {
        EXPECT_EQ(failure.message, "demo: SCRIMLET_DEMO_DIR names no folder");
    }
}

} // namespace
} // namespace scrimlet
