#import "DemoFilm.hpp"

#import "DemoArt.hpp"
#import "FilmWriter.hpp"
#import "WindowCapture.hpp"

#import <AppKit/AppKit.h>

#include <time.h>

namespace scrimlet::mac::DemoFilm {

namespace {

CGRect cgRect(const Rect &rect) { return CGRectMake(rect.x, rect.y, rect.width, rect.height); }

CGColorRef copyColor(const Color &color) {
    return CGColorCreateSRGB(color.red, color.green, color.blue, color.alpha);
}

#pragma mark - The film's own pictures

/// Adds a drawing's outline to a CoreGraphics path, in the same coordinates.
void addPath(CGMutablePathRef target, const Path &path) {
    for (const PathElement &element : path.elements()) {
        if (const auto *move = std::get_if<MoveTo>(&element)) {
            CGPathMoveToPoint(target, nullptr, move->to.x, move->to.y);
        } else if (const auto *line = std::get_if<LineTo>(&element)) {
            CGPathAddLineToPoint(target, nullptr, line->to.x, line->to.y);
        } else if (const auto *quad = std::get_if<QuadTo>(&element)) {
            CGPathAddQuadCurveToPoint(target, nullptr, quad->control.x, quad->control.y, quad->to.x,
                                      quad->to.y);
        } else if (const auto *cubic = std::get_if<CubicTo>(&element)) {
            CGPathAddCurveToPoint(target, nullptr, cubic->control1.x, cubic->control1.y,
                                  cubic->control2.x, cubic->control2.y, cubic->to.x, cubic->to.y);
        } else if (std::holds_alternative<ClosePath>(element)) {
            CGPathCloseSubpath(target);
        } else if (const auto *oval = std::get_if<Oval>(&element)) {
            CGPathAddEllipseInRect(target, nullptr, cgRect(oval->rect));
        } else if (const auto *rounded = std::get_if<RoundedRect>(&element)) {
            const double radius = std::min(
                rounded->radius, std::min(rounded->rect.width, rounded->rect.height) * 0.5);
            CGPathAddRoundedRect(target, nullptr, cgRect(rounded->rect), radius, radius);
        }
    }
}

/// Fills the current path with a paint; the path is used up.
void paintPath(CGContextRef context, const Paint &paint, bool evenOdd) {
    if (const auto *color = std::get_if<Color>(&paint)) {
        CGContextSetRGBFillColor(context, color->red, color->green, color->blue, color->alpha);
        evenOdd ? CGContextEOFillPath(context) : CGContextFillPath(context);
        return;
    }
    const auto *linear = std::get_if<LinearGradient>(&paint);
    if (!linear || linear->stops.empty()) {
        CGContextBeginPath(context);
        return;
    }
    std::vector<CGFloat> components;
    std::vector<CGFloat> locations;
    for (const GradientStop &stop : linear->stops) {
        components.insert(components.end(),
                          {stop.color.red, stop.color.green, stop.color.blue, stop.color.alpha});
        locations.push_back(stop.location);
    }
    CGColorSpaceRef sRGB = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    CGGradientRef gradient = CGGradientCreateWithColorComponents(
        sRGB, components.data(), locations.data(), locations.size());
    CGColorSpaceRelease(sRGB);
    CGContextSaveGState(context);
    evenOdd ? CGContextEOClip(context) : CGContextClip(context);
    const CGGradientDrawingOptions pad =
        linear->extend == GradientExtend::pad
            ? kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation
            : 0;
    CGContextDrawLinearGradient(context, gradient, CGPointMake(linear->start.x, linear->start.y),
                                CGPointMake(linear->end.x, linear->end.y), pad);
    CGContextRestoreGState(context);
    CGGradientRelease(gradient);
}

/// Paints the film's backdrop and cursor: fills, strokes in plain colours, and groups with a
/// shadow, in a context whose y grows downward.
void paint(CGContextRef context, const Drawing &drawing) {
    for (const DrawOp &op : drawing.ops) {
        CGMutablePathRef path = CGPathCreateMutable();
        if (const auto *fill = std::get_if<FillOp>(&op)) {
            addPath(path, fill->path);
            CGContextAddPath(context, path);
            paintPath(context, fill->paint, fill->rule == FillRule::evenOdd);
        } else if (const auto *stroke = std::get_if<StrokeOp>(&op)) {
            if (const auto *color = std::get_if<Color>(&stroke->paint)) {
                addPath(path, stroke->path);
                CGContextAddPath(context, path);
                CGContextSetRGBStrokeColor(context, color->red, color->green, color->blue,
                                           color->alpha);
                CGContextSetLineWidth(context, stroke->width);
                CGContextSetLineCap(context, stroke->cap == LineCap::round    ? kCGLineCapRound
                                             : stroke->cap == LineCap::square ? kCGLineCapSquare
                                                                              : kCGLineCapButt);
                CGContextSetLineJoin(context, stroke->join == LineJoin::round   ? kCGLineJoinRound
                                              : stroke->join == LineJoin::bevel ? kCGLineJoinBevel
                                                                                : kCGLineJoinMiter);
                CGContextStrokePath(context);
            }
        } else if (const auto *group = std::get_if<BeginGroupOp>(&op)) {
            CGContextSaveGState(context);
            CGContextSetAlpha(context, group->opacity);
            if (group->shadow) {
                CGColorRef shadow = copyColor(group->shadow->color);
                // Shadow offsets are not flipped with the drawing: y grows upward there.
                CGContextSetShadowWithColor(
                    context, CGSizeMake(group->shadow->offset.x, -group->shadow->offset.y),
                    group->shadow->radius, shadow);
                CGColorRelease(shadow);
            }
            CGContextBeginTransparencyLayer(context, nullptr);
        } else if (std::holds_alternative<EndGroupOp>(op)) {
            CGContextEndTransparencyLayer(context);
            CGContextRestoreGState(context);
        }
        CGPathRelease(path);
    }
}

/// Draws a picture upright into a rectangle of a context whose y grows downward.
void drawImage(CGContextRef context, CGImageRef image, const Rect &rect) {
    CGContextSaveGState(context);
    CGContextTranslateCTM(context, rect.x, rect.maxY());
    CGContextScaleCTM(context, 1, -1);
    CGContextDrawImage(context, CGRectMake(0, 0, rect.width, rect.height), image);
    CGContextRestoreGState(context);
}

#pragma mark - Camera and clock

class Camera final : public vantrel::DemoCamera {
  public:
    explicit Camera(std::vector<Color> backdrop) : backdrop_(std::move(backdrop)) {}

