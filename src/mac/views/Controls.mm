#import "Controls.h"

#import "Look.h"

#include "ControlLooks.hpp"

using namespace scrimlet;
using namespace scrimlet::mac;

namespace {

/// Paints whatever `draw` paints at an opacity, as one layer, so that overlapping parts do not
/// show through each other.
void withOpacity(CGFloat opacity, void (^draw)(void)) {
    if (opacity >= 1) {
        draw();
        return;
    }
    CGContextRef context = NSGraphicsContext.currentContext.CGContext;
    CGContextSaveGState(context);
    CGContextSetAlpha(context, opacity);
    CGContextBeginTransparencyLayer(context, NULL);
    draw();
    CGContextEndTransparencyLayer(context);
    CGContextRestoreGState(context);
}

NSBezierPath *rounded(NSRect rect, CGFloat radius) {
    return [NSBezierPath bezierPathWithRoundedRect:rect xRadius:radius yRadius:radius];
}

/// The padding of each button style around its label: horizontal, then vertical.
NSSize buttonPadding(const ButtonModel &model) {
    switch (model.style) {
    case ButtonModel::Style::primary:
        return model.compact ? NSMakeSize(10, 4) : NSMakeSize(14, 7);
    case ButtonModel::Style::quiet:
        return model.compact ? NSMakeSize(8, 3) : NSMakeSize(12, 5);
    case ButtonModel::Style::plain:
        return NSMakeSize(2, 1);
    }
    return NSZeroSize;
}

Font buttonFont(const ButtonModel &model) {
    if (model.font) {
        return *model.font;
    }
    switch (model.style) {
    case ButtonModel::Style::primary:
        return Font::system(model.compact ? 12 : 13, FontWeight::semibold);
    case ButtonModel::Style::quiet:
        return Font::system(model.compact ? 11.5 : 12.5);
    case ButtonModel::Style::plain:
        return Theme::Typo::small;
    }
    return Theme::Typo::body;
}

} // namespace

#pragma mark - Box

@implementation ScrimletBox

+ (instancetype)boxAround:(NSView *)content insets:(NSEdgeInsets)insets {
    ScrimletBox *box = [[self alloc] initWithFrame:NSZeroRect];
    box.translatesAutoresizingMaskIntoConstraints = NO;
    content.translatesAutoresizingMaskIntoConstraints = NO;
    [box addSubview:content];
    [NSLayoutConstraint activateConstraints:@[
        [content.leadingAnchor constraintEqualToAnchor:box.leadingAnchor constant:insets.left],
        [content.trailingAnchor constraintEqualToAnchor:box.trailingAnchor constant:-insets.right],
        [content.topAnchor constraintEqualToAnchor:box.topAnchor constant:insets.top],
        [content.bottomAnchor constraintEqualToAnchor:box.bottomAnchor constant:-insets.bottom],
    ]];
    return box;
}

- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame])) {
        _borderWidth = 1;
    }
    return self;
}

- (BOOL)isFlipped {
    return YES;
}

- (void)setFill:(NSColor *)fill {
    _fill = [fill copy];
    self.needsDisplay = YES;
}

- (void)setBorder:(NSColor *)border {
    _border = [border copy];
    self.needsDisplay = YES;
}

- (void)drawRect:(NSRect)dirtyRect {
    const CGFloat inset = self.border ? self.borderWidth / 2 : 0;
    const NSRect rect = NSInsetRect(self.bounds, inset, inset);
    const CGFloat radius = self.capsule ? NSHeight(rect) / 2 : self.cornerRadius;
    NSBezierPath *path = rounded(rect, radius);
    if (self.fill) {
        [self.fill setFill];
        [path fill];
    }
    if (self.border && self.borderWidth > 0) {
        [self.border setStroke];
        path.lineWidth = self.borderWidth;
        [path stroke];
    }
}

@end

#pragma mark - Buttons

@implementation ScrimletButton {
    ButtonModel _model;
    void (^_perform)(void);
    NSTextField *_trailing;
}

