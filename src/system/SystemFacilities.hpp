#pragma once

// The raw platform facilities that the real system's rules stand on, one call per platform
// question, answering plain values. Nothing here decides anything: which value a read
// answers, which message a failure carries and which call a test run may make are the rules
// of `RealStageSystem`, `WindowList`, `Mic`, `Displays` and their neighbours, written once
// and tested everywhere against a fake of this interface. The macOS shell implements it over
// CFPreferences, NSAppleScript, Core Audio, CoreMediaIO, CoreGraphics, IOKit and the
// workspace. Main thread only.

#include "Effects.hpp"
#include "Geometry.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace scrimlet {

/// A preference value of one of the three kinds the rules read; anything else (a list, a
/// dictionary, a date) reads as no value.
using PreferenceValue = std::variant<bool, double, std::string>;

/// One running application as the workspace lists it.
struct RunningApp {
    enum class Policy { regular, accessory, prohibited };

    std::int32_t pid = 0;
    std::optional<std::string> bundleID;
    std::optional<std::string> localizedName;
    Policy policy = Policy::regular;
    bool isHidden = false;
    bool isTerminated = false;

    friend bool operator==(const RunningApp&, const RunningApp&) = default;
};

/// One entry of the window server's list. Each value is present only when the entry holds
/// it with the type named: numbers as they were stored, the bounds only when they make a
/// rectangle.
struct RawWindow {
    std::optional<double> ownerPID;
    std::optional<double> layer;
    std::optional<Rect> bounds;
    std::optional<std::string> ownerName;
    std::optional<double> alpha;
    std::optional<double> number;

    friend bool operator==(const RawWindow&, const RawWindow&) = default;
};

/// One mode a display offers. `handle` keeps the platform's own mode object alive, so that
/// the very mode chosen here is the one handed back to `configureDisplay`.
struct DisplayMode {
    std::int32_t ioModeID = 0;
    /// Size in points.
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// Size in pixels; wider than the points on a Retina mode.
    std::int64_t pixelWidth = 0;
    std::int64_t pixelHeight = 0;
    double refreshRate = 0;
    bool usableForDesktopGUI = false;
    std::shared_ptr<const void> handle;

    friend bool operator==(const DisplayMode&, const DisplayMode&) = default;
};

/// How far a display configuration got.
enum class DisplayConfiguration {
    applied,
    /// No configuration could be begun.
    notBegun,
    /// The configuration was refused when it was to be completed.
    notCompleted,
};

/// What running an AppleScript in process gave.
struct ScriptOutcome {
    /// Whether a script could be made of the source at all.
    bool made = true;
    /// Whether it reported an error (an error dictionary came back).
    bool failed = false;
    /// The error's number, when the dictionary holds one as a number.
    std::optional<std::int64_t> errorNumber;
    /// The error's message, when the dictionary holds one as text.
    std::optional<std::string> errorMessage;
    /// The result as a 32-bit integer, when the script gave a result.
    std::optional<std::int32_t> result;

    friend bool operator==(const ScriptOutcome&, const ScriptOutcome&) = default;
};

/// What creating a power assertion gave: the platform's status (0 is success) and the
/// assertion's identifier.
struct PowerAssertion {
    std::int32_t status = 0;
    std::uint32_t id = 0;
};

/// One property of a Core Audio or CoreMediaIO object.
struct PropertyAddress {
    std::uint32_t selector = 0;
    std::uint32_t scope = 0;
    std::uint32_t element = 0;

    friend bool operator==(const PropertyAddress&, const PropertyAddress&) = default;
};

/// The four-character codes that name properties, as the platform spells them.
constexpr std::uint32_t fourCharCode(const char (&code)[5]) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(code[0])) << 24 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(code[1])) << 16 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(code[2])) << 8 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(code[3]));
}

/// The audio and camera properties the rules ask for, and the objects they ask.
namespace properties {
inline constexpr std::uint32_t systemObject = 1;
inline constexpr std::uint32_t wildcardElement = 0xFFFFFFFF;
inline constexpr PropertyAddress defaultInput{fourCharCode("dIn "), fourCharCode("glob"), 0};
inline constexpr PropertyAddress devices{fourCharCode("dev#"), fourCharCode("glob"), 0};
inline constexpr PropertyAddress deviceUID{fourCharCode("uid "), fourCharCode("glob"), 0};
inline constexpr PropertyAddress runningSomewhere{fourCharCode("gone"), fourCharCode("glob"), 0};
inline constexpr PropertyAddress mute{fourCharCode("mute"), fourCharCode("inpt"), 0};
inline constexpr PropertyAddress volume{fourCharCode("volm"), fourCharCode("inpt"), 0};
/// A camera in use by any process, asked of every element in every scope.
inline constexpr PropertyAddress cameraRunningSomewhere{fourCharCode("gone"), fourCharCode("****"),
                                                        wildcardElement};
} // namespace properties

