// `scrimlet art` exists where the renderer does: not on macOS.
#ifdef SCRIMLET_WITH_ART

#include "ArtCommand.hpp"
#include "CommandLine.hpp"

#include "AtomicFile.hpp"
#include "BackdropStyle.hpp"
#include "Renderer.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <sstream>

namespace scrimlet {
namespace {

using testing::TempDir;

TEST(ArtCommand, WritesEveryPieceInBothAppearances) {
    TempDir dir;
    const auto out = dir / "art";
    const auto log = dir / "log.txt";
    const std::string command =
        std::string(SCRIMLET_COMMAND) + " art '" + out.string() + "' > '" + log.string() + "' 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << files::read(log).value_or("");

    const auto names = ArtCommand::fileNames();
    const std::string told = files::read(log).value_or("");
    for (const std::string& name : names) {
        EXPECT_NE(told.find(name), std::string::npos) << name;
    }
    // Every piece comes in both appearances.
    for (const char* piece :
         {"glyph-dark", "glyph-standby", "glyph-live", "curtain-closed", "curtain-open",
          "backdrop-color", "backdrop-gradient", "backdrop-mesh", "backdrop-picture",
          "backdrop-wallpaper", "backdrop-preview", "spotlight", "countdown", "lock-main",
          "lock-other", "cover", "cover-fallback"}) {
        for (const char* appearance : {"-light.png", "-dark.png"}) {
            EXPECT_EQ(std::count(names.begin(), names.end(), piece + std::string(appearance)), 1)
                << piece << appearance;
        }
    }

    std::map<std::string, render::Raster> pngs;
    for (const std::string& name : names) {
        auto raster = render::readPng(out / name);
        ASSERT_TRUE(raster.has_value()) << name;
        pngs.emplace(name, std::move(*raster));
    }
    const auto sizeOf = [&](const std::string& name) {
        const auto& raster = pngs.at(name);
        return std::make_pair(raster.width(), raster.height());
    };
    EXPECT_EQ(sizeOf("glyph-live-dark.png"), std::make_pair(34 * 8, 24 * 8));
    EXPECT_EQ(sizeOf("glyph-dark-light.png"), std::make_pair(30 * 8, 24 * 8));
    EXPECT_EQ(sizeOf("curtain-open-dark.png"), std::make_pair(720, 296));
    EXPECT_EQ(sizeOf("backdrop-mesh-light.png"), std::make_pair(1280, 800));
    EXPECT_EQ(sizeOf("countdown-dark.png"), std::make_pair(600, 600));
    EXPECT_EQ(sizeOf("lock-main-dark.png"), std::make_pair(1280, 800));

    // The default colours' first, 2A1610, fills the colour backdrop.
    const auto color = pngs.at("backdrop-color-dark.png").at(640, 400);
    EXPECT_EQ(color, (render::Pixel{0x2A, 0x16, 0x10, 255}));
    // The live glyph's lamp is red; the bar behind a template glyph shows through its gap.
    const auto lamp = pngs.at("glyph-live-light.png").at((6 + 19) * 8, (4 + 4) * 8);
    EXPECT_GT(lamp.red, 200);
    EXPECT_LT(lamp.green, 100);
    const auto ink = pngs.at("glyph-dark-dark.png").at((6 + 5) * 8, 12 * 8);
    EXPECT_GT(ink.red, 240); // white on the dark bar
    // The wallpaper backdrop has no wallpaper here: its fallback, darker at the bottom.
    const auto& wallpaper = pngs.at("backdrop-wallpaper-light.png");
    EXPECT_GT(wallpaper.at(640, 2).red, wallpaper.at(640, 797).red);
}

TEST(ArtCommand, RefusesWhatIsNotOneFolder) {
    TempDir dir;
    std::ostringstream out, err;
    EXPECT_EQ(CommandLine::run({"art"}, {}, out, err), CommandLine::usageError);
    EXPECT_NE(err.str().find("scrimlet art DIR"), std::string::npos);
    EXPECT_EQ(CommandLine::run({"art", "a", "b"}, {}, out, err), CommandLine::usageError);
    EXPECT_EQ(CommandLine::run({"art", ""}, {}, out, err), CommandLine::usageError);
    EXPECT_EQ(CommandLine::run({"art", "--colour"}, {}, out, err), CommandLine::usageError);

    files::writeAtomically(dir / "file", "x");
    std::ostringstream err2;
    EXPECT_EQ(CommandLine::run({"art", (dir / "file").string()}, {}, out, err2), 1);
    EXPECT_NE(err2.str().find("cannot use the folder"), std::string::npos);

    std::ostringstream help;
    EXPECT_EQ(CommandLine::run({"help"}, {}, help, err), 0);
    EXPECT_NE(help.str().find("art DIR"), std::string::npos);
}

} // namespace
} // namespace scrimlet

#endif
