#include "DemoRecorder.hpp"

#include "FilmFakes.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <sstream>

namespace vantrel {
namespace {

using testing::FakeCamera;
using testing::FakeClock;

namespace fs = std::filesystem;
using Json = nlohmann::json;

Json readJson(const fs::path& path) {
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return Json::parse(text.str());
}

std::string readText(const fs::path& path) {
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

const std::vector<DemoScreen> laptop{{{0, 0, 1512, 982}, 2}, {{1512, 0, 1920, 1080}, 1}};

class DemoFilm : public ::testing::Test {
protected:
    scrimlet::testing::TempDir temp;
    fs::path folder = temp / "film";
    std::shared_ptr<FakeClock> clock = std::make_shared<FakeClock>();
    std::shared_ptr<FakeCamera> camera = std::make_shared<FakeCamera>();
    std::shared_ptr<DemoAnchors> anchors = std::make_shared<DemoAnchors>();

    std::shared_ptr<DemoRecorder> make(Rect region = {0, 0, 756, 491}, int fps = 30) {
        return DemoRecorder::create(folder, region, fps, laptop, {clock, camera, anchors});
    }
};

TEST(DemoRecorderRules, FilmsAreAtMost2560PixelsWideAndEvenOnBothSides) {
    EXPECT_EQ(DemoRecorder::scaleFor({0, 0, 5120, 1440}, laptop), 0.5);
    EXPECT_EQ(DemoRecorder::scaleFor({0, 0, 1280, 800}, laptop), 2);
    EXPECT_EQ(DemoRecorder::scaleFor({0, 0, 1512, 982}, laptop), 2560.0 / 1512);
    // The first screen the region meets decides, the one it starts on or not.
    EXPECT_EQ(DemoRecorder::scaleFor({1600, 100, 800, 600}, laptop), 1);
    EXPECT_EQ(DemoRecorder::scaleFor({1400, 100, 800, 600}, laptop), 2);
    // Off every screen, or with no screens at all: 2, still capped.
    EXPECT_EQ(DemoRecorder::scaleFor({-4000, 0, 800, 600}, laptop), 2);
    EXPECT_EQ(DemoRecorder::scaleFor({0, 0, 2000, 600}, {}), 1.28);
    EXPECT_EQ(DemoRecorder::scaleFor({0, 0, 0, 0}, {}), 2);

    EXPECT_EQ(DemoRecorder::pixelSizeFor({0, 0, 1512, 982}, 2), (Size{3024, 1964}));
    EXPECT_EQ(DemoRecorder::pixelSizeFor({0, 0, 1001, 333.3}, 1), (Size{1002, 334}));
    EXPECT_EQ(DemoRecorder::pixelSizeFor({0, 0, 5120, 1441}, 0.5), (Size{2560, 720}));

    EXPECT_EQ(DemoRecorder::ease(0), 0);
    EXPECT_EQ(DemoRecorder::ease(0.25), 0.0625);
    EXPECT_EQ(DemoRecorder::ease(0.5), 0.5);
    EXPECT_EQ(DemoRecorder::ease(0.75), 0.9375);
    EXPECT_EQ(DemoRecorder::ease(1), 1);

    // Windows in the system's coordinates, y up from the bottom of the main display.
    EXPECT_EQ(DemoAnchors::fromBottomLeft({10, 700, 100, 40}, 982), (Rect{10, 242, 100, 40}));
}

TEST_F(DemoFilm, OpensAFreshWriterOrSaysWhyNot) {
    fs::create_directories(folder);
    std::ofstream(folder / "raw.mov") << "yesterday's film";
    const auto recorder = make({0, 0, 1512, 982}, 25);
    ASSERT_TRUE(camera->opened);
    EXPECT_EQ(*camera->opened,
              (FilmFormat{folder / "raw.mov", 2560, 1662, 2560.0 * 1662 * 8, 25, 25}));
    EXPECT_EQ(readText(folder / "raw.mov"), "");

    camera->openFailure = "Cannot Save";
    try {
        make();
        FAIL() << "no failure";
    } catch (const DemoFailure& failure) {
        EXPECT_EQ(failure.kind, DemoFailure::Kind::writer);
        EXPECT_STREQ(failure.what(), "Cannot Save");
    }
    // A folder that cannot be made is the writer's failure too.
    std::ofstream(temp / "taken") << "a file";
    camera->openFailure.reset();
    EXPECT_THROW(DemoRecorder::create(temp / "taken" / "film", {0, 0, 10, 10}, 30, laptop,
                                      {clock, camera, anchors}),
                 DemoFailure);
}

TEST_F(DemoFilm, FramesComeAtTheFrameRateWithOnlyTheAppsOwnWindowsAndTheCursor) {
    const auto recorder = make();
    recorder->start();
    ASSERT_EQ(camera->frames.size(), 1u);
    const FilmFrame& first = camera->frames[0];
    EXPECT_EQ(first.time, 0);
    EXPECT_EQ(first.windows, (std::vector<std::uint32_t>{41}));
    EXPECT_EQ(first.imageRect, (Rect{0, 0, 1512, 982}));
    EXPECT_EQ(first.scale, 2);

    recorder->wait(1);
    ASSERT_EQ(camera->frames.size(), 31u);
    for (std::size_t i = 1; i < camera->frames.size(); ++i) {
        EXPECT_EQ(camera->frames[i].time - camera->frames[i - 1].time, 20) << i;
    }
    // A second tick within the same 600th of a second makes no frame of its own.
    recorder->captureFrame();
    EXPECT_EQ(camera->frames.size(), 31u);

    // A writer that is busy skips ticks without counting them as failures.
    camera->ready = false;
    recorder->wait(0.5);
    camera->ready = true;
    EXPECT_EQ(camera->frames.size(), 31u);
    EXPECT_EQ(recorder->failedCaptures(), 0);

    // The cursor in film pixels, with the click's ring while it lasts.
    recorder->click(Point{200, 100}, 0, nullptr);
    recorder->wait(0.1);
    const FilmFrame& clicked = camera->frames.back();
    EXPECT_EQ(clicked.cursor, (Point{400, 200}));
    ASSERT_TRUE(clicked.clickRing);
    EXPECT_NEAR(*clicked.clickRing, 0.1 / DemoRecorder::clickRingSeconds, 1e-9);
    recorder->wait(0.5);
    EXPECT_FALSE(camera->frames.back().clickRing);

    // Another region is fitted into the same film, centred.
    recorder->setRegion({100, 80, 360, 520});
    recorder->wait(0.04);
    const FilmFrame& tall = camera->frames.back();
    EXPECT_EQ(tall.region, (Rect{100, 80, 360, 520}));
    EXPECT_NEAR(tall.scale, 982.0 / 520, 1e-9);
    EXPECT_NEAR(tall.imageRect.midX(), 756, 1e-9);
    EXPECT_EQ(tall.imageRect.height, 982);
    EXPECT_NEAR(tall.cursor.x, tall.imageRect.x + 100 * tall.scale, 1e-9);
    // The dropdown's window fills the film's height where the region is its own frame.
    const Rect dropdown = tall.toFilm({100, 80, 360, 520});
    EXPECT_NEAR(dropdown.y, 0, 1e-9);
    EXPECT_NEAR(dropdown.height, 982, 1e-9);
    EXPECT_NEAR(dropdown.midX(), 756, 1e-9);

    // Failed captures cost a frame each and are counted.
    const auto written = recorder->framesWritten();
    camera->captureFails = true;
    recorder->wait(0.1);
    EXPECT_EQ(recorder->failedCaptures(), 3);
    EXPECT_EQ(recorder->framesWritten(), written);
}

TEST_F(DemoFilm, TheCursorEasesAlongItsPathAndClicksWhereTheAnchorsAre) {
    const auto recorder = make();
    recorder->start();
    recorder->move({100, 50}, 0.5);
    // A row at each frame time, from the start to the target.
    const auto& log = recorder->cursorLog();
    ASSERT_EQ(log.size(), 16u);
    EXPECT_EQ(log.front(), (std::array<double, 3>{0, 0, 0}));
    EXPECT_NEAR(log[7][0], 7.0 / 30, 1e-9);
    EXPECT_NEAR(log[7][1], 100 * DemoRecorder::ease(7.0 / 15), 1e-9);
    EXPECT_NEAR(log[7][2], 50 * DemoRecorder::ease(7.0 / 15), 1e-9);
    EXPECT_NEAR(log.back()[0], 0.5, 1e-9);
    EXPECT_EQ(log.back()[1], 100);
    EXPECT_EQ(log.back()[2], 50);
    EXPECT_NEAR(recorder->elapsed(), 0.5, 1e-9);
    // The frames filmed the cursor on its way.
    ASSERT_EQ(camera->frames.size(), 16u);
    EXPECT_EQ(camera->frames[8].cursor, (Point{log[7][1] * 2, log[7][2] * 2}));

    // An instant move is one row.
    recorder->move({10, 10}, 0);
    EXPECT_EQ(log.size(), 17u);
    EXPECT_EQ(recorder->cursor(), (Point{10, 10}));

    try {
        recorder->moveToAnchor("x", 0.3);
        FAIL() << "moved to nowhere";
    } catch (const DemoFailure& failure) {
        EXPECT_EQ(failure.kind, DemoFailure::Kind::noAnchor);
        EXPECT_STREQ(failure.what(), "demo: no anchor x");
    }
    EXPECT_EQ(log.size(), 17u);

    anchors->set("raise", {300, 200, 120, 28});
    Point whereClicked;
    recorder->click("raise", 0.2, [&] { whereClicked = recorder->cursor(); });
    EXPECT_EQ(whereClicked, (Point{360, 214}));
    ASSERT_EQ(recorder->clicks().size(), 1u);
    EXPECT_NEAR(recorder->clicks()[0][0], 0.7, 1e-9);
    EXPECT_EQ(recorder->clicks()[0][1], 360);

    std::vector<std::string> typed;
    const double before = recorder->elapsed();
    recorder->type(
        "Hi!", [&](const std::string& text) { typed.push_back(text); }, 0.1);
    EXPECT_EQ(typed, (std::vector<std::string>{"H", "Hi", "Hi!"}));
    EXPECT_NEAR(recorder->elapsed() - before, 0.3, 1e-9);
}

TEST_F(DemoFilm, CaptionsShorterThanAFifthOfASecondAreDropped) {
    const auto recorder = make();
    recorder->start();
    recorder->clearCaption();
    recorder->caption("typo");
    recorder->wait(0.2);
    recorder->caption("Raise the curtain");
    recorder->wait(1.5);
    recorder->clearCaption();
    recorder->clearCaption();
    recorder->wait(0.5);
    recorder->caption("Left open at the end");
    recorder->wait(0.25);
    ASSERT_EQ(recorder->captions().size(), 1u);
    EXPECT_EQ(recorder->captions()[0].text, "Raise the curtain");
    EXPECT_NEAR(recorder->captions()[0].start, 0.2, 1e-9);
    EXPECT_NEAR(recorder->captions()[0].end, 1.7, 1e-9);

    recorder->finish("tour");
    EXPECT_EQ(recorder->captions().back().text, "Left open at the end");
    EXPECT_NEAR(recorder->captions().back().end, 2.45, 1e-9);
}

TEST_F(DemoFilm, FinishWritesTheEditorsFilesBesideTheFilm) {
    const auto recorder = make();
    recorder->start();
    recorder->caption("Zoom starts sharing — the curtain rises");
    recorder->move({40, 20}, 0.1);
    recorder->click(Point{40, 20}, 0, nullptr);
    recorder->wait(0.4);
    EXPECT_EQ(recorder->finish("Scrimlet tour"), folder);
    EXPECT_THROW(recorder->finish("again"), DemoFailure);

    const Json events = readJson(folder / "events.json");
    EXPECT_EQ(events["version"], 1);
    EXPECT_NEAR(events["duration"].get<double>(), 0.5, 1e-9);
    ASSERT_EQ(events["cursor"].size(), 5u);
    EXPECT_EQ(events["cursor"][0], Json::array({0.0, 0.0, 0.0}));
    EXPECT_NEAR(events["cursor"][4][0].get<double>(), 0.1, 1e-9);
    EXPECT_EQ(events["cursor"][4][1], 40);
    ASSERT_EQ(events["clicks"].size(), 1u);
    EXPECT_EQ(events["clicks"][0][2], 20);

    const Json captions = readJson(folder / "captions.json");
    ASSERT_EQ(captions.size(), 1u);
    EXPECT_EQ(captions[0]["text"], "Zoom starts sharing — the curtain rises");
    EXPECT_EQ(captions[0]["start"], 0);

    Json project = readJson(folder / "project.json");
    EXPECT_NEAR(project["duration"].get<double>(), 0.5, 1e-9);
    project.erase("duration");
    EXPECT_EQ(project, Json::parse(R"({
        "version": 1, "name": "Scrimlet tour", "created": "2026-10-28T15:42:00Z",
        "width": 1512, "height": 982, "hasCamera": false, "cameraOffset": 0,
        "hasAudio": false,
        "settings": {"fps": 30, "scale": 2,
                     "region": {"x": 0, "y": 0, "width": 756, "height": 491}}})"));
    // Pretty-printed, with sorted keys.
    EXPECT_TRUE(readText(folder / "project.json").starts_with("{\n  \"cameraOffset\": 0,\n"));
    EXPECT_TRUE(readText(folder / "events.json").starts_with("{\n  \"clicks\": ["));
}

TEST_F(DemoFilm, AFilmWithoutFramesFailsAsAWholeAndLeavesNoFiles) {
    // The app's windows are all outside the region filmed.
    const auto recorder = make({3000, 0, 400, 300});
    recorder->start();
    recorder->wait(0.1);
    try {
        recorder->finish("empty");
        FAIL() << "finished without frames";
    } catch (const DemoFailure& failure) {
        EXPECT_STREQ(failure.what(), "No frames were captured (4 failed). Is the window on "
                                     "screen inside the region?");
    }
    EXPECT_FALSE(fs::exists(folder / "events.json") || fs::exists(folder / "project.json"));

    // The writer's own failure comes first, in its own words.
    camera->finishFailure = "The operation could not be completed";
    const auto broken = make();
    broken->start();
    try {
        broken->finish("broken");
        FAIL() << "finished a broken film";
    } catch (const DemoFailure& failure) {
        EXPECT_STREQ(failure.what(), "The operation could not be completed");
    }
}

TEST(DemoTyping, ACharacterIsWhatTheUserSeesAsOne) {
    using Prefixes = std::vector<std::string>;
    EXPECT_EQ(typedPrefixes(""), Prefixes{});
    EXPECT_EQ(typedPrefixes("ab"), (Prefixes{"a", "ab"}));
    EXPECT_EQ(typedPrefixes("Zoë"), (Prefixes{"Z", "Zo", "Zoë"}));
    // An e with a combining acute accent.
    EXPECT_EQ(typedPrefixes("e\u0301!"), (Prefixes{"e\u0301", "e\u0301!"}));
    // A family joined by zero-width joiners, and a thumb with its skin tone.
    EXPECT_EQ(typedPrefixes("\U0001F468\u200D\U0001F469\u200D\U0001F467 \U0001F44D\U0001F3FD"),
              (Prefixes{"\U0001F468\u200D\U0001F469\u200D\U0001F467",
                        "\U0001F468\u200D\U0001F469\u200D\U0001F467 ",
                        "\U0001F468\u200D\U0001F469\u200D\U0001F467 \U0001F44D\U0001F3FD"}));
    // Bytes that are not UTF-8 stand for themselves.
    EXPECT_EQ(typedPrefixes("a\xFF"), (Prefixes{"a", "a\xFF"}));
    EXPECT_EQ(typedPrefixes("\xE2\x80"), (Prefixes{"\xE2", "\xE2\x80"}));
}

} // namespace
} // namespace vantrel
