#import "BackdropController.h"

#import "../views/DrawingView.h"
#import "Wallpaper.h"

#include "../common/Text.h"
#include "BackdropView.hpp"
#include "ImageFillView.hpp"

namespace scrimlet::mac {

namespace {

std::optional<ImageRef> refOf(NSImage *image, const std::string &name) {
    if (image == nil) {
        return std::nullopt;
    }
    return ImageRef{name, {image.size.width, image.size.height}};
}

} // namespace

BackdropController::BackdropController(std::function<std::optional<std::int64_t>()> frontWindow)
    : frontWindow_(std::move(frontWindow)) {}

BackdropController::~BackdropController() { [timer_ invalidate]; }

void BackdropController::show(const BackdropStyle &style) {
    if (isUp()) {
        return;
    }
    const SceneRecipe recipe = sceneRecipe(SceneWindow::backdrop);
    // A picture is read once, for every screen; whether it is shown is the view's rule.
    NSImage *picture = nil;
    if (style.kind == BackdropStyle::Kind::picture && style.picturePath) {
        picture = [[NSImage alloc] initWithContentsOfFile:toNSString(*style.picturePath)];
    }
    for (NSScreen *screen in NSScreen.screens) {
        const NSRect frame = screen.frame;
        NSMutableDictionary<NSString *, NSImage *> *images = [NSMutableDictionary dictionary];
        BackdropView view{style, std::nullopt, std::nullopt};
        if (picture != nil) {
            images[toNSString(*style.picturePath)] = picture;
            view.picture = refOf(picture, *style.picturePath);
        }
        if (style.kind == BackdropStyle::Kind::wallpaper) {
            // Blurred once per screen here, never per frame.
            NSImage *wallpaper = Wallpaper::imageFor(screen);
            if (wallpaper != nil) {
                wallpaper =
                    Wallpaper::blurred(wallpaper, style.blur, scrimlet::Wallpaper::backdropMaxSide);
            }
            if (wallpaper != nil) {
                images[@"wallpaper"] = wallpaper;
                view.wallpaper = refOf(wallpaper, "wallpaper");
            }
        }
        SCDrawingView *content = [[SCDrawingView alloc]
            initWithFrame:NSMakeRect(0, 0, frame.size.width, frame.size.height)];
        content.images = images;
        content.maker = [view](Size size, Appearance) { return view.drawing(size); };
        SCScenePanel *panel = [[SCScenePanel alloc] initWithRecipe:recipe
                                                             frame:frame
                                                           content:content];
        [panels_ addObject:panel];
    }
    orderBehindFront();

    std::weak_ptr<BackdropController> weak = weak_from_this();
    timer_ = [NSTimer
        timerWithTimeInterval:1.0
                      repeats:YES
                        block:^(NSTimer *) {
                            NSCAssert(NSThread.isMainThread, @"backdrop off the main thread");
                            if (const auto controller = weak.lock()) {
                                controller->orderBehindFront();
                            }
                        }];
    // Common modes: the backdrop keeps its place while a menu is open.
    [NSRunLoop.mainRunLoop addTimer:timer_ forMode:NSRunLoopCommonModes];
}

void BackdropController::hide() {
    [timer_ invalidate];
    timer_ = nil;
    closePanels(panels_);
}

void BackdropController::orderBehindFront() {
    if (!isUp()) {
        return;
    }
    const std::optional<std::int64_t> front = frontWindow_ ? frontWindow_() : std::nullopt;
    for (SCScenePanel *panel in panels_) {
        if (front) {
            [panel orderWindow:NSWindowBelow relativeTo:static_cast<NSInteger>(*front)];
        } else {
            [panel orderBack:nil];
        }
    }
}

} // namespace scrimlet::mac
