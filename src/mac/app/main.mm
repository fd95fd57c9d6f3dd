#import "../common/Text.h"
#import "AppDelegate.h"
#import "AppPaths.hpp"
#import "CueSheet.hpp"

#import <AppKit/AppKit.h>

namespace {

/// The system's own order of names, the one Finder shows in the user's language.
std::weak_ordering systemNameOrder(std::string_view a, std::string_view b) {
    NSString *left = scrimlet::mac::toNSString(a);
    NSString *right = scrimlet::mac::toNSString(b);
    switch ([left localizedCaseInsensitiveCompare:right]) {
    case NSOrderedAscending:
        return std::weak_ordering::less;
    case NSOrderedDescending:
        return std::weak_ordering::greater;
    case NSOrderedSame:
        break;
    }
    return std::weak_ordering::equivalent;
}

} // namespace

int main() {
    @autoreleasepool {
        NSURL *support =
            [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                                 inDomains:NSUserDomainMask]
                .firstObject;
        if (support.fileSystemRepresentation) {
            scrimlet::AppPaths::setApplicationSupport(support.fileSystemRepresentation);
        }
        scrimlet::CueSheet::nameOrder = systemNameOrder;

        NSApplication *app = NSApplication.sharedApplication;
        AppDelegate *delegate = [[AppDelegate alloc] init];
        app.delegate = delegate;
        [app run];
    }
    return 0;
}
