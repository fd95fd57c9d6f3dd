#pragma once

// Art as data: a drawing is a size and a list of operations (fills, strokes, images, text,
// clipping, groups with a shadow), in the order they are painted. Portable code makes the
// drawings; CoreGraphics draws them on macOS and cairo renders them to PNG on Linux. Every
// type is a plain value, so that tests compare and probe drawings directly.

#include "Color.hpp"
#include "Font.hpp"
#include "Geometry.hpp"
#include "Path.hpp"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace scrimlet {

/// What a gradient paints beyond its ends: the end colours (`pad`), or nothing.
enum class GradientExtend { pad, none };

struct GradientStop {
    double location = 0;
    Color color;
    friend bool operator==(const GradientStop&, const GradientStop&) = default;
};

struct LinearGradient {
    Point start;
    Point end;
    std::vector<GradientStop> stops;
    GradientExtend extend = GradientExtend::pad;
    friend bool operator==(const LinearGradient&, const LinearGradient&) = default;
};

/// Circles around one centre, from `startRadius` (the first stop) to `endRadius` (the last).
/// A `verticalScale` other than 1 squeezes the circles into ellipses as wide as the radius.
struct RadialGradient {
    Point center;
    double startRadius = 0;
    double endRadius = 0;
    std::vector<GradientStop> stops;
    GradientExtend extend = GradientExtend::pad;
    double verticalScale = 1;
    friend bool operator==(const RadialGradient&, const RadialGradient&) = default;
};

using Paint = std::variant<Color, LinearGradient, RadialGradient>;

/// Stops spread evenly from 0 to 1.
std::vector<GradientStop> evenStops(const std::vector<Color>& colors);

enum class LineCap { butt, round, square };
enum class LineJoin { miter, round, bevel };
enum class TextAlign { leading, center, trailing };

struct Shadow {
    Color color;
    /// The blur, in points.
    double radius = 0;
    Point offset;
    friend bool operator==(const Shadow&, const Shadow&) = default;
};

struct FillOp {
    Path path;
    Paint paint;
    FillRule rule = FillRule::winding;
    friend bool operator==(const FillOp&, const FillOp&) = default;
};

struct StrokeOp {
    Path path;
    Paint paint;
    double width = 1;
    LineCap cap = LineCap::butt;
    LineJoin join = LineJoin::miter;
    friend bool operator==(const StrokeOp&, const StrokeOp&) = default;
};

/// A picture drawn stretched into `rect`. It is named, not held: a file path, or a name the
/// platform knows (such as the prepared wallpaper of a screen), so that drawings stay data.
struct ImageOp {
    std::string image;
    Rect rect;
    double opacity = 1;
    friend bool operator==(const ImageOp&, const ImageOp&) = default;
};

/// One line of text, centred vertically in `frame` and aligned horizontally in it.
struct TextOp {
    std::string text;
    Font font;
    Color color;
    Rect frame;
    TextAlign align = TextAlign::center;
    friend bool operator==(const TextOp&, const TextOp&) = default;
};

/// A system symbol by name, centred in `frame`. Where the platform has no such symbols, the
/// `fallback` outline (in the drawing's coordinates) is filled in the colour instead, by the
/// even-odd rule, so that it can hold holes.
struct SymbolOp {
    std::string name;
    double pointSize = 13;
    FontWeight weight = FontWeight::regular;
    Color color;
    Rect frame;
    Path fallback;
    friend bool operator==(const SymbolOp&, const SymbolOp&) = default;
};

struct SaveOp {
    friend bool operator==(const SaveOp&, const SaveOp&) = default;
};
/// Narrows the clip until the matching restore.
struct ClipOp {
    Path path;
    FillRule rule = FillRule::winding;
    friend bool operator==(const ClipOp&, const ClipOp&) = default;
};
struct RestoreOp {
    friend bool operator==(const RestoreOp&, const RestoreOp&) = default;
};

/// Everything up to the matching end is painted apart, then laid down as one picture at
/// `opacity`, casting `shadow` as a whole.
struct BeginGroupOp {
    double opacity = 1;
    std::optional<Shadow> shadow;
    friend bool operator==(const BeginGroupOp&, const BeginGroupOp&) = default;
};
struct EndGroupOp {
    friend bool operator==(const EndGroupOp&, const EndGroupOp&) = default;
};

/// A picture the platform could read: its name, as an `ImageOp` gives it, and its size in
/// points. Layouts that fit a picture take one of these, so that a picture that cannot be
/// read never reaches them.
struct ImageRef {
    std::string name;
    Size size;
    friend bool operator==(const ImageRef&, const ImageRef&) = default;
};

using DrawOp = std::variant<FillOp, StrokeOp, ImageOp, TextOp, SymbolOp, SaveOp, ClipOp, RestoreOp,
                            BeginGroupOp, EndGroupOp>;

struct Drawing {
    Size size;
    std::vector<DrawOp> ops;

    /// The operations of one kind, in painting order.
    template <class Op>
    std::vector<Op> all() const {
        std::vector<Op> out;
        for (const DrawOp& op : ops) {
            if (const Op* match = std::get_if<Op>(&op)) {
                out.push_back(*match);
            }
        }
        return out;
    }

    friend bool operator==(const Drawing&, const Drawing&) = default;
};

/// The drawing moved by `offset`, its size unchanged.
Drawing translated(const Drawing& drawing, Point offset);

/// The drawing as a template image shows it: every colour becomes `tint` and keeps only its
/// opacity (times the tint's own).
Drawing templateTinted(const Drawing& drawing, const Color& tint);

/// Builds a drawing operation by operation. Saves and restores, groups and their ends must
/// pair up by the time `finish` is called.
class Canvas {
public:
    explicit Canvas(Size size);

    Size size() const { return drawing_.size; }
    Rect bounds() const { return Rect::of(drawing_.size); }

    void fill(const Path& path, const Paint& paint, FillRule rule = FillRule::winding);
    void fill(const Rect& rect, const Paint& paint);
    void stroke(const Path& path, const Paint& paint, double width, LineCap cap = LineCap::butt,
                LineJoin join = LineJoin::miter);
    void image(const std::string& name, const Rect& rect, double opacity = 1);
    void text(const std::string& text, const Font& font, const Color& color, const Rect& frame,
              TextAlign align = TextAlign::center);
    void symbol(const SymbolOp& symbol);
    void save();
    void clip(const Path& path, FillRule rule = FillRule::winding);
    void restore();
    void beginGroup(double opacity = 1, const std::optional<Shadow>& shadow = std::nullopt);
    void endGroup();
    /// Paints another drawing with its top left corner at `origin`.
    void draw(const Drawing& other, Point origin);

    Drawing finish();

private:
    void add(DrawOp op);

    Drawing drawing_;
    /// The saves and groups still open, innermost last.
    std::vector<bool> openGroups_;
};

} // namespace scrimlet
