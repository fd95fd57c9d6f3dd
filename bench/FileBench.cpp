// What the settings file and the run-sheet file cost to read and to write at their full
// size: every setting set, and the 30 sheets the show keeps, each with a dozen cues and a
// dozen strike records. Saves include the flush to the disk that every write makes.

#include "RunSheetFile.hpp"
#include "SettingsFile.hpp"
#include "TempDir.hpp"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

namespace scrimlet {
namespace {

using ScratchFolder = testing::TempDir;

StageSettings fullSettings() {
    StageSettings s;
    s.autoStart = false;
    s.detection = DetectionOptions{true, true, false,
                                   true, true, {"com.apple.Keynote", "com.microsoft.Powerpoint"}};
    s.plan = StagePlan{true, true, true, true, true,
                       true, true, true, true, ResolutionPreset{1920, 1080}};
    s.timeLimitMinutes = 90;
    s.keepVisible = {"com.apple.Keynote", "com.apple.Notes", "com.apple.Terminal"};
    s.backdropStyle = BackdropStyle{BackdropStyle::Kind::picture,
                                    BackdropStyle::footlights(),
                                    120,
                                    "/Users/me/Pictures/Stage.heic",
                                    30,
                                    0.2};
    std::uint32_t keyCode = 0;
    for (const SwitchKind kind :
         {SwitchKind::keepAwake, SwitchKind::darkMode, SwitchKind::muteMic, SwitchKind::spotlight,
          SwitchKind::lockKeyboard, SwitchKind::screenSaver}) {
        const std::string key(1, static_cast<char>('A' + keyCode));
        s.setPrefs(kind,
                   SwitchPrefs{true, 30, Hotkey{keyCode, Hotkey::control | Hotkey::option, key}});
        ++keyCode;
    }
    s.stageHotkey = Hotkey::defaultStage();
    s.focusOnShortcut = "Quiet please";
    s.focusOffShortcut = "Noise again";
    s.launchAtLogin = true;
    s.menuBarDivider = true;
    return s;
}

std::vector<RunSheet> fullSheets() {
    const Date now{1793000000};
    std::vector<RunSheet> sheets;
    for (int n = 0; n < 30; ++n) {
        const Date start = now - 86400.0 * n;
        RunSheet sheet(start, "Zoom is sharing your screen",
                       CaptureSource{"us.zoom.xos", "Zoom", CaptureKind::callShare});
        sheet.endedAt = start + 2820;
        sheet.reason = EndReason::captureEnded;
        for (int i = 0; i < 12; ++i) {
            const EffectKey key(EffectKind::appHidden, "com.example.app" + std::to_string(i) + "#" +
                                                           std::to_string(500 + i) + "#App " +
                                                           std::to_string(i));
            sheet.cues.emplace_back(
                key, i % 5 == 4 ? CueOutcome::skipped("no permission") : CueOutcome::applied(),
                start);
            sheet.strike.emplace_back(
                key, i == 0 ? CueOutcome::leftAlone() : CueOutcome::restored(), *sheet.endedAt);
        }
        sheets.push_back(std::move(sheet));
    }
    return sheets;
}

void SettingsLoad(benchmark::State& state) {
    ScratchFolder folder;
    const auto url = folder / "settings.json";
    SettingsFile::save(fullSettings(), url);
    for (auto _ : state) {
        benchmark::DoNotOptimize(SettingsFile::load(url));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(std::filesystem::file_size(url)));
}
BENCHMARK(SettingsLoad);

void SettingsSave(benchmark::State& state) {
    ScratchFolder folder;
    const auto url = folder / "settings.json";
    const StageSettings settings = fullSettings();
    for (auto _ : state) {
        SettingsFile::save(settings, url);
    }
}
BENCHMARK(SettingsSave)->Unit(benchmark::kMicrosecond);

void RunSheetsLoad(benchmark::State& state) {
    ScratchFolder folder;
    const auto url = folder / "runsheets.json";
    RunSheetFile::save(fullSheets(), url);
    for (auto _ : state) {
        benchmark::DoNotOptimize(RunSheetFile::load(url));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(std::filesystem::file_size(url)));
}
BENCHMARK(RunSheetsLoad)->Unit(benchmark::kMicrosecond);

void RunSheetsSave(benchmark::State& state) {
    ScratchFolder folder;
    const auto url = folder / "runsheets.json";
    const std::vector<RunSheet> sheets = fullSheets();
    for (auto _ : state) {
        RunSheetFile::save(sheets, url);
    }
}
BENCHMARK(RunSheetsSave)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace scrimlet