    void open(const vantrel::FilmFormat &format) override {
        writer_ = FilmWriter::open(format);
        size_ = {static_cast<double>(format.pixelWidth), static_cast<double>(format.pixelHeight)};
    }

    bool isReady() override { return writer_ && writer_->isReady(); }

    std::vector<vantrel::FilmWindow> onScreenWindows() override {
        return WindowCapture::onScreenWindows();
    }

    int processId() const override { return NSProcessInfo.processInfo.processIdentifier; }

    Shot shoot(const vantrel::FilmFrame &frame) override {
        const std::vector<CapturedLayer> layers =
            WindowCapture::capture(frame.windows, frame.region, frame.scale);
        if (layers.empty() || !writer_) {
            return Shot::captureFailed;
        }
        const Drawing ground = DemoArt::filmBackdrop(size_, backdrop_);
        const Drawing pointer = DemoArt::cursor(size_, frame.cursor, frame.scale, frame.clickRing);
        const bool appended = writer_->append(frame.time, [&](CGContextRef context) {
            CGContextTranslateCTM(context, 0, size_.height);
            CGContextScaleCTM(context, 1, -1);
            paint(context, ground);
            CGContextSaveGState(context);
            CGContextClipToRect(context, cgRect(frame.imageRect));
            CGContextSetInterpolationQuality(context, kCGInterpolationHigh);
            for (const CapturedLayer &layer : layers) {
                drawImage(context, layer.image.get(), frame.toFilm(layer.frame));
            }
            CGContextRestoreGState(context);
            paint(context, pointer);
        });
        return appended ? Shot::written : Shot::captureFailed;
    }

    std::optional<std::string> finish() override {
        return writer_ ? writer_->finish() : std::nullopt;
    }

  private:
    std::vector<Color> backdrop_;
    std::unique_ptr<FilmWriter> writer_;
    Size size_;
};

class Clock final : public vantrel::DemoClock {
  public:
    ~Clock() override { [timer_ invalidate]; }

    double now() const override {
        // The monotonic clock of this system goes on while the Mac sleeps.
        return static_cast<double>(clock_gettime_nsec_np(CLOCK_MONOTONIC)) * 1e-9;
    }

    double wallNow() const override { return NSDate.date.timeIntervalSince1970; }

    void wait(double seconds) override {
        NSDate *until = [NSDate dateWithTimeIntervalSinceNow:seconds];
        for (double left = seconds; left > 0; left = until.timeIntervalSinceNow) {
            // The run loop turns, so the frame timer and the app's own work go on; with
            // nothing at all to run it returns at once, and the time is slept instead.
            if (CFRunLoopRunInMode(kCFRunLoopDefaultMode, left, false) == kCFRunLoopRunFinished) {
                [NSThread sleepForTimeInterval:left];
            }
        }
    }

    void startTimer(double interval, std::function<void()> tick) override {
        [timer_ invalidate];
        timer_ = [NSTimer timerWithTimeInterval:interval
                                        repeats:YES
                                          block:^(NSTimer *) {
                                              tick();
                                          }];
        // Common modes: the film goes on while a menu is open.
        [NSRunLoop.mainRunLoop addTimer:timer_ forMode:NSRunLoopCommonModes];
    }

    void stopTimer() override {
        [timer_ invalidate];
        timer_ = nil;
    }

  private:
    NSTimer *timer_ = nil;
};

} // namespace

vantrel::DemoRecorder::Services services(std::vector<Color> backdrop) {
    return {std::make_shared<Clock>(), std::make_shared<Camera>(std::move(backdrop)), anchors()};
}

std::vector<vantrel::DemoScreen> screens() {
    std::vector<vantrel::DemoScreen> found;
    NSArray<NSScreen *> *all = NSScreen.screens;
    const double mainHeight = all.firstObject.frame.size.height;
    for (NSScreen *screen in all) {
        const NSRect frame = screen.frame;
        found.push_back(
            {vantrel::DemoAnchors::fromBottomLeft(
                 {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height}, mainHeight),
             screen.backingScaleFactor});
    }
    return found;
}

std::shared_ptr<vantrel::DemoAnchors> anchors() {
    static const auto shared = std::make_shared<vantrel::DemoAnchors>();
    return shared;
}

} // namespace scrimlet::mac::DemoFilm
