// The real stage system over a recording fake of the Mac's facilities: what each read
// answers, what each write does and says when it fails, what a test run refuses without
// touching anything, and whether each effect can run.

#include "RealStageSystem.hpp"

#include "AppleScript.hpp"
#include "ManualClock.hpp"
#include "Mic.hpp"
#include "RecordingFacilities.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using testing::displayMode;
using testing::RecordingFacilities;
using Device = RecordingFacilities::AudioDevice;
using testing::TempDir;

const std::string mail = "com.apple.mail#42#Mail";

struct Rig {
    TempDir dir;
    std::shared_ptr<RecordingFacilities> mac = std::make_shared<RecordingFacilities>();
    bool testRun = false;
    /// The shortcuts tool as stand-in: each run's arguments, answered by `shortcutsAnswer`.
    std::vector<std::vector<std::string>> toolRuns;
    Shell::Result shortcutsAnswer{0, "Scrimlet Quiet On\nScrimlet Quiet Off\n"};
    std::shared_ptr<FrontTracker> tracker = std::make_shared<FrontTracker>(mac);
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(Date{1'790'000'000});
    RealStageSystem sys{mac, options()};

    Rig() {
        mac->apps = {
            {42, "com.apple.mail", "Mail", RunningApp::Policy::regular, false, false},
            {43, "com.apple.Safari", std::nullopt, RunningApp::Policy::regular, true, false},
            {44, "com.example.helper", "Helper", RunningApp::Policy::accessory, false, false},
            {45, std::nullopt, "Tool", RunningApp::Policy::regular, false, false},
            {46, "com.example.quit", "Quit", RunningApp::Policy::regular, false, true},
        };
        mac->audioDevices[71] = Device::withMute("BuiltInMicrophoneDevice", 0);
        mac->audioDevices[72] = Device::byVolume("Speakers", 0.5f);
        mac->defaultInputDevice = 71;
        mac->online = {1, 2};
        mac->displayTable[1] = {
            {displayMode(11, 1920, 1080, 2, 60), displayMode(12, 1440, 900, 2, 60)}, 11, {}};
        mac->mainDisplay = 1;
    }

    RealStageSystem::Options options() {
        RealStageSystem::Options o;
        o.isTestRun = [this] { return testRun; };
        o.micLevelsFile = dir / "mic-levels.json";
        o.frontTracker = tracker;
        o.shortcuts.clock = ManualClock::reading(clock);
        o.shortcuts.temporaryFolder = dir.path();
        o.shortcuts.runner = [this](const std::string&, const std::vector<std::string>& arguments,
                                    double) {
            toolRuns.push_back(arguments);
            return shortcutsAnswer;
        };
        return o;
    }

    /// The error a write throws; nothing when it succeeds.
    std::optional<std::string> failure(const EffectKey& key, const JournalValue& value) {
        try {
            sys.write(key, value);
            return std::nullopt;
        } catch (const StageError& error) {
            return error.description();
        }
    }
};

JournalValue on() {
    return JournalValue::boolean(true);
}
JournalValue off() {
    return JournalValue::boolean(false);
}

TEST(RealStageSystem, ATestRunRefusesEveryChangeWithoutTouchingTheMac) {
    Rig rig;
    rig.testRun = true;
    for (const auto kind : effect_kind::allCases) {
        const EffectKey key(kind, kind == EffectKind::appHidden ? mail : "1");
        EXPECT_EQ(
            rig.failure(key, kind == EffectKind::alertVolume ? JournalValue::number(0) : on()),
            "refused: test run")
            << rawValue(kind);
    }
    EXPECT_THROW(rig.sys.startScreenSaver(), StageError);
    EXPECT_THROW(rig.sys.keepAwake().hold(), StageError);
    EXPECT_TRUE(rig.mac->calls.empty());

    // What could run a script, a shortcut or an Automation check answers without one.
    EXPECT_EQ(rig.sys.availability(EffectKind::dockAutohide), Availability::ready());
    EXPECT_EQ(rig.sys.availability(EffectKind::darkMode), Availability::ready());
    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::alertVolume)), std::nullopt);
    EXPECT_EQ(AppleScript::systemEventsPermission(*rig.mac, true),
              AppleScript::Permission::unknown);
    EXPECT_FALSE(rig.sys.availability(EffectKind::doNotDisturb).isReady());
    EXPECT_TRUE(rig.mac->calls.empty());
    EXPECT_TRUE(rig.toolRuns.empty());

    // The Dock and Dark Mode ask once more just before their script would run.
    int asked = 0;
    RealStageSystem::Options late = rig.options();
    late.isTestRun = [&] { return ++asked > 1; };
    RealStageSystem lateSystem(rig.mac, late);
    for (const auto kind : {EffectKind::dockAutohide, EffectKind::darkMode}) {
        asked = 0;
        EXPECT_THROW(lateSystem.write(EffectKey(kind), on()), StageError);
        EXPECT_EQ(asked, 2);
    }
    EXPECT_TRUE(rig.mac->scripts.empty());

    // Without a word on the matter, nothing is written either.
    RealStageSystem::Options silent = rig.options();
    silent.isTestRun = nullptr;
    RealStageSystem unsure(rig.mac, silent);
    EXPECT_THROW(unsure.write(EffectKey(EffectKind::keepAwake), on()), StageError);
    EXPECT_TRUE(rig.mac->calls.empty());
}

