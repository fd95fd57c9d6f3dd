#pragma once

// The demo film's file: H.264 frames in a QuickTime movie, written by the system's media
// writer. The only file that speaks to AVFoundation. Main thread only.

#include "DemoRecorder.hpp"

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace scrimlet::mac {

class FilmWriter {
public:
    virtual ~FilmWriter() = default;

    /// Creates the movie at `format.file`, which must not exist yet. Throws
    /// `vantrel::DemoFailure::writer` with the writer's own words.
    static std::unique_ptr<FilmWriter> open(const vantrel::FilmFormat& format);

    /// Whether the writer takes another frame now.
    virtual bool isReady() const = 0;
    /// Lets `draw` paint one frame into a bitmap of the film's pixels, in CoreGraphics' own
    /// coordinates (origin at the bottom left), and appends it at `time` 600ths of a second.
    /// False when the writer could not take it.
    virtual bool append(std::int64_t time, const std::function<void(CGContextRef)>& draw) = 0;
    /// Ends the film and waits until the file is complete; the writer's error, if any.
    virtual std::optional<std::string> finish() = 0;
};

} // namespace scrimlet::mac
