#pragma once

// One settings page drawn from its model: a title, a subtitle, and titled cards of rows with
// their controls. Each control writes through what the model binds it to. Main thread only.

#import <AppKit/AppKit.h>

#include "SettingsModel.hpp"

#include <memory>

NS_ASSUME_NONNULL_BEGIN

/// A page's content, for a scroll view's document.
@interface ScrimletSettingsPageView : NSView
/// Runs after any control of the page changed something, so that the page can be read again.
@property(nonatomic, copy, nullable) void (^onEdit)(void);
- (instancetype)initWithStore:(std::weak_ptr<scrimlet::StageStore>)store width:(CGFloat)width;
/// Draws the page anew.
- (void)showPage:(const scrimlet::SettingsPageModel &)page;
/// Whether the user is in the middle of something a redraw would break: dragging, typing,
/// recording a hotkey, or picking a colour.
- (BOOL)isBusy;
@end

NS_ASSUME_NONNULL_END
