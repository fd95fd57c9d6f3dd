#import "../system/OperatingSystem.hpp"
#import "AppDelegate.h"
#import "AppPaths.hpp"
#import "CueSheet.hpp"

#import <AppKit/AppKit.h>

int main() {
    @autoreleasepool {
        NSURL *support =
            [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                                 inDomains:NSUserDomainMask]
                .firstObject;
        if (support.fileSystemRepresentation) {
            scrimlet::AppPaths::setApplicationSupport(support.fileSystemRepresentation);
        }
        scrimlet::CueSheet::nameOrder = scrimlet::mac::OperatingSystem::nameOrder;

        NSApplication *app = NSApplication.sharedApplication;
        AppDelegate *delegate = [[AppDelegate alloc] init];
        app.delegate = delegate;
        [app run];
    }
    return 0;
}
