#import "DrawingView.h"

#import <CoreText/CoreText.h>

#include "../common/Text.h"
#include "MenuGlyph.hpp"
#include "Overloaded.hpp"

#include <algorithm>
#include <vector>

namespace scrimlet::mac {

namespace {

#pragma mark - CoreFoundation ownership

// Owns one CoreFoundation reference made by a Create function, and releases it.
template <class Ref> class Owned {
  public:
    explicit Owned(Ref ref) : ref_(ref) {}
    ~Owned() {
        if (ref_) {
            CFRelease(ref_);
        }
    }
    Owned(const Owned &) = delete;
    Owned &operator=(const Owned &) = delete;
    Ref get() const { return ref_; }

  private:
    Ref ref_;
};

CGColorSpaceRef sRGB() {
    static CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    return space;
}

CGColorRef createColor(const Color &color) {
    return CGColorCreateSRGB(color.red, color.green, color.blue, color.alpha);
}

#pragma mark - Paths and paints

CGPathRef createPath(const Path &path) {
    CGMutablePathRef out = CGPathCreateMutable();
    for (const PathElement &element : path.elements()) {
        std::visit(Overloaded{
                       [&](const MoveTo &e) { CGPathMoveToPoint(out, nullptr, e.to.x, e.to.y); },
                       [&](const LineTo &e) { CGPathAddLineToPoint(out, nullptr, e.to.x, e.to.y); },
                       [&](const QuadTo &e) {
                           CGPathAddQuadCurveToPoint(out, nullptr, e.control.x, e.control.y, e.to.x,
                                                     e.to.y);
                       },
                       [&](const CubicTo &e) {
                           CGPathAddCurveToPoint(out, nullptr, e.control1.x, e.control1.y,
                                                 e.control2.x, e.control2.y, e.to.x, e.to.y);
                       },
                       [&](const ClosePath &) { CGPathCloseSubpath(out); },
                       [&](const Oval &e) {
                           if (!e.rect.isEmpty()) {
                               CGPathAddEllipseInRect(
                                   out, nullptr,
                                   CGRectMake(e.rect.x, e.rect.y, e.rect.width, e.rect.height));
                           }
                       },
                       [&](const RoundedRect &e) {
                           const Rect &r = e.rect;
                           if (r.isEmpty()) {
                               return;
                           }
                           // The corners may not exceed half a side, or CoreGraphics refuses.
                           const double radius =
                               std::clamp(e.radius, 0.0, std::min(r.width, r.height) * 0.5);
                           const CGRect rect = CGRectMake(r.x, r.y, r.width, r.height);
                           if (radius > 0) {
                               CGPathAddRoundedRect(out, nullptr, rect, radius, radius);
                           } else {
                               CGPathAddRect(out, nullptr, rect);
                           }
                       },
                   },
                   element);
    }
    return out;
}

CGGradientRef createGradient(const std::vector<GradientStop> &stops) {
    std::vector<CGFloat> components;
    std::vector<CGFloat> locations;
    for (const GradientStop &stop : stops) {
        components.insert(components.end(),
                          {stop.color.red, stop.color.green, stop.color.blue, stop.color.alpha});
        locations.push_back(stop.location);
    }
    return CGGradientCreateWithColorComponents(sRGB(), components.data(), locations.data(),
                                               locations.size());
}

CGGradientDrawingOptions optionsFor(GradientExtend extend) {
    return extend == GradientExtend::pad
               ? (kCGGradientDrawsBeforeStartLocation | kCGGradientDrawsAfterEndLocation)
               : 0;
}

// Paints a gradient over the whole clip; the caller has clipped to the shape.
void drawGradient(CGContextRef context, const Paint &paint) {
    std::visit(Overloaded{
                   [](const Color &) {},
                   [&](const LinearGradient &g) {
                       const Owned<CGGradientRef> gradient(createGradient(g.stops));
                       CGContextDrawLinearGradient(
                           context, gradient.get(), CGPointMake(g.start.x, g.start.y),
                           CGPointMake(g.end.x, g.end.y), optionsFor(g.extend));
                   },
                   [&](const RadialGradient &g) {
                       const Owned<CGGradientRef> gradient(createGradient(g.stops));
                       const CGPoint center = CGPointMake(g.center.x, g.center.y);
                       if (g.verticalScale != 1 && g.verticalScale > 0) {
                           CGContextTranslateCTM(context, center.x, center.y);
                           CGContextScaleCTM(context, 1, g.verticalScale);
                           CGContextTranslateCTM(context, -center.x, -center.y);
                       }
                       CGContextDrawRadialGradient(context, gradient.get(), center, g.startRadius,
                                                   center, g.endRadius, optionsFor(g.extend));
                   },
               },
               paint);
}

void clipTo(CGContextRef context, const Path &path, FillRule rule) {
    const Owned<CGPathRef> shape(createPath(path));
    CGContextAddPath(context, shape.get());
    rule == FillRule::evenOdd ? CGContextEOClip(context) : CGContextClip(context);
}

void fill(CGContextRef context, const Path &path, const Paint &paint, FillRule rule) {
    if (const Color *color = std::get_if<Color>(&paint)) {
        const Owned<CGColorRef> cgColor(createColor(*color));
        const Owned<CGPathRef> shape(createPath(path));
        CGContextSetFillColorWithColor(context, cgColor.get());
        CGContextAddPath(context, shape.get());
        rule == FillRule::evenOdd ? CGContextEOFillPath(context) : CGContextFillPath(context);
        return;
    }
    CGContextSaveGState(context);
    clipTo(context, path, rule);
    drawGradient(context, paint);
    CGContextRestoreGState(context);
}

void stroke(CGContextRef context, const StrokeOp &op) {
    static constexpr CGLineCap caps[] = {kCGLineCapButt, kCGLineCapRound, kCGLineCapSquare};
    static constexpr CGLineJoin joins[] = {kCGLineJoinMiter, kCGLineJoinRound, kCGLineJoinBevel};
    const Owned<CGPathRef> shape(createPath(op.path));
    CGContextSaveGState(context);
    CGContextSetLineWidth(context, op.width);
    CGContextSetLineCap(context, caps[static_cast<size_t>(op.cap)]);
    CGContextSetLineJoin(context, joins[static_cast<size_t>(op.join)]);
    CGContextAddPath(context, shape.get());
    if (const Color *color = std::get_if<Color>(&op.paint)) {
        const Owned<CGColorRef> cgColor(createColor(*color));
        CGContextSetStrokeColorWithColor(context, cgColor.get());
        CGContextStrokePath(context);
    } else {
        CGContextReplacePathWithStrokedPath(context);
        CGContextClip(context);
        drawGradient(context, op.paint);
    }
    CGContextRestoreGState(context);
}

#pragma mark - Text

CTLineRef createLine(std::string_view text, const Font &font, const Color &color) {
    const Owned<CGColorRef> cgColor(createColor(color));
    NSDictionary *attributes = @{
        (__bridge NSString *)kCTFontAttributeName : nsFont(font),
        (__bridge NSString *)kCTForegroundColorAttributeName : (__bridge id)cgColor.get(),
        (__bridge NSString *)kCTTrackingAttributeName : @(font.tracking),
    };
    NSAttributedString *string = [[NSAttributedString alloc] initWithString:toNSString(text)
                                                                 attributes:attributes];
    return CTLineCreateWithAttributedString((__bridge CFAttributedStringRef)string);
}

struct LineMetrics {
    double width = 0;
    double ascent = 0;
    double descent = 0;
};

LineMetrics metricsOf(CTLineRef line) {
    CGFloat ascent = 0;
    CGFloat descent = 0;
    CGFloat leading = 0;
    const double width = CTLineGetTypographicBounds(line, &ascent, &descent, &leading);
    // Tracking counts as trailing white space; the visible text is what gets centred.
    return {width - CTLineGetTrailingWhitespaceWidth(line), ascent, descent};
}

void drawText(CGContextRef context, const TextOp &text) {
    const Owned<CTLineRef> line(createLine(text.text, text.font, text.color));
    const LineMetrics metrics = metricsOf(line.get());
    double x = text.frame.x;
    if (text.align == TextAlign::center) {
        x += (text.frame.width - metrics.width) * 0.5;
    } else if (text.align == TextAlign::trailing) {
        x += text.frame.width - metrics.width;
    }
    const double baseline = text.frame.y +
                            (text.frame.height - metrics.ascent - metrics.descent) * 0.5 +
                            metrics.ascent;
    CGContextSaveGState(context);
    // Glyphs are drawn y upward; the drawing runs y downward.
    CGContextSetTextMatrix(context, CGAffineTransformMakeScale(1, -1));
    CGContextSetTextPosition(context, x, baseline);
    CTLineDraw(line.get(), context);
    CGContextRestoreGState(context);
}

#pragma mark - Pictures and symbols

void drawImage(CGContextRef context, NSImage *image, const Rect &rect, double opacity) {
    NSRect proposed = NSMakeRect(0, 0, rect.width, rect.height);
    CGImageRef picture = [image CGImageForProposedRect:&proposed context:nil hints:nil];
    if (picture == nullptr || rect.isEmpty()) {
        return;
    }
    CGContextSaveGState(context);
    CGContextSetAlpha(context, opacity);
    // Pictures are drawn y upward: flip within the destination.
    CGContextTranslateCTM(context, rect.x, rect.maxY());
    CGContextScaleCTM(context, 1, -1);
    CGContextDrawImage(context, CGRectMake(0, 0, rect.width, rect.height), picture);
    CGContextRestoreGState(context);
}

void drawSymbol(CGContextRef context, const SymbolOp &symbol) {
    NSImage *image = [NSImage imageWithSystemSymbolName:toNSString(symbol.name)
                               accessibilityDescription:nil];
    NSImageSymbolConfiguration *size =
        [NSImageSymbolConfiguration configurationWithPointSize:symbol.pointSize
                                                        weight:nsFontWeight(symbol.weight)];
    NSColor *color = [NSColor colorWithSRGBRed:symbol.color.red
                                         green:symbol.color.green
                                          blue:symbol.color.blue
                                         alpha:symbol.color.alpha];
    NSImageSymbolConfiguration *tinted =
        [size configurationByApplyingConfiguration:[NSImageSymbolConfiguration
                                                       configurationWithPaletteColors:@[ color ]]];
    image = [image imageWithSymbolConfiguration:tinted];
    if (image == nil) {
        fill(context, symbol.fallback, symbol.color, FillRule::evenOdd);
        return;
    }
    // The symbol keeps its own proportions, centred where the drawing put it.
    const Rect at = symbol.frame.centered({image.size.width, image.size.height});
    drawImage(context, image, at, 1);
}

#pragma mark - The painter

class Painter {
  public:
    Painter(CGContextRef context, NSDictionary<NSString *, NSImage *> *images)
        : context_(context), images_(images) {}

