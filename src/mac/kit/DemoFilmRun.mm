#import "DemoFilmRun.hpp"

#import "../views/DropdownView.h"
#import "../views/Interface.hpp"
#import "DemoAnchorView.h"
#import "DemoFilm.hpp"
#import "DemoFilmScript.hpp"

#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>

namespace scrimlet::mac::DemoFilmRun {

namespace {

/// Where the dropdown stands: this far in from the top left of the main screen's visible
/// part, as the menu bar's dropdown hangs below it.
constexpr CGFloat inset = 80;

/// The dropdown of the filmed store, in a borderless window whose top left stays put while
/// its height follows the content.
class HostedDropdown final : public DemoFilmStage {
  public:
    explicit HostedDropdown(StageStore &store)
        : controller_(ScrimletDropdownViewController(store)) {
        NSView *content = controller_.view;
        [content layoutSubtreeIfNeeded];
        NSSize size = controller_.preferredContentSize;
        if (size.width <= 0 || size.height <= 0) {
            size = content.fittingSize;
        }
        NSScreen *main = NSScreen.screens.firstObject;
        const NSRect visible = main ? main.visibleFrame : NSMakeRect(0, 0, 1512, 982);
        top_ = NSMakePoint(NSMinX(visible) + inset, NSMaxY(visible) - inset);
        window_ = [[NSWindow alloc]
            initWithContentRect:NSMakeRect(top_.x, top_.y - size.height, size.width, size.height)
                      styleMask:NSWindowStyleMaskBorderless
                        backing:NSBackingStoreBuffered
                          defer:NO];
        window_.releasedWhenClosed = NO;
        window_.opaque = NO;
        window_.backgroundColor = NSColor.clearColor;
        window_.hasShadow = YES;
        window_.contentViewController = controller_;
        [window_ setFrameTopLeftPoint:top_];
        [window_ orderFrontRegardless];
        refresh();
    }

    ~HostedDropdown() override { [window_ orderOut:nil]; }

    void refresh() override {
        // The dropdown follows the store through the app's own change signal, as it does in
        // the menu bar.
        [NSNotificationCenter.defaultCenter postNotificationName:ScrimletStoreDidChangeNotification
                                                          object:nil];
        const NSSize size = controller_.preferredContentSize;
        if (size.width > 0 && size.height > 0 &&
            !NSEqualSizes(size, window_.contentView.frame.size)) {
            [window_ setContentSize:size];
        }
        [window_.contentView layoutSubtreeIfNeeded];
        // However the window's height changed, by this code or by the layout, its top stays.
        [window_ setFrameTopLeftPoint:top_];
        [window_ displayIfNeeded];
        [ScrimletDemoAnchorView reportAllIn:window_.contentView];
    }

    InterfaceHost &host() override { return Interface::host(); }

    /// The window's frame in global points, origin at the top left of the main display.
    Rect frame() const {
        const NSRect frame = window_.frame;
        NSScreen *main = NSScreen.screens.firstObject;
        return vantrel::DemoAnchors::fromBottomLeft(
            {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height},
            main ? main.frame.size.height : frame.size.height);
    }

  private:
    NSViewController *controller_;
    NSWindow *window_;
    NSPoint top_;
};

/// The whole film; the folder it was written to.
std::filesystem::path film(const std::string &dir) {
    const std::filesystem::path folder = DemoFilmScript::folder(dir);
    const auto store = DemoFilmScript::store();
    HostedDropdown stage(*store);
    const auto recorder = vantrel::DemoRecorder::create(
        folder, DemoFilmScript::region(stage.frame()), DemoFilmScript::fps, DemoFilm::screens(),
        DemoFilm::services(DemoFilmScript::backdrop()));
    DemoFilmScript::play(*store, stage, *recorder);
    return recorder->finish(std::string(DemoFilmScript::name));
}

[[noreturn]] void filmAndExit(const std::string &dir) {
    int status = 0;
    try {
        std::printf("%s\n", film(dir).string().c_str());
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        status = 1;
    }
    std::fflush(stdout);
    std::fflush(stderr);
    std::exit(status);
}

} // namespace

void run(const std::string &dir) {
    NSApplication *app = NSApp;
    app.activationPolicy = NSApplicationActivationPolicyAccessory;
    const std::string folder = dir;
    // From a timer, not a block of the main queue: the script's waits turn the run loop,
    // and a run loop turned from inside a main-queue block serves no other main-queue block,
    // which is where the system's window pictures arrive.
    [NSTimer scheduledTimerWithTimeInterval:0
                                    repeats:NO
                                      block:^(NSTimer *) {
                                          filmAndExit(folder);
                                      }];
}

} // namespace scrimlet::mac::DemoFilmRun
