#import "Snapshotter.hpp"

#import "../common/Text.h"
#import "../scenery/Wallpaper.h"
#import "../views/DrawingView.h"
#import "../views/DropdownView.h"
#import "../views/SettingsPageController.h"
#import "AtomicFile.hpp"
#import "DemoArt.hpp"
#import "ImageFillView.hpp"
#import "SnapshotPlan.hpp"
#import "Theme.hpp"

#import <AppKit/AppKit.h>

#include <cmath>
#include <cstdio>
#include <filesystem>

namespace fs = std::filesystem;

/// The ground of every shot: the theme's canvas, in the look of the shot.
@interface ScrimletSnapshotCanvas : NSView
@property(nonatomic) NSColor *color;
@end

@implementation ScrimletSnapshotCanvas
- (void)drawRect:(NSRect)dirtyRect {
    [self.color setFill];
    NSRectFill(dirtyRect);
}
@end

namespace scrimlet::mac::Snapshotter {

namespace {

/// Time for a view's layout and first drawing to settle before it is photographed.
constexpr double layoutWait = 0.2;
/// Pixels per point of the pictures drawn without a window, as on a Retina screen.
constexpr double pictureScale = 2;

NSColor *nsColor(const Color &color) {
    return [NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue alpha:color.alpha];
}

NSAppearance *appearanceOf(const SnapshotLook &look) {
    return
        [NSAppearance appearanceNamed:look.appearance == Appearance::dark ? NSAppearanceNameDarkAqua
                                                                          : NSAppearanceNameAqua];
}

/// Counts what was saved, and tells what was not.
struct Roll {
    fs::path dir;
    int saved = 0;
    int failed = 0;