class SystemFacilities {
public:
    virtual ~SystemFacilities() = default;

    // Preferences
    /// The application domain that holds settings shared by every application.
    static constexpr const char* anyApplication = "kCFPreferencesAnyApplication";
    /// Synchronises the domain with the disk, then reads one key of it.
    virtual std::optional<PreferenceValue> preference(const std::string& domain,
                                                      const std::string& key) = 0;

    // Automation
    /// Runs an AppleScript in this process; blocks for as long as it takes.
    virtual ScriptOutcome runAppleScript(const std::string& source) = 0;
    /// The status of asking, without a prompt, whether this program may send any Apple
    /// event to the application; nothing when no target could be made of it.
    virtual std::optional<std::int32_t> automationPermission(const std::string& bundleID) = 0;

    // Core Audio. A failed call answers nothing or false, never an error.
    virtual bool audioHasProperty(std::uint32_t object, PropertyAddress address) = 0;
    /// Whether the property can be set; nothing when the platform could not tell.
    virtual std::optional<bool> audioIsSettable(std::uint32_t object, PropertyAddress address) = 0;
    virtual std::optional<std::uint32_t> audioUInt32(std::uint32_t object,
                                                     PropertyAddress address) = 0;
    virtual std::optional<float> audioFloat(std::uint32_t object, PropertyAddress address) = 0;
    virtual std::optional<std::string> audioText(std::uint32_t object, PropertyAddress address) = 0;
    /// A list of object identifiers: its size is asked first, then the list.
    virtual std::optional<std::vector<std::uint32_t>> audioObjects(std::uint32_t object,
                                                                   PropertyAddress address) = 0;
    virtual bool setAudioUInt32(std::uint32_t object, PropertyAddress address,
                                std::uint32_t value) = 0;
    virtual bool setAudioFloat(std::uint32_t object, PropertyAddress address, float value) = 0;

    // CoreMediaIO
    virtual std::optional<std::vector<std::uint32_t>> cameraObjects(std::uint32_t object,
                                                                    PropertyAddress address) = 0;
    virtual std::optional<std::uint32_t> cameraUInt32(std::uint32_t object,
                                                      PropertyAddress address) = 0;

    // Displays
    /// The connected displays; empty when they cannot be listed.
    virtual std::vector<std::uint32_t> onlineDisplays() = 0;
    /// The display with the menu bar; 0 when there is none.
    virtual std::uint32_t mainDisplayID() = 0;
    /// Every mode of the display, the low-resolution duplicates included.
    virtual std::vector<DisplayMode> displayModes(std::uint32_t display) = 0;
    virtual std::optional<DisplayMode> currentDisplayMode(std::uint32_t display) = 0;
    /// Switches the display to the mode for this program only: the platform undoes it by
    /// itself when the process dies.
    virtual DisplayConfiguration configureDisplay(std::uint32_t display,
                                                  const DisplayMode& mode) = 0;
    /// The display number of each screen, in the screens' order; nothing for a screen that
    /// has none as a number.
    virtual std::vector<std::optional<double>> screenNumbers() = 0;
    /// The display's frame in global coordinates, origin at the top left.
    virtual Rect displayBounds(std::uint32_t display) = 0;

    // Power
    virtual PowerAssertion createPowerAssertion(const std::string& type, std::uint32_t level,
                                                const std::string& name) = 0;
    virtual void releasePowerAssertion(std::uint32_t id) = 0;

    // Applications
    virtual std::vector<RunningApp> runningApplications() = 0;
    virtual std::optional<RunningApp> runningApplication(std::int32_t pid) = 0;
    virtual std::optional<RunningApp> frontmostApplication() = 0;
    /// Asks the application to hide or to show itself; whether it said it would.
    virtual bool setApplicationHidden(std::int32_t pid, bool hidden) = 0;
    /// Calls `handler` on the main thread each time an application comes to the front, with
    /// that application when the notification names one; for the life of the process.
    virtual void observeActivations(std::function<void(std::optional<RunningApp>)> handler) = 0;
    /// This program's own process identifier.
    virtual std::int32_t processID() = 0;
    /// Opens a file or an application bundle as a double-click would; whether it opened.
    virtual bool open(const std::string& path) = 0;
    /// Whether the user allowed this program to control the computer (Accessibility).
    virtual bool accessibilityTrusted() = 0;

    // The window server
    /// The on-screen windows without the desktop's, front to back; an empty list when the
    /// window server gives none, and nothing in place of an entry that is not a record.
    virtual std::vector<std::optional<RawWindow>> windowList() = 0;

    // The program's own scenery and menu bar divider
    virtual bool sceneryIsOn(EffectKind kind) = 0;
    /// Shows or removes one scene; throws `StageError` when it cannot.
    virtual void setScenery(EffectKind kind, bool on) = 0;
    virtual bool menuBarDividerInstalled() = 0;
};

} // namespace scrimlet
