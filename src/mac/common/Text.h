#pragma once

// Text across the bridge: std::string is UTF-8 on the C++ side, NSString on the other.

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace scrimlet::mac {

/// The UTF-8 of a string; empty for nil.
inline std::string toString(NSString *text) {
    const char *bytes = text.UTF8String;
    return bytes ? std::string(bytes) : std::string();
}

/// A string from UTF-8; bytes that are not UTF-8 are repaired rather than lost.
inline NSString *toNSString(std::string_view text) {
    NSString *made = [[NSString alloc] initWithBytes:text.data()
                                              length:text.size()
                                            encoding:NSUTF8StringEncoding];
    if (made) {
        return made;
    }
    // Latin-1 reads any bytes at all, so the answer is never nil.
    return [[NSString alloc] initWithData:[NSData dataWithBytes:text.data() length:text.size()]
                                 encoding:NSISOLatin1StringEncoding];
}

} // namespace scrimlet::mac
