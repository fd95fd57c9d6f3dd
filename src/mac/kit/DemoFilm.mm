#import "DemoFilm.hpp"

#import "../views/DrawingView.h"
#import "DemoArt.hpp"
#import "FilmWriter.hpp"
#import "WindowCapture.hpp"

#import <AppKit/AppKit.h>

#include <time.h>

namespace scrimlet::mac::DemoFilm {

namespace {

CGRect cgRect(const Rect &rect) { return CGRectMake(rect.x, rect.y, rect.width, rect.height); }

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
            drawDrawing(ground, context, nil);
            CGContextSaveGState(context);
            CGContextClipToRect(context, cgRect(frame.imageRect));
            CGContextSetInterpolationQuality(context, kCGInterpolationHigh);
            for (const CapturedLayer &layer : layers) {
                drawImage(context, layer.image.get(), frame.toFilm(layer.frame));
            }
            CGContextRestoreGState(context);
            drawDrawing(pointer, context, nil);
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
