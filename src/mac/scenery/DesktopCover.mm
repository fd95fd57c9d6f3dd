#import "DesktopCover.h"

#import "../views/DrawingView.h"
#import "Wallpaper.h"

#include "ImageFillView.hpp"

namespace scrimlet::mac {

void DesktopCover::show() {
    if (isUp()) {
        return;
    }
    const SceneRecipe recipe = sceneRecipe(SceneWindow::cover);
    for (NSScreen *screen in NSScreen.screens) {
        const NSRect frame = screen.frame;
        SCDrawingView *view = [[SCDrawingView alloc]
            initWithFrame:NSMakeRect(0, 0, frame.size.width, frame.size.height)];
        NSImage *wallpaper = Wallpaper::imageFor(screen);
        std::optional<ImageRef> picture;
        if (wallpaper != nil) {
            view.images = @{@"wallpaper" : wallpaper};
            picture = ImageRef{"wallpaper", {wallpaper.size.width, wallpaper.size.height}};
        }
        view.maker = [picture](Size size, Appearance) {
            return ImageFillView{picture, ImageFillView::coverFallback}.drawing(size);
        };
        SCScenePanel *panel = [[SCScenePanel alloc] initWithRecipe:recipe frame:frame content:view];
        [panel orderFront:nil];
        [panels_ addObject:panel];
    }
}

void DesktopCover::hide() { closePanels(panels_); }

} // namespace scrimlet::mac
