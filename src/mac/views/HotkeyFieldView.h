#pragma once

// The settings' hotkey recorder as a button: it shows the chord, listens for the next one
// once clicked, and offers "Clear" in its context menu. What a key does is the portable
// field's to decide. Main thread only.

#import <AppKit/AppKit.h>

#include "Hotkey.hpp"

#include <optional>

NS_ASSUME_NONNULL_BEGIN

@interface ScrimletHotkeyField : NSButton
/// Listening for the next chord.
@property(nonatomic, readonly, getter=isRecording) BOOL recording;
- (instancetype)initWithHotkey:(std::optional<scrimlet::Hotkey>)hotkey
                      onChange:(void (^)(std::optional<scrimlet::Hotkey> hotkey))onChange;
@end

NS_ASSUME_NONNULL_END
