#pragma once

// The theme as AppKit takes it: colours that follow the appearance they are drawn in, the
// system font in the theme's sizes and cuts, system symbols, and labels. Main thread only.

#import <AppKit/AppKit.h>

#import "DrawingView.h"

#include "ViewModel.hpp"

#include <string_view>

namespace scrimlet::mac {

NSColor *nsColor(const Color &color);
/// A colour resolved at drawing time for the appearance it is drawn in, so that views keep
/// up with a change between light and dark without being rebuilt.
NSColor *nsColor(const AdaptiveColor &color);
/// A system symbol at a point size and weight; nil when the system has no such symbol.
NSImage *symbolImage(std::string_view name, double pointSize,
                     FontWeight weight = FontWeight::regular, NSString *description = nil);
NSAttributedString *attributed(const StyledText &text);
/// A label that wraps onto as many lines as it needs within the width it is given.
NSTextField *label(const StyledText &text);
/// A label of one line.
NSTextField *singleLineLabel(const StyledText &text);
NSString *nsString(std::string_view text);
/// Whether the user asked the system to reduce motion.
bool reduceMotion();

} // namespace scrimlet::mac
