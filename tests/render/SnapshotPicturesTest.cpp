#include "Renderer.hpp"

#include "DemoArt.hpp"
#include "SnapshotPlan.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

namespace scrimlet {
namespace {

using render::Pixel;

bool near(const Pixel& pixel, const Color& color, int tolerance = 4) {
    const auto off = [&](int channel, double value) {
        return std::abs(channel - static_cast<int>(std::lround(value * 255))) > tolerance;
    };
    return !off(pixel.red, color.red) && !off(pixel.green, color.green) &&
           !off(pixel.blue, color.blue) && pixel.alpha == 255;
}

/// The picture with the platform's images given as files.
Drawing withImages(Drawing drawing, const std::filesystem::path& painted) {
    for (DrawOp& op : drawing.ops) {
        if (auto* image = std::get_if<ImageOp>(&op)) {
            image->image = painted.string();
        }
    }
    return drawing;
}

TEST(SnapshotPictures, ThePaintedWallpaperAndWhatShowsItRenderAsPainted) {
    const Size size{300, 200};
    const auto wallpaper = render::rasterize(DemoArt::wallpaper(size));
    EXPECT_TRUE(near(wallpaper.atPoint({150, 0.5}), DemoArt::skyTop));
    EXPECT_TRUE(near(wallpaper.atPoint({10, 100}), DemoArt::skyMiddle));
    EXPECT_TRUE(near(wallpaper.atPoint({150, 199.5}), DemoArt::nearHills));
    // The sky darkens upward all the way.
    for (double y = 10; y < 110; y += 10) {
        const Pixel above = wallpaper.atPoint({5, y - 10});
        const Pixel below = wallpaper.atPoint({5, y});
        EXPECT_LE(above.red, below.red) << y;
    }

    // The picture backdrop shows the painted picture over the whole screen.
    testing::TempDir temp;
    const auto painted = temp / "wallpaper.png";
    const Size screen = SnapshotPlan::screenSize();
    ASSERT_TRUE(render::writePng(DemoArt::wallpaper(screen), painted));
    const auto all = SnapshotPlan::pictures(render::measureText);
    const auto picture = render::rasterize(withImages(all[7].drawing, painted), 0.25);
    const Pixel sky = picture.atPoint({756, 10});
    const Pixel hills = picture.atPoint({756, 975});
    EXPECT_GT(sky.blue, sky.red);
    EXPECT_LT(hills.red + hills.green + hills.blue, sky.red + sky.green + sky.blue + 60);
    EXPECT_EQ(hills.alpha, 255);

    // The spotlight is clear at the pointer, in the middle, and dark in the corners.
    const auto spotlight = render::rasterize(all[3].drawing, 0.25);
    EXPECT_LT(spotlight.atPoint({756, 491}).alpha, 10);
    EXPECT_NEAR(spotlight.atPoint({4, 4}).alpha, 0.55 * 255, 3);
}

} // namespace
} // namespace scrimlet