TEST(RealStageSystem, ReadsAnswerWhatTheMacSaysAndNothingForWhatIsNotThere) {
    Rig rig;
    auto& mac = *rig.mac;
    const EffectKey dock(EffectKind::dockAutohide);
    const EffectKey dark(EffectKind::darkMode);
    EXPECT_EQ(rig.sys.read(dock), off());
    for (const auto& [stored, expected] : std::vector<std::pair<PreferenceValue, bool>>{
             {true, true}, {1.0, true}, {0.0, false}, {2.0, false}, {std::string("1"), false}}) {
        mac.preferences[{"com.apple.dock", "autohide"}] = stored;
        EXPECT_EQ(rig.sys.read(dock), JournalValue::boolean(expected));
    }
    EXPECT_EQ(rig.sys.read(dark), off());
    for (const auto& [stored, expected] :
         std::vector<std::pair<PreferenceValue, bool>>{{std::string("Dark"), true},
                                                       {std::string("DARK"), true},
                                                       {std::string("Light"), false},
                                                       {true, false}}) {
        mac.preferences[{SystemFacilities::anyApplication, "AppleInterfaceStyle"}] = stored;
        EXPECT_EQ(rig.sys.read(dark), JournalValue::boolean(expected));
    }

    mac.script = [](const std::string&) { return ScriptOutcome{true, false, {}, {}, 50}; };
    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::alertVolume)), JournalValue::number(0.5));
    EXPECT_EQ(mac.scripts.back(), "alert volume of (get volume settings)");
    mac.script = [](const std::string&) { return ScriptOutcome{true, false, {}, {}, {}}; };
    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::alertVolume)), std::nullopt);
    mac.script = [](const std::string&) { return ScriptOutcome{true, true, -1743, {}, 50}; };
    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::alertVolume)), std::nullopt);

    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::micMute, "BuiltInMicrophoneDevice")), off());
    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::micMute, "Unplugged")), std::nullopt);

    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::appHidden, mail)), off());
    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::appHidden, "com.apple.Safari#43")), on());
    // The pid now belongs to another program, the app quit, or the target is no target.
    for (const auto& target : {"com.apple.Notes#42#Notes", "com.example.quit#46#Quit",
                               "com.apple.mail#99#Mail", "com.apple.mail"}) {
        EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::appHidden, target)), std::nullopt) << target;
    }

    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::displayMode, "1")), JournalValue::number(11));
    for (const auto& target : {"", "x", "1x", "-1", "3", "2"}) {
        EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::displayMode, target)), std::nullopt) << target;
    }

    mac.sceneryOn = {EffectKind::backdrop};
    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::backdrop)), on());
    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::spotlight)), off());
    EXPECT_EQ(rig.sys.read(EffectKey(EffectKind::keepAwake)), off());

    // Do Not Disturb cannot be read, not even right after it was switched.
    const EffectKey dnd(EffectKind::doNotDisturb);
    rig.sys.write(dnd, on());
    EXPECT_EQ(rig.sys.read(dnd), std::nullopt);
}

