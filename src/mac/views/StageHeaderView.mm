#import "StageHeaderView.h"

#import "Controls.h"
#import "DrawingView.h"
#import "Look.h"

#include "ControlLooks.hpp"
#include "Curtain.hpp"

#include <algorithm>
#include <memory>

using namespace scrimlet;
using namespace scrimlet::mac;

namespace {

// The valance hangs over the top of the stage: what is written on the curtain or stands on
// the stage is centred in the room below it.
constexpr CGFloat valanceHeight = Valance::height;

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
    SCDrawingView *_curtain;
    /// What the curtain draws at this moment of its motion.
    std::shared_ptr<Proscenium> _scene;
    NSStackView *_front;
    NSStackView *_stage;
    double _fromOpen;
    double _toOpen;
    double _fromLit;
    double _toLit;
    NSTimeInterval _start;
    Animation _motion;
    NSTimer *_timer;
}

- (instancetype)initWithWidth:(CGFloat)width {
    if ((self = [super initWithFrame:NSZeroRect])) {
        self.translatesAutoresizingMaskIntoConstraints = NO;
        [self.widthAnchor constraintEqualToConstant:width].active = YES;
        [self.heightAnchor constraintEqualToConstant:StageHeaderModel{}.height].active = YES;
        _scene = std::make_shared<Proscenium>();
        _curtain = [[SCDrawingView alloc] initWithFrame:NSZeroRect];
        _curtain.translatesAutoresizingMaskIntoConstraints = NO;
        std::shared_ptr<const Proscenium> scene = _scene;
        _curtain.maker = [scene](scrimlet::Size size, Appearance appearance) {
            return scene->drawing(size.width, appearance);
        };
        _curtain.accessibilityElement = NO;
        [self addSubview:_curtain];
        _front = [self face];
        _stage = [self face];
        pinToEdges(_curtain, self);
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
    const bool moved = !first && (_model->open != model.open || _model->lit != model.lit);
    if (!_model || _model->lines != model.lines || _model->face != model.face) {
        const bool front = model.face == StageHeaderModel::Face::offCurtain;
        [self fill:front ? _front : _stage with:model.lines];
        if (first || _model->face != model.face) {
            [self fill:front ? _stage : _front with:{}];
        }
    }
    self.accessibilityLabel = nsString(model.accessibilityText);
    _scene->height = model.height;
    _model = model;
    const std::optional<Animation> motion = Motion::forCurtain(reduceMotion());
    if (moved && motion) {
        [self animateTo:model with:*motion];
    } else {
        [_timer invalidate];
        _timer = nil;
        [self showOpen:model.open lit:model.lit];
    }
}

- (void)animateTo:(const StageHeaderModel &)model with:(const Animation &)motion {
    [_timer invalidate];
    _motion = motion;
    _fromOpen = _scene->open;
    _toOpen = model.open;
    _fromLit = _scene->lit;
    _toLit = model.lit;
    _start = NSProcessInfo.processInfo.systemUptime;
    __weak ScrimletStageHeaderView *weakSelf = self;
    _timer = frameTimer(^{
        [weakSelf step];
    });
}

- (void)step {
    const double elapsed = NSProcessInfo.processInfo.systemUptime - _start;
    if (elapsed >= motionDuration(_motion)) {
        [_timer invalidate];
        _timer = nil;
        [self showOpen:_toOpen lit:_toLit];
        return;
    }
    const double progress = motionProgress(_motion, elapsed);
    [self showOpen:_fromOpen + (_toOpen - _fromOpen) * progress
               lit:std::clamp(_fromLit + (_toLit - _fromLit) * progress, 0.0, 1.0)];
}

/// The curtain `open` of the way drawn back: the sign on it shows only while it is closed,
/// the stage only once it has parted.
- (void)showOpen:(double)open lit:(double)lit {
    _scene->open = open;
    _scene->lit = lit;
    _front.hidden = !_scene->showsFront();
    _stage.hidden = !_scene->showsStage();
    _curtain.needsDisplay = YES;
}

@end
