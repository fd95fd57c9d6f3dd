#pragma once

// The small control that records a hotkey in the settings: a button that, once clicked,
// listens for the next chord. This is its whole behaviour; the platform's button shows
// `text()` in `font()`, holds a local key monitor exactly while `recording()` is true, and
// hands every key-down to `key`. Main thread only.

#include "Font.hpp"
#include "HotkeyRecorder.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace scrimlet {

class HotkeyField {
public:
    /// What one key press did.
    enum class KeyOutcome {
        /// Not recording: the key belongs to whoever else wants it.
        passedOn,
        /// A key with no label; still recording.
        ignored,
        /// A chord without command, option or control; still recording, and saying so.
        refused,
        /// Escape: recording stopped, the binding as it was.
        cancelled,
        /// Delete or Forward Delete: the binding cleared, recording stopped.
        cleared,
        /// A usable chord: it is the binding now, recording stopped.
        set,
    };

    static constexpr std::string_view accessibilityLabel = "Hotkey";
    static constexpr std::string_view recordText = "Record";
    static constexpr std::string_view listeningText = "Type shortcut…";
    static constexpr std::string_view refusedText = "Add ⌘, ⌃ or ⌥";
    static constexpr std::string_view clearTitle = "Clear";
    /// A monospaced medium face, so that the chord's signs line up.
    static constexpr Font font = {11.5, FontWeight::medium, FontWidth::standard,
                                  FontDesign::monospaced};

    explicit HotkeyField(std::optional<Hotkey> hotkey = std::nullopt);

    /// The binding as the field shows it.
    const std::optional<Hotkey>& hotkey() const { return hotkey_; }
    /// Follows a binding that changed elsewhere, without reporting it back.
    void setHotkey(std::optional<Hotkey> hotkey) { hotkey_ = std::move(hotkey); }
    bool recording() const { return recording_; }
    /// The last key while recording had no usable modifier.
    bool refused() const { return refused_; }

    /// The button's title.
    std::string text() const;
    /// The chord, or "None".
    std::string accessibilityValue() const;

    /// The button's action: starts recording, or stops it.
    void click();
    /// The context menu's "Clear".
    void clear();
    /// The view went away: recording stops, the binding stays.
    void disappear();
    /// A key-down while the monitor is installed. Anything but `passedOn` swallows the key.
    KeyOutcome key(const KeyInput& input);

    /// Called with the new binding each time the field changes it.
    std::function<void(const std::optional<Hotkey>&)> onChange;

private:
    void start();
    void stop();
    void bind(std::optional<Hotkey> hotkey);

    std::optional<Hotkey> hotkey_;
    bool recording_ = false;
    bool refused_ = false;
};

} // namespace scrimlet
