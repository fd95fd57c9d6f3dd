#include "SelfTest.hpp"

#include "AtomicFile.hpp"
#include "CommandLine.hpp"
#include "DemoCapture.hpp"
#include "StageStore.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <tuple>

namespace scrimlet {
namespace {

using testing::TempDir;

// Whether `line` is a whole line of the report, after its summary.
bool has(const std::string& report, const std::string& line) {
    return report.find("\n" + line + "\n") != std::string::npos;
}

// The whole report, step by step, as it reads where the macOS shell is missing.
const std::string withoutTheShell =
    "43 passed, 0 failed, 8 skipped\n"
    "✓ starts with the house open\n"
    "✓ taking a screenshot doesn't start a show\n"
    "✓ Zoom's share frame starts the show (no countdown for automatic starts)\n"
    "✓ Dock hidden, Do Not Disturb on, desktop icons covered\n"
    "✓ only Keynote (front + kept), Zoom (sharing), Takeloom (recorder) and Scrimlet stay visible: "
    "Keynote, zoom.us, Takeloom, Scrimlet\n"
    "✓ journal on disk while live\n"
    "– dropdown lays out (live) (needs macOS)\n"
    "✓ a hand-made change is noticed and marked “yours now”\n"
    "– dropdown lays out (live-left-alone) (needs macOS)\n"
    "✓ sharing stopped → curtain down\n"
    "✓ everything put back except the alert volume the user chose\n"
    "✓ journal removed\n"
    "✓ run sheet saved to disk\n"
    "✓ the dropdown shows a curtain-down note\n"
    "– dropdown lays out (ended) (needs macOS)\n"
    "✓ manual start counts down 3·2·1 with nothing changed yet\n"
    "– dropdown lays out (standby) (needs macOS)\n"
    "✓ live after the countdown\n"
    "✓ scrimlet://extend adds 15 minutes\n"
    "✓ scrimlet://start, then a second cue skips the countdown\n"
    "✓ a toggle cue stops it\n"
    "✓ scrimlet://switch/darkMode/on\n"
    "✓ …/off (case-insensitive)\n"
    "✓ other schemes are ignored\n"
    "✓ Zoom again → live\n"
    "✓ stopped by hand: the same share doesn't restart it\n"
    "✓ a new share (Chrome) starts it again\n"
    "✓ the time limit ends the show\n"
    "✓ after wake with no share, an automatic show ends\n"
    "✓ a manual show survives wake\n"
    "✓ a display change mid-show is harmless\n"
    "✓ Keep Awake switch on\n"
    "✓ auto-off after a minute\n"
    "✓ Screen Saver Now runs once\n"
    "✓ a switch on before the show keeps its change after it\n"
    "✓ switch off restores it\n"
    "– dropdown lays out (all-switches) (needs macOS)\n"
    "✓ settings saved to disk\n"
    "✓ cue list lamp toggles the plan\n"
    "✓ crash fixture: journal on disk mid-show\n"
    "✓ next launch puts everything back\n"
    "✓ recovery run sheet recorded, journal cleared\n"
    "– dropdown lays out (recovered) (needs macOS)\n"
    "✓ the real system refused all 13 kinds of change (dockAutohide, darkMode, alertVolume, "
    "micMute, doNotDisturb, appHidden, displayMode, keepAwake, desktopIcons, backdrop, "
    "menuBarTidy, spotlight, keyboardLock)\n"
    "✓ and won't start the screen saver\n"
    "✓ no power assertion is taken\n"
    "✓ no shortcuts or AppleScript run\n"
    "✓ no Automation check is made\n"
    "– read the on-screen windows; detector gives its verdict (needs macOS)\n"
    "✓ no microphone: explained\n"
    "– dropdown lays out (empty) (needs macOS)\n";

TEST(SelfTest, WithoutTheShellEveryStepThatCanRunHerePassesAndTheRestIsSkipped) {
    TempDir temp;
    const auto dir = temp / "check";
    const auto result = SelfTest::run(dir);
    EXPECT_EQ(result.report, withoutTheShell);
    EXPECT_EQ(std::tie(result.passed, result.failed, result.skipped, result.exitStatus),
              std::make_tuple(43, 0, 8, 0));
    EXPECT_EQ(files::read(dir / "selftest.txt"), result.report);

    // The variable runs the same check from scratch, whatever command was given.
    std::ostringstream out, err;
    EXPECT_EQ(CommandLine::run({"demo"}, {{"SCRIMLET_SELFTEST", dir.string()}}, out, err), 0);
    EXPECT_EQ(out.str(), result.report);
}

// A shell that measures a dropdown too small while the countdown runs, and sees Zoom
// sharing the screen.
class LeakyShell : public SelfTestShell {
public:
    // The phase of the store at each picture, and whether it came from a recovery.
    std::vector<std::pair<ShowPhase::Case, bool>> seen;

    DropdownSize render(StageStore& store) override {
        seen.emplace_back(store.phase().kind(), store.recovered.has_value());
        return store.phase().kind() == ShowPhase::Case::standby ? DropdownSize{200, 100}
                                                                : DropdownSize{360.7, 640.2};
    }
    std::optional<CaptureSnapshot> onScreenWindows() override { return DemoCapture::zoomSharing(); }
};

TEST(SelfTest, AFailingStepFailsTheRunWhileTheReportStaysComplete) {
    TempDir temp;
    LeakyShell shell;
    const auto result = SelfTest::run(temp.path(), &shell);
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(std::count(result.report.begin(), result.report.end(), '\n'), 52);
    EXPECT_EQ(result.report.rfind("50 passed, 1 failed\n", 0), 0u);
    EXPECT_TRUE(has(result.report, "✗ dropdown lays out (standby: 200×100)"));
    EXPECT_TRUE(has(result.report, "✓ read " +
                                       std::to_string(DemoCapture::zoomSharing().windows.size()) +
                                       " on-screen windows; detector says: Zoom is sharing your "
                                       "screen"));
    // Every step after the failure still ran.
    EXPECT_TRUE(result.report.ends_with("\n✓ dropdown lays out (empty: 360×640)\n"));
    EXPECT_EQ(files::read(temp / "selftest.txt"), result.report);

    // Each picture is taken of the store in the state its name promises.
    using Phase = ShowPhase::Case;
    ASSERT_EQ(shell.seen.size(), 7u);
    EXPECT_EQ(shell.seen[1], std::pair(Phase::live, false));
    EXPECT_EQ(shell.seen[2], std::pair(Phase::dark, false));
    EXPECT_EQ(shell.seen[3], std::pair(Phase::standby, false));
    EXPECT_TRUE(shell.seen[5].second);
    EXPECT_FALSE(shell.seen[6].second);
}

TEST(SelfTest, AFolderThatCannotBeWrittenFailsTheStepsThatNeedItAndStillTells) {
    TempDir temp;
    std::ofstream(temp / "file") << "in the way";
    const auto result = SelfTest::run(temp / "file" / "check");
    EXPECT_EQ(result.exitStatus, 1);
    for (const char* step :
         {"✗ journal on disk while live", "✗ run sheet saved to disk", "✗ settings saved to disk",
          "✗ recovery run sheet recorded, journal cleared", "✓ Zoom again → live"}) {
        EXPECT_TRUE(has(result.report, step)) << step;
    }
}

} // namespace
} // namespace scrimlet
