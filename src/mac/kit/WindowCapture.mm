#import "WindowCapture.hpp"

#import <AppKit/AppKit.h>

#include <dlfcn.h>

namespace scrimlet::mac::WindowCapture {

namespace {

CGRect cgRect(const vantrel::Rect &rect) {
    return CGRectMake(rect.x, rect.y, rect.width, rect.height);
}

/// Found at run time: the call is deprecated from macOS 14 and gone from the macOS 15 SDK,
/// though the systems before 14.4, which need it, still have it.
using ComposeWindows = CGImageRef (*)(CGRect, CFArrayRef, CGWindowImageOption);

ComposeWindows composeWindows() {
    static const auto found =
        reinterpret_cast<ComposeWindows>(dlsym(RTLD_DEFAULT, "CGWindowListCreateImageFromArray"));
    return found;
}

std::vector<CapturedLayer> composed(const std::vector<std::uint32_t> &windows,
                                    const vantrel::Rect &region) {
    const ComposeWindows compose = composeWindows();
    if (!compose) {
        return {};
    }
    NSMutableArray *numbers = [NSMutableArray array];
    for (const std::uint32_t number : windows) {
        [numbers addObject:@(number)];
    }
    CGImageRef image = compose(cgRect(region), (__bridge CFArrayRef)numbers,
                               kCGWindowImageBestResolution | kCGWindowImageBoundsIgnoreFraming);
    if (!image) {
        return {};
    }
    CapturedImage held(image);
    // An unreadable window comes back as an image without pixels.
    if (CGImageGetWidth(image) == 0 || CGImageGetHeight(image) == 0) {
        return {};
    }
    return {CapturedLayer{held, region}};
}

} // namespace

std::vector<vantrel::FilmWindow> onScreenWindows() {
    std::vector<vantrel::FilmWindow> found;
    CFArrayRef list = CGWindowListCopyWindowInfo(
        kCGWindowListOptionOnScreenOnly | kCGWindowListExcludeDesktopElements, kCGNullWindowID);
    if (!list) {
        return found;
    }
    NSArray *windows = CFBridgingRelease(list);
    for (NSDictionary *info in windows) {
        NSNumber *number = info[(__bridge NSString *)kCGWindowNumber];
        NSNumber *owner = info[(__bridge NSString *)kCGWindowOwnerPID];
        NSDictionary *bounds = info[(__bridge NSString *)kCGWindowBounds];
        CGRect rect = CGRectZero;
        if (![number isKindOfClass:NSNumber.class] || ![owner isKindOfClass:NSNumber.class] ||
            ![bounds isKindOfClass:NSDictionary.class] ||
            !CGRectMakeWithDictionaryRepresentation((__bridge CFDictionaryRef)bounds, &rect)) {
            continue;
        }
        found.push_back({number.unsignedIntValue,
                         owner.intValue,
                         {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height}});
    }
    return found;
}

std::vector<CapturedLayer> capture(const std::vector<std::uint32_t> &windows,
                                   const vantrel::Rect &region, double scale) {
    if (@available(macOS 14.4, *)) {
        return OwnWindowStream::latest(windows, scale);
    }
    return composed(windows, region);
}

} // namespace scrimlet::mac::WindowCapture