    void paint(const Drawing &drawing) {
        for (const DrawOp &op : drawing.ops) {
            std::visit([&](const auto &each) { apply(each); }, op);
        }
    }

  private:
    void apply(const FillOp &op) { fill(context_, op.path, op.paint, op.rule); }
    void apply(const StrokeOp &op) { stroke(context_, op); }
    void apply(const TextOp &op) { drawText(context_, op); }
    void apply(const SymbolOp &op) { drawSymbol(context_, op); }
    void apply(const SaveOp &) { CGContextSaveGState(context_); }
    void apply(const RestoreOp &) { CGContextRestoreGState(context_); }
    void apply(const ClipOp &op) { clipTo(context_, op.path, op.rule); }

    void apply(const ImageOp &op) {
        NSString *name = toNSString(op.image);
        NSImage *image = images_[name];
        if (image == nil) {
            image = read(name);
        }
        if (image != nil) {
            drawImage(context_, image, op.rect, op.opacity);
        }
    }

    void apply(const BeginGroupOp &op) {
        CGContextSaveGState(context_);
        if (op.shadow) {
            const Owned<CGColorRef> color(createColor(op.shadow->color));
            // Shadow offsets are in the base space, whose y runs upward.
            CGContextSetShadowWithColor(context_,
                                        CGSizeMake(op.shadow->offset.x, -op.shadow->offset.y),
                                        op.shadow->radius, color.get());
        }
        CGContextSetAlpha(context_, op.opacity);
        CGContextBeginTransparencyLayer(context_, nullptr);
    }

