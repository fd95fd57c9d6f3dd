#pragma once

#import <AppKit/AppKit.h>

/// The application's delegate: the launch steps in their order, link events, termination
/// signals and the way to the settings window.
@interface AppDelegate : NSObject <NSApplicationDelegate>

/// The dispatch sources of SIGTERM, SIGINT and SIGHUP, kept so that they stay alive.
@property(nonatomic, readonly) NSMutableArray *signalSources;

@end