- (instancetype)initWithModel:(const ButtonModel &)model perform:(void (^)(void))perform {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _model = model;
        _perform = [perform copy];
        self.translatesAutoresizingMaskIntoConstraints = NO;
        self.bordered = NO;
        self.target = self;
        self.action = @selector(pressed:);
        const Font font = buttonFont(model);
        self.attributedTitle = attributed({model.title, font, model.ink});
        if (model.symbol) {
            self.image = symbolImage(*model.symbol, font.size, FontWeight::semibold);
            self.imagePosition = model.title.empty() ? NSImageOnly : NSImageLeading;
            self.imageHugsTitle = YES;
            self.contentTintColor = nsColor(model.ink);
        }
        if (model.trailing) {
            _trailing = singleLineLabel({*model.trailing, font, faded(model.ink, 0.7)});
            _trailing.accessibilityElement = NO;
            [self addSubview:_trailing];
            [NSLayoutConstraint activateConstraints:@[
                [_trailing.trailingAnchor constraintEqualToAnchor:self.trailingAnchor
                                                         constant:-buttonPadding(model).width],
                [_trailing.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
            ]];
        }
        switch (model.key) {
        case ButtonModel::Key::none:
            break;
        case ButtonModel::Key::defaultAction:
            self.keyEquivalent = @"\r";
            break;
        case ButtonModel::Key::cancel:
            self.keyEquivalent = @"\033";
            break;
        }
        self.accessibilityLabel =
            nsString(model.accessibilityLabel.empty() ? model.title : model.accessibilityLabel);
        self.enabled = model.enabled;
        if (model.fullWidth) {
            [self setContentHuggingPriority:NSLayoutPriorityDefaultLow
                             forOrientation:NSLayoutConstraintOrientationHorizontal];
        }
    }
    return self;
}

- (NSSize)intrinsicContentSize {
    NSSize size = super.intrinsicContentSize;
    const NSSize padding = buttonPadding(_model);
    size.width += 2 * padding.width;
    size.height += 2 * padding.height;
    if (_trailing) {
        size.width += _trailing.intrinsicContentSize.width + padding.width;
    }
    return size;
}

- (void)drawRect:(NSRect)dirtyRect {
    CGFloat opacity = 1;
    if (!self.enabled) {
        opacity = 0.4;
    } else if (self.cell.highlighted) {
        opacity = _model.style == ButtonModel::Style::primary ? 0.85 : 0.7;
    }
    withOpacity(opacity, ^{
        const NSRect bounds = self.bounds;
        switch (self->_model.style) {
        case ButtonModel::Style::primary: {
            NSBezierPath *shape = rounded(bounds, Theme::Radius::tile);
            [nsColor(self->_model.fill) setFill];
            [shape fill];
            // A thin highlight crowns the top edge, as light from above.
            [NSGraphicsContext saveGraphicsState];
            [shape addClip];
            [nsColor(Color::white(0.14)) setFill];
            const CGFloat top = self.isFlipped ? NSMinY(bounds) : NSMaxY(bounds) - 1;
            NSRectFillUsingOperation(NSMakeRect(NSMinX(bounds), top, NSWidth(bounds), 1),
                                     NSCompositingOperationSourceOver);
            [NSGraphicsContext restoreGraphicsState];
            break;
        }
        case ButtonModel::Style::quiet: {
            NSBezierPath *shape = rounded(NSInsetRect(bounds, 0.5, 0.5), Theme::Radius::chip);
            [nsColor(Theme::wash) setFill];
            [shape fill];
            [nsColor(Theme::ruleStrong) setStroke];
            shape.lineWidth = 1;
            [shape stroke];
            break;
        }
        case ButtonModel::Style::plain:
            break;
        }
        [super drawRect:dirtyRect];
    });
}

- (void)pressed:(id)sender {
    if (_perform) {
        _perform();
    }
}

@end

@implementation ScrimletIconButton {
    void (^_perform)(void);
    BOOL _hover;
}

- (instancetype)initWithModel:(const IconButtonModel &)model perform:(void (^)(void))perform {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _perform = [perform copy];
        self.translatesAutoresizingMaskIntoConstraints = NO;
        self.bordered = NO;
        self.title = @"";
        self.image = symbolImage(model.symbol, 12, FontWeight::regular, nsString(model.help));
        self.imagePosition = NSImageOnly;
        self.contentTintColor = nsColor(Theme::ink2);
        self.toolTip = nsString(model.help);
        self.accessibilityLabel = nsString(model.help);
        self.target = self;
        self.action = @selector(pressed:);
        [NSLayoutConstraint activateConstraints:@[
            [self.widthAnchor constraintEqualToConstant:24],
            [self.heightAnchor constraintEqualToConstant:24],
        ]];
    }
    return self;
}

