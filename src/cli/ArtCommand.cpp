#include "ArtCommand.hpp"

#include "BackdropView.hpp"
#include "CaptureModel.hpp"
#include "Curtain.hpp"
#include "ImageFillView.hpp"
#include "MenuGlyph.hpp"
#include "SceneCards.hpp"
#include "SpotlightView.hpp"
#include "Theme.hpp"

// The renderer is not on macOS, whose build leaves this file out; the relative path keeps
// the file readable by tools that check the portable sources against Apple's headers.
#include "../render/Renderer.hpp"

#include <functional>

namespace scrimlet::ArtCommand {

namespace {

namespace fs = std::filesystem;

struct Piece {
    std::string name;
    double scale;
    std::function<Drawing(Appearance)> draw;
};

// A pretend screen, and the pretend desktop picture that covers it.
constexpr Size screen{1280, 800};
constexpr const char* desktopName = "desktop-sample.png";

Drawing desktopSample() {
    Canvas canvas(screen);
    // A light picture, so that what darkens it shows.
    std::vector<Color> colors;
    for (const auto& palette : BackdropStyle::palettes()) {
        if (palette.name == "Matinee") {
            for (const std::uint32_t rgb : palette.colors) {
                colors.push_back(Color::hex(rgb));
            }
        }
    }
    MeshBackdrop{colors}.draw(canvas, canvas.bounds());
    // Icons and windows, the clutter a cover and a backdrop hide.
    for (int i = 0; i < 5; ++i) {
        canvas.fill(Path::roundedRect({1180, 40.0 + i * 90, 56, 56}, 12), Color::white(0.75));
    }
    canvas.fill(Path::roundedRect({120, 120, 640, 420}, 10), Color::hex(0xF4F1EC));
    canvas.fill(Rect{120, 120, 640, 28}, Color::hex(0xE3DED6));
    canvas.fill(Path::roundedRect({420, 300, 560, 380}, 10), Color::hex(0x2B2B30));
    return canvas.finish();
}

// A screen with the desktop under what the scenery lays over it.
Drawing overDesktop(const Drawing& scene, const std::optional<ImageRef>& desktop) {
    Canvas canvas(scene.size);
    ImageFillView{desktop, ImageFillView::coverFallback}.draw(canvas, canvas.bounds());
    canvas.draw(scene, {0, 0});
    return canvas.finish();
}

// The glyph on a strip of menu bar in the appearance's colour.
Drawing glyphOnBar(bool live, bool standby, Appearance appearance) {
    const Size glyph = MenuGlyph::size(live);
    Canvas canvas({glyph.width + 12, 24});
    canvas.fill(canvas.bounds(), appearance == Appearance::dark ? Color::rgb255(40, 38, 36)
                                                                : Color::rgb255(236, 234, 230));
    canvas.draw(MenuGlyph::asShown(live, standby, appearance), {6, 4});
    return canvas.finish();
}

// What the dropdown's header shows on the curtain and on the stage.
Drawing houseOpen() {
    Canvas canvas({Theme::popoverWidth, 148});
    canvas.text("HOUSE OPEN",
                Font::system(13, FontWeight::heavy, FontWidth::condensed).tracked(1.6),
                Theme::lightGlow.opacity(0.92), {0, 62, Theme::popoverWidth, 18});
    canvas.text("Waiting in the wings for a share or recording", Theme::Typo::small,
                Color::white(0.72), {0, 84, Theme::popoverWidth, 16});
    return canvas.finish();
}

Drawing onStage() {
    Canvas canvas({Theme::popoverWidth, 148});
    canvas.text("ON STAGE", Font::system(12, FontWeight::heavy, FontWidth::condensed).tracked(1.6),
                Color::white(0.9), {0, 52, Theme::popoverWidth, 16});
    canvas.text("12:48", Font::system(30, FontWeight::bold).withMonospacedDigits(), Color::white(),
                {0, 68, Theme::popoverWidth, 36});
    const CaptureSource zoom{"us.zoom.xos", "Zoom", CaptureKind::callShare};
    canvas.text(zoom.sentence(), Theme::Typo::small, Color::white(0.62),
                {0, 104, Theme::popoverWidth, 16});
    return canvas.finish();
}

Drawing standbyStage() {
    Canvas canvas({Theme::popoverWidth, 148});
    canvas.beginGroup(1, Shadow{Theme::lightFill.opacity(0.8), 14, {0, 0}});
    canvas.text("2",
                Font::system(44, FontWeight::heavy, FontWidth::condensed).withMonospacedDigits(),
                Theme::lightGlow, {0, 54, Theme::popoverWidth, 52});
    canvas.endGroup();
    canvas.text("STANDBY", Font::system(11, FontWeight::heavy, FontWidth::condensed).tracked(2),
                Theme::lightGlow.opacity(0.75), {0, 106, Theme::popoverWidth, 14});
    return canvas.finish();
}

std::vector<Piece> pieces(const std::optional<ImageRef>& desktop) {
    std::vector<Piece> list;
    struct Glyph {
        const char* name;
        bool live;
        bool standby;
    };
    for (const Glyph glyph :
         {Glyph{"glyph-dark", false, false}, Glyph{"glyph-standby", false, true},
          Glyph{"glyph-live", true, false}}) {
        list.push_back({glyph.name, 8, [glyph](Appearance a) {
                            return glyphOnBar(glyph.live, glyph.standby, a);
                        }});
    }
    const auto curtain = [](double open, std::optional<Drawing> stage,
                            std::optional<Drawing> front) {
        return [=](Appearance a) {
            return Proscenium{open, open, 148, stage, front}.drawing(Theme::popoverWidth, a);
        };
    };
    list.push_back({"curtain-closed", 2, curtain(0, std::nullopt, houseOpen())});
    list.push_back({"curtain-standby", 2, curtain(0.5, standbyStage(), std::nullopt)});
    list.push_back({"curtain-open", 2, curtain(1, onStage(), std::nullopt)});

    for (const BackdropStyle::Kind kind : backdrop_kind::allCases) {
        BackdropStyle style;
        style.kind = kind;
        if (kind == BackdropStyle::Kind::picture) {
            style.picturePath = desktop ? desktop->name : std::string();
        }
        // No wallpaper can be read here: the wallpaper kind shows its fallback.
        const BackdropView view{style, std::nullopt, desktop};
        list.push_back({"backdrop-" + std::string(rawValue(kind)), 1,
                        [view](Appearance) { return view.drawing(screen); }});
    }
    list.push_back({"backdrop-preview", 2, [](Appearance a) {
                        return BackdropPreview{BackdropStyle{}, {}, {}}.drawing({480, 300}, a);
                    }});
    list.push_back({"cover", 1, [desktop](Appearance) {
                        return ImageFillView{desktop, ImageFillView::coverFallback}.drawing(screen);
                    }});
    list.push_back(
        {"cover-fallback", 1, [](Appearance) {
             return ImageFillView{std::nullopt, ImageFillView::coverFallback}.drawing(screen);
         }});
    list.push_back({"spotlight", 1, [desktop](Appearance) {
                        // The pointer at (700, 500) of the screen, as the system reports it, y up.
                        return overDesktop(
                            SpotlightView{110, 0.55, {0, 0}, {700, 500}}.drawing(screen), desktop);
                    }});
    list.push_back({"countdown", 2, [](Appearance) { return CountdownCard{3}.drawing(); }});
    list.push_back({"lock-main", 1, [desktop](Appearance) {
                        return overDesktop(
                            LockCard{true}.layout(screen, render::measureText).drawing, desktop);
                    }});
    list.push_back({"lock-other", 1, [desktop](Appearance) {
                        return overDesktop(
                            LockCard{false}.layout(screen, render::measureText).drawing, desktop);
                    }});
    return list;
}

} // namespace

std::vector<std::string> fileNames() {
    std::vector<std::string> names{desktopName};
    for (const Piece& piece : pieces(std::nullopt)) {
        for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
            names.push_back(piece.name + "-" + std::string(rawValue(appearance)) + ".png");
        }
    }
    return names;
}

int run(const fs::path& dir, std::ostream& out, std::ostream& err) {
    std::error_code error;
    fs::create_directories(dir, error);
    if (error || !fs::is_directory(dir, error)) {
        err << "scrimlet: art: cannot use the folder " << dir.string() << "\n";
        return 1;
    }
    int failures = 0;
    const auto write = [&](const Drawing& drawing, const std::string& name, double scale) {
        const fs::path file = dir / name;
        if (render::writePng(drawing, file, scale)) {
            out << file.string() << "\n";
        } else {
            err << "scrimlet: art: could not write " << file.string() << "\n";
            ++failures;
        }
    };
    write(desktopSample(), desktopName, 1);
    const auto desktop = render::loadImage((dir / desktopName).string());
    for (const Piece& piece : pieces(desktop)) {
        for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
            write(piece.draw(appearance),
                  piece.name + "-" + std::string(rawValue(appearance)) + ".png", piece.scale);
        }
    }
    return failures == 0 ? 0 : 1;
}

} // namespace scrimlet::ArtCommand
