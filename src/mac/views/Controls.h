#pragma once

// The theme's small controls in AppKit: a rounded box, the button styles, the icon button,
// the lamp toggle, tags, cue numbers, kickers and banners. Each draws what a model says, in
// colours that follow the appearance, and carries the accessibility label it is given.
// Main thread only.

#import <AppKit/AppKit.h>

#include "ViewModel.hpp"

NS_ASSUME_NONNULL_BEGIN

typedef void (^ScrimletPerform)(const scrimlet::UiAction &action);

/// A rounded rectangle, filled and edged, around whatever it holds.
@interface ScrimletBox : NSView
@property(nonatomic, copy, nullable) NSColor *fill;
@property(nonatomic, copy, nullable) NSColor *border;
@property(nonatomic) CGFloat cornerRadius;
@property(nonatomic) CGFloat borderWidth;
/// Rounds the ends fully, whatever the height.
@property(nonatomic) BOOL capsule;
/// A box holding `content` inset by `insets`.
+ (instancetype)boxAround:(NSView *)content insets:(NSEdgeInsets)insets;
@end

/// A button in one of the theme's styles.
@interface ScrimletButton : NSButton
- (instancetype)initWithModel:(const scrimlet::ButtonModel &)model perform:(void (^)(void))perform;
@end

/// A borderless symbol with a tool tip, washed while the pointer is over it.
@interface ScrimletIconButton : NSButton
- (instancetype)initWithModel:(const scrimlet::IconButtonModel &)model
                      perform:(void (^)(void))perform;
@end

/// The capsule switch with its lamp.
@interface ScrimletLampToggle : NSView
@property(nonatomic, readonly) BOOL on;
@property(nonatomic, getter=isEnabled) BOOL enabled;
/// Runs after the user turned it, with the new state.
@property(nonatomic, copy, nullable) void (^onToggle)(BOOL on);
- (instancetype)initWithOn:(BOOL)on label:(NSString *)label;
/// Follows a state that changed elsewhere; moves the lamp unless motion is reduced.
- (void)setOn:(BOOL)on animated:(BOOL)animated;
@end

namespace scrimlet::mac {

/// A capsule label.
NSView *tagView(const TagModel &tag);
/// "Q" and a number, lit or not.
NSView *cueNumberView(const CueNumberModel &number);
/// A section's small upper-case heading.
NSTextField *kicker(std::string_view text, const AdaptiveColor &color = Theme::ink3);
/// A note with a symbol, a text, and maybe an action and a dismiss button.
NSView *bannerView(const BannerModel &banner, CGFloat width, ScrimletPerform perform);
/// A 1-point line in the rule colour.
NSView *hairline();
/// A view that takes whatever room a stack leaves.
NSView *spacer();
/// A symbol in a colour, at a point size.
NSImageView *symbolView(std::string_view symbol, double pointSize, const AdaptiveColor &color,
                        FontWeight weight = FontWeight::regular);
/// A vertical or horizontal stack with the given spacing.
NSStackView *stack(NSUserInterfaceLayoutOrientation orientation, CGFloat spacing,
                   NSArray<NSView *> *views);
/// Ties a subview's four edges to its superview's, so that each takes the other's size.
void pinToEdges(NSView *view, NSView *container);
/// Replaces a view's own tracking area with one that reports the pointer entering and
/// leaving its visible part, in every app state; for `updateTrackingAreas`.
void trackHover(NSView *view);
/// A timer that calls `step` at each frame of an animation, also while a menu tracks or a
/// window is dragged.
NSTimer *frameTimer(void (^step)(void));

} // namespace scrimlet::mac

NS_ASSUME_NONNULL_END
