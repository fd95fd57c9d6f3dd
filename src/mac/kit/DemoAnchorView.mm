#import "DemoAnchorView.h"

#import "../common/Text.h"
#import "DemoFilm.hpp"
#import "Harness.hpp"

@implementation ScrimletDemoAnchorView

- (instancetype)initWithAnchor:(NSString *)anchor {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _anchor = [anchor copy];
        self.postsFrameChangedNotifications = YES;
        [NSNotificationCenter.defaultCenter addObserver:self
                                               selector:@selector(report)
                                                   name:NSViewFrameDidChangeNotification
                                                 object:self];
    }
    return self;
}

- (void)dealloc {
    [NSNotificationCenter.defaultCenter removeObserver:self];
}

+ (void)anchor:(NSView *)view as:(const std::string &)anchor {
    if (!scrimlet::Harness::isTestRun()) {
        return;
    }
    ScrimletDemoAnchorView *reporter =
        [[ScrimletDemoAnchorView alloc] initWithAnchor:scrimlet::mac::toNSString(anchor)];
    reporter.frame = view.bounds;
    reporter.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    [view addSubview:reporter positioned:NSWindowBelow relativeTo:nil];
}

+ (void)reportAllIn:(NSView *)view {
    if ([view isKindOfClass:[ScrimletDemoAnchorView class]]) {
        id reporter = view;
        [reporter report];
    }
    for (NSView *subview in view.subviews) {
        [self reportAllIn:subview];
    }
}

- (NSView *)hitTest:(NSPoint)point {
    return nil;
}

- (void)viewWillMoveToWindow:(NSWindow *)window {
    NSNotificationCenter *center = NSNotificationCenter.defaultCenter;
    if (self.window) {
        [center removeObserver:self name:NSWindowDidMoveNotification object:self.window];
        [center removeObserver:self name:NSWindowDidResizeNotification object:self.window];
    }
    if (window) {
        [center addObserver:self
                   selector:@selector(report)
                       name:NSWindowDidMoveNotification
                     object:window];
        [center addObserver:self
                   selector:@selector(report)
                       name:NSWindowDidResizeNotification
                     object:window];
    }
}

- (void)viewDidMoveToWindow {
    [self report];
}

- (void)report {
    const auto anchors = scrimlet::mac::DemoFilm::anchors();
    const std::string anchor = scrimlet::mac::toString(self.anchor);
    NSScreen *main = NSScreen.screens.firstObject;
    if (!self.window || !main) {
        anchors->remove(anchor);
        return;
    }
    const NSRect onScreen = [self.window convertRectToScreen:[self convertRect:self.bounds
                                                                        toView:nil]];
    anchors->set(anchor,
                 vantrel::DemoAnchors::fromBottomLeft({onScreen.origin.x, onScreen.origin.y,
                                                       onScreen.size.width, onScreen.size.height},
                                                      main.frame.size.height));
}

@end
