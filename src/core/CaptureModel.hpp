#pragma once

// What the program can tell about screen capture without any screen-recording permission:
// one look at the window list, the process list and the device state, what was found, the
// user's options, and the apps known by bundle identifier. Plain values.

#include "Geometry.hpp"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

/// One window of the window list.
struct WindowInfo {
    std::int32_t ownerPID = 0;
    std::string ownerName;
    std::optional<std::string> bundleID;
    std::int64_t layer = 0;
    Rect bounds;
    double alpha = 1;

    friend bool operator==(const WindowInfo&, const WindowInfo&) = default;
};

struct DisplayInfo {
    std::uint32_t id = 0;
    Rect frame;

    friend bool operator==(const DisplayInfo&, const DisplayInfo&) = default;
};

/// One look at the system.
struct CaptureSnapshot {
    std::vector<WindowInfo> windows; ///< In the order of the system's window list.
    std::vector<DisplayInfo> displays;
    std::set<std::string> runningBundleIDs;
    bool micInUse = false;
    bool cameraInUse = false;
    std::int32_t selfPID = 0;

    friend bool operator==(const CaptureSnapshot&, const CaptureSnapshot&) = default;
};

/// Why a source counts as capturing.
enum class CaptureKind { callShare, browserShare, systemRecording, recorder, appOpen, call, cue };

std::string_view rawValue(CaptureKind kind);
std::optional<CaptureKind> captureKindFromRaw(std::string_view raw);
/// Finishes a sentence about the source: "is sharing your screen", "is recording", ...
std::string_view verb(CaptureKind kind);

/// What is capturing.
struct CaptureSource {
    std::string bundleID;
    std::string name;
    CaptureKind kind = CaptureKind::cue;

    /// "Zoom is sharing your screen"
    std::string sentence() const;

    friend bool operator==(const CaptureSource&, const CaptureSource&) = default;
    friend auto operator<=>(const CaptureSource&, const CaptureSource&) = default;
};

/// What to watch for.
struct DetectionOptions {
    bool watchCalls = true;
    bool watchBrowsers = true;
    bool watchSystemRecording = true;
    bool watchTakeloom = true;
    bool treatCallsAsSharing = false;
    /// Bundle identifiers that count as soon as they run, in the user's order.
    std::vector<std::string> startWhenOpen;

    friend bool operator==(const DetectionOptions&, const DetectionOptions&) = default;
};

/// Apps known by bundle identifier, each table mapping it to the name shown to the user.
namespace KnownApps {
const std::map<std::string, std::string>& calls();
const std::map<std::string, std::string>& browsers();
/// Only the first of these is detected by its windows; the table keeps recorders visible
/// during a show and names them.
const std::map<std::string, std::string>& recorders();
inline constexpr std::string_view takeloom = "app.vantrel.takeloom";
inline constexpr std::string_view screencaptureUI = "com.apple.screencaptureui";
inline constexpr std::string_view scrimlet = "app.vantrel.scrimlet";
/// Looks in `calls`, then `browsers`, then `recorders`.
std::optional<std::string> name(const std::string& bundleID);
} // namespace KnownApps

// JSON forms (field names as keys); decoders throw `json::DecodeError`.
nlohmann::ordered_json toJson(const CaptureSource& source);
CaptureSource captureSourceFromJson(const nlohmann::ordered_json& value);
nlohmann::ordered_json toJson(const DetectionOptions& options);
/// Strict: all six keys are required.
DetectionOptions detectionOptionsFromJson(const nlohmann::ordered_json& value);
nlohmann::ordered_json toJson(const Rect& rect);
Rect rectFromJson(const nlohmann::ordered_json& value);
nlohmann::ordered_json toJson(const WindowInfo& window);
WindowInfo windowInfoFromJson(const nlohmann::ordered_json& value);
nlohmann::ordered_json toJson(const DisplayInfo& display);
DisplayInfo displayInfoFromJson(const nlohmann::ordered_json& value);

} // namespace scrimlet
