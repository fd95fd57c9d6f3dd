#include "DetectionReport.hpp"

#include "CaptureRules.hpp"
#include "JsonCoding.hpp"

#include <cstdio>
#include <map>
#include <sstream>

namespace scrimlet::DetectionReport {

using json::Json;

namespace {

std::string count(std::size_t n, const std::string& one, const std::string& many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

std::string number(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", value);
    std::string out = text;
    out.erase(out.find_last_not_of('0') + 1);
    if (out.back() == '.') {
        out.pop_back();
    }
    return out == "-0" ? "0" : out;
}

std::string place(const Rect& r) {
    return number(r.width) + "×" + number(r.height) + " at " + number(r.x) + "," + number(r.y);
}

std::string padLeft(const std::string& text, std::size_t width) {
    return text.size() >= width ? text : std::string(width - text.size(), ' ') + text;
}

// Pads by characters as a terminal shows them: "×" is one column but two bytes.
std::string padRight(const std::string& text, std::size_t width) {
    std::size_t columns = 0;
    for (const unsigned char c : text) {
        columns += (c & 0xC0) != 0x80 ? 1 : 0;
    }
    return columns >= width ? text : text + std::string(width - columns, ' ');
}

std::string owner(const WindowInfo& window) {
    const std::string name = window.ownerName.empty() ? "(no name)" : window.ownerName;
    return name + (window.bundleID ? " (" + *window.bundleID + ")" : " (no bundle identifier)");
}

std::string rulePrefix(const RuleFinding& finding) {
    return std::to_string(static_cast<int>(finding.rule) + 1) + ". " +
           std::string(title(finding.rule));
}

std::string state(const RuleFinding& finding, const CaptureExplanation& explanation) {
    if (!finding.enabled) {
        if (finding.rule == CaptureRule::startWhenOpen) {
            return "off";
        }
        return finding.matched ? "off in the settings, would match" : "off in the settings";
    }
    if (!finding.matched) {
        return "no";
    }
    return explanation.decidedBy == finding.rule ? "matches"
                                                 : "matches too, an earlier rule decides";
}

std::string which(const RuleFinding& finding) {
    if (!finding.window) {
        return "";
    }
    return (finding.matched ? "window " : "nearest is window ") +
           std::to_string(*finding.window + 1) + ", ";
}

Json sourceJson(const std::optional<CaptureSource>& source) {
    return source ? toJson(*source) : Json(nullptr);
}

} // namespace

std::string facts(const CaptureSnapshot& snapshot) {
    return count(snapshot.windows.size(), "window", "windows") + ", " +
           count(snapshot.displays.size(), "display", "displays") + ", " +
           count(snapshot.runningBundleIDs.size(), "running app", "running apps") +
           "; microphone " + (snapshot.micInUse ? "in use" : "not in use") + ", camera " +
           (snapshot.cameraInUse ? "in use" : "not in use") + ".";
}

std::string provenance(const RecordedWindowList& list) {
    std::string text = "Taken";
    if (list.recorded) {
        text += " " + list.recorded->iso8601();
    }
    text += " on " + (list.systemVersion.empty() ? "an unnamed system" : list.systemVersion);
    text += " by Scrimlet " +
            (list.scrimletVersion.empty() ? "(version unknown)" : list.scrimletVersion);
    text += ".";
    return text;
}

std::string windowTable(const CaptureSnapshot& snapshot, const CaptureExplanation& explanation) {
    std::ostringstream out;
    out << "Displays:\n";
    if (snapshot.displays.empty()) {
        out << "  none\n";
    }
    for (const auto& display : snapshot.displays) {
        out << "  display " << display.id << "  " << place(display.frame) << "\n";
    }
    std::map<std::size_t, std::vector<std::string>> marks;
    for (const auto& finding : explanation.rules) {
        if (finding.window) {
            marks[*finding.window].push_back(
                (finding.matched ? "matches rule " : "nearest miss of rule ") +
                std::to_string(static_cast<int>(finding.rule) + 1));
        }
    }
    out << "Windows, front to back:\n";
    if (snapshot.windows.empty()) {
        out << "  none\n";
        return out.str();
    }
    out << "     #     pid       layer  " << padRight("size and place", 26) << "alpha  owner\n";
    for (std::size_t i = 0; i < snapshot.windows.size(); ++i) {
        const WindowInfo& window = snapshot.windows[i];
        out << padLeft(std::to_string(i + 1), 6) << padLeft(std::to_string(window.ownerPID), 8)
            << padLeft(std::to_string(window.layer), 12) << "  "
            << padRight(place(window.bounds), 26) << padRight(number(window.alpha), 7)
            << owner(window);
        std::string notes;
        for (const auto& miss : CaptureRules::ignoredBecause(window, snapshot.selfPID)) {
            notes += (notes.empty() ? "ignored: " : "; ") + miss.text;
        }
        for (const auto& mark : marks[i]) {
            notes += (notes.empty() ? "" : ", ") + mark;
        }
        if (!notes.empty()) {
            out << "  [" << notes << "]";
        }
        out << "\n";
    }
    return out.str();
}

std::string explanation(const CaptureExplanation& explanation) {
    std::ostringstream out;
    if (explanation.verdict) {
        out << "Verdict: " << explanation.verdict->sentence() << " ("
            << title(*explanation.decidedBy) << ").\n";
    } else {
        out << "Verdict: nothing is being shared or recorded.\n";
    }
    for (const auto& finding : explanation.rules) {
        out << "  " << rulePrefix(finding) << ": " << state(finding, explanation) << " — "
            << which(finding) << finding.text << "\n";
    }
    return out.str();
}

WatchStep watch(CaptureWatcher& watcher, const CaptureSnapshot& snapshot,
                const DetectionOptions& options, Date now, double at) {
    WatchStep step;
    step.at = at;
    watcher.options = options;
    step.seen = CaptureRules::evaluate(snapshot, options);
    step.change = watcher.observe(snapshot, now);
    step.active = watcher.active();
    std::string text = "sees " + (step.seen ? step.seen->sentence() : "nothing") + "; ";
    if (step.change) {
        switch (step.change->kind()) {
        case CaptureWatcher::Change::Case::started:
            text += "started";
            break;
        case CaptureWatcher::Change::Case::ended:
            text += "ended: " + step.change->source().name + " is gone";
            break;
        case CaptureWatcher::Change::Case::switched:
            text +=
                "switched from " + step.change->from()->name + " to " + step.change->source().name;
            break;
        }
    } else if (step.seen && step.active && step.active->bundleID == step.seen->bundleID &&
               step.active->kind == step.seen->kind) {
        text += "in force";
    } else if (step.seen && step.active) {
        text += "waiting: " + step.active->name + " stays in force until this is seen for " +
                number(watcher.startDelay) + " s";
    } else if (step.seen) {
        text += "waiting: it counts once seen for " + number(watcher.startDelay) + " s";
    } else if (step.active) {
        text += step.active->name + " stays in force until unseen for " +
                number(watcher.stopDelay) + " s";
    } else {
        text += "idle";
    }
    step.text = std::move(text);
    return step;
}

std::string watcherRules(const CaptureWatcher& watcher) {
    return "a source counts once seen for " + number(watcher.startDelay) +
           " s and ends once unseen for " + number(watcher.stopDelay) + " s";
}

Json toJson(const CaptureWatcher::Change& change) {
    switch (change.kind()) {
    case CaptureWatcher::Change::Case::started:
        return json::encodeCase("started", scrimlet::toJson(change.source()));
    case CaptureWatcher::Change::Case::ended:
        return json::encodeCase("ended", scrimlet::toJson(change.source()));
    case CaptureWatcher::Change::Case::switched: {
        Json payload = Json::object();
        payload["from"] = scrimlet::toJson(*change.from());
        payload["to"] = scrimlet::toJson(change.source());
        Json out = Json::object();
        out["switched"] = std::move(payload);
        return out;
    }
    }
    return nullptr;
}

Json toJson(const WatchStep& step) {
    Json out = Json::object();
    out["at"] = step.at;
    out["seen"] = sourceJson(step.seen);
    out["change"] = step.change ? toJson(*step.change) : Json(nullptr);
    out["active"] = sourceJson(step.active);
    out["text"] = step.text;
    return out;
}

} // namespace scrimlet::DetectionReport