TEST(RealStageSystem, ScriptsSayWhatFailedInTheUsersWords) {
    Rig rig;
    auto& mac = *rig.mac;
    rig.sys.write(EffectKey(EffectKind::dockAutohide), on());
    rig.sys.write(EffectKey(EffectKind::darkMode), off());
    rig.sys.write(EffectKey(EffectKind::alertVolume), JournalValue::number(0.125));
    rig.sys.write(EffectKey(EffectKind::alertVolume), JournalValue::number(0));
    EXPECT_EQ(mac.scripts,
              (std::vector<std::string>{
                  "tell application \"System Events\" to set autohide of dock preferences to true",
                  "tell application \"System Events\" to tell appearance preferences to set dark "
                  "mode to false",
                  "set volume alert volume 13", "set volume alert volume 0"}));
    EXPECT_EQ(rig.failure(EffectKey(EffectKind::alertVolume), on()), "bad value");

    const std::vector<std::pair<ScriptOutcome, std::string>> rows = {
        {{false, false, {}, {}, {}}, "script"},
        {{true, true, -1743, "ignored", {}},
         "Not allowed to control System Events (Privacy & Security › Automation)"},
        {{true, true, -1728, "Can’t get dock preferences.", {}}, "Can’t get dock preferences."},
        {{true, true, -2753, {}, {}}, "AppleScript error -2753"},
        {{true, true, {}, {}, {}}, "AppleScript error 0"},
    };
    for (const auto& [outcome, words] : rows) {
        mac.script = [outcome = outcome](const std::string&) { return outcome; };
        EXPECT_EQ(rig.failure(EffectKey(EffectKind::dockAutohide), on()), words);
    }

    const std::vector<std::pair<std::optional<std::int32_t>, AppleScript::Permission>> statuses = {
        {0, AppleScript::Permission::granted},
        {-1743, AppleScript::Permission::denied},
        {-1744, AppleScript::Permission::notDetermined},
        {-600, AppleScript::Permission::unknown},
        {std::nullopt, AppleScript::Permission::unknown},
    };
    for (const auto& [status, permission] : statuses) {
        mac.automationStatus = status;
        EXPECT_EQ(AppleScript::systemEventsPermission(mac, false), permission);
    }
    EXPECT_EQ(mac.calls.back(), "automationPermission com.apple.systemevents");
}

TEST(RealStageSystem, AppsAreHiddenOnlyWhileTheyAreTheSameProcess) {
    Rig rig;
    auto& mac = *rig.mac;
    const EffectKey key(EffectKind::appHidden, mail);
    rig.sys.write(key, on());
    EXPECT_TRUE(mac.apps[0].isHidden);
    EXPECT_EQ(rig.failure(EffectKey(EffectKind::appHidden, "com.apple.Notes#42#Notes"), off()),
              "it's gone");
    EXPECT_EQ(rig.failure(EffectKey(EffectKind::appHidden, "com.example.quit#46#Quit"), on()),
              "it's gone");
    EXPECT_TRUE(mac.apps[0].isHidden);

    // A refusal with the app already as asked is a success; otherwise the app is named.
    mac.refusesToHide[42] = false;
    EXPECT_EQ(rig.failure(key, on()), std::nullopt);
    EXPECT_EQ(rig.failure(key, off()), "Mail wouldn't show");
    mac.refusesToHide[43] = false;
    EXPECT_EQ(rig.failure(EffectKey(EffectKind::appHidden, "com.apple.Safari#43#Safari"), off()),
              "The app wouldn't show");
    mac.refusesToHide[42] = true;
    EXPECT_EQ(rig.failure(key, off()), std::nullopt);

    // Only ordinary apps with a bundle identifier that still run, in the workspace's order.
    const auto apps = rig.sys.runningApps();
    ASSERT_EQ(apps.size(), 2u);
    EXPECT_EQ(apps[0], (AppInfo{"com.apple.mail", "Mail", 42, false, true}));
    EXPECT_EQ(apps[1], (AppInfo{"com.apple.Safari", "com.apple.Safari", 43, true, true}));
}

