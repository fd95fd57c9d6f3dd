#include "ImageFillView.hpp"

#include <algorithm>

namespace scrimlet {

std::optional<Rect> ImageFillView::aspectFillRect(Size image, const Rect& bounds) {
    if (!(image.width > 0) || !(image.height > 0)) {
        return std::nullopt;
    }
    const double scale = std::max(bounds.width / image.width, bounds.height / image.height);
    const double width = image.width * scale;
    const double height = image.height * scale;
    return Rect{bounds.minX() + (bounds.width - width) * 0.5,
                bounds.minY() + (bounds.height - height) * 0.5, width, height};
}

bool ImageFillView::drawPicture(Canvas& canvas, const ImageRef& image, const Rect& bounds) {
    const auto rect = aspectFillRect(image.size, bounds);
    if (!rect) {
        return false;
    }
    canvas.save();
    canvas.clip(Path::rect(bounds));
    canvas.image(image.name, *rect);
    canvas.restore();
    return true;
}

void ImageFillView::draw(Canvas& canvas, const Rect& bounds) const {
    canvas.fill(bounds, fallback);
    if (image) {
        drawPicture(canvas, *image, bounds);
    }
}

Drawing ImageFillView::drawing(Size bounds) const {
    Canvas canvas(bounds);
    draw(canvas, canvas.bounds());
    return canvas.finish();
}

namespace Wallpaper {

BlurPlan blurPlan(const Rect& extent, double radius, double maxSide) {
    const double longest = std::max(extent.width, extent.height);
    const double shrink = longest > 0 ? maxSide / longest : 1;
    const double scale = shrink < 1 ? shrink : 1;
    return {scale,
            radius * scale,
            {extent.x * scale, extent.y * scale, extent.width * scale, extent.height * scale}};
}

} // namespace Wallpaper

} // namespace scrimlet
