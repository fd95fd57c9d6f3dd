#import "CountdownOverlay.h"

#import <QuartzCore/QuartzCore.h>

#import "../views/DrawingView.h"

#include "../common/Text.h"
#include "SceneCards.hpp"
#include "Theme.hpp"

namespace scrimlet::mac {

namespace {

NSRect nsRect(const Rect &rect) { return NSMakeRect(rect.x, rect.y, rect.width, rect.height); }

// The old number leaves downward as the new one drops in, or they cross-fade when the user
// asked the system to reduce motion. A layer transition has no spring: the spring's response
// time with an ease-out stands in for it.
void animateChange(NSView *view) {
    const bool reduce = NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;
    const Animation animation = CountdownCard::valueAnimation(reduce);
    CATransition *transition = [CATransition animation];
    if (animation.curve == Animation::Curve::spring) {
        transition.type = kCATransitionPush;
        transition.subtype = kCATransitionFromTop;
        transition.duration = animation.response;
        transition.timingFunction =
            [CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionEaseOut];
    } else {
        transition.type = kCATransitionFade;
        transition.duration = animation.duration;
        transition.timingFunction =
            [CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionEaseInEaseOut];
    }
    [view.layer addAnimation:transition forKey:@"count"];
}

} // namespace

void CountdownOverlay::show(int seconds) {
    const bool changed = seconds != value_;
    value_ = seconds;
    if (panel_ == nil) {
        const Size size = CountdownCard::size;
        card_ = [[SCDrawingView alloc] initWithFrame:NSMakeRect(0, 0, size.width, size.height)];
        card_.maker = [](Size, Appearance) { return CountdownCard{}.background(); };
        number_ = [[SCDrawingView alloc] initWithFrame:nsRect(CountdownCard::numberFrame())];
        number_.wantsLayer = YES;
        [card_ addSubview:number_];
        card_.accessibilityElement = YES;
        card_.accessibilityRole = NSAccessibilityStaticTextRole;
        panel_ = [[SCScenePanel alloc] initWithRecipe:sceneRecipe(SceneWindow::countdown)
                                                frame:NSMakeRect(0, 0, size.width, size.height)
                                              content:card_];
    }
    const long long value = value_;
    number_.maker = [value](Size, Appearance) { return CountdownCard{value}.number(); };
    card_.accessibilityLabel = toNSString(CountdownCard::accessibilityLabel(value));
    if (changed && panel_.visible) {
        animateChange(number_);
    }
    if (NSScreen *main = NSScreen.mainScreen) {
        const NSRect frame = main.frame;
        const Point origin = CountdownCard::panelOrigin(
            {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height});
        [panel_ setFrameOrigin:NSMakePoint(origin.x, origin.y)];
    }
    [panel_ orderFrontRegardless];
}

void CountdownOverlay::hide() { [panel_ orderOut:nil]; }

} // namespace scrimlet::mac
