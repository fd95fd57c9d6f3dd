#import "MenuBarScreens.h"

#import "SystemVersion.hpp"

#include <string>
#include <sys/utsname.h>

namespace scrimlet::mac::MenuBarScreens {

int systemMajor() {
    // Read once: the system does not change under a running app.
    static const int major = [] {
        const NSOperatingSystemVersion told = NSProcessInfo.processInfo.operatingSystemVersion;
        const std::string product =
            std::to_string(told.majorVersion) + "." + std::to_string(told.minorVersion);
        struct utsname names = {};
        const std::string kernel = uname(&names) == 0 ? std::string(names.release) : std::string();
        return SystemVersion::macOSMajor(product, kernel);
    }();
    return major;
}

Rect globalRect(NSRect frame) {
    // AppKit measures from the bottom of the main display (the first screen) upward.
    NSArray<NSScreen *> *screens = NSScreen.screens;
    const double mainHeight = screens.count > 0 ? NSHeight(screens[0].frame) : 0;
    return Rect{NSMinX(frame), mainHeight - NSMaxY(frame), NSWidth(frame), NSHeight(frame)};
}

std::vector<Rect> displayFrames() {
    std::vector<Rect> frames;
    for (NSScreen *screen in NSScreen.screens) {
        frames.push_back(globalRect(screen.frame));
    }
    return frames;
}

MenuBarMetrics metrics() {
    MenuBarMetrics out;
    for (const Rect &frame : displayFrames()) {
        out.displayWidths.push_back(frame.width);
    }
    out.systemMajor = systemMajor();
    return out;
}

} // namespace scrimlet::mac::MenuBarScreens
