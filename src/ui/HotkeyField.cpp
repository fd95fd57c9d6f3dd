#include "HotkeyField.hpp"

namespace scrimlet {

HotkeyField::HotkeyField(std::optional<Hotkey> hotkey)
    : hotkey_(std::move(hotkey)) {}

std::string HotkeyField::text() const {
    if (recording_) {
        return std::string(refused_ ? refusedText : listeningText);
    }
    return hotkey_ ? hotkey_->display() : std::string(recordText);
}

std::string HotkeyField::accessibilityValue() const {
    return hotkey_ ? hotkey_->display() : "None";
}

void HotkeyField::click() {
    if (recording_) {
        stop();
    } else {
        start();
    }
}

void HotkeyField::clear() {
    bind(std::nullopt);
}

void HotkeyField::disappear() {
    stop();
}

HotkeyField::KeyOutcome HotkeyField::key(const KeyInput& input) {
    if (!recording_) {
        return KeyOutcome::passedOn;
    }
    if (input.keyCode == KeyCode::escape) {
        stop();
        return KeyOutcome::cancelled;
    }
    if (input.keyCode == KeyCode::deleteKey || input.keyCode == KeyCode::forwardDelete) {
        bind(std::nullopt);
        stop();
        return KeyOutcome::cleared;
    }
    auto chord = HotkeyRecorder::hotkey(input);
    if (!chord) {
        return KeyOutcome::ignored;
    }
    if (!chord->isUsable()) {
        refused_ = true;
        return KeyOutcome::refused;
    }
    bind(std::move(chord));
    stop();
    return KeyOutcome::set;
}

void HotkeyField::start() {
    recording_ = true;
    refused_ = false;
}

void HotkeyField::stop() {
    recording_ = false;
}

void HotkeyField::bind(std::optional<Hotkey> hotkey) {
    hotkey_ = std::move(hotkey);
    if (onChange) {
        onChange(hotkey_);
    }
}

} // namespace scrimlet
