#import "SpotlightController.h"

#import "../views/DrawingView.h"

namespace scrimlet::mac {

SpotlightController::~SpotlightController() { [timer_ invalidate]; }

void SpotlightController::show(double radius, double dim) {
    if (isUp()) {
        return;
    }
    const SceneRecipe recipe = sceneRecipe(SceneWindow::spotlight);
    for (NSScreen *screen in NSScreen.screens) {
        const NSRect frame = screen.frame;
        auto spot = std::make_shared<SpotlightView>();
        spot->radius = radius;
        spot->dim = dim;
        spot->screenOrigin = {frame.origin.x, frame.origin.y};
        SCDrawingView *view = [[SCDrawingView alloc]
            initWithFrame:NSMakeRect(0, 0, frame.size.width, frame.size.height)];
        view.maker = [spot](Size size, Appearance) { return spot->drawing(size); };
        SCScenePanel *panel = [[SCScenePanel alloc] initWithRecipe:recipe frame:frame content:view];
        [panel orderFrontRegardless];
        [panels_ addObject:panel];
        [views_ addObject:view];
        spots_.push_back(std::move(spot));
    }
    // Without screens the timer still runs, as the tick costs nothing; a second show
    // replaces it rather than adding another.
    [timer_ invalidate];
    std::weak_ptr<SpotlightController> weak = weak_from_this();
    timer_ = [NSTimer timerWithTimeInterval:1.0 / 60
                                    repeats:YES
                                      block:^(NSTimer *) {
                                          if (const auto controller = weak.lock()) {
                                              controller->tick();
                                          }
                                      }];
    [NSRunLoop.mainRunLoop addTimer:timer_ forMode:NSRunLoopCommonModes];
    // The disc stands under the pointer from the first frame.
    tick();
}

void SpotlightController::hide() {
    [timer_ invalidate];
    timer_ = nil;
    closePanels(panels_);
    [views_ removeAllObjects];
    spots_.clear();
    watch_.reset();
}

void SpotlightController::tick() {
    const NSPoint location = NSEvent.mouseLocation;
    const Point pointer{location.x, location.y};
    if (!watch_.moved(pointer)) {
        return;
    }
    for (size_t i = 0; i < spots_.size(); ++i) {
        spots_[i]->pointer = pointer;
        views_[i].needsDisplay = YES;
    }
}

} // namespace scrimlet::mac
