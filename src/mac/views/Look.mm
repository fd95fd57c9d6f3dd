#import "Look.h"

#import "../common/Text.h"
#import "DrawingView.h"

namespace scrimlet::mac {

namespace {

NSFontWeight nsWeight(FontWeight weight) {
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

} // namespace

NSString *nsString(std::string_view text) { return toNSString(text); }

NSColor *nsColor(const Color &color) {
    return [NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue alpha:color.alpha];
}

NSColor *nsColor(const AdaptiveColor &color) {
    if (color.light == color.dark) {
        return nsColor(color.light);
    }
    NSColor *light = nsColor(color.light);
    NSColor *dark = nsColor(color.dark);
    return [NSColor colorWithName:nil
                  dynamicProvider:^NSColor *(NSAppearance *appearance) {
                      return appearanceOf(appearance) == Appearance::dark ? dark : light;
                  }];
}

NSFont *nsFont(const Font &font) {
    const NSFontWeight weight = nsWeight(font.weight);
    if (font.design == FontDesign::monospaced) {
        return [NSFont monospacedSystemFontOfSize:font.size weight:weight];
    }
    if (font.width == FontWidth::condensed) {
        return [NSFont systemFontOfSize:font.size weight:weight width:NSFontWidthCondensed];
    }
    if (font.monospacedDigits) {
        return [NSFont monospacedDigitSystemFontOfSize:font.size weight:weight];
    }
    return [NSFont systemFontOfSize:font.size weight:weight];
}

NSImage *symbolImage(std::string_view name, double pointSize, FontWeight weight,
                     NSString *description) {
    NSImage *image = [NSImage imageWithSystemSymbolName:toNSString(name)
                               accessibilityDescription:description];
    NSImageSymbolConfiguration *configuration =
        [NSImageSymbolConfiguration configurationWithPointSize:pointSize weight:nsWeight(weight)];
    return [image imageWithSymbolConfiguration:configuration];
}

NSAttributedString *attributed(const StyledText &text) {
    NSMutableDictionary *attributes = [@{
        NSFontAttributeName : nsFont(text.font),
        NSForegroundColorAttributeName : nsColor(text.color),
    } mutableCopy];
    if (text.font.tracking != 0) {
        attributes[NSKernAttributeName] = @(text.font.tracking);
    }
    return [[NSAttributedString alloc] initWithString:toNSString(text.text) attributes:attributes];
}

NSTextField *label(const StyledText &text) {
    NSTextField *field = [NSTextField wrappingLabelWithString:toNSString(text.text)];
    field.attributedStringValue = attributed(text);
    field.selectable = NO;
    field.translatesAutoresizingMaskIntoConstraints = NO;
    [field setContentCompressionResistancePriority:NSLayoutPriorityDefaultLow
                                    forOrientation:NSLayoutConstraintOrientationHorizontal];
    return field;
}

NSTextField *singleLineLabel(const StyledText &text) {
    NSTextField *field = [NSTextField labelWithAttributedString:attributed(text)];
    field.lineBreakMode = NSLineBreakByTruncatingTail;
    field.translatesAutoresizingMaskIntoConstraints = NO;
    return field;
}

bool reduceMotion() { return NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion; }

} // namespace scrimlet::mac
