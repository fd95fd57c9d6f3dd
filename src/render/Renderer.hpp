#pragma once

// Drawings to pixels and PNG files with cairo and pango: the tests' eyes, and `scrimlet
// art`. Linux only; on macOS, CoreGraphics draws the same drawings. Any thread, one drawing
// at a time per call.

#include "Drawing.hpp"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet::render {

/// One pixel, not premultiplied.
struct Pixel {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    std::uint8_t alpha = 0;

    friend bool operator==(const Pixel&, const Pixel&) = default;
};

/// A rendered drawing: rows of pixels from the top, at a scale of pixels per point.
class Raster {
public:
    Raster(int width, int height, double scale, std::vector<Pixel> pixels);

    int width() const { return width_; }
    int height() const { return height_; }
    double scale() const { return scale_; }
    /// The pixel at a pixel position, which must lie inside.
    Pixel at(int x, int y) const;
    /// The pixel under a point of the drawing, in points.
    Pixel atPoint(Point point) const;

private:
    int width_;
    int height_;
    double scale_;
    std::vector<Pixel> pixels_;
};

/// Renders at `scale` pixels per point on a transparent ground. Images are read from the
/// paths their operations name; one that cannot be read is left out.
Raster rasterize(const Drawing& drawing, double scale = 1);
/// The same, as the bytes of a PNG file.
std::string encodePng(const Drawing& drawing, double scale = 1);
/// Writes the PNG atomically; false when it could not be written.
bool writePng(const Drawing& drawing, const std::filesystem::path& path, double scale = 1);

/// The pixels of a PNG file, at scale 1; none when it cannot be read.
std::optional<Raster> readPng(const std::filesystem::path& path);
/// A picture as the renderer can draw it (a PNG file), with its size; none when it cannot
/// be read.
std::optional<ImageRef> loadImage(const std::string& path);
/// The size of one line of text exactly as the renderer lays it out.
Size measureText(std::string_view text, const Font& font);

} // namespace scrimlet::render