TEST(RealStageSystem, DisplaysMicrophonesPowerAndScenery) {
    Rig rig;
    auto& mac = *rig.mac;
    const EffectKey display1(EffectKind::displayMode, "1");
    EXPECT_EQ(rig.sys.displays(), (std::vector<std::uint32_t>{1, 2}));
    EXPECT_EQ(rig.sys.mainDisplay(), 1u);
    EXPECT_EQ(rig.sys.displayModeValue({1440, 900}, 1), JournalValue::number(12));
    EXPECT_EQ(rig.sys.displayModeValue({1280, 720}, 1), std::nullopt);
    rig.sys.write(display1, JournalValue::number(12));
    EXPECT_EQ(rig.sys.read(display1), JournalValue::number(12));
    EXPECT_EQ(rig.failure(display1, JournalValue::number(99)), "That display mode is gone");
    EXPECT_EQ(rig.failure(display1, on()), "bad value");
    EXPECT_EQ(rig.failure(display1, JournalValue::number(1e12)), "bad value");
    for (const auto& target : {"", "abc", "3"}) {
        EXPECT_EQ(rig.failure(EffectKey(EffectKind::displayMode, target), JournalValue::number(11)),
                  "it's gone");
    }
    mac.configuration = DisplayConfiguration::notBegun;
    EXPECT_EQ(rig.failure(display1, JournalValue::number(11)), "Display busy");
    mac.configuration = DisplayConfiguration::notCompleted;
    EXPECT_EQ(rig.failure(display1, JournalValue::number(11)),
              "The display refused that resolution");
    mac.mainDisplay = 0;
    EXPECT_EQ(rig.sys.mainDisplay(), std::nullopt);

    const EffectKey mic(EffectKind::micMute, "BuiltInMicrophoneDevice");
    EXPECT_EQ(rig.sys.defaultInputDevice(), "BuiltInMicrophoneDevice");
    rig.sys.write(mic, on());
    EXPECT_EQ(rig.sys.read(mic), on());
    EXPECT_EQ(rig.failure(EffectKey(EffectKind::micMute, "Unplugged"), on()), "it's gone");

    const EffectKey awake(EffectKind::keepAwake);
    rig.sys.write(awake, on());
    rig.sys.write(awake, on());
    EXPECT_EQ(rig.sys.read(awake), on());
    EXPECT_EQ(mac.assertions.size(), 1u);
    rig.sys.write(awake, off());
    rig.sys.write(awake, off());
    EXPECT_TRUE(mac.assertions.empty());
    mac.assertionStatus = -536870201;
    EXPECT_EQ(rig.failure(awake, on()), "Couldn't keep the Mac awake");
    EXPECT_EQ(rig.sys.read(awake), off());

    rig.sys.write(EffectKey(EffectKind::desktopIcons), on());
    EXPECT_EQ(mac.sceneryOn, std::set{EffectKind::desktopIcons});
    mac.sceneryFailure = "No screen";
    EXPECT_EQ(rig.failure(EffectKey(EffectKind::desktopIcons), off()), "No screen");

    rig.sys.startScreenSaver();
    EXPECT_EQ(mac.opened,
              std::vector<std::string>{"/System/Library/CoreServices/ScreenSaverEngine.app"});
    mac.opens = false;
    try {
        rig.sys.startScreenSaver();
        ADD_FAILURE() << "the screen saver could not start, and said nothing";
    } catch (const StageError& error) {
        EXPECT_EQ(error.description(), "Couldn't start the screen saver");
    }

    // Holding the assertion ends with the system that holds it.
    mac.assertionStatus = 0;
    {
        RealStageSystem brief(rig.mac, rig.options());
        brief.write(awake, on());
        EXPECT_EQ(mac.assertions.size(), 1u);
    }
    EXPECT_TRUE(mac.assertions.empty());
}

