#pragma once

// The dropdown's header: the curtain, with the house-open sign on it when closed and the
// stage behind it when open, moving between the two with the curtain's motion. Main thread
// only.

#import <AppKit/AppKit.h>

#include "Dropdown.hpp"

NS_ASSUME_NONNULL_BEGIN

@interface ScrimletStageHeaderView : NSView
- (instancetype)initWithWidth:(CGFloat)width;
/// Shows the header's model; a change of face draws the curtain, unless motion is reduced.
- (void)showModel:(const scrimlet::StageHeaderModel &)model;
@end

NS_ASSUME_NONNULL_END
