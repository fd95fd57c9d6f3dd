#import "FilmWriter.hpp"

#import "../common/Text.h"

#import <AVFoundation/AVFoundation.h>

namespace scrimlet::mac {

namespace {

std::string describe(NSError *error, const char *fallback) {
    return error ? toString(error.localizedDescription) : std::string(fallback);
}

class AVFilmWriter final : public FilmWriter {
  public:
    AVFilmWriter(AVAssetWriter *writer, AVAssetWriterInput *input,
                 AVAssetWriterInputPixelBufferAdaptor *adaptor, const vantrel::FilmFormat &format)
        : writer_(writer), input_(input), adaptor_(adaptor),
          width_(static_cast<std::size_t>(format.pixelWidth)),
          height_(static_cast<std::size_t>(format.pixelHeight)) {}

    bool isReady() const override {
        return writer_.status == AVAssetWriterStatusWriting && input_.readyForMoreMediaData;
    }

    bool append(std::int64_t time, const std::function<void(CGContextRef)> &draw) override {
        CVPixelBufferPoolRef pool = adaptor_.pixelBufferPool;
        CVPixelBufferRef buffer = nullptr;
        if (!pool ||
            CVPixelBufferPoolCreatePixelBuffer(nullptr, pool, &buffer) != kCVReturnSuccess) {
            return false;
        }
        CVPixelBufferLockBaseAddress(buffer, 0);
        CGColorSpaceRef sRGB = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
        // BGRA in memory: 32-bit little-endian words with alpha first.
        CGContextRef context =
            CGBitmapContextCreate(CVPixelBufferGetBaseAddress(buffer), width_, height_, 8,
                                  CVPixelBufferGetBytesPerRow(buffer), sRGB,
                                  static_cast<CGBitmapInfo>(kCGImageAlphaPremultipliedFirst) |
                                      kCGBitmapByteOrder32Little);
        CGColorSpaceRelease(sRGB);
        if (context) {
            draw(context);
            CGContextRelease(context);
        }
        CVPixelBufferUnlockBaseAddress(buffer, 0);
        const bool appended =
            context && [adaptor_ appendPixelBuffer:buffer
                              withPresentationTime:CMTimeMake(time, vantrel::FilmFrame::timescale)];
        CVPixelBufferRelease(buffer);
        return appended;
    }

    std::optional<std::string> finish() override {
        [input_ markAsFinished];
        // The handler comes on a queue of the writer's own, so the main thread may wait.
        dispatch_semaphore_t done = dispatch_semaphore_create(0);
        [writer_ finishWritingWithCompletionHandler:^{
            dispatch_semaphore_signal(done);
        }];
        dispatch_semaphore_wait(done, DISPATCH_TIME_FOREVER);
        if (writer_.status != AVAssetWriterStatusCompleted) {
            return describe(writer_.error, "The film could not be finished.");
        }
        return std::nullopt;
    }

  private:
    AVAssetWriter *writer_;
    AVAssetWriterInput *input_;
    AVAssetWriterInputPixelBufferAdaptor *adaptor_;
    std::size_t width_;
    std::size_t height_;
};

} // namespace

std::unique_ptr<FilmWriter> FilmWriter::open(const vantrel::FilmFormat &format) {
    NSURL *url = [NSURL fileURLWithPath:toNSString(format.file.string()) isDirectory:NO];
    NSError *error = nil;
    AVAssetWriter *writer = [[AVAssetWriter alloc] initWithURL:url
                                                      fileType:AVFileTypeQuickTimeMovie
                                                         error:&error];
    if (!writer) {
        throw vantrel::DemoFailure::writer(describe(error, "The film could not be created."));
    }
    NSDictionary<NSString *, id> *settings = @{
        AVVideoCodecKey : AVVideoCodecTypeH264,
        AVVideoWidthKey : @(format.pixelWidth),
        AVVideoHeightKey : @(format.pixelHeight),
        AVVideoCompressionPropertiesKey : @{
            AVVideoAverageBitRateKey : @(format.averageBitRate),
            AVVideoMaxKeyFrameIntervalKey : @(format.maxKeyFrameInterval),
        },
    };
    AVAssetWriterInput *input = [AVAssetWriterInput assetWriterInputWithMediaType:AVMediaTypeVideo
                                                                   outputSettings:settings];
    input.expectsMediaDataInRealTime = YES;
    NSDictionary<NSString *, id> *buffers = @{
        (__bridge NSString *)kCVPixelBufferPixelFormatTypeKey : @(kCVPixelFormatType_32BGRA),
        (__bridge NSString *)kCVPixelBufferWidthKey : @(format.pixelWidth),
        (__bridge NSString *)kCVPixelBufferHeightKey : @(format.pixelHeight),
    };
    AVAssetWriterInputPixelBufferAdaptor *adaptor = [AVAssetWriterInputPixelBufferAdaptor
        assetWriterInputPixelBufferAdaptorWithAssetWriterInput:input
                                   sourcePixelBufferAttributes:buffers];
    if (![writer canAddInput:input]) {
        throw vantrel::DemoFailure::writer(describe(writer.error, "The film cannot take H.264."));
    }
    [writer addInput:input];
    if (![writer startWriting]) {
        throw vantrel::DemoFailure::writer(describe(writer.error, "The film could not start."));
    }
    [writer startSessionAtSourceTime:kCMTimeZero];
    return std::make_unique<AVFilmWriter>(writer, input, adaptor, format);
}

} // namespace scrimlet::mac