- (void)updateTrackingAreas {
    [super updateTrackingAreas];
    trackHover(self);
}

- (void)mouseEntered:(NSEvent *)event {
    _hover = YES;
    self.needsDisplay = YES;
}

- (void)mouseExited:(NSEvent *)event {
    _hover = NO;
    self.needsDisplay = YES;
}

- (void)drawRect:(NSRect)dirtyRect {
    if (_hover || self.cell.highlighted) {
        [nsColor(Theme::wash) setFill];
        [rounded(self.bounds, Theme::Radius::chip) fill];
    }
    [super drawRect:dirtyRect];
}

- (void)pressed:(id)sender {
    if (_perform) {
        _perform();
    }
}

@end

#pragma mark - Lamp toggle

@implementation ScrimletLampToggle {
    double _progress;
    double _from;
    double _to;
    NSTimeInterval _start;
    Animation _motion;
    NSTimer *_timer;
}

- (instancetype)initWithOn:(BOOL)on label:(NSString *)label {
    const scrimlet::Size size = LampToggleLook::size;
    if ((self = [super initWithFrame:NSMakeRect(0, 0, size.width, size.height)])) {
        _on = on;
        _enabled = YES;
        _progress = on ? 1 : 0;
        self.translatesAutoresizingMaskIntoConstraints = NO;
        [self setContentHuggingPriority:NSLayoutPriorityRequired
                         forOrientation:NSLayoutConstraintOrientationHorizontal];
        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilityCheckBoxRole;
        self.accessibilitySubrole = NSAccessibilitySwitchSubrole;
        self.accessibilityLabel = label;
        self.accessibilityValue = nsString(onOff(on));
    }
    return self;
}

- (void)dealloc {
    [_timer invalidate];
}

- (NSSize)intrinsicContentSize {
    return NSMakeSize(LampToggleLook::size.width, LampToggleLook::size.height);
}

- (BOOL)isFlipped {
    return YES;
}

- (BOOL)acceptsFirstResponder {
    return self.enabled;
}

- (void)setEnabled:(BOOL)enabled {
    _enabled = enabled;
    self.accessibilityEnabled = enabled;
    self.needsDisplay = YES;
}

- (void)drawRect:(NSRect)dirtyRect {
    const LampToggleLook look = LampToggleLook::at(_progress, self.enabled);
    withOpacity(look.opacity, ^{
        const NSRect track =
            NSMakeRect(look.track.x, look.track.y, look.track.width, look.track.height);
        NSBezierPath *capsule =
            rounded(NSInsetRect(track, look.borderWidth / 2, look.borderWidth / 2),
                    (look.track.height - look.borderWidth) / 2);
        [nsColor(look.trackFill) setFill];
        [capsule fill];
        [nsColor(look.border) setStroke];
        capsule.lineWidth = look.borderWidth;
        [capsule stroke];

        [NSGraphicsContext saveGraphicsState];
        if (look.glow) {
            NSShadow *glow = [[NSShadow alloc] init];
            glow.shadowColor = nsColor(*look.glow);
            glow.shadowBlurRadius = look.glowRadius;
            glow.shadowOffset = NSZeroSize;
            [glow set];
        }
        [nsColor(look.lampColor) setFill];
        [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(look.lamp.x, look.lamp.y,
                                                           look.lamp.width, look.lamp.height)]
            fill];
        [NSGraphicsContext restoreGraphicsState];
    });
}

- (void)toggleByUser {
    if (!self.enabled) {
        return;
    }
    [self setOn:!_on animated:YES];
    if (self.onToggle) {
        self.onToggle(_on);
    }
}

- (void)mouseDown:(NSEvent *)event {
    [self toggleByUser];
}

- (void)keyDown:(NSEvent *)event {
    if ([event.charactersIgnoringModifiers isEqualToString:@" "]) {
        [self toggleByUser];
        return;
    }
    [super keyDown:event];
}

- (BOOL)accessibilityPerformPress {
    [self toggleByUser];
    return YES;
}

