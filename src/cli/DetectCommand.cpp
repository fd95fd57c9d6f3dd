#include "DetectCommand.hpp"

#include "CommandLine.hpp"
#include "DetectionReport.hpp"
#include "InputFile.hpp"
#include "JsonCoding.hpp"

#include <sstream>

namespace scrimlet::DetectCommand {

using json::Json;

namespace {

std::string indented(const std::string& text, const std::string& margin) {
    std::string out;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        out += margin + line + "\n";
    }
    return out;
}

// One file, read and judged. The watcher is fed by the caller, in the files' order.
struct Judged {
    std::string file;
    std::string problem;
    WindowListFile::Reading reading;
    DetectionOptions options;
    CaptureExplanation explanation;
};

Judged judge(const std::string& file) {
    Judged judged;
    judged.file = file;
    auto input = InputFile::read(file, maxFileBytes);
    if (!input.text) {
        judged.problem = std::move(input.problem);
        return judged;
    }
    judged.reading = WindowListFile::decode(*input.text);
    if (!judged.reading.list) {
        judged.problem = judged.reading.problem;
        return judged;
    }
    const RecordedWindowList& list = *judged.reading.list;
    judged.options = list.detection.value_or(DetectionOptions());
    judged.explanation = CaptureRules::explain(list.snapshot, judged.options);
    return judged;
}

void describe(const Judged& judged, bool windows, std::ostream& out) {
    const RecordedWindowList& list = *judged.reading.list;
    out << judged.file << ":";
    if (list.label) {
        out << " “" << *list.label << "”";
    }
    out << "\n  " << DetectionReport::provenance(list) << "\n  "
        << DetectionReport::facts(list.snapshot) << "\n  "
        << (list.detection ? "Judged with the options it was taken with."
                           : "Judged with the default options, as the list holds none.")
        << "\n";
    for (const auto& note : judged.reading.notes) {
        out << "  Note: " << note << "\n";
    }
    if (windows) {
        out << indented(DetectionReport::windowTable(list.snapshot, judged.explanation), "  ");
    }
    out << indented(DetectionReport::explanation(judged.explanation), "  ");
}

Json listJson(const Judged& judged, const std::optional<DetectionReport::WatchStep>& step) {
    Json out = Json::object();
    out["file"] = judged.file;
    out["problem"] = judged.problem.empty() ? Json(nullptr) : Json(judged.problem);
    Json notes = Json::array();
    for (const auto& note : judged.reading.notes) {
        notes.push_back(note);
    }
    out["notes"] = std::move(notes);
    if (!judged.reading.list) {
        return out;
    }
    const RecordedWindowList& list = *judged.reading.list;
    out["label"] = list.label ? Json(*list.label) : Json(nullptr);
    out["recorded"] = list.recorded ? json::encodeDate(*list.recorded) : Json(nullptr);
    out["systemVersion"] = list.systemVersion;
    out["scrimletVersion"] = list.scrimletVersion;
    out["windows"] = list.snapshot.windows.size();
    out["displays"] = list.snapshot.displays.size();
    out["optionsRecorded"] = list.detection.has_value();
    out["detection"] = toJson(judged.options);
    out["explanation"] = toJson(judged.explanation);
    out["watcher"] = step ? DetectionReport::toJson(*step) : Json(nullptr);
    return out;
}

} // namespace

int run(const std::vector<std::string>& files, Options options, std::ostream& out,
        std::ostream& err) {
    if (files.empty()) {
        err << "scrimlet: detect needs at least one saved window list: scrimlet detect FILE...\n"
               "Try 'scrimlet --help'.\n";
        return CommandLine::usageError;
    }
    CaptureWatcher watcher;
    // The lists are replayed as the main loop would have taken them, one a second.
    const Date start = Date{0};
    std::vector<Judged> judged;
    std::vector<std::optional<DetectionReport::WatchStep>> steps;
    bool allRead = true;
    for (std::size_t i = 0; i < files.size(); ++i) {
        judged.push_back(judge(files[i]));
        const Judged& one = judged.back();
        if (!one.reading.list) {
            allRead = false;
            err << "scrimlet: detect: " << one.file << " " << one.problem << "\n";
            steps.emplace_back();
            continue;
        }
        const double at = static_cast<double>(i);
        steps.push_back(DetectionReport::watch(watcher, one.reading.list->snapshot, one.options,
                                               start + at, at));
    }

    if (options.json) {
        Json document = Json::object();
        Json lists = Json::array();
        for (std::size_t i = 0; i < judged.size(); ++i) {
            lists.push_back(listJson(judged[i], steps[i]));
        }
        document["lists"] = std::move(lists);
        Json delays = Json::object();
        delays["startDelay"] = watcher.startDelay;
        delays["stopDelay"] = watcher.stopDelay;
        document["watcher"] = std::move(delays);
        out << json::orderedText(document) << "\n";
        return allRead ? 0 : 1;
    }

    bool first = true;
    for (const Judged& one : judged) {
        if (one.reading.list) {
            out << (first ? "" : "\n");
            describe(one, options.windows, out);
            first = false;
        }
    }
    if (!first) {
        out << "\nWatcher, one list a second (" << DetectionReport::watcherRules(watcher) << "):\n";
        for (std::size_t i = 0; i < judged.size(); ++i) {
            out << "  " << i << " s  " << judged[i].file << "  "
                << (steps[i] ? steps[i]->text : "skipped: it " + judged[i].problem) << "\n";
        }
    }
    return allRead ? 0 : 1;
}

} // namespace scrimlet::DetectCommand
