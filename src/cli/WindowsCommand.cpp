#include "WindowsCommand.hpp"

#include "AppPaths.hpp"
#include "CommandLine.hpp"
#include "DetectionReport.hpp"
#include "SettingsFile.hpp"
#include "TerminationSignals.hpp"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>

#ifndef SCRIMLET_VERSION
#define SCRIMLET_VERSION "unknown"
#endif

namespace scrimlet::WindowsCommand {

namespace {

namespace fs = std::filesystem;

int misuse(std::ostream& err, const std::string& problem) {
    err << "scrimlet: windows: " << problem << "\nTry 'scrimlet --help'.\n";
    return CommandLine::usageError;
}

// The looks of a watch are saved side by side, in an order that `detect` replays as given by
// the shell: "teams.json" becomes "teams-0001.json", "teams-0002.json", ...
fs::path numbered(const fs::path& path, int n) {
    char suffix[16];
    std::snprintf(suffix, sizeof suffix, "-%04d", n);
    return path.parent_path() / (path.stem().string() + suffix + path.extension().string());
}

std::string seconds(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

class Session {
public:
    Session(const LiveWindowList& live, const Harness::Environment& environment,
            std::optional<std::string> label)
        : live_(live)
        , settings_(SettingsFile::load(AppPaths::support(environment) / "settings.json"))
        , label_(std::move(label)) {
        if (live_.systemVersion) {
            systemVersion_ = live_.systemVersion();
        }
    }

    const DetectionOptions& options() const { return settings_.detection; }
    bool autoStart() const { return settings_.autoStart; }
    const std::string& systemVersion() const { return systemVersion_; }

    RecordedWindowList look(Date now) const {
        // The microphone and camera are asked whatever the options say: a saved list should
        // tell whether a call was on, even when calls do not count as sharing here.
        DetectionOptions asked = settings_.detection;
        asked.treatCallsAsSharing = true;
        RecordedWindowList list;
        list.snapshot = live_.snapshot(asked);
        list.systemVersion = systemVersion_;
        list.scrimletVersion = SCRIMLET_VERSION;
        list.recorded = now;
        list.label = label_;
        list.detection = settings_.detection;
        return list;
    }

private:
    const LiveWindowList& live_;
    StageSettings settings_;
    std::optional<std::string> label_;
    std::string systemVersion_;
};

bool save(const RecordedWindowList& list, const fs::path& path, std::ostream& err) {
    if (WindowListFile::save(list, path)) {
        return true;
    }
    err << "scrimlet: windows: could not write " << path.string() << "\n";
    return false;
}

int once(const Session& session, const std::optional<fs::path>& file, std::ostream& out,
         std::ostream& err) {
    const RecordedWindowList list = session.look(Date::now());
    const CaptureExplanation explanation = CaptureRules::explain(list.snapshot, session.options());
    out << "Window list on " << session.systemVersion() << ": "
        << DetectionReport::facts(list.snapshot) << "\n";
    out << DetectionReport::windowTable(list.snapshot, explanation);
    if (!session.autoStart()) {
        out << "Automatic starts are off in the settings: this is what detection sees, but no "
               "show would start from it.\n";
    }
    out << DetectionReport::explanation(explanation);
    if (file) {
        if (!save(list, *file, err)) {
            return 1;
        }
        out << "Saved to " << file->string() << ". Replay it anywhere with: scrimlet detect "
            << file->string() << "\n";
    }
    return 0;
}

int watch(const Session& session, const std::optional<fs::path>& file, const Pacing& pacing,
          std::ostream& out, std::ostream& err) {
    CaptureWatcher watcher(session.options());
    out << "Watching the window list on " << session.systemVersion() << " once a second ("
        << DetectionReport::watcherRules(watcher) << "). Ctrl-C ends.\n";
    if (!session.autoStart()) {
        out << "Automatic starts are off in the settings: no show would start from this.\n";
    }
    out.flush();
    const Date start = pacing.clock();
    int saved = 0;
    do {
        const Date now = pacing.clock();
        const RecordedWindowList list = session.look(now);
        const auto step =
            DetectionReport::watch(watcher, list.snapshot, session.options(), now, now - start);
        out << "  " << seconds(step.at) << " s  " << step.text;
        if (file) {
            const fs::path path = numbered(*file, saved + 1);
            if (!save(list, path, err)) {
                out << "\n";
                return 1;
            }
            ++saved;
            out << "  [" << path.filename().string() << "]";
        }
        out << "\n";
        out.flush();
    } while (pacing.wait(1.0));
    out << "Stopped.";
    if (saved > 0) {
        out << " Saved " << saved << (saved == 1 ? " list" : " lists") << " from "
            << numbered(*file, 1).string() << " on; replay them with: scrimlet detect "
            << numbered(*file, 1).string() << (saved > 1 ? " ..." : "");
    }
    out << "\n";
    return 0;
}

} // namespace

int run(const std::map<std::string, std::string>& values, bool watching,
        const Harness::Environment& environment, const LiveWindowList* live, std::ostream& out,
        std::ostream& err, std::optional<Pacing> pacing) {
    std::optional<fs::path> file;
    if (const auto save = values.find("--save"); save != values.end()) {
        if (save->second.empty()) {
            return misuse(err, "--save must not be empty");
        }
        file = fs::path(save->second);
    }
    std::optional<std::string> label;
    if (const auto given = values.find("--label"); given != values.end()) {
        if (!file) {
            return misuse(err, "--label goes into a saved list; give --save FILE too");
        }
        label = given->second;
    }
    if (!live || !live->snapshot) {
        err << "scrimlet: windows: the live window list exists only on a Mac. Here, judge a "
               "list saved on one: scrimlet detect FILE\n";
        return 1;
    }
    const Session session(*live, environment, label);
    if (!watching) {
        return once(session, file, out, err);
    }
    if (pacing) {
        return watch(session, file, *pacing, out, err);
    }
    std::unique_ptr<TerminationSignals> signals;
    try {
        signals = std::make_unique<TerminationSignals>();
    } catch (const std::exception& error) {
        err << "scrimlet: windows: cannot watch for Ctrl-C: " << error.what() << "\n";
        return 1;
    }
    return watch(session, file,
                 Pacing{[&](double seconds) { return !signals->wait(seconds); }, Date::now}, out,
                 err);
}

} // namespace scrimlet::WindowsCommand
