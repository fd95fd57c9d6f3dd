#import "Look.h"

#import "../common/Text.h"

namespace scrimlet::mac {

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

NSImage *symbolImage(std::string_view name, double pointSize, FontWeight weight,
                     NSString *description) {
    NSImage *image = [NSImage imageWithSystemSymbolName:toNSString(name)
                               accessibilityDescription:description];
    NSImageSymbolConfiguration *configuration =
        [NSImageSymbolConfiguration configurationWithPointSize:pointSize
                                                        weight:nsFontWeight(weight)];
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
