#include "SelfTest.hpp"

#include "AtomicFile.hpp"
#include "CommandLine.hpp"
#include "StageStore.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace scrimlet {
namespace {

using testing::TempDir;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

// Every step, in order, as it reads where the macOS shell is missing.
const std::vector<std::string> withoutTheShell = {
    "38 passed, 0 failed, 13 skipped",
    "✓ starts with the house open",
    "✓ taking a screenshot doesn't start a show",
    "✓ Zoom's share frame starts the show (no countdown for automatic starts)",
    "✓ Dock hidden, Do Not Disturb on, desktop icons covered",
    "✓ only Keynote (front + kept), Zoom (sharing), Takeloom (recorder) and Scrimlet stay "
    "visible: Keynote, zoom.us, Takeloom, Scrimlet",
    "✓ journal on disk while live",
    "– dropdown lays out (live) (needs macOS)",
    "✓ a hand-made change is noticed and marked “yours now”",
    "– dropdown lays out (live-left-alone) (needs macOS)",
    "✓ sharing stopped → curtain down",
    "✓ everything put back except the alert volume the user chose",
    "✓ journal removed",
    "✓ run sheet saved to disk",
    "✓ the dropdown shows a curtain-down note",
    "– dropdown lays out (ended) (needs macOS)",
    "✓ manual start counts down 3·2·1 with nothing changed yet",
    "– dropdown lays out (standby) (needs macOS)",
    "✓ live after the countdown",
    "✓ scrimlet://extend adds 15 minutes",
    "✓ scrimlet://start, then a second cue skips the countdown",
    "✓ a toggle cue stops it",
    "✓ scrimlet://switch/darkMode/on",
    "✓ …/off (case-insensitive)",
    "✓ other schemes are ignored",
    "✓ Zoom again → live",
    "✓ stopped by hand: the same share doesn't restart it",
    "✓ a new share (Chrome) starts it again",
    "✓ the time limit ends the show",
    "✓ after wake with no share, an automatic show ends",
    "✓ a manual show survives wake",
    "✓ a display change mid-show is harmless",
    "✓ Keep Awake switch on",
    "✓ auto-off after a minute",
    "✓ Screen Saver Now runs once",
    "✓ a switch on before the show keeps its change after it",
    "✓ switch off restores it",
    "– dropdown lays out (all-switches) (needs macOS)",
    "✓ settings saved to disk",
    "✓ cue list lamp toggles the plan",
    "✓ crash fixture: journal on disk mid-show",
    "✓ next launch puts everything back",
    "✓ recovery run sheet recorded, journal cleared",
    "– dropdown lays out (recovered) (needs macOS)",
    "– the real system refused all kinds of change (needs macOS)",
    "– and won't start the screen saver (needs macOS)",
    "– no power assertion is taken (needs macOS)",
    "– no shortcuts or AppleScript run (needs macOS)",
    "– no Automation check is made (needs macOS)",
    "– read the on-screen windows; detector gives its verdict (needs macOS)",
    "✓ no microphone: explained",
    "– dropdown lays out (empty) (needs macOS)",
};

TEST(SelfTest, WithoutTheShellEveryStepThatCanRunHerePassesAndTheRestIsSkipped) {
    TempDir temp;
    const auto dir = temp / "check";
    const auto result = SelfTest::run(dir);
    EXPECT_EQ(linesOf(result.report), withoutTheShell);
    EXPECT_EQ(result.report.back(), '\n');
    EXPECT_EQ(result.passed, 38);
    EXPECT_EQ(result.failed, 0);
    EXPECT_EQ(result.skipped, 13);
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(files::read(dir / "selftest.txt"), result.report);

    // The command line, started with the variable, runs the same check in the same folder
    // from scratch, whatever command it was given.
    std::ostringstream out, err;
    const int status = CommandLine::run({"demo"}, {{"SCRIMLET_SELFTEST", dir.string()}}, out, err);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(out.str(), result.report);
    EXPECT_EQ(files::read(dir / "selftest.txt"), result.report);
}

// A shell that measures a dropdown too small while the countdown runs, and a real system
// that let one kind of change through.
class LeakyShell : public SelfTestShell {
public:
    struct Seen {
        ShowPhase::Case phase;
        StageStore::PopoverRoute route;
        bool recovered;
        size_t sheets;
    };
    std::vector<Seen> seen;

