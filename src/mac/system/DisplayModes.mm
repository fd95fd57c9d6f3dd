#import "MacFacilities.hpp"

#import "CFHolder.hpp"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

// The displays and their modes, through CoreGraphics, and the screens' display numbers
// through AppKit.

namespace scrimlet::mac {

namespace {

using ModeHolder = CFHolder<CGDisplayModeRef>;

DisplayMode record(ModeHolder mode) {
    DisplayMode out;
    const CGDisplayModeRef ref = mode.get();
    out.ioModeID = CGDisplayModeGetIODisplayModeID(ref);
    out.width = static_cast<std::int64_t>(CGDisplayModeGetWidth(ref));
    out.height = static_cast<std::int64_t>(CGDisplayModeGetHeight(ref));
    out.pixelWidth = static_cast<std::int64_t>(CGDisplayModeGetPixelWidth(ref));
    out.pixelHeight = static_cast<std::int64_t>(CGDisplayModeGetPixelHeight(ref));
    out.refreshRate = CGDisplayModeGetRefreshRate(ref);
    out.usableForDesktopGUI = CGDisplayModeIsUsableForDesktopGUI(ref);
    // The mode object itself travels with the record, so that the one chosen is the one set.
    out.handle = std::make_shared<const ModeHolder>(std::move(mode));
    return out;
}

} // namespace

std::vector<std::uint32_t> MacFacilities::onlineDisplays() {
    uint32_t count = 0;
    if (CGGetOnlineDisplayList(0, nullptr, &count) != kCGErrorSuccess || count == 0) {
        return {};
    }
    std::vector<CGDirectDisplayID> displays(count);
    if (CGGetOnlineDisplayList(count, displays.data(), &count) != kCGErrorSuccess) {
        return {};
    }
    displays.resize(count);
    return std::vector<std::uint32_t>(displays.begin(), displays.end());
}

std::uint32_t MacFacilities::mainDisplayID() { return CGMainDisplayID(); }

std::vector<DisplayMode> MacFacilities::displayModes(std::uint32_t display) {
    const void *keys[] = {kCGDisplayShowDuplicateLowResolutionModes};
    const void *values[] = {kCFBooleanTrue};
    const auto options = CFHolder<CFDictionaryRef>::takeOver(
        CFDictionaryCreate(kCFAllocatorDefault, keys, values, 1, &kCFTypeDictionaryKeyCallBacks,
                           &kCFTypeDictionaryValueCallBacks));
    const auto modes =
        CFHolder<CFArrayRef>::takeOver(CGDisplayCopyAllDisplayModes(display, options.get()));
    if (!modes) {
        return {};
    }
    std::vector<DisplayMode> out;
    const CFIndex count = CFArrayGetCount(modes.get());
    for (CFIndex i = 0; i < count; ++i) {
        const auto mode = static_cast<CGDisplayModeRef>(
            const_cast<void *>(CFArrayGetValueAtIndex(modes.get(), i)));
        if (mode) {
            out.push_back(record(ModeHolder::retain(mode)));
        }
    }
    return out;
}

std::optional<DisplayMode> MacFacilities::currentDisplayMode(std::uint32_t display) {
    auto mode = ModeHolder::takeOver(CGDisplayCopyDisplayMode(display));
    if (!mode) {
        return std::nullopt;
    }
    return record(std::move(mode));
}

DisplayConfiguration MacFacilities::configureDisplay(std::uint32_t display,
                                                     const DisplayMode &mode) {
    const auto *holder = static_cast<const ModeHolder *>(mode.handle.get());
    CGDisplayConfigRef config = nullptr;
    if (!holder || CGBeginDisplayConfiguration(&config) != kCGErrorSuccess) {
        return DisplayConfiguration::notBegun;
    }
    // Whether the mode was taken shows only when the configuration completes.
    CGConfigureDisplayWithDisplayMode(config, display, holder->get(), nullptr);
    // For this program only: the system puts the display back by itself when it ends.
    if (CGCompleteDisplayConfiguration(config, kCGConfigureForAppOnly) != kCGErrorSuccess) {
        return DisplayConfiguration::notCompleted;
    }
    return DisplayConfiguration::applied;
}

std::vector<std::optional<double>> MacFacilities::screenNumbers() {
    std::vector<std::optional<double>> out;
    for (NSScreen *screen in NSScreen.screens) {
        id number = screen.deviceDescription[@"NSScreenNumber"];
        if ([number isKindOfClass:NSNumber.class]) {
            out.emplace_back([number doubleValue]);
        } else {
            out.emplace_back();
        }
    }
    return out;
}

Rect MacFacilities::displayBounds(std::uint32_t display) {
    const CGRect bounds = CGDisplayBounds(display);
    return Rect{bounds.origin.x, bounds.origin.y, bounds.size.width, bounds.size.height};
}

} // namespace scrimlet::mac