- (void)setOn:(BOOL)on animated:(BOOL)animated {
    if (on == _on) {
        return;
    }
    _on = on;
    self.accessibilityValue = nsString(onOff(on));
    [_timer invalidate];
    _timer = nil;
    if (!animated) {
        _progress = on ? 1 : 0;
        self.needsDisplay = YES;
        return;
    }
    _motion = Motion::forView(Motion::snappy, reduceMotion());
    _from = _progress;
    _to = on ? 1 : 0;
    _start = NSProcessInfo.processInfo.systemUptime;
    __weak ScrimletLampToggle *weakSelf = self;
    _timer = frameTimer(^{
        [weakSelf step];
    });
}

- (void)step {
    const double elapsed = NSProcessInfo.processInfo.systemUptime - _start;
    const bool done = elapsed >= motionDuration(_motion);
    _progress = done ? _to : _from + (_to - _from) * motionProgress(_motion, elapsed);
    self.needsDisplay = YES;
    if (done) {
        [_timer invalidate];
        _timer = nil;
    }
}

@end

#pragma mark - Small pieces

namespace scrimlet::mac {

NSStackView *stack(NSUserInterfaceLayoutOrientation orientation, CGFloat spacing,
                   NSArray<NSView *> *views) {
    NSStackView *out = [NSStackView stackViewWithViews:views];
    out.orientation = orientation;
    out.spacing = spacing;
    out.alignment = orientation == NSUserInterfaceLayoutOrientationVertical
                        ? NSLayoutAttributeLeading
                        : NSLayoutAttributeCenterY;
    out.translatesAutoresizingMaskIntoConstraints = NO;
    return out;
}

void pinToEdges(NSView *view, NSView *container) {
    [NSLayoutConstraint activateConstraints:@[
        [view.leadingAnchor constraintEqualToAnchor:container.leadingAnchor],
        [view.trailingAnchor constraintEqualToAnchor:container.trailingAnchor],
        [view.topAnchor constraintEqualToAnchor:container.topAnchor],
        [view.bottomAnchor constraintEqualToAnchor:container.bottomAnchor],
    ]];
}

void trackHover(NSView *view) {
    for (NSTrackingArea *area in view.trackingAreas) {
        if (area.owner == view) {
            [view removeTrackingArea:area];
        }
    }
    [view addTrackingArea:[[NSTrackingArea alloc]
                              initWithRect:NSZeroRect
                                   options:NSTrackingMouseEnteredAndExited |
                                           NSTrackingActiveAlways | NSTrackingInVisibleRect
                                     owner:view
                                  userInfo:nil]];
}

NSTimer *frameTimer(void (^step)(void)) {
    NSTimer *timer = [NSTimer timerWithTimeInterval:1.0 / 60
                                            repeats:YES
                                              block:^(NSTimer *) {
                                                  step();
                                              }];
    [NSRunLoop.mainRunLoop addTimer:timer forMode:NSRunLoopCommonModes];
    return timer;
}

NSImageView *symbolView(std::string_view symbol, double pointSize, const AdaptiveColor &color,
                        FontWeight weight) {
    NSImage *image = symbolImage(symbol, pointSize, weight);
    NSImageView *view = [NSImageView imageViewWithImage:image ? image : [[NSImage alloc] init]];
    view.contentTintColor = nsColor(color);
    view.translatesAutoresizingMaskIntoConstraints = NO;
    view.accessibilityElement = NO;
    [view setContentHuggingPriority:NSLayoutPriorityRequired
                     forOrientation:NSLayoutConstraintOrientationHorizontal];
    return view;
}

NSView *spacer() {
    NSView *view = [[NSView alloc] initWithFrame:NSZeroRect];
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [view setContentHuggingPriority:1 forOrientation:NSLayoutConstraintOrientationHorizontal];
    [view setContentCompressionResistancePriority:1
                                   forOrientation:NSLayoutConstraintOrientationHorizontal];
    return view;
}

NSView *hairline() {
    ScrimletBox *line = [[ScrimletBox alloc] initWithFrame:NSZeroRect];
    line.translatesAutoresizingMaskIntoConstraints = NO;
    line.fill = nsColor(Theme::rule);
    line.border = nil;
    [line.heightAnchor constraintEqualToConstant:1].active = YES;
    return line;
}

NSTextField *kicker(std::string_view text, const AdaptiveColor &color) {
    NSTextField *field =
        singleLineLabel({kickerText(text), Theme::Typo::kicker.tracked(1.6), color});
    field.accessibilityLabel = nsString(text);
    return field;
}

NSView *tagView(const TagModel &tag) {
    NSMutableArray<NSView *> *parts = [NSMutableArray array];
    if (tag.symbol) {
        [parts addObject:symbolView(*tag.symbol, 9.5, tag.tint, FontWeight::semibold)];
    }
    [parts addObject:singleLineLabel({tag.text, Theme::Typo::smallStrong, tag.tint})];
    ScrimletBox *box =
        [ScrimletBox boxAround:stack(NSUserInterfaceLayoutOrientationHorizontal, 3, parts)
                        insets:NSEdgeInsetsMake(3, 7, 3, 7)];
    box.capsule = YES;
    box.fill = nsColor(tag.fill);
    box.border = nil;
    if (tag.help) {
        box.toolTip = nsString(*tag.help);
    }
    box.accessibilityElement = YES;
    box.accessibilityRole = NSAccessibilityStaticTextRole;
    box.accessibilityLabel = nsString(tag.help ? *tag.help : tag.text);
    [box setContentHuggingPriority:NSLayoutPriorityRequired
                    forOrientation:NSLayoutConstraintOrientationHorizontal];
    return box;
}

NSView *cueNumberView(const CueNumberModel &number) {
    NSTextField *text = singleLineLabel({number.text, Theme::Typo::cue, number.ink});
    text.alignment = NSTextAlignmentCenter;
    ScrimletBox *box = [ScrimletBox boxAround:text insets:NSEdgeInsetsMake(2, 2, 2, 2)];
    box.cornerRadius = 4;
    box.border = nil;
    box.fill = number.fill ? nsColor(*number.fill) : nil;
    [box.widthAnchor constraintGreaterThanOrEqualToConstant:26].active = YES;
    [box setContentHuggingPriority:NSLayoutPriorityRequired
                    forOrientation:NSLayoutConstraintOrientationHorizontal];
    return box;
}

NSView *bannerView(const BannerModel &banner, CGFloat width, ScrimletPerform perform) {
    const CGFloat padding = Theme::Space::s;
    NSMutableArray<NSView *> *parts = [NSMutableArray array];
    [parts addObject:symbolView(banner.symbol, 13, banner.tint, FontWeight::semibold)];
    NSTextField *text = label({banner.text, Theme::Typo::small, Theme::ink});
    [parts addObject:text];
    CGFloat taken = 2 * padding + 16 + Theme::Space::s;
    if (banner.actionTitle) {
        ButtonModel action;
        action.title = *banner.actionTitle;
        action.style = ButtonModel::Style::plain;
        action.font = Theme::Typo::smallStrong;
        action.ink = Theme::ink;
        action.action = banner.action;
        const UiAction what = banner.action;
        ScrimletButton *button = [[ScrimletButton alloc] initWithModel:action
                                                               perform:^{
                                                                   perform(what);
                                                               }];
        [parts addObject:button];
        taken += button.intrinsicContentSize.width + Theme::Space::s;
    }
    if (banner.dismiss) {
        const UiAction dismiss = *banner.dismiss;
        ButtonModel close;
        close.symbol = "xmark";
        close.style = ButtonModel::Style::plain;
        close.font = Font::system(10, FontWeight::semibold);
        close.ink = Theme::ink3;
        close.accessibilityLabel = "Dismiss";
        ScrimletButton *button = [[ScrimletButton alloc] initWithModel:close
                                                               perform:^{
                                                                   perform(dismiss);
                                                               }];
        [parts addObject:button];
        taken += button.intrinsicContentSize.width + Theme::Space::s;
    }
    text.preferredMaxLayoutWidth = std::max<CGFloat>(80, width - taken);
    ScrimletBox *box = [ScrimletBox
        boxAround:stack(NSUserInterfaceLayoutOrientationHorizontal, Theme::Space::s, parts)
           insets:NSEdgeInsetsMake(padding, padding + 2, padding, padding)];
    box.fill = nsColor(banner.fill);
    box.border = nil;
    box.cornerRadius = Theme::Radius::tile;
    return box;
}

} // namespace scrimlet::mac