    void note(bool ok, const fs::path &file) {
        if (ok) {
            ++saved;
        } else {
            ++failed;
            std::fprintf(stderr, "Scrimlet: couldn’t save %s\n", file.string().c_str());
        }
    }
};

bool save(NSData *png, const fs::path &file) {
    return png && files::writeAtomically(
                      file, std::string_view(static_cast<const char *>(png.bytes), png.length));
}

/// A drawing as a PNG with a transparent ground, the way the scene windows stand on a
/// screen, with the images it names from `images`.
NSData *pngOf(const Drawing &drawing, NSDictionary<NSString *, NSImage *> *images) {
    const auto width = static_cast<std::size_t>(std::lround(drawing.size.width * pictureScale));
    const auto height = static_cast<std::size_t>(std::lround(drawing.size.height * pictureScale));
    CGColorSpaceRef sRGB = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    CGContextRef context =
        CGBitmapContextCreate(nullptr, width, height, 8, 0, sRGB,
                              static_cast<CGBitmapInfo>(kCGImageAlphaPremultipliedLast));
    CGColorSpaceRelease(sRGB);
    if (!context) {
        return nil;
    }
    CGContextTranslateCTM(context, 0, static_cast<CGFloat>(height));
    CGContextScaleCTM(context, pictureScale, -pictureScale);
    drawDrawing(drawing, context, images);
    CGImageRef image = CGBitmapContextCreateImage(context);
    CGContextRelease(context);
    if (!image) {
        return nil;
    }
    NSBitmapImageRep *picture = [[NSBitmapImageRep alloc] initWithCGImage:image];
    CGImageRelease(image);
    return [picture representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
}

/// The painted desktop picture, for the picture backdrop, and its blurred copy, for the
/// wallpaper backdrop, as the backdrop's own controller blurs a wallpaper.
NSDictionary<NSString *, NSImage *> *wallpaperImages() {
    const Size screen = SnapshotPlan::screenSize();
    NSImage *painted =
        imageOfDrawing(screen, [screen](Appearance) { return DemoArt::wallpaper(screen); });
    NSMutableDictionary<NSString *, NSImage *> *images = [NSMutableDictionary dictionary];
    images[toNSString(SnapshotPlan::paintedWallpaper)] = painted;
    if (NSImage *blurred = Wallpaper::blurred(painted, BackdropStyle().blur,
                                              scrimlet::Wallpaper::backdropMaxSide)) {
        images[toNSString(SnapshotPlan::blurredWallpaper)] = blurred;
    }
    return images;
}

void shootPictures(Roll &roll) {
    NSDictionary<NSString *, NSImage *> *images = wallpaperImages();
    std::error_code ignored;
    fs::create_directories(roll.dir / SnapshotPlan::backdropsFolder, ignored);
    for (const SnapshotPlan::Picture &picture : SnapshotPlan::pictures(measureText)) {
        const fs::path file = roll.dir / picture.file;
        roll.note(save(pngOf(picture.drawing, images), file), file);
    }
}

/// The size a view settles at: its fitting size, taken again once that frame is laid out.
NSSize settledSize(NSView *view) {
    [view layoutSubtreeIfNeeded];
    NSSize size = view.fittingSize;
    view.frame = NSMakeRect(0, 0, size.width, size.height);
    [view layoutSubtreeIfNeeded];
    size = view.fittingSize;
    return size.width > 0 && size.height > 0 ? size : view.frame.size;
}

/// Hosts the controller's view in a borderless window of the look, on the canvas, at the
/// size it asks for or else the size it settles at, lets it lay out, and saves what it draws
/// as a PNG file.
bool shoot(NSViewController *controller, const SnapshotLook &look, const fs::path &file) {
    NSAppearance *appearance = appearanceOf(look);
    NSColor *canvasColor = nsColor(Theme::canvas.resolve(look.appearance));
    NSView *view = controller.view;
    view.appearance = appearance;
    const NSSize asked = controller.preferredContentSize;
    const NSSize size = asked.width > 0 && asked.height > 0 ? asked : settledSize(view);
    view.frame = NSMakeRect(0, 0, size.width, size.height);

    ScrimletSnapshotCanvas *canvas =
        [[ScrimletSnapshotCanvas alloc] initWithFrame:NSMakeRect(0, 0, size.width, size.height)];
    canvas.color = canvasColor;
    [canvas addSubview:view];
    NSWindow *window = [[NSWindow alloc] initWithContentRect:canvas.frame
                                                   styleMask:NSWindowStyleMaskBorderless
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    window.releasedWhenClosed = NO;
    window.appearance = appearance;
    window.backgroundColor = canvasColor;
    window.contentView = canvas;
    [window orderFrontRegardless];
    [canvas layoutSubtreeIfNeeded];
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, layoutWait, false);
    [window displayIfNeeded];

    NSBitmapImageRep *picture = [canvas bitmapImageRepForCachingDisplayInRect:canvas.bounds];
    NSData *png = nil;
    if (picture) {
        [canvas cacheDisplayInRect:canvas.bounds toBitmapImageRep:picture];
        png = [picture representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
    }
    [window orderOut:nil];
    return save(png, file);
}

void shootLook(const SnapshotLook &look, Roll &roll) {
    for (const SnapshotShot &shot : SnapshotPlan::shots()) {
        const auto store = SnapshotPlan::stage(shot);
        const fs::path file = roll.dir / SnapshotPlan::fileName(shot, look);
        NSViewController *controller = shot.view == SnapshotShot::View::dropdown
                                           ? ScrimletDropdownViewController(*store)
                                           : ScrimletSettingsPageViewController(store, *shot.tab);
        roll.note(shoot(controller, look, file), file);
    }
}

} // namespace

void run(const std::string &dir) {
    dispatch_async(dispatch_get_main_queue(), ^{
        Roll roll{fs::path(dir)};
        std::error_code ignored;
        fs::create_directories(roll.dir, ignored);
        for (const SnapshotLook &look : SnapshotPlan::looks) {
            shootLook(look, roll);
        }
        shootPictures(roll);
        std::printf("Scrimlet: %d pictures in %s", roll.saved, roll.dir.string().c_str());
        if (roll.failed > 0) {
            std::printf(", %d couldn’t be saved", roll.failed);
        }
        std::printf("\n");
        std::fflush(stdout);
        if (!SnapshotPlan::staysAfterShots(Harness::env())) {
            std::exit(0);
        }
    });
}

} // namespace scrimlet::mac::Snapshotter
