#pragma once

// A key event as the hotkey recorder takes it, for the controls that record hotkeys: the
// field hands each key-down of its local monitor to `HotkeyField::key` through this.

#import "../common/Text.h"
#import "HotkeyRecorder.hpp"

#import <AppKit/AppKit.h>

namespace scrimlet::mac {

static_assert(NSEventModifierFlagCommand == CocoaModifiers::command &&
                  NSEventModifierFlagShift == CocoaModifiers::shift &&
                  NSEventModifierFlagOption == CocoaModifiers::option &&
                  NSEventModifierFlagControl == CocoaModifiers::control,
              "the recorder reads the event's own modifier flags");

/// The key code, modifier flags and unmodified characters of a key-down or key-up event.
inline KeyInput keyInput(NSEvent *event) {
    KeyInput input;
    input.keyCode = event.keyCode;
    input.modifierFlags = event.modifierFlags;
    if (NSString *characters = event.charactersIgnoringModifiers) {
        input.charactersIgnoringModifiers = toString(characters);
    }
    return input;
}

} // namespace scrimlet::mac
