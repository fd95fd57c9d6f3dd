#include "Settings.hpp"
#include "SettingsFile.hpp"

#include "AtomicFile.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace scrimlet {
namespace {

using Json = nlohmann::ordered_json;
using testing::TempDir;

// A record in which no field has its default value.
StageSettings everythingChanged() {
    StageSettings s;
    s.autoStart = false;
    s.detection = DetectionOptions{false, false, false, false, true, {"com.apple.Keynote"}};
    s.plan = {false, false, false, true, true, true, false, false, false, {{1920, 1080}}};
    s.countdown = false;
    s.timeLimitMinutes = 45;
    s.showTimerInMenuBar = false;
    s.keepVisible = {"com.apple.Keynote", "com.apple.Notes"};
    s.backdropStyle = {BackdropStyle::Kind::picture, {0x111111, 0xABCDEF}, 90, "/a.jpg", 12, 0.4};
    s.spotlightRadius = 160;
    s.spotlightDim = 0.7;
    s.setPrefs(SwitchKind::keepAwake, SwitchPrefs{true, 120, Hotkey{0, Hotkey::option, "A"}});
    s.setPrefs(SwitchKind::lockKeyboard, SwitchPrefs{false, std::nullopt, std::nullopt});
    s.stageHotkey = Hotkey{35, Hotkey::cmd | Hotkey::shift, "P"};
    s.focusOnShortcut = "Focus on";
    s.focusOffShortcut = "Focus off";
    s.launchAtLogin = true;
    s.menuBarDivider = true;
    return s;
}

TEST(SettingsFile, EveryFieldSurvivesASaveAndALoad) {
    TempDir dir;
    const auto url = dir / "Support" / "settings.json";
    SettingsFile::save(everythingChanged(), url);
    EXPECT_EQ(SettingsFile::load(url), everythingChanged());

    // Absent optionals are left out, never written as null, and stay absent: a cleared
    // stage hotkey must not come back as the default.
    StageSettings sparse;
    sparse.stageHotkey.reset();
    sparse.setPrefs(SwitchKind::spotlight, SwitchPrefs{true, std::nullopt, std::nullopt});
    SettingsFile::save(sparse, url);
    const std::string text = *files::read(url);
    for (const char* key :
         {"null", "timeLimitMinutes", "otkey", "resolution", "picturePath", "autoOffMinutes"}) {
        EXPECT_EQ(text.find(key), std::string::npos) << key;
    }
    EXPECT_EQ(SettingsFile::load(url), sparse);

    SettingsFile::save(sparse, dir.path()); // a folder cannot be replaced: dropped
    EXPECT_TRUE(std::filesystem::is_directory(dir.path()));
}

TEST(SettingsFile, DamagedFilesKeepWhatCanBeKept) {
    TempDir dir;
    const auto url = dir / "settings.json";
    const auto loadText = [&](const std::string& text) {
        files::writeAtomically(url, text);
        return SettingsFile::load(url);
    };
    // Nothing usable: the defaults of a first run, the default hotkey included.
    const StageSettings firstRun;
    ASSERT_EQ(firstRun.stageHotkey, Hotkey::defaultStage());
    EXPECT_EQ(SettingsFile::load(dir / "missing.json"), firstRun);
    for (const char* text : {"autoStart = false", "[true]", "{\"autoStart\": fal"}) {
        EXPECT_EQ(loadText(text), firstRun) << text;
    }
    // An object, however empty, was written by someone: no hotkey in it means none.
    StageSettings noHotkey;
    noHotkey.stageHotkey.reset();
    EXPECT_EQ(loadText("{}"), noHotkey);

    // One damaged field costs that field; a damaged record or dictionary costs all of it.
    const auto check = [&](const std::function<void(Json&)>& damage,
                           const std::function<void(StageSettings&)>& fallback) {
        Json damaged = toJson(everythingChanged());
        damage(damaged);
        StageSettings expected = everythingChanged();
        fallback(expected);
        EXPECT_EQ(loadText(damaged.dump()), expected) << damaged.dump();
    };
    check([](Json& d) { d["autoStart"] = "false"; }, [](auto& s) { s.autoStart = true; });
    check([](Json& d) { d["plan"].erase("keepAwake"); }, [](auto& s) { s.plan = StagePlan(); });
    check([](Json& d) { d["switches"]["keepAwake"].erase("pinned"); },
          [](auto& s) { s.switches.clear(); });
    check([](Json& d) { d["timeLimitMinutes"] = "45"; },
          [](auto& s) { s.timeLimitMinutes.reset(); });
    check([](Json& d) { d["stageHotkey"]["modifiers"] = -1; },
          [](auto& s) { s.stageHotkey.reset(); });
    // Keys from another version are passed over; 45.0 is a whole number all the same.
    check([](Json& d) { d["somethingNew"] = d["timeLimitMinutes"] = 45.0; }, [](auto&) {});
}

TEST(StageSettings, SwitchPrefsFallBackToEachSwitchsDefaults) {
    StageSettings s;
    EXPECT_EQ(s.prefs(SwitchKind::lockKeyboard), (SwitchPrefs{false, 2, std::nullopt}));
    // Saved prefs replace the defaults whole: no limit turns the safety limit off.
    s.setPrefs(SwitchKind::lockKeyboard, SwitchPrefs{true, std::nullopt, std::nullopt});
    s.setPrefs(SwitchKind::hideDesktopIcons, SwitchPrefs{false, 10, std::nullopt});
    EXPECT_FALSE(s.prefs(SwitchKind::lockKeyboard).autoOffMinutes.has_value());
    const auto pinned = s.pinnedSwitches();
    EXPECT_EQ(pinned.front(), SwitchKind::hideDock);
    EXPECT_EQ(pinned.back(), SwitchKind::lockKeyboard);
    EXPECT_EQ(pinned.size(), 8u);
}

TEST(StageSettings, HotkeyAndBackdropTexts) {
    EXPECT_EQ(Hotkey::defaultStage().display(), "⌃⌥⌘S");
    EXPECT_EQ((Hotkey{1, 0x1B00, "K"}).display(), "⌃⌥⇧⌘K");
    EXPECT_TRUE((Hotkey{96, 0, "F5"}).isUsable());
    EXPECT_FALSE((Hotkey{0, Hotkey::shift, "A"}).isUsable());

    BackdropStyle style;
    EXPECT_EQ(style.summary(), "Mesh · Footlights");
    style.kind = BackdropStyle::Kind::gradient;
    style.colors = {0x7A2E1F, 0x2A1610, 0xD9893B, 0x3B1F3A}; // Footlights, two swapped
    EXPECT_EQ(style.summary(), "Gradient");
    style.kind = BackdropStyle::Kind::picture;
    EXPECT_EQ(style.summary(), "Picture · none chosen");
    style.picturePath = "/Users/me/Pictures/Velvet Curtain.heic";
    EXPECT_EQ(style.summary(), "Picture · Velvet Curtain.heic");
}

} // namespace
} // namespace scrimlet
