#import "StageHeaderView.h"

#import "Controls.h"
#import "Look.h"

#include "ControlLooks.hpp"

using namespace scrimlet;
using namespace scrimlet::mac;

namespace {

// The valance hangs 46 points over the top of the stage: what is written on the curtain or
// stands on the stage is centred in the room below it.
constexpr CGFloat valanceHeight = 46;
// Below this the curtain still hides the stage; above that it shows it.
constexpr double frontUntil = 0.05;
constexpr double stageFrom = 0.3;

NSView *lineView(const HeaderLine &line) {
    NSTextField *text = singleLineLabel(line.text);
    text.alignment = NSTextAlignmentCenter;
    if (line.glow) {
        NSShadow *glow = [[NSShadow alloc] init];
        glow.shadowColor = nsColor(line.glow->color);
        glow.shadowBlurRadius = line.glow->radius;
        glow.shadowOffset = NSZeroSize;
        text.shadow = glow;
    }
    if (!line.symbol) {
        return text;
    }
    return stack(NSUserInterfaceLayoutOrientationHorizontal, 4,
                 @[ symbolView(*line.symbol, line.text.font.size, line.text.color), text ]);
}

} // namespace

@implementation ScrimletStageHeaderView {
    std::optional<StageHeaderModel> _model;
    ScrimletBox *_curtain;
    NSStackView *_front;
    NSStackView *_stage;
    double _open;
    double _from;
    double _to;
    NSTimeInterval _start;
    Animation _motion;
    NSTimer *_timer;
}

- (instancetype)initWithWidth:(CGFloat)width {
    if ((self = [super initWithFrame:NSZeroRect])) {
        self.translatesAutoresizingMaskIntoConstraints = NO;
        [self.widthAnchor constraintEqualToConstant:width].active = YES;
        [self.heightAnchor constraintEqualToConstant:StageHeaderModel{}.height].active = YES;
        _curtain = [[ScrimletBox alloc] initWithFrame:NSZeroRect];
        _curtain.translatesAutoresizingMaskIntoConstraints = NO;
        _curtain.cornerRadius = Theme::Radius::card;
        _curtain.fill = nsColor(Theme::stageBlack);
        _curtain.border = nsColor(faded(Theme::ruleStrong, 0.35));
        [self addSubview:_curtain];
        _front = [self face];
        _stage = [self face];
        [NSLayoutConstraint activateConstraints:@[
            [_curtain.leadingAnchor constraintEqualToAnchor:self.leadingAnchor],
            [_curtain.trailingAnchor constraintEqualToAnchor:self.trailingAnchor],
            [_curtain.topAnchor constraintEqualToAnchor:self.topAnchor],
            [_curtain.bottomAnchor constraintEqualToAnchor:self.bottomAnchor],
        ]];
        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilityStaticTextRole;
    }
    return self;
}

- (void)dealloc {
    [_timer invalidate];
}

- (NSStackView *)face {
    NSStackView *face = stack(NSUserInterfaceLayoutOrientationVertical, 4, @[]);
    face.alignment = NSLayoutAttributeCenterX;
    [self addSubview:face];
    [NSLayoutConstraint activateConstraints:@[
        [face.centerXAnchor constraintEqualToAnchor:self.centerXAnchor],
        [face.centerYAnchor constraintEqualToAnchor:self.centerYAnchor constant:valanceHeight / 2],
        [face.widthAnchor constraintLessThanOrEqualToAnchor:self.widthAnchor constant:-24],
    ]];
    return face;
}

- (void)fill:(NSStackView *)face with:(const std::vector<HeaderLine> &)lines {
    for (NSView *view in [face.arrangedSubviews copy]) {
        [face removeArrangedSubview:view];
        [view removeFromSuperview];
    }
    for (const HeaderLine &line : lines) {
        [face addArrangedSubview:lineView(line)];
    }
}

- (void)showModel:(const StageHeaderModel &)model {
    if (_model == model) {
        return;
    }
    const bool first = !_model;
    const bool moved = !first && _model->open != model.open;
    if (!_model || _model->lines != model.lines || _model->face != model.face) {
        const bool front = model.face == StageHeaderModel::Face::offCurtain;
        [self fill:front ? _front : _stage with:model.lines];
        if (first || _model->face != model.face) {
            [self fill:front ? _stage : _front with:{}];
        }
    }
    self.accessibilityLabel = nsString(model.accessibilityText);
    _model = model;
    const std::optional<Animation> motion = Motion::forCurtain(reduceMotion());
    if (moved && motion) {
        [self animateTo:model.open with:*motion];
    } else {
        [_timer invalidate];
        _timer = nil;
        [self showOpen:model.open];
    }
}

- (void)animateTo:(double)open with:(const Animation &)motion {
    [_timer invalidate];
    _motion = motion;
    _from = _open;
    _to = open;
    _start = NSProcessInfo.processInfo.systemUptime;
    __weak ScrimletStageHeaderView *weakSelf = self;
    _timer = [NSTimer timerWithTimeInterval:1.0 / 60
                                    repeats:YES
                                      block:^(NSTimer *) {
                                          [weakSelf step];
                                      }];
    [NSRunLoop.mainRunLoop addTimer:_timer forMode:NSRunLoopCommonModes];
}

- (void)step {
    const double elapsed = NSProcessInfo.processInfo.systemUptime - _start;
    if (elapsed >= motionDuration(_motion)) {
        [_timer invalidate];
        _timer = nil;
        [self showOpen:_to];
        return;
    }
    [self showOpen:_from + (_to - _from) * motionProgress(_motion, elapsed)];
}

/// The curtain `open` of the way drawn back: the sign on it shows only while it is closed,
/// the stage only once it has parted.
- (void)showOpen:(double)open {
    _open = open;
    _front.hidden = !(open < frontUntil);
    _stage.hidden = !(open > stageFrom);
    _curtain.needsDisplay = YES;
}

@end
