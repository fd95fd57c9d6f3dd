#pragma once

// The one seam between the engine and the Mac. Writes report failure by throwing
// `StageError`; reads answer nothing rather than fail.

#include "Effects.hpp"

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet {

/// The error that a stage system throws from `write` and `startScreenSaver`.
class StageError : public std::exception {
public:
    enum class Case {
        failed,           ///< Failed for a reason worth showing; the text says which.
        refusedInTestRun, ///< The real system refuses to touch the Mac in a scripted run.
        targetGone,       ///< The thing to change no longer exists.
    };

    static StageError failed(std::string text) { return StageError(Case::failed, std::move(text)); }
    static StageError refusedInTestRun() { return StageError(Case::refusedInTestRun, {}); }
    static StageError targetGone() { return StageError(Case::targetGone, {}); }

    Case kind() const { return case_; }
    /// The text itself for `failed`, "refused: test run", or "it's gone".
    const std::string& description() const { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

private:
    StageError(Case c, std::string text);
    Case case_;
    std::string description_;
};

/// Whether an effect can run on this Mac right now, and if not, why, in words for the user.
class Availability {
public:
    enum class Case { needsSetup, needsPermission, unavailable, ready };

    static Availability needsSetup(std::string text) { return {Case::needsSetup, std::move(text)}; }
    static Availability needsPermission(std::string text) {
        return {Case::needsPermission, std::move(text)};
    }
    static Availability unavailable(std::string text) {
        return {Case::unavailable, std::move(text)};
    }
    static Availability ready() { return {Case::ready, {}}; }

    Case kind() const { return case_; }
    bool isReady() const { return case_ == Case::ready; }
    /// The payload text; nothing for `ready`.
    std::optional<std::string> note() const;

    friend bool operator==(const Availability&, const Availability&) = default;

private:
    Availability(Case c, std::string text)
        : case_(c)
        , text_(std::move(text)) {}
    Case case_;
    std::string text_;
};

/// The machine as the engine sees it. Implementations are shared objects used on the main
/// thread only; `RealStageSystem` on the Mac, `FakeStageSystem` everywhere.
class StageSystem {
public:
    virtual ~StageSystem() = default;

    /// The value the effect has now. Changes nothing. Nothing when the target is not there
    /// (and, for Do Not Disturb, always: it cannot be read).
    virtual std::optional<JournalValue> read(const EffectKey& key) = 0;
    /// Makes the change. Answers the value found just before for Do Not Disturb, which only
    /// switching can tell, and nothing for every other kind. Throws on failure.
    virtual std::optional<JournalValue> write(const EffectKey& key, const JournalValue& value) = 0;
    virtual Availability availability(EffectKind kind) = 0;
    virtual std::vector<AppInfo> runningApps() = 0;
    virtual std::optional<std::string> frontmostBundleID() = 0;
    virtual std::vector<std::uint32_t> displays() = 0;
    /// The value that `write` of `displayMode` takes to give this display that size;
    /// nothing when the display has no such mode. The only source of such values.
    virtual std::optional<JournalValue> displayModeValue(const ResolutionPreset& preset,
                                                         std::uint32_t display) = 0;
    virtual std::optional<std::uint32_t> mainDisplay() = 0;
    /// The identifier of the default input device, the target of `micMute`.
    virtual std::optional<std::string> defaultInputDevice() = 0;
    /// Starts the screen saver at once: a one-shot action, nothing to journal or undo.
    virtual void startScreenSaver() = 0;
};

} // namespace scrimlet
