#pragma once

#import <AppKit/AppKit.h>

/// An invisible view that tells the demo film's anchors where it is on screen, under its
/// identifier, whenever it moves, resizes or changes window; a view can carry one behind
/// itself so that a script can point at it. It takes no clicks.
@interface ScrimletDemoAnchorView : NSView
- (instancetype)initWithAnchor:(NSString *)anchor;
@property(nonatomic, readonly, copy) NSString *anchor;
@end
