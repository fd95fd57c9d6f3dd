// The `scrimlet` command on macOS: the same command as elsewhere, with what only a Mac has,
// the live window list and the system's own order of names.

#import "../system/MacSystem.hpp"
#import "../system/OperatingSystem.hpp"
#import "CommandLine.hpp"
#import "CueSheet.hpp"
#import "LiveWindowList.hpp"

#import <AppKit/AppKit.h>

#include <iostream>

int main(int argc, char **argv) {
    @autoreleasepool {
        // The screens of the window list come from AppKit, which a plain process has to
        // connect to the window server first. No event loop runs and no Dock icon appears.
        [NSApplication sharedApplication];
        scrimlet::CueSheet::nameOrder = scrimlet::mac::OperatingSystem::nameOrder;
        const scrimlet::LiveWindowList live{scrimlet::mac::windowSnapshot,
                                            scrimlet::mac::OperatingSystem::version};
        const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
        return scrimlet::CommandLine::run(arguments, scrimlet::Harness::env(), std::cout, std::cerr,
                                          &live);
    }
}
