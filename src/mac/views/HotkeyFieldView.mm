#import "HotkeyFieldView.h"

#import "../common/Text.h"
#import "Look.h"

#include "HotkeyField.hpp"

using namespace scrimlet;
using namespace scrimlet::mac;

@implementation ScrimletHotkeyField {
    HotkeyField _field;
    id _monitor;
}

- (instancetype)initWithHotkey:(std::optional<Hotkey>)hotkey
                      onChange:(void (^)(std::optional<Hotkey>))onChange {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _field.setHotkey(std::move(hotkey));
        void (^changed)(std::optional<Hotkey>) = [onChange copy];
        _field.onChange = [changed](const std::optional<Hotkey> &value) { changed(value); };
        self.translatesAutoresizingMaskIntoConstraints = NO;
        self.bordered = NO;
        self.target = self;
        self.action = @selector(clicked:);
        self.accessibilityLabel = toNSString(HotkeyField::accessibilityLabel);
        NSMenu *menu = [[NSMenu alloc] initWithTitle:@""];
        NSMenuItem *clear = [[NSMenuItem alloc] initWithTitle:toNSString(HotkeyField::clearTitle)
                                                       action:@selector(clear:)
                                                keyEquivalent:@""];
        clear.target = self;
        [menu addItem:clear];
        self.menu = menu;
        [self.widthAnchor constraintGreaterThanOrEqualToConstant:96].active = YES;
        [self refresh];
    }
    return self;
}

- (void)dealloc {
    if (_monitor) {
        [NSEvent removeMonitor:_monitor];
    }
}

- (BOOL)isRecording {
    return _field.recording();
}

- (NSSize)intrinsicContentSize {
    NSSize size = super.intrinsicContentSize;
    size.width += 16;
    size.height += 8;
    return size;
}

- (void)drawRect:(NSRect)dirtyRect {
    NSBezierPath *shape = [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(self.bounds, 0.5, 0.5)
                                                          xRadius:Theme::Radius::chip
                                                          yRadius:Theme::Radius::chip];
    [nsColor(_field.recording() ? Theme::lightSoft : Theme::wash) setFill];
    [shape fill];
    [nsColor(_field.recording() ? Theme::light : Theme::ruleStrong) setStroke];
    shape.lineWidth = 1;
    [shape stroke];
    [super drawRect:dirtyRect];
}

/// Shows the field's state, and listens for keys exactly while it records.
- (void)refresh {
    self.attributedTitle = attributed(
        {_field.text(), HotkeyField::font, _field.recording() ? Theme::light : Theme::ink});
    self.accessibilityValue = toNSString(_field.accessibilityValue());
    if (_field.recording() && !_monitor) {
        __weak ScrimletHotkeyField *weakSelf = self;
        _monitor = [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                         handler:^NSEvent *(NSEvent *event) {
                                                             return [weakSelf take:event];
                                                         }];
    } else if (!_field.recording() && _monitor) {
        [NSEvent removeMonitor:_monitor];
        _monitor = nil;
    }
    [self invalidateIntrinsicContentSize];
    self.needsDisplay = YES;
}

/// A key-down while recording: swallowed unless the field passes it on.
- (nullable NSEvent *)take:(NSEvent *)event {
    KeyInput input;
    input.keyCode = event.keyCode;
    input.modifierFlags = event.modifierFlags;
    if (NSString *characters = event.charactersIgnoringModifiers) {
        input.charactersIgnoringModifiers = toString(characters);
    }
    const HotkeyField::KeyOutcome outcome = _field.key(input);
    [self refresh];
    return outcome == HotkeyField::KeyOutcome::passedOn ? event : nil;
}

- (void)clicked:(id)sender {
    _field.click();
    [self refresh];
}

- (void)clear:(id)sender {
    _field.clear();
    [self refresh];
}

- (void)viewDidMoveToWindow {
    [super viewDidMoveToWindow];
    if (!self.window) {
        _field.disappear();
        [self refresh];
    }
}

@end
