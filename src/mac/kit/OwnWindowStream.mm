#import "WindowCapture.hpp"

#import <ScreenCaptureKit/ScreenCaptureKit.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <mutex>

// The capture service of macOS 14.4 and later, asked only for this process's own windows,
// which it shows without the Screen Recording permission. Its pictures come later, on its
// own queues: each frame of the film shows the latest that have arrived, and asks for the
// next ones while none are on their way.

namespace scrimlet::mac::OwnWindowStream {

namespace {

struct Pictures {
    std::map<std::uint32_t, CapturedLayer> latest;
    bool asking = false;
};

Pictures &pictures() {
    static Pictures shared;
    return shared;
}

/// What one round of requests brings back, filled from the service's queues.
struct Round {
    std::mutex lock;
    std::map<std::uint32_t, CapturedLayer> arrived;
};

API_AVAILABLE(macos(14.4))
void ask(const std::vector<std::uint32_t> &windows, double scale) {
    if (pictures().asking) {
        return;
    }
    pictures().asking = true;
    const std::vector<std::uint32_t> wanted = windows;
    [SCShareableContent getCurrentProcessShareableContentWithCompletionHandler:^(
                            SCShareableContent *content, NSError *) {
        auto round = std::make_shared<Round>();
        dispatch_group_t group = dispatch_group_create();
        for (SCWindow *window in content.windows) {
            const std::uint32_t number = window.windowID;
            if (std::find(wanted.begin(), wanted.end(), number) == wanted.end()) {
                continue;
            }
            const CGRect frame = window.frame;
            SCContentFilter *filter =
                [[SCContentFilter alloc] initWithDesktopIndependentWindow:window];
            SCStreamConfiguration *configuration = [[SCStreamConfiguration alloc] init];
            configuration.width = static_cast<size_t>(std::lround(frame.size.width * scale));
            configuration.height = static_cast<size_t>(std::lround(frame.size.height * scale));
            configuration.showsCursor = NO;
            configuration.ignoreShadowsSingleWindow = YES;
            configuration.captureResolution = SCCaptureResolutionBest;
            dispatch_group_enter(group);
            [SCScreenshotManager
                captureImageWithFilter:filter
                         configuration:configuration
                     completionHandler:^(CGImageRef image, NSError *) {
                         if (image) {
                             std::lock_guard held(round->lock);
                             round->arrived.insert_or_assign(
                                 number, CapturedLayer{CapturedImage(CGImageRetain(image)),
                                                       {frame.origin.x, frame.origin.y,
                                                        frame.size.width, frame.size.height}});
                         }
                         dispatch_group_leave(group);
                     }];
        }
        dispatch_group_notify(group, dispatch_get_main_queue(), ^{
            std::lock_guard held(round->lock);
            // A window missed this round keeps its last picture; one no longer wanted goes.
            std::map<std::uint32_t, CapturedLayer> next;
            for (const std::uint32_t number : wanted) {
                if (const auto fresh = round->arrived.find(number); fresh != round->arrived.end()) {
                    next.insert_or_assign(number, fresh->second);
                } else if (const auto old = pictures().latest.find(number);
                           old != pictures().latest.end()) {
                    next.insert_or_assign(number, old->second);
                }
            }
            pictures().latest = next;
            pictures().asking = false;
        });
    }];
}

} // namespace

std::vector<CapturedLayer> latest(const std::vector<std::uint32_t> &windows, double scale) {
    if (@available(macOS 14.4, *)) {
        ask(windows, scale);
    } else {
        return {};
    }
    std::vector<CapturedLayer> layers;
    // Front to back in, back to front out.
    for (auto number = windows.rbegin(); number != windows.rend(); ++number) {
        const auto found = pictures().latest.find(*number);
        if (found != pictures().latest.end()) {
            layers.push_back(found->second);
        }
    }
    return layers;
}

} // namespace scrimlet::mac::OwnWindowStream
