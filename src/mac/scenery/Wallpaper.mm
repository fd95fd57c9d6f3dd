#import "Wallpaper.h"

#import <CoreImage/CoreImage.h>

#include "ImageFillView.hpp"

namespace scrimlet::mac::Wallpaper {

NSImage *imageFor(NSScreen *screen) {
    NSURL *url = [NSWorkspace.sharedWorkspace desktopImageURLForScreen:screen];
    if (url == nil) {
        return nil;
    }
    BOOL isDirectory = NO;
    if (![NSFileManager.defaultManager fileExistsAtPath:url.path isDirectory:&isDirectory] ||
        isDirectory) {
        return nil;
    }
    return [[NSImage alloc] initWithContentsOfURL:url];
}

NSImage *blurred(NSImage *image, double radius, double maxSide) {
    CGImageRef source = [image CGImageForProposedRect:nullptr context:nil hints:nil];
    if (source == nullptr) {
        return nil;
    }
    CIImage *input = [CIImage imageWithCGImage:source];
    const CGRect extent = input.extent;
    const auto plan = scrimlet::Wallpaper::blurPlan(
        {extent.origin.x, extent.origin.y, extent.size.width, extent.size.height}, radius, maxSide);
    if (plan.scale < 1) {
        input = [input imageByApplyingTransform:CGAffineTransformMakeScale(plan.scale, plan.scale)];
    }
    const CGRect working = input.extent;
    CIFilter *blur = [CIFilter filterWithName:@"CIGaussianBlur"];
    if (blur == nil) {
        return nil;
    }
    // Clamped, the edges blur into themselves instead of fading to clear.
    [blur setValue:[input imageByClampingToExtent] forKey:kCIInputImageKey];
    [blur setValue:@(plan.radius) forKey:kCIInputRadiusKey];
    CIImage *output = [blur.outputImage imageByCroppingToRect:working];
    if (output == nil) {
        return nil;
    }
    CIContext *context = [CIContext contextWithOptions:nil];
    CGImageRef rendered = [context createCGImage:output fromRect:working];
    if (rendered == nullptr) {
        return nil;
    }
    NSImage *result = [[NSImage alloc] initWithCGImage:rendered size:working.size];
    CGImageRelease(rendered);
    return result;
}

} // namespace scrimlet::mac::Wallpaper
