#pragma once

#import <AppKit/AppKit.h>

#include <string>

/// An invisible view that tells the demo film's anchors where it is on screen, under its
/// identifier, whenever it moves, resizes or changes window; a view can carry one behind
/// itself so that a script can point at it. It takes no clicks.
@interface ScrimletDemoAnchorView : NSView
- (instancetype)initWithAnchor:(NSString *)anchor;
@property(nonatomic, readonly, copy) NSString *anchor;
/// Tells the anchors where the view is now: after a layout that moved one of its
/// superviews, which the view itself does not hear of.
- (void)report;
/// Puts an anchor under `anchor` behind every subview of `view`, filling it; does nothing
/// outside a scripted run, so that a normal run carries no extra views.
+ (void)anchor:(NSView *)view as:(const std::string &)anchor;
/// Every anchor under `view`, itself included, tells where it is.
+ (void)reportAllIn:(NSView *)view;
@end
