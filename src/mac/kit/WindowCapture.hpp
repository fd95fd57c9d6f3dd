#pragma once

// Pictures of this app's own windows for the demo film, taken without the Screen Recording
// permission: the system lets a process see its own windows. Main thread only.

#include "DemoRecorder.hpp"

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <vector>

namespace scrimlet::mac {

/// A picture, released when the last copy goes.
class CapturedImage {
public:
    /// Takes over `image`, which the caller had created or retained.
    explicit CapturedImage(CGImageRef image)
        : image_(image) {}
    CapturedImage(const CapturedImage& other)
        : image_(CGImageRetain(other.image_)) {}
    CapturedImage& operator=(const CapturedImage& other) {
        CGImageRef kept = CGImageRetain(other.image_);
        CGImageRelease(image_);
        image_ = kept;
        return *this;
    }
    ~CapturedImage() { CGImageRelease(image_); }

    CGImageRef get() const { return image_; }

private:
    CGImageRef image_;
};

/// One picture and where it stood, in global screen points.
struct CapturedLayer {
    CapturedImage image;
    vantrel::Rect frame;
};

namespace WindowCapture {

/// The windows on screen, front to back.
std::vector<vantrel::FilmWindow> onScreenWindows();

/// The windows named (front to back) inside `region`, as layers to paint back to front. Up
/// to macOS 14.3 the system composes them at once; from 14.4 each window comes on its own,
/// a frame or so late, through the capture service that needs no permission for a
/// process's own windows. Empty when nothing could be captured.
std::vector<CapturedLayer> capture(const std::vector<std::uint32_t>& windows,
                                   const vantrel::Rect& region, double scale);

} // namespace WindowCapture

namespace OwnWindowStream {

/// From macOS 14.4: the latest picture of each window named, and a request for the next
/// ones. Empty until the first pictures have come.
std::vector<CapturedLayer> latest(const std::vector<std::uint32_t>& windows, double scale);

} // namespace OwnWindowStream

} // namespace scrimlet::mac
