#pragma once

// Portable drawings on macOS: one view that draws a drawing with CoreGraphics (text with
// CoreText), and images drawn the same way. The drawings decide every shape and colour;
// this file only translates them. Main thread only.

#import <AppKit/AppKit.h>

#include "Drawing.hpp"

#include <functional>
#include <string_view>

namespace scrimlet::mac {

/// What a drawing view shows: the drawing for its size and appearance, made anew at every
/// draw, so that adaptive colours follow the window's appearance without rebuilding.
using DrawingMaker = std::function<Drawing(Size size, Appearance appearance)>;

/// The light or dark look of a system appearance, by its best match among aqua and dark aqua.
Appearance appearanceOf(NSAppearance *appearance);

/// Draws into a context whose y axis runs downward from the top left. `images` holds the
/// pictures by the names the drawing uses; any other name is read as a file path.
void drawDrawing(const Drawing &drawing, CGContextRef context,
                 NSDictionary<NSString *, NSImage *> *images);

/// The system font's weight for a theme weight.
NSFontWeight nsFontWeight(FontWeight weight);
/// The system font in a theme font's size, weight, width and design, with tabular digits
/// when the font asks for them.
NSFont *nsFont(const Font &font);

/// An image whose every draw makes the drawing for the appearance it is drawn in.
NSImage *imageOfDrawing(Size size, std::function<Drawing(Appearance)> make);

/// The status item's picture: a template image that takes the menu bar's colour, except
/// live, when it keeps its red lamp.
NSImage *menuGlyphImage(bool live, bool standby);

/// One line of text as CoreText lays it out, for layouts that must fit text.
Size measureText(std::string_view text, const Font &font);

} // namespace scrimlet::mac

/// An `NSView` that draws a portable drawing, y downward.
@interface SCDrawingView : NSView

@property(nonatomic) scrimlet::mac::DrawingMaker maker;
@property(nonatomic, copy) NSDictionary<NSString *, NSImage *> *images;

@end
