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
    s.plan = StagePlan{false, false, false, true,  true,
                       true,  false, false, false, ResolutionPreset{1920, 1080}};
    s.countdown = false;
    s.timeLimitMinutes = 45;
    s.showTimerInMenuBar = false;
    s.keepVisible = {"com.apple.Keynote", "com.apple.Notes"};
    s.backdropStyle = BackdropStyle{BackdropStyle::Kind::picture,
                                    {0x111111, 0xABCDEF},
                                    90,
                                    "/Users/me/Pictures/stage.jpg",
                                    12,
                                    0.4};
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
    const Json document = Json::parse(*files::read(url));
    EXPECT_EQ(document.size(), 16u);
    EXPECT_EQ(document.begin().key(), "autoStart");
    EXPECT_EQ(std::prev(document.end()).key(), "timeLimitMinutes");

    // Absent optionals are left out, never written as null, and stay absent.
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

    SettingsFile::save(sparse, std::nullopt);
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
    for (const char* text : {"autoStart = false", "", "[true]", "{\"autoStart\": fal"}) {
        EXPECT_EQ(loadText(text), firstRun) << text;
    }
    // An object, however empty, was written by someone: no hotkey in it means none.
    StageSettings noHotkey;
    noHotkey.stageHotkey.reset();
    EXPECT_EQ(loadText("{}"), noHotkey);
    EXPECT_EQ(loadText(R"({"autoStart": "no"})"), noHotkey);

    // One damaged field costs that field; a damaged record or dictionary costs all of it.
    const Json full = toJson(everythingChanged());
    const auto check = [&](const std::function<void(Json&)>& damage,
                           const std::function<void(StageSettings&)>& fallback) {
        Json damaged = full;
        damage(damaged);
        StageSettings expected = everythingChanged();
        fallback(expected);
        EXPECT_EQ(loadText(damaged.dump()), expected) << damaged.dump();
    };
    check([](Json& d) { d["plan"].erase("keepAwake"); }, [](auto& s) { s.plan = StagePlan(); });
    check([](Json& d) { d["autoStart"] = "false"; }, [](auto& s) { s.autoStart = true; });
    check(
        [](Json& d) {
            d["detection"]["startWhenOpen"] = {"ok", 3};
        },
        [](auto& s) { s.detection = DetectionOptions(); });
    check([](Json& d) { d["backdropStyle"]["kind"] = "neon"; },
          [](auto& s) { s.backdropStyle = BackdropStyle(); });
    check([](Json& d) { d["switches"]["keepAwake"].erase("pinned"); },
          [](auto& s) { s.switches.clear(); });
    check([](Json& d) { d["timeLimitMinutes"] = "45"; },
          [](auto& s) { s.timeLimitMinutes.reset(); });
    check([](Json& d) { d["stageHotkey"]["modifiers"] = -1; },
          [](auto& s) { s.stageHotkey.reset(); });
    check([](Json& d) { d["spotlightDim"] = true; }, [](auto& s) { s.spotlightDim = 0.55; });
    // Keys from another version are passed over; 45.0 is a whole number all the same.
    check(
        [](Json& d) {
            d["somethingNew"] = 1;
            d["timeLimitMinutes"] = 45.0;
        },
        [](auto&) {});
}

TEST(StageSettings, SwitchPrefsFallBackToEachSwitchsDefaults) {
    StageSettings s;
    EXPECT_EQ(s.prefs(SwitchKind::lockKeyboard), (SwitchPrefs{false, 2, std::nullopt}));
    EXPECT_EQ(s.prefs(SwitchKind::keepAwake), (SwitchPrefs{true, std::nullopt, std::nullopt}));
    EXPECT_EQ(s.pinnedSwitches(), std::vector<SwitchKind>(switch_kind::defaultPinned.begin(),
                                                          switch_kind::defaultPinned.end()));
    // Saved prefs replace the defaults whole: no limit turns the safety limit off.
    s.setPrefs(SwitchKind::lockKeyboard, SwitchPrefs{true, std::nullopt, std::nullopt});
    s.setPrefs(SwitchKind::hideDesktopIcons, SwitchPrefs{true, 5, std::nullopt});
    s.setPrefs(SwitchKind::hideDesktopIcons, SwitchPrefs{false, 10, std::nullopt});
    EXPECT_FALSE(s.prefs(SwitchKind::lockKeyboard).autoOffMinutes.has_value());
    EXPECT_EQ(s.prefs(SwitchKind::hideDesktopIcons).autoOffMinutes, 10);
    const auto pinned = s.pinnedSwitches();
    EXPECT_EQ(pinned.front(), SwitchKind::hideDock);
    EXPECT_EQ(pinned.back(), SwitchKind::lockKeyboard);
    EXPECT_EQ(pinned.size(), 8u);

    for (const SwitchKind kind : switch_kind::allCases) {
        EXPECT_EQ(switchKindFromRaw(rawValue(kind)), kind);
        EXPECT_EQ(isAction(kind), kind == SwitchKind::screenSaver);
    }
    EXPECT_EQ(owner(SwitchKind::muteMic), "switch.muteMic");
    EXPECT_FALSE(switchKindFromRaw("mutemic").has_value());
}

TEST(Hotkey, DisplayAndUsability) {
    EXPECT_EQ(Hotkey::defaultStage().display(), "⌃⌥⌘S");
    EXPECT_EQ((Hotkey{1, 0x1B00, "K"}).display(), "⌃⌥⇧⌘K");
    EXPECT_TRUE((Hotkey{0, Hotkey::option, "A"}).isUsable());
    EXPECT_TRUE((Hotkey{96, 0, "F5"}).isUsable());
    EXPECT_TRUE((Hotkey{3, Hotkey::shift, "F"}).isUsable());
    EXPECT_FALSE((Hotkey{0, Hotkey::shift, "A"}).isUsable());
    EXPECT_FALSE((Hotkey{0, 0, "f"}).isUsable());
}

TEST(BackdropStyle, SummaryNamesTheKindAndAnExactPalette) {
    BackdropStyle style;
    EXPECT_EQ(style.summary(), "Mesh · Footlights");
    style.kind = BackdropStyle::Kind::gradient;
    style.colors = BackdropStyle::palettes()[5].colors;
    EXPECT_EQ(style.summary(), "Gradient · Gel blue");
    style.kind = BackdropStyle::Kind::color;
    style.colors = {0x7A2E1F, 0x2A1610, 0xD9893B, 0x3B1F3A}; // Footlights, two swapped
    EXPECT_EQ(style.summary(), "Colour");
    style.kind = BackdropStyle::Kind::picture;
    EXPECT_EQ(style.summary(), "Picture · none chosen");
    style.picturePath = "/Users/me/Pictures/Velvet Curtain.heic";
    EXPECT_EQ(style.summary(), "Picture · Velvet Curtain.heic");
    style.kind = BackdropStyle::Kind::wallpaper;
    EXPECT_EQ(style.summary(), "Wallpaper, blurred");
}

} // namespace
} // namespace scrimlet