TEST(RealStageSystem, DoNotDisturbRunsTheShortcutsNamedInTheSettings) {
    Rig rig;
    const EffectKey dnd(EffectKind::doNotDisturb);
    StageSettings settings;
    settings.focusOnShortcut = "Quiet please";
    rig.sys.settings = [&] { return settings; };
    EXPECT_EQ(rig.sys.availability(EffectKind::doNotDisturb),
              Availability::needsSetup("Add the two Scrimlet shortcuts (Settings › Quiet)"));
    rig.shortcutsAnswer = {0, "Quiet please\nScrimlet Quiet Off\n"};
    EXPECT_TRUE(rig.sys.shortcuts().installed(true).size() == 2);
    EXPECT_TRUE(rig.sys.availability(EffectKind::doNotDisturb).isReady());

    EXPECT_EQ(rig.sys.write(dnd, on()), std::nullopt);
    EXPECT_EQ(rig.toolRuns.back()[1], "Quiet please");
    rig.sys.write(dnd, off());
    EXPECT_EQ(rig.toolRuns.back()[1], "Scrimlet Quiet Off");
    rig.shortcutsAnswer = {1, ""};
    EXPECT_EQ(rig.failure(dnd, on()), "The shortcut “Quiet please” didn't run");
}

TEST(RealStageSystem, EachKindSaysWhyItCannotRun) {
    Rig rig;
    auto& mac = *rig.mac;
    for (const auto kind : effect_kind::allCases) {
        EXPECT_TRUE(rig.sys.availability(kind).isReady()) << rawValue(kind);
    }
    mac.automationStatus = -1743;
    mac.defaultInputDevice = 0;
    mac.divider = false;
    mac.trusted = false;
    rig.shortcutsAnswer = {0, "Scrimlet Quiet On\n"};
    rig.sys.shortcuts().installed(true);
    const std::map<EffectKind, Availability> expected = {
        {EffectKind::dockAutohide,
         Availability::needsPermission("Allow Scrimlet to control System Events in System "
                                       "Settings › Privacy & Security › Automation")},
        {EffectKind::darkMode,
         Availability::needsPermission("Allow Scrimlet to control System Events in System "
                                       "Settings › Privacy & Security › Automation")},
        {EffectKind::micMute, Availability::unavailable("No microphone")},
        {EffectKind::doNotDisturb,
         Availability::needsSetup("Add the two Scrimlet shortcuts (Settings › Quiet)")},
        {EffectKind::menuBarTidy,
         Availability::needsSetup("Turn on the menu bar divider (Settings › Menu Bar)")},
        {EffectKind::keyboardLock,
         Availability::needsPermission(
             "Allow Scrimlet in System Settings › Privacy & Security › Accessibility")},
    };
    for (const auto kind : effect_kind::allCases) {
        const auto found = expected.find(kind);
        EXPECT_EQ(rig.sys.availability(kind),
                  found == expected.end() ? Availability::ready() : found->second)
            << rawValue(kind);
    }
    EXPECT_EQ(rig.sys.defaultInputDevice(), std::nullopt);
    // Any other answer of the Automation check, or none, lets the script try.
    mac.automationStatus = std::nullopt;
    EXPECT_TRUE(rig.sys.availability(EffectKind::darkMode).isReady());
}

} // namespace
} // namespace scrimlet
