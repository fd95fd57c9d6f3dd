#include "Renderer.hpp"

#include "AtomicFile.hpp"
#include "Overloaded.hpp"
#include "ShadowBlur.hpp"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <map>
#include <memory>
#include <numbers>

namespace scrimlet::render {

namespace {

struct SurfaceRelease {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextRelease {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
struct PatternRelease {
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
struct LayoutRelease {
    void operator()(PangoLayout* layout) const { g_object_unref(layout); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceRelease>;
using Context = std::unique_ptr<cairo_t, ContextRelease>;
using Pattern = std::unique_ptr<cairo_pattern_t, PatternRelease>;
using Layout = std::unique_ptr<PangoLayout, LayoutRelease>;

void addQuad(cairo_t* cr, const QuadTo& quad) {
    double x = 0;
    double y = 0;
    cairo_get_current_point(cr, &x, &y);
    // A quadratic is the cubic whose controls lie two thirds of the way to its control.
    const Point c = quad.control;
    const Point to = quad.to;
    cairo_curve_to(cr, x + (c.x - x) * 2 / 3, y + (c.y - y) * 2 / 3, to.x + (c.x - to.x) * 2 / 3,
                   to.y + (c.y - to.y) * 2 / 3, to.x, to.y);
}

void addOval(cairo_t* cr, const Rect& rect) {
    if (rect.isEmpty()) {
        return;
    }
    cairo_new_sub_path(cr);
    cairo_save(cr);
    cairo_translate(cr, rect.midX(), rect.midY());
    cairo_scale(cr, rect.width * 0.5, rect.height * 0.5);
    cairo_arc(cr, 0, 0, 1, 0, 2 * std::numbers::pi);
    cairo_restore(cr);
    cairo_close_path(cr);
}

void addRoundedRect(cairo_t* cr, const RoundedRect& shape) {
    const Rect& r = shape.rect;
    if (r.isEmpty()) {
        return;
    }
    const double radius = std::clamp(shape.radius, 0.0, std::min(r.width, r.height) * 0.5);
    const double quarter = std::numbers::pi / 2;
    cairo_new_sub_path(cr);
    cairo_arc(cr, r.maxX() - radius, r.minY() + radius, radius, -quarter, 0);
    cairo_arc(cr, r.maxX() - radius, r.maxY() - radius, radius, 0, quarter);
    cairo_arc(cr, r.minX() + radius, r.maxY() - radius, radius, quarter, 2 * quarter);
    cairo_arc(cr, r.minX() + radius, r.minY() + radius, radius, 2 * quarter, 3 * quarter);
    cairo_close_path(cr);
}

void setPath(cairo_t* cr, const Path& path) {
    cairo_new_path(cr);
    for (const PathElement& element : path.elements()) {
        std::visit(Overloaded{
                       [&](const MoveTo& e) { cairo_move_to(cr, e.to.x, e.to.y); },
                       [&](const LineTo& e) { cairo_line_to(cr, e.to.x, e.to.y); },
                       [&](const QuadTo& e) { addQuad(cr, e); },
                       [&](const CubicTo& e) {
                           cairo_curve_to(cr, e.control1.x, e.control1.y, e.control2.x,
                                          e.control2.y, e.to.x, e.to.y);
                       },
                       [&](const ClosePath&) { cairo_close_path(cr); },
                       [&](const Oval& e) { addOval(cr, e.rect); },
                       [&](const RoundedRect& e) { addRoundedRect(cr, e); },
                   },
                   element);
    }
}

void setFillRule(cairo_t* cr, FillRule rule) {
    cairo_set_fill_rule(cr, rule == FillRule::evenOdd ? CAIRO_FILL_RULE_EVEN_ODD
                                                      : CAIRO_FILL_RULE_WINDING);
}

void addStops(cairo_pattern_t* pattern, const std::vector<GradientStop>& stops,
              GradientExtend extend) {
    for (const GradientStop& stop : stops) {
        cairo_pattern_add_color_stop_rgba(pattern, stop.location, stop.color.red, stop.color.green,
                                          stop.color.blue, stop.color.alpha);
    }
    cairo_pattern_set_extend(pattern,
                             extend == GradientExtend::pad ? CAIRO_EXTEND_PAD : CAIRO_EXTEND_NONE);
}

void setSource(cairo_t* cr, const Paint& paint) {
    std::visit(
        Overloaded{
            [&](const Color& c) { cairo_set_source_rgba(cr, c.red, c.green, c.blue, c.alpha); },
            [&](const LinearGradient& g) {
                const Pattern pattern(
                    cairo_pattern_create_linear(g.start.x, g.start.y, g.end.x, g.end.y));
                addStops(pattern.get(), g.stops, g.extend);
                cairo_set_source(cr, pattern.get());
            },
            [&](const RadialGradient& g) {
                const Pattern pattern(cairo_pattern_create_radial(
                    g.center.x, g.center.y, g.startRadius, g.center.x, g.center.y, g.endRadius));
                addStops(pattern.get(), g.stops, g.extend);
                if (g.verticalScale != 1 && g.verticalScale > 0) {
                    // The pattern's matrix maps the drawing into the gradient's circles.
                    cairo_matrix_t squeeze;
                    cairo_matrix_init_translate(&squeeze, 0, g.center.y);
                    cairo_matrix_scale(&squeeze, 1, 1 / g.verticalScale);
                    cairo_matrix_translate(&squeeze, 0, -g.center.y);
                    cairo_pattern_set_matrix(pattern.get(), &squeeze);
                }
                cairo_set_source(cr, pattern.get());
            },
        },
        paint);
}

int pangoWeight(FontWeight weight) {
    static constexpr int weights[] = {
        PANGO_WEIGHT_ULTRALIGHT, PANGO_WEIGHT_THIN,      PANGO_WEIGHT_LIGHT,
        PANGO_WEIGHT_NORMAL,     PANGO_WEIGHT_MEDIUM,    PANGO_WEIGHT_SEMIBOLD,
        PANGO_WEIGHT_BOLD,       PANGO_WEIGHT_ULTRABOLD, PANGO_WEIGHT_HEAVY};
    return weights[static_cast<size_t>(weight)];
}

// One line of text in the font, laid out for `cr`. Metrics are not hinted, so that a layout
// measures the same at every scale.
Layout makeLayout(cairo_t* cr, std::string_view text, const Font& font) {
    Layout layout(pango_cairo_create_layout(cr));
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    PangoContext* context = pango_layout_get_context(layout.get());
    pango_cairo_context_set_font_options(context, options);
    pango_context_set_round_glyph_positions(context, FALSE);
    cairo_font_options_destroy(options);
    pango_layout_context_changed(layout.get());

    PangoFontDescription* description = pango_font_description_new();
    pango_font_description_set_family(description,
                                      font.design == FontDesign::monospaced ? "Monospace" : "Sans");
    pango_font_description_set_weight(description,
                                      static_cast<PangoWeight>(pangoWeight(font.weight)));
    pango_font_description_set_stretch(description, font.width == FontWidth::condensed
                                                        ? PANGO_STRETCH_CONDENSED
                                                        : PANGO_STRETCH_NORMAL);
    pango_font_description_set_absolute_size(description, font.size * PANGO_SCALE);
    pango_layout_set_font_description(layout.get(), description);
    pango_font_description_free(description);

    PangoAttrList* attributes = pango_attr_list_new();
    if (font.tracking != 0) {
        pango_attr_list_insert(attributes, pango_attr_letter_spacing_new(
                                               static_cast<int>(font.tracking * PANGO_SCALE)));
    }
    if (font.monospacedDigits) {
        pango_attr_list_insert(attributes, pango_attr_font_features_new("tnum=1"));
    }
    pango_layout_set_attributes(layout.get(), attributes);
    pango_attr_list_unref(attributes);
    pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
    return layout;
}

void drawText(cairo_t* cr, const TextOp& text) {
    const Layout layout = makeLayout(cr, text.text, text.font);
    PangoRectangle logical;
    pango_layout_get_extents(layout.get(), nullptr, &logical);
    const double width = static_cast<double>(logical.width) / PANGO_SCALE;
    const double height = static_cast<double>(logical.height) / PANGO_SCALE;
    double x = text.frame.x;
    if (text.align == TextAlign::center) {
        x += (text.frame.width - width) * 0.5;
    } else if (text.align == TextAlign::trailing) {
        x += text.frame.width - width;
    }
    const double y = text.frame.y + (text.frame.height - height) * 0.5;
    cairo_move_to(cr, x - static_cast<double>(logical.x) / PANGO_SCALE,
                  y - static_cast<double>(logical.y) / PANGO_SCALE);
    const Color& c = text.color;
    cairo_set_source_rgba(cr, c.red, c.green, c.blue, c.alpha);
    pango_cairo_show_layout(cr, layout.get());
    cairo_new_path(cr);
}

// Everything one rendering needs to remember: the pictures read so far, and the groups open.
class Painter {
public:
    Painter(cairo_t* cr, int width, int height, double scale)
        : cr_(cr)
        , width_(width)
        , height_(height)
        , scale_(scale) {}

    void paint(const Drawing& drawing) {
        for (const DrawOp& op : drawing.ops) {
            std::visit([&](const auto& each) { apply(each); }, op);
        }
    }

private:
    void apply(const FillOp& fill) {
        setPath(cr_, fill.path);
        setFillRule(cr_, fill.rule);
        setSource(cr_, fill.paint);
        cairo_fill(cr_);
    }

    void apply(const StrokeOp& stroke) {
        setPath(cr_, stroke.path);
        setSource(cr_, stroke.paint);
        cairo_set_line_width(cr_, stroke.width);
        static constexpr cairo_line_cap_t caps[] = {CAIRO_LINE_CAP_BUTT, CAIRO_LINE_CAP_ROUND,
                                                    CAIRO_LINE_CAP_SQUARE};
        static constexpr cairo_line_join_t joins[] = {CAIRO_LINE_JOIN_MITER, CAIRO_LINE_JOIN_ROUND,
                                                      CAIRO_LINE_JOIN_BEVEL};
        cairo_set_line_cap(cr_, caps[static_cast<size_t>(stroke.cap)]);
        cairo_set_line_join(cr_, joins[static_cast<size_t>(stroke.join)]);
        cairo_stroke(cr_);
    }

    void apply(const ImageOp& image) {
        cairo_surface_t* picture = read(image.image);
        if (picture == nullptr || image.rect.isEmpty()) {
            return;
        }
        const int w = cairo_image_surface_get_width(picture);
        const int h = cairo_image_surface_get_height(picture);
        cairo_save(cr_);
        cairo_translate(cr_, image.rect.x, image.rect.y);
        cairo_scale(cr_, image.rect.width / w, image.rect.height / h);
        cairo_set_source_surface(cr_, picture, 0, 0);
        // Padding the edges and cutting at the picture's own rectangle keeps them sharp.
        cairo_pattern_set_extend(cairo_get_source(cr_), CAIRO_EXTEND_PAD);
        cairo_pattern_set_filter(cairo_get_source(cr_), CAIRO_FILTER_GOOD);
        cairo_rectangle(cr_, 0, 0, w, h);
        cairo_clip(cr_);
        cairo_paint_with_alpha(cr_, image.opacity);
        cairo_restore(cr_);
    }

    void apply(const TextOp& text) { drawText(cr_, text); }

    void apply(const SymbolOp& symbol) {
        setPath(cr_, symbol.fallback);
        setFillRule(cr_, FillRule::evenOdd);
        setSource(cr_, symbol.color);
        cairo_fill(cr_);
    }

    void apply(const SaveOp&) { cairo_save(cr_); }
    void apply(const RestoreOp&) { cairo_restore(cr_); }

    void apply(const ClipOp& clip) {
        setPath(cr_, clip.path);
        setFillRule(cr_, clip.rule);
        cairo_clip(cr_);
    }

    void apply(const BeginGroupOp& group) {
        groups_.push_back(group);
        cairo_push_group(cr_);
    }

    void apply(const EndGroupOp&) {
        assert(!groups_.empty());
        const BeginGroupOp group = groups_.back();
        groups_.pop_back();
        const Pattern content(cairo_pop_group(cr_));
        if (group.shadow) {
            castShadow(content.get(), *group.shadow);
        }
        cairo_set_source(cr_, content.get());
        cairo_paint_with_alpha(cr_, group.opacity);
    }

    // The group's coverage, blurred, tinted with the shadow's colour and moved by its
    // offset, laid down under the group.
    void castShadow(cairo_pattern_t* content, const Shadow& shadow) {
        const Surface coverage(cairo_image_surface_create(CAIRO_FORMAT_A8, width_, height_));
        {
            const Context mask(cairo_create(coverage.get()));
            cairo_matrix_t matrix;
            cairo_get_matrix(cr_, &matrix);
            cairo_set_matrix(mask.get(), &matrix);
            cairo_set_source(mask.get(), content);
            cairo_paint(mask.get());
        }
        cairo_surface_flush(coverage.get());
        blurAlpha(cairo_image_surface_get_data(coverage.get()), width_, height_,
                  cairo_image_surface_get_stride(coverage.get()), shadow.radius * 0.5 * scale_);
        cairo_surface_mark_dirty(coverage.get());
        cairo_save(cr_);
        cairo_identity_matrix(cr_);
        const Color& c = shadow.color;
        cairo_set_source_rgba(cr_, c.red, c.green, c.blue, c.alpha);
        cairo_mask_surface(cr_, coverage.get(), shadow.offset.x * scale_, shadow.offset.y * scale_);
        cairo_restore(cr_);
    }

    cairo_surface_t* read(const std::string& name) {
        auto found = pictures_.find(name);
        if (found == pictures_.end()) {
            Surface surface(cairo_image_surface_create_from_png(name.c_str()));
            if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
                surface.reset();
            }
            found = pictures_.emplace(name, std::move(surface)).first;
        }
        return found->second.get();
    }

    cairo_t* cr_;
    int width_;
    int height_;
    double scale_;
    std::vector<BeginGroupOp> groups_;
    std::map<std::string, Surface> pictures_;
};

Surface renderSurface(const Drawing& drawing, double scale) {
    const int width = std::max(1, static_cast<int>(std::ceil(drawing.size.width * scale)));
    const int height = std::max(1, static_cast<int>(std::ceil(drawing.size.height * scale)));
    Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    const Context cr(cairo_create(surface.get()));
    cairo_scale(cr.get(), scale, scale);
    Painter(cr.get(), width, height, scale).paint(drawing);
    cairo_surface_flush(surface.get());
    return surface;
}

cairo_status_t appendBytes(void* closure, const unsigned char* data, unsigned int length) {
    static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

} // namespace

Raster::Raster(int width, int height, double scale, std::vector<Pixel> pixels)
    : width_(width)
    , height_(height)
    , scale_(scale)
    , pixels_(std::move(pixels)) {}

Pixel Raster::at(int x, int y) const {
    assert(x >= 0 && y >= 0 && x < width_ && y < height_ && "pixel outside the raster");
    return pixels_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)];
}

Pixel Raster::atPoint(Point point) const {
    const int x = std::clamp(static_cast<int>(std::floor(point.x * scale_)), 0, width_ - 1);
    const int y = std::clamp(static_cast<int>(std::floor(point.y * scale_)), 0, height_ - 1);
    return at(x, y);
}

namespace {

Raster toRaster(cairo_surface_t* surface, double scale) {
    const int width = cairo_image_surface_get_width(surface);
    const int height = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    std::vector<Pixel> pixels;
    pixels.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int y = 0; y < height; ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(data + y * stride);
        for (int x = 0; x < width; ++x) {
            // Premultiplied, native-endian ARGB.
            const std::uint32_t argb = row[x];
            const unsigned a = argb >> 24;
            const auto straight = [a](unsigned c) {
                return static_cast<std::uint8_t>(a == 0 ? 0
                                                        : std::min(255u, (c * 255 + a / 2) / a));
            };
            pixels.push_back({straight((argb >> 16) & 0xFF), straight((argb >> 8) & 0xFF),
                              straight(argb & 0xFF), static_cast<std::uint8_t>(a)});
        }
    }
    return Raster(width, height, scale, std::move(pixels));
}

} // namespace

Raster rasterize(const Drawing& drawing, double scale) {
    const Surface surface = renderSurface(drawing, scale);
    return toRaster(surface.get(), scale);
}

std::optional<Raster> readPng(const std::filesystem::path& path) {
    Surface surface(cairo_image_surface_create_from_png(path.c_str()));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
        return std::nullopt;
    }
    // Pictures may come in any format; the pixels are read as premultiplied ARGB.
    if (cairo_image_surface_get_format(surface.get()) != CAIRO_FORMAT_ARGB32) {
        Surface converted(cairo_image_surface_create(
            CAIRO_FORMAT_ARGB32, cairo_image_surface_get_width(surface.get()),
            cairo_image_surface_get_height(surface.get())));
        const Context cr(cairo_create(converted.get()));
        cairo_set_source_surface(cr.get(), surface.get(), 0, 0);
        cairo_paint(cr.get());
        cairo_surface_flush(converted.get());
        surface = std::move(converted);
    }
    return toRaster(surface.get(), 1);
}

std::string encodePng(const Drawing& drawing, double scale) {
    const Surface surface = renderSurface(drawing, scale);
    std::string bytes;
    if (cairo_surface_write_to_png_stream(surface.get(), appendBytes, &bytes) !=
        CAIRO_STATUS_SUCCESS) {
        return {};
    }
    return bytes;
}

bool writePng(const Drawing& drawing, const std::filesystem::path& path, double scale) {
    const std::string bytes = encodePng(drawing, scale);
    return !bytes.empty() && files::writeAtomically(path, bytes);
}

std::optional<ImageRef> loadImage(const std::string& path) {
    const Surface surface(cairo_image_surface_create_from_png(path.c_str()));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
        return std::nullopt;
    }
    return ImageRef{path,
                    {static_cast<double>(cairo_image_surface_get_width(surface.get())),
                     static_cast<double>(cairo_image_surface_get_height(surface.get()))}};
}

Size measureText(std::string_view text, const Font& font) {
    const Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1));
    const Context cr(cairo_create(surface.get()));
    const Layout layout = makeLayout(cr.get(), text, font);
    PangoRectangle logical;
    pango_layout_get_extents(layout.get(), nullptr, &logical);
    return {static_cast<double>(logical.width) / PANGO_SCALE,
            static_cast<double>(logical.height) / PANGO_SCALE};
}

} // namespace scrimlet::render
