#include "WindowListFile.hpp"

#include "AtomicFile.hpp"
#include "JsonCoding.hpp"

#include <algorithm>

namespace scrimlet::WindowListFile {

using json::Json;

namespace {

// Where a syntax error sits, as an editor shows it.
std::string whereInText(std::string_view text, std::size_t byte) {
    const std::size_t end = std::min(byte > 0 ? byte - 1 : 0, text.size());
    const auto before = text.substr(0, end);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const auto lastBreak = before.rfind('\n');
    const auto column = end - (lastBreak == std::string_view::npos ? 0 : lastBreak + 1) + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

std::string ordinal(const char* what, std::size_t index) {
    return std::string(what) + " " + std::to_string(index + 1);
}

// Each detail beside the windows is read on its own; a damaged one takes its default and
// leaves a note, since the windows are what the file is for.
template <typename Decode>
void detail(const Json& document, std::string_view key, std::vector<std::string>& notes,
            Decode decode) {
    const Json* value = nullptr;
    try {
        value = json::optionalField(document, key);
    } catch (const std::exception&) {
        return;
    }
    if (!value) {
        return;
    }
    try {
        decode(*value);
    } catch (const std::exception& error) {
        notes.push_back(std::string(key) + ": " + error.what() + ", left out");
    }
}

Reading read(const Json& document) {
    Reading reading;
    if (!document.is_object()) {
        reading.problem = "is not a saved window list: the document is not a JSON object";
        return reading;
    }
    const Json* format = json::optionalField(document, "formatVersion");
    if (!format) {
        reading.problem = "is not a saved window list: it has no \"formatVersion\"";
        return reading;
    }
    std::int64_t version = 0;
    try {
        version = json::decodeInteger(*format);
    } catch (const std::exception&) {
        reading.problem = "is not a saved window list: \"formatVersion\" is not a whole number";
        return reading;
    }
    if (version < 1) {
        reading.problem =
            "is not a saved window list: format version " + std::to_string(version) + " is unknown";
        return reading;
    }
    const Json* windows = json::optionalField(document, "windows");
    if (!windows || !windows->is_array()) {
        reading.problem = "is not a saved window list: it has no \"windows\" list";
        return reading;
    }
    auto& notes = reading.notes;
    if (version > formatVersion) {
        notes.push_back("written in format " + std::to_string(version) + ", read as format " +
                        std::to_string(formatVersion) + ": what is new is left out");
    }

    RecordedWindowList list;
    CaptureSnapshot& snapshot = list.snapshot;
    for (std::size_t i = 0; i < windows->size(); ++i) {
        try {
            snapshot.windows.push_back(windowInfoFromJson((*windows)[i]));
        } catch (const std::exception& error) {
            notes.push_back(ordinal("window", i) + ": " + error.what() + ", skipped");
        }
    }
    detail(document, "displays", notes, [&](const Json& value) {
        if (!value.is_array()) {
            throw json::DecodeError("expected an array");
        }
        for (std::size_t i = 0; i < value.size(); ++i) {
            try {
                snapshot.displays.push_back(displayInfoFromJson(value[i]));
            } catch (const std::exception& error) {
                notes.push_back(ordinal("display", i) + ": " + error.what() + ", skipped");
            }
        }
    });
    detail(document, "runningBundleIDs", notes, [&](const Json& value) {
        if (!value.is_array()) {
            throw json::DecodeError("expected an array");
        }
        for (std::size_t i = 0; i < value.size(); ++i) {
            if (value[i].is_string()) {
                snapshot.runningBundleIDs.insert(value[i].get<std::string>());
            } else {
                notes.push_back(ordinal("running app", i) + ": expected a string, skipped");
            }
        }
    });
    detail(document, "micInUse", notes,
           [&](const Json& value) { snapshot.micInUse = json::decodeBool(value); });
    detail(document, "cameraInUse", notes,
           [&](const Json& value) { snapshot.cameraInUse = json::decodeBool(value); });
    detail(document, "selfPID", notes,
           [&](const Json& value) { snapshot.selfPID = json::decodeInt32(value); });
    detail(document, "systemVersion", notes,
           [&](const Json& value) { list.systemVersion = json::decodeString(value); });
    detail(document, "scrimletVersion", notes,
           [&](const Json& value) { list.scrimletVersion = json::decodeString(value); });
    detail(document, "recorded", notes,
           [&](const Json& value) { list.recorded = json::decodeDate(value); });
    detail(document, "label", notes,
           [&](const Json& value) { list.label = json::decodeString(value); });
    detail(document, "detection", notes,
           [&](const Json& value) { list.detection = detectionOptionsFromJson(value); });
    reading.list = std::move(list);
    return reading;
}

} // namespace

Reading decode(std::string_view text) noexcept {
    try {
        if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) {
            return Reading{std::nullopt, "is empty", {}};
        }
        Json document;
        try {
            document = Json::parse(text);
        } catch (const Json::parse_error& error) {
            // A file cut short is the commonest damage, and worth saying as such.
            const bool cutShort = error.byte > text.size();
            return Reading{std::nullopt,
                           std::string(cutShort ? "is not JSON: it ends too soon, at "
                                                : "is not JSON: a syntax error at ") +
                               whereInText(text, error.byte),
                           {}};
        }
        return read(document);
    } catch (const std::exception& error) {
        return Reading{std::nullopt, std::string("could not be read: ") + error.what(), {}};
    } catch (...) {
        return Reading{std::nullopt, "could not be read", {}};
    }
}

std::string encode(const RecordedWindowList& list) {
    const CaptureSnapshot& snapshot = list.snapshot;
    Json out = Json::object();
    out["formatVersion"] = formatVersion;
    if (list.label) {
        out["label"] = *list.label;
    }
    if (list.recorded) {
        out["recorded"] = json::encodeDate(*list.recorded);
    }
    out["systemVersion"] = list.systemVersion;
    out["scrimletVersion"] = list.scrimletVersion;
    out["selfPID"] = snapshot.selfPID;
    out["micInUse"] = snapshot.micInUse;
    out["cameraInUse"] = snapshot.cameraInUse;
    if (list.detection) {
        out["detection"] = toJson(*list.detection);
    }
    Json displays = Json::array();
    for (const auto& display : snapshot.displays) {
        displays.push_back(toJson(display));
    }
    out["displays"] = std::move(displays);
    out["runningBundleIDs"] = snapshot.runningBundleIDs;
    Json windows = Json::array();
    for (const auto& window : snapshot.windows) {
        windows.push_back(toJson(window));
    }
    out["windows"] = std::move(windows);
    return json::orderedText(out) + "\n";
}

std::optional<RecordedWindowList> load(const std::filesystem::path& path) noexcept {
    const auto text = files::read(path);
    if (!text) {
        return std::nullopt;
    }
    return decode(*text).list;
}

bool save(const RecordedWindowList& list, const std::filesystem::path& path) noexcept {
    try {
        return files::writeAtomically(path, encode(list));
    } catch (...) {
        return false;
    }
}

} // namespace scrimlet::WindowListFile