    void apply(const EndGroupOp &) {
        CGContextEndTransparencyLayer(context_);
        CGContextRestoreGState(context_);
    }

    // Each file is read once per drawing, however often the drawing names it.
    NSImage *read(NSString *path) {
        NSImage *image = read_[path];
        if (image == nil) {
            image = [[NSImage alloc] initWithContentsOfFile:path];
            if (image != nil) {
                read_[path] = image;
            }
        }
        return image;
    }

    CGContextRef context_;
    NSDictionary<NSString *, NSImage *> *images_;
    NSMutableDictionary<NSString *, NSImage *> *read_ = [NSMutableDictionary dictionary];
};

} // namespace

NSFontWeight nsFontWeight(FontWeight weight) {
    switch (weight) {
    case FontWeight::ultraLight:
        return NSFontWeightUltraLight;
    case FontWeight::thin:
        return NSFontWeightThin;
    case FontWeight::light:
        return NSFontWeightLight;
    case FontWeight::regular:
        return NSFontWeightRegular;
    case FontWeight::medium:
        return NSFontWeightMedium;
    case FontWeight::semibold:
        return NSFontWeightSemibold;
    case FontWeight::bold:
        return NSFontWeightBold;
    case FontWeight::heavy:
        return NSFontWeightHeavy;
    case FontWeight::black:
        return NSFontWeightBlack;
    }
    return NSFontWeightRegular;
}

NSFont *nsFont(const Font &font) {
    const NSFontWeight weight = nsFontWeight(font.weight);
    NSFont *made =
        font.design == FontDesign::monospaced
            ? [NSFont monospacedSystemFontOfSize:font.size weight:weight]
            : [NSFont systemFontOfSize:font.size
                                weight:weight
                                 width:font.width == FontWidth::condensed ? NSFontWidthCondensed
                                                                          : NSFontWidthStandard];
    if (font.monospacedDigits) {
        NSFontDescriptor *digits = [made.fontDescriptor fontDescriptorByAddingAttributes:@{
            NSFontFeatureSettingsAttribute : @[ @{
                NSFontFeatureTypeIdentifierKey : @(kNumberSpacingType),
                NSFontFeatureSelectorIdentifierKey : @(kMonospacedNumbersSelector)
            } ]
        }];
        NSFont *withDigits = [NSFont fontWithDescriptor:digits size:font.size];
        if (withDigits != nil) {
            made = withDigits;
        }
    }
    return made;
}

Appearance appearanceOf(NSAppearance *appearance) {
    NSAppearanceName match = [appearance
        bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
    return appearanceFromBestMatch(match != nil ? toString(match) : std::string());
}

void drawDrawing(const Drawing &drawing, CGContextRef context,
                 NSDictionary<NSString *, NSImage *> *images) {
    if (context == nullptr) {
        return;
    }
    Painter(context, images).paint(drawing);
}

NSImage *imageOfDrawing(Size size, std::function<Drawing(Appearance)> make) {
    return [NSImage
         imageWithSize:NSMakeSize(size.width, size.height)
               flipped:YES
        drawingHandler:^BOOL(NSRect) {
            const Appearance appearance = appearanceOf(NSAppearance.currentDrawingAppearance);
            drawDrawing(make(appearance), NSGraphicsContext.currentContext.CGContext, nil);
            return YES;
        }];
}

NSImage *menuGlyphImage(bool live, bool standby) {
    NSImage *image = imageOfDrawing(MenuGlyph::size(live), [live, standby](Appearance appearance) {
        return MenuGlyph::drawing(live, standby, appearance);
    });
    [image setTemplate:MenuGlyph::isTemplate(live)];
    image.accessibilityDescription = toNSString(MenuGlyph::accessibilityDescription(live));
    return image;
}

Size measureText(std::string_view text, const Font &font) {
    const Owned<CTLineRef> line(createLine(text, font, Color::black()));
    const LineMetrics metrics = metricsOf(line.get());
    return {metrics.width, metrics.ascent + metrics.descent};
}

} // namespace scrimlet::mac

@implementation SCDrawingView

- (BOOL)isFlipped {
    return YES;
}

- (void)drawRect:(NSRect)dirtyRect {
    (void)dirtyRect;
    if (!_maker) {
        return;
    }
    const NSSize size = self.bounds.size;
    const scrimlet::Drawing drawing =
        _maker({size.width, size.height}, scrimlet::mac::appearanceOf(self.effectiveAppearance));
    scrimlet::mac::drawDrawing(drawing, NSGraphicsContext.currentContext.CGContext, _images);
}

- (void)viewDidChangeEffectiveAppearance {
    [super viewDidChangeEffectiveAppearance];
    self.needsDisplay = YES;
}

- (void)setFrameSize:(NSSize)newSize {
    [super setFrameSize:newSize];
    self.needsDisplay = YES;
}

- (void)setMaker:(scrimlet::mac::DrawingMaker)maker {
    _maker = std::move(maker);
    self.needsDisplay = YES;
}

@end
