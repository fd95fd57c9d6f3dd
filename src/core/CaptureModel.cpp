#include "CaptureModel.hpp"

#include "JsonCoding.hpp"

#include <algorithm>
#include <array>

namespace scrimlet {

using json::Json;

namespace {

struct KindRow {
    CaptureKind kind;
    std::string_view raw;
    std::string_view verb;
};

constexpr std::array<KindRow, 7> kindRows = {{
    {CaptureKind::callShare, "callShare", "is sharing your screen"},
    {CaptureKind::browserShare, "browserShare", "is sharing your screen"},
    {CaptureKind::systemRecording, "systemRecording", "is recording"},
    {CaptureKind::recorder, "recorder", "is recording"},
    {CaptureKind::appOpen, "appOpen", "is open"},
    {CaptureKind::call, "call", "is on a call"},
    {CaptureKind::cue, "cue", "cued the show"},
}};

std::vector<std::string> stringList(const Json& value) {
    if (!value.is_array()) {
        throw json::DecodeError("expected an array");
    }
    std::vector<std::string> out;
    for (const Json& item : value) {
        out.push_back(json::decodeString(item));
    }
    return out;
}

} // namespace

std::string_view rawValue(CaptureKind kind) {
    return kindRows[static_cast<size_t>(kind)].raw;
}

std::optional<CaptureKind> captureKindFromRaw(std::string_view raw) {
    for (const auto& row : kindRows) {
        if (row.raw == raw) {
            return row.kind;
        }
    }
    return std::nullopt;
}

std::string_view verb(CaptureKind kind) {
    return kindRows[static_cast<size_t>(kind)].verb;
}

std::string CaptureSource::sentence() const {
    return name + " " + std::string(verb(kind));
}

namespace KnownApps {

const std::map<std::string, std::string>& calls() {
    static const std::map<std::string, std::string> table = {
        {"us.zoom.xos", "Zoom"},
        {"com.microsoft.teams2", "Microsoft Teams"},
        {"com.microsoft.teams", "Microsoft Teams"},
        {"Cisco-Systems.Spark", "Webex"},
        {"com.webex.meetingmanager", "Webex"},
        {"com.tinyspeck.slackmacgap", "Slack"},
        {"com.hnc.Discord", "Discord"},
        {"com.skype.skype", "Skype"},
        {"com.apple.FaceTime", "FaceTime"},
        {"com.logmein.goto", "GoTo Meeting"},
        {"com.ringcentral.glip", "RingCentral"},
    };
    return table;
}

const std::map<std::string, std::string>& browsers() {
    static const std::map<std::string, std::string> table = {
        {"com.google.Chrome", "Chrome"},
        {"com.google.Chrome.beta", "Chrome Beta"},
        {"com.google.Chrome.canary", "Chrome Canary"},
        {"com.microsoft.edgemac", "Edge"},
        {"com.brave.Browser", "Brave"},
        {"company.thebrowser.Browser", "Arc"},
        {"com.vivaldi.Vivaldi", "Vivaldi"},
        {"com.operasoftware.Opera", "Opera"},
        {"org.mozilla.firefox", "Firefox"},
        {"org.chromium.Chromium", "Chromium"},
    };
    return table;
}

const std::map<std::string, std::string>& recorders() {
    static const std::map<std::string, std::string> table = {
        {"app.vantrel.takeloom", "Takeloom"},
        {"com.obsproject.obs-studio", "OBS"},
        {"com.timpler.screenstudio", "Screen Studio"},
        {"pl.maketheweb.cleanshotx", "CleanShot X"},
        {"so.cap.desktop", "Cap"},
        {"com.loom.desktop", "Loom"},
        {"com.wulkano.kap", "Kap"},
        {"net.telestream.screenflow10", "ScreenFlow"},
        {"com.techsmith.camtasia2023", "Camtasia"},
        {"com.apple.QuickTimePlayerX", "QuickTime Player"},
    };
    return table;
}

std::optional<std::string> name(const std::string& bundleID) {
    for (const auto* table : {&calls(), &browsers(), &recorders()}) {
        const auto found = table->find(bundleID);
        if (found != table->end()) {
            return found->second;
        }
    }
    return std::nullopt;
}

} // namespace KnownApps

Json toJson(const CaptureSource& source) {
    Json out = Json::object();
    out["bundleID"] = source.bundleID;
    out["name"] = source.name;
    out["kind"] = std::string(rawValue(source.kind));
    return out;
}

CaptureSource captureSourceFromJson(const Json& value) {
    CaptureSource source;
    source.bundleID = json::decodeString(json::field(value, "bundleID"));
    source.name = json::decodeString(json::field(value, "name"));
    const auto kind = captureKindFromRaw(json::decodeString(json::field(value, "kind")));
    if (!kind) {
        throw json::DecodeError("unknown capture kind");
    }
    source.kind = *kind;
    return source;
}

Json toJson(const DetectionOptions& options) {
    Json out = Json::object();
    out["watchCalls"] = options.watchCalls;
    out["watchBrowsers"] = options.watchBrowsers;
    out["watchSystemRecording"] = options.watchSystemRecording;
    out["watchTakeloom"] = options.watchTakeloom;
    out["treatCallsAsSharing"] = options.treatCallsAsSharing;
    out["startWhenOpen"] = options.startWhenOpen;
    return out;
}

DetectionOptions detectionOptionsFromJson(const Json& value) {
    DetectionOptions options;
    options.watchCalls = json::decodeBool(json::field(value, "watchCalls"));
    options.watchBrowsers = json::decodeBool(json::field(value, "watchBrowsers"));
    options.watchSystemRecording = json::decodeBool(json::field(value, "watchSystemRecording"));
    options.watchTakeloom = json::decodeBool(json::field(value, "watchTakeloom"));
    options.treatCallsAsSharing = json::decodeBool(json::field(value, "treatCallsAsSharing"));
    options.startWhenOpen = stringList(json::field(value, "startWhenOpen"));
    return options;
}

Json toJson(const Rect& rect) {
    Json out = Json::object();
    out["x"] = rect.x;
    out["y"] = rect.y;
    out["width"] = rect.width;
    out["height"] = rect.height;
    return out;
}

Rect rectFromJson(const Json& value) {
    return Rect{json::decodeDouble(json::field(value, "x")),
                json::decodeDouble(json::field(value, "y")),
                json::decodeDouble(json::field(value, "width")),
                json::decodeDouble(json::field(value, "height"))};
}

Json toJson(const WindowInfo& window) {
    Json out = Json::object();
    out["ownerPID"] = window.ownerPID;
    out["ownerName"] = window.ownerName;
    if (window.bundleID) {
        out["bundleID"] = *window.bundleID;
    }
    out["layer"] = window.layer;
    out["bounds"] = toJson(window.bounds);
    out["alpha"] = window.alpha;
    return out;
}

WindowInfo windowInfoFromJson(const Json& value) {
    WindowInfo window;
    window.ownerPID = json::decodeInt32(json::field(value, "ownerPID"));
    window.ownerName = json::decodeString(json::field(value, "ownerName"));
    if (const Json* bundleID = json::optionalField(value, "bundleID")) {
        window.bundleID = json::decodeString(*bundleID);
    }
    window.layer = json::decodeInteger(json::field(value, "layer"));
    window.bounds = rectFromJson(json::field(value, "bounds"));
    window.alpha = json::decodeDouble(json::field(value, "alpha"));
    return window;
}

Json toJson(const DisplayInfo& display) {
    Json out = Json::object();
    out["id"] = display.id;
    out["frame"] = toJson(display.frame);
    return out;
}

DisplayInfo displayInfoFromJson(const Json& value) {
    return DisplayInfo{json::decodeUInt32(json::field(value, "id")),
                       rectFromJson(json::field(value, "frame"))};
}

} // namespace scrimlet