    DropdownSize render(StageStore& store) override {
        seen.push_back({store.phase().kind(), store.route, store.recovered.has_value(),
                        store.show().sheets().size()});
        return store.phase().kind() == ShowPhase::Case::standby ? DropdownSize{200, 100}
                                                                : DropdownSize{360.7, 640.2};
    }

    RealSystemFacts realSystemChecks() override {
        RealSystemFacts facts;
        for (const auto kind : effect_kind::allCases) {
            if (kind != EffectKind::keyboardLock) {
                facts.refused.push_back(kind);
            }
        }
        facts.screenSaverRefused = true;
        facts.windowsRead = 12;
        facts.verdict = CaptureSource{"us.zoom.xos", "Zoom", CaptureKind::callShare};
        return facts;
    }
};

TEST(SelfTest, AFailingStepFailsTheRunWhileTheReportStaysComplete) {
    TempDir temp;
    LeakyShell shell;
    const auto result = SelfTest::run(temp.path(), &shell);
    const auto lines = linesOf(result.report);

    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.failed, 2);
    EXPECT_EQ(result.passed, 49);
    EXPECT_EQ(result.skipped, 0);
    ASSERT_EQ(lines.size(), 52u);
    EXPECT_EQ(lines[0], "49 passed, 2 failed");
    EXPECT_EQ(lines[7], "✓ dropdown lays out (live: 360×640)");
    EXPECT_EQ(lines[17], "✗ dropdown lays out (standby: 200×100)");
    EXPECT_EQ(lines[44], "✗ the real system refused all 12 kinds of change (dockAutohide, "
                         "darkMode, alertVolume, micMute, doNotDisturb, appHidden, displayMode, "
                         "keepAwake, desktopIcons, backdrop, menuBarTidy, spotlight)");
    EXPECT_EQ(lines[45], "✓ and won't start the screen saver");
    EXPECT_EQ(lines[49], "✓ read 12 on-screen windows; detector says: Zoom is sharing your screen");
    EXPECT_EQ(lines[51], "✓ dropdown lays out (empty: 360×640)");
    // Every step after the failures still ran.
    EXPECT_EQ(lines[50], "✓ no microphone: explained");
    EXPECT_EQ(files::read(temp / "selftest.txt"), result.report);

    // Each picture is taken of the store in the state its name promises.
    using Phase = ShowPhase::Case;
    using Route = StageStore::PopoverRoute;
    ASSERT_EQ(shell.seen.size(), 7u);
    EXPECT_EQ(shell.seen[0].phase, Phase::live);
    EXPECT_EQ(shell.seen[1].phase, Phase::live);
    EXPECT_EQ(shell.seen[2].phase, Phase::dark);
    EXPECT_EQ(shell.seen[2].sheets, 1u);
    EXPECT_EQ(shell.seen[3].phase, Phase::standby);
    EXPECT_EQ(shell.seen[4].route, Route::switches);
    EXPECT_TRUE(shell.seen[5].recovered);
    EXPECT_FALSE(shell.seen[6].recovered);
    EXPECT_EQ(shell.seen[6].sheets, 0u);
}

TEST(SelfTest, AFolderThatCannotBeWrittenFailsTheStepsThatNeedItAndStillTells) {
    TempDir temp;
    std::ofstream(temp / "file") << "in the way";
    const auto dir = temp / "file" / "check";
    const auto result = SelfTest::run(dir);
    const auto lines = linesOf(result.report);

    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(lines.size(), 52u);
    for (const std::string step :
         {"journal on disk while live", "run sheet saved to disk", "settings saved to disk",
          "crash fixture: journal on disk mid-show",
          "recovery run sheet recorded, journal cleared"}) {
        EXPECT_NE(std::find(lines.begin(), lines.end(), "✗ " + step), lines.end()) << step;
    }
    // What needs no file still works.
    EXPECT_NE(std::find(lines.begin(), lines.end(), "✓ Zoom again → live"), lines.end());
    EXPECT_FALSE(files::read(dir / "selftest.txt"));
}

} // namespace
} // namespace scrimlet
