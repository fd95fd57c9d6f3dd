#import "Interface.hpp"

#import "../app/SharedStore.hpp"
#import "Look.h"

#import <QuartzCore/QuartzCore.h>

#include "ControlLooks.hpp"
#include "ViewModel.hpp"

#include <utility>

using namespace scrimlet;
using namespace scrimlet::mac;

/// Lets the open panel enable only the pictures AppKit can read, and folders to reach them.
@interface ScrimletImageFilter : NSObject <NSOpenSavePanelDelegate>
@end

@implementation ScrimletImageFilter

- (BOOL)panel:(id)sender shouldEnableURL:(NSURL *)url {
    NSNumber *directory = nil;
    [url getResourceValue:&directory forKey:NSURLIsDirectoryKey error:nil];
    if (directory.boolValue) {
        return YES;
    }
    id type = nil;
    [url getResourceValue:&type forKey:NSURLContentTypeKey error:nil];
    // The content type answers its identifier; the framework that declares it need not be
    // linked for that.
    NSString *identifier =
        [type respondsToSelector:@selector(identifier)] ? [type identifier] : nil;
    return identifier && [NSImage.imageTypes containsObject:identifier];
}

@end

namespace {

class MacInterfaceHost final : public InterfaceHost {
  public:
    void openSettings(std::optional<SettingsTab> tab) override { mac::openSettings(tab); }

    void quit() override {
        // Termination runs the store's shutdown, which puts everything back.
        NSApplication *app = NSApp;
        [app terminate:nil];
    }

    void copyToPasteboard(const std::string &text) override {
        NSPasteboard *pasteboard = NSPasteboard.generalPasteboard;
        [pasteboard clearContents];
        [pasteboard setString:nsString(text) forType:NSPasteboardTypeString];
    }

    void openApplication(const std::string &path) override {
        NSURL *url = [NSURL fileURLWithPath:nsString(path)];
        [NSWorkspace.sharedWorkspace
            openApplicationAtURL:url
                   configuration:[NSWorkspaceOpenConfiguration configuration]
               completionHandler:nil];
    }

    void chooseImage(std::function<void(const std::string &path)> chosen) override {
        NSOpenPanel *panel = [NSOpenPanel openPanel];
        panel.canChooseFiles = YES;
        panel.canChooseDirectories = NO;
        panel.allowsMultipleSelection = NO;
        ScrimletImageFilter *filter = [[ScrimletImageFilter alloc] init];
        panel.delegate = filter;
        auto done = std::make_shared<std::function<void(const std::string &)>>(std::move(chosen));
        void (^finish)(NSModalResponse) = ^(NSModalResponse response) {
            // The panel holds its delegate weakly: the filter lives as long as this block.
            (void)filter;
            NSURL *url = panel.URL;
            if (response == NSModalResponseOK && url.fileURL) {
                (*done)(url.fileSystemRepresentation);
            }
        };
        NSApplication *app = NSApp;
        if (NSWindow *window = app.keyWindow) {
            [panel beginSheetModalForWindow:window completionHandler:finish];
        } else {
            [panel beginWithCompletionHandler:finish];
        }
    }
};

} // namespace

namespace scrimlet::mac::Interface {

InterfaceHost &host() {
    static MacInterfaceHost shared;
    return shared;
}

void animateCurtain(const std::function<void()> &change) {
    // The header follows with the curtain's own motion; what else moves with this change
    // (the dropdown's height, the countdown) moves with the curtain's timing, or a plain fade
    // when the user asked for less motion.
    const Animation motion = reduceMotion() ? Motion::fade : Motion::curtain;
    std::function<void()> run = change;
    [NSAnimationContext runAnimationGroup:^(NSAnimationContext *context) {
        context.duration = motionDuration(motion);
        context.timingFunction =
            [CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionEaseInEaseOut];
        context.allowsImplicitAnimation = YES;
        run();
    }];
}

} // namespace scrimlet::mac::Interface
