#import "OperatingSystem.hpp"

#import "../common/Text.h"

#import <Foundation/Foundation.h>

namespace scrimlet::mac::OperatingSystem {

std::weak_ordering nameOrder(std::string_view a, std::string_view b) {
    switch ([toNSString(a) localizedCaseInsensitiveCompare:toNSString(b)]) {
    case NSOrderedAscending:
        return std::weak_ordering::less;
    case NSOrderedDescending:
        return std::weak_ordering::greater;
    case NSOrderedSame:
        break;
    }
    return std::weak_ordering::equivalent;
}

std::string version() {
    NSProcessInfo *process = NSProcessInfo.processInfo;
    const NSOperatingSystemVersion number = process.operatingSystemVersion;
    NSString *text =
        [NSString stringWithFormat:@"macOS %ld.%ld.%ld (%@)", (long)number.majorVersion,
                                   (long)number.minorVersion, (long)number.patchVersion,
                                   process.operatingSystemVersionString];
    return toString(text);
}

} // namespace scrimlet::mac::OperatingSystem
