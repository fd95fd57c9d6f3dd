#import "SettingsPageView.h"

#import "../common/Text.h"
#import "../scenery/Wallpaper.h"
#import "Controls.h"
#import "DrawingView.h"
#import "HotkeyFieldView.h"
#import "Interface.hpp"
#import "Look.h"

#include "BackdropView.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

using namespace scrimlet;
using namespace scrimlet::mac;

/// Target and action for a block: AppKit controls call an object, the page keeps these.
@interface ScrimletTarget : NSObject
@property(nonatomic, copy) void (^block)(id sender);
- (void)act:(id)sender;
@end

@implementation ScrimletTarget
- (void)act:(id)sender {
    self.block(sender);
}
@end

namespace {

constexpr CGFloat rowPadding = Theme::Space::m;
constexpr CGFloat controlColumn = 130;
constexpr CGFloat hotkeyColumn = 110;
constexpr CGFloat pinColumn = 34;

std::uint32_t rgbOf(NSColor *color) {
    NSColor *srgb = [color colorUsingColorSpace:NSColorSpace.sRGBColorSpace];
    const auto channel = [](CGFloat value) {
        return static_cast<std::uint32_t>(std::lround(std::clamp<CGFloat>(value, 0, 1) * 255));
    };
    if (!srgb) {
        return 0;
    }
    return channel(srgb.redComponent) << 16 | channel(srgb.greenComponent) << 8 |
           channel(srgb.blueComponent);
}

NSView *fixedWidth(NSView *view, CGFloat width) {
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [view.widthAnchor constraintEqualToConstant:width].active = YES;
    return view;
}

} // namespace

@implementation ScrimletSettingsPageView {
    std::weak_ptr<StageStore> _store;
    CGFloat _width;
    NSStackView *_column;
    NSMutableArray<ScrimletTarget *> *_targets;
    NSMutableArray<NSTextField *> *_fields;
    NSMutableArray<NSColorWell *> *_wells;
    NSMutableArray<ScrimletHotkeyField *> *_hotkeys;
    /// The main screen's wallpaper, blurred once for the backdrop's preview.
    NSImage *_wallpaper;
    BOOL _wallpaperRead;
}

- (instancetype)initWithStore:(std::weak_ptr<StageStore>)store width:(CGFloat)width {
    if ((self = [super initWithFrame:NSMakeRect(0, 0, width, 100)])) {
        _store = std::move(store);
        _width = width;
        _targets = [NSMutableArray array];
        _fields = [NSMutableArray array];
        _wells = [NSMutableArray array];
        _hotkeys = [NSMutableArray array];
        _column = stack(NSUserInterfaceLayoutOrientationVertical, Theme::Space::l, @[]);
        _column.edgeInsets = NSEdgeInsetsMake(Theme::Space::xl, Theme::Space::xl, Theme::Space::xl,
                                              Theme::Space::xl);
        self.translatesAutoresizingMaskIntoConstraints = NO;
        [self addSubview:_column];
        pinToEdges(_column, self);
        [self.widthAnchor constraintEqualToConstant:width].active = YES;
    }
    return self;
}

- (BOOL)isFlipped {
    return YES;
}

- (void)drawRect:(NSRect)dirtyRect {
    [nsColor(Theme::canvas) setFill];
    NSRectFill(dirtyRect);
}

- (CGFloat)inner {
    return _width - 2 * Theme::Space::xl;
}

- (BOOL)isBusy {
    if (NSEvent.pressedMouseButtons != 0) {
        return YES;
    }
    for (NSTextField *field in _fields) {
        if (field.currentEditor) {
            return YES;
        }
    }
    for (NSColorWell *well in _wells) {
        if (well.isActive) {
            return YES;
        }
    }
    for (ScrimletHotkeyField *field in _hotkeys) {
        if (field.isRecording) {
            return YES;
        }
    }
    return NO;
}

#pragma mark - Running edits

/// A target whose action runs `edit` on the store, then tells the page.
- (ScrimletTarget *)target:(void (^)(id sender, StageStore &store))edit {
    ScrimletTarget *target = [[ScrimletTarget alloc] init];
    __weak ScrimletSettingsPageView *weakSelf = self;
    std::weak_ptr<StageStore> weakStore = _store;
    target.block = ^(id sender) {
        if (const auto store = weakStore.lock()) {
            edit(sender, *store);
        }
        ScrimletSettingsPageView *page = weakSelf;
        if (page.onEdit) {
            page.onEdit();
        }
    };
    [_targets addObject:target];
    return target;
}

- (void (^)(void))pressing:(std::function<void(StageStore &, InterfaceHost &)>)press {
    ScrimletTarget *target = [self target:^(id, StageStore &store) {
        press(store, Interface::host());
    }];
    return ^{
        [target act:nil];
    };
}

#pragma mark - Controls

- (NSView *)toggle:(const ToggleControl &)toggle {
    ScrimletLampToggle *lamp = [[ScrimletLampToggle alloc] initWithOn:toggle.on
                                                                label:nsString(toggle.label)];
    lamp.enabled = toggle.enabled;
    if (toggle.help) {
        lamp.toolTip = nsString(*toggle.help);
    }
    const auto set = toggle.set;
    ScrimletTarget *target = [self target:^(id sender, StageStore &store) {
        set(store, [sender boolValue]);
    }];
    lamp.onToggle = ^(BOOL on) {
        [target act:@(on)];
    };
    return lamp;
}

- (NSView *)checkbox:(const ToggleControl &)toggle {
    const auto set = toggle.set;
    ScrimletTarget *target = [self target:^(id sender, StageStore &store) {
        set(store, [sender state] == NSControlStateValueOn);
    }];
    NSButton *box = [NSButton checkboxWithTitle:@"" target:target action:@selector(act:)];
    box.state = toggle.on ? NSControlStateValueOn : NSControlStateValueOff;
    box.enabled = toggle.enabled;
    box.accessibilityLabel = nsString(toggle.label);
    if (toggle.help) {
        box.toolTip = nsString(*toggle.help);
    }
    box.translatesAutoresizingMaskIntoConstraints = NO;
    return box;
}

- (NSView *)menu:(const MenuControl &)menu width:(CGFloat)width {
    std::vector<std::function<void(StageStore &)>> picks;
    const bool pullDown = !menu.title.empty();
    NSPopUpButton *button = [[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:pullDown];
    button.translatesAutoresizingMaskIntoConstraints = NO;
    NSMenu *items = button.menu;
    items.autoenablesItems = NO;
    if (pullDown) {
        [items addItemWithTitle:nsString(menu.title) action:nil keyEquivalent:@""];
    }
    std::shared_ptr<std::vector<std::function<void(StageStore &)>>> choices =
        std::make_shared<std::vector<std::function<void(StageStore &)>>>();
    ScrimletTarget *target = [self target:^(id sender, StageStore &store) {
        const NSInteger tag = [sender selectedItem].tag;
        if (tag >= 0 && static_cast<size_t>(tag) < choices->size()) {
            (*choices)[static_cast<size_t>(tag)](store);
        }
    }];
    NSMenuItem *chosen = nil;
    for (const MenuGroup &group : menu.groups) {
        if (items.numberOfItems > (pullDown ? 1 : 0) && group.title) {
            [items addItem:NSMenuItem.separatorItem];
        }
        if (group.title) {
            NSMenuItem *heading = [[NSMenuItem alloc] initWithTitle:nsString(*group.title)
                                                             action:nil
                                                      keyEquivalent:@""];
            heading.enabled = NO;
            heading.tag = -1;
            [items addItem:heading];
        }
        for (const MenuChoice &choice : group.choices) {
            NSMenuItem *item = [[NSMenuItem alloc] initWithTitle:nsString(choice.title)
                                                          action:@selector(act:)
                                                   keyEquivalent:@""];
            item.target = target;
            item.enabled = choice.enabled;
            item.tag = static_cast<NSInteger>(choices->size());
            item.indentationLevel = group.title ? 1 : 0;
            if (menu.selected && *menu.selected == choices->size()) {
                chosen = item;
            }
            choices->push_back(choice.pick);
            [items addItem:item];
        }
    }
    if (menu.emptyText) {
        NSMenuItem *none = [[NSMenuItem alloc] initWithTitle:nsString(*menu.emptyText)
                                                      action:nil
                                               keyEquivalent:@""];
        none.enabled = NO;
        none.tag = -1;
        [items addItem:none];
    }
    if (chosen && !pullDown) {
        [button selectItem:chosen];
    }
    button.accessibilityLabel = nsString(menu.label);
    [button.widthAnchor constraintEqualToConstant:width].active = YES;
    return button;
}

- (NSView *)slider:(const SliderControl &)slider {
    const auto set = slider.set;
    ScrimletTarget *target = [self target:^(id sender, StageStore &store) {
        set(store, [sender doubleValue]);
    }];
    NSSlider *view = [NSSlider sliderWithValue:slider.value
                                      minValue:slider.minimum
                                      maxValue:slider.maximum
                                        target:target
                                        action:@selector(act:)];
    view.continuous = YES;
    view.accessibilityLabel = nsString(slider.label);
    return fixedWidth(view, 200);
}

- (NSView *)hotkey:(const HotkeyControl &)hotkey {
    const auto set = hotkey.set;
    __weak ScrimletSettingsPageView *weakSelf = self;
    std::weak_ptr<StageStore> weakStore = _store;
    ScrimletHotkeyField *field =
        [[ScrimletHotkeyField alloc] initWithHotkey:hotkey.hotkey
                                           onChange:^(std::optional<Hotkey> value) {
                                               if (const auto store = weakStore.lock()) {
                                                   set(*store, value);
                                               }
                                               ScrimletSettingsPageView *page = weakSelf;
                                               if (page.onEdit) {
                                                   page.onEdit();
                                               }
                                           }];
    [_hotkeys addObject:field];
    return field;
}

- (NSView *)textField:(const TextFieldControl &)text {
    const auto set = text.set;
    ScrimletTarget *target = [self target:^(id sender, StageStore &store) {
        set(store, toString([sender stringValue]));
    }];
    NSTextField *field = [NSTextField textFieldWithString:nsString(text.value)];
    field.target = target;
    field.action = @selector(act:);
    field.cell.sendsActionOnEndEditing = YES;
    field.accessibilityLabel = nsString(text.label);
    field.font = nsFont(Theme::Typo::body);
    [_fields addObject:field];
    return fixedWidth(field, 220);
}

- (NSView *)button:(const ButtonControl &)button {
    return [[ScrimletButton alloc] initWithModel:button.button
                                         perform:[self pressing:button.press]];
}

- (NSView *)colorWell:(const ColorWellControl &)well {
    const auto set = well.set;
    ScrimletTarget *target = [self target:^(id sender, StageStore &store) {
        set(store, rgbOf([sender color]));
    }];
    NSColorWell *view = [NSColorWell colorWellWithStyle:NSColorWellStyleMinimal];
    view.color = nsColor(Color::hex(well.color));
    view.target = target;
    view.action = @selector(act:);
    view.accessibilityLabel = nsString(well.label);
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [_wells addObject:view];
    return fixedWidth(view, 44);
}

- (NSView *)mark:(const StateMarkControl &)mark {
    NSView *view = mark.ready ? symbolView("checkmark.circle.fill", 14, Theme::sage)
                              : tagView(mark.tag ? *mark.tag : TagModel{});
    view.accessibilityElement = YES;
    view.accessibilityLabel = nsString(mark.accessibilityLabel);
    return view;
}

- (nullable NSView *)control:(const RowControl &)control {
    return std::visit(
        [self](const auto &c) -> NSView * {
            using C = std::decay_t<decltype(c)>;
            if constexpr (std::is_same_v<C, ToggleControl>) {
                return [self toggle:c];
            } else if constexpr (std::is_same_v<C, MenuControl>) {
                return [self menu:c width:c.title.empty() ? 170 : controlColumn];
            } else if constexpr (std::is_same_v<C, SliderControl>) {
                return [self slider:c];
            } else if constexpr (std::is_same_v<C, HotkeyControl>) {
                return [self hotkey:c];
            } else if constexpr (std::is_same_v<C, TextFieldControl>) {
                return [self textField:c];
            } else if constexpr (std::is_same_v<C, ButtonControl>) {
                return [self button:c];
            } else if constexpr (std::is_same_v<C, ColorWellControl>) {
                return [self colorWell:c];
            } else if constexpr (std::is_same_v<C, StateMarkControl>) {
                return [self mark:c];
            } else {
                return nil;
            }
        },
        control);
}

#pragma mark - Items

- (NSView *)row:(const SettingRow &)row {
    NSMutableArray<NSView *> *parts = [NSMutableArray array];
    if (row.symbol) {
        NSImageView *symbol = symbolView(*row.symbol, 14, row.symbolColor);
        [symbol.widthAnchor constraintEqualToConstant:20].active = YES;
        [parts addObject:symbol];
    }
    const Font titleFont =
        row.monospaced ? Font{12, FontWeight::regular, FontWidth::standard, FontDesign::monospaced}
                       : Theme::Typo::body;
    NSMutableArray<NSView *> *lines =
        [NSMutableArray arrayWithObject:singleLineLabel({row.title, titleFont, Theme::ink})];
    NSView *control = [self control:row.control];
    const CGFloat controlWidth = control ? control.fittingSize.width + Theme::Space::m : 0;
    if (row.detail) {
        NSTextField *detail = label({*row.detail, Theme::Typo::small, row.detailColor});
        detail.preferredMaxLayoutWidth = [self inner] - 2 * rowPadding - (row.symbol ? 28 : 0) -
                                         std::max<CGFloat>(controlWidth, 60);
        [lines addObject:detail];
    }
    [parts addObject:stack(NSUserInterfaceLayoutOrientationVertical, 2, lines)];
    [parts addObject:spacer()];
    if (control) {
        [parts addObject:control];
    }
    NSStackView *line = stack(NSUserInterfaceLayoutOrientationHorizontal, 10, parts);
    ScrimletBox *box =
        [ScrimletBox boxAround:line
                        insets:NSEdgeInsetsMake(rowPadding, rowPadding, rowPadding, rowPadding)];
    box.border = nil;
    return box;
}

- (NSView *)switchRow:(const SwitchSettingsRow &)row {
    NSImageView *symbol = symbolView(row.symbol, 14, Theme::ink2);
    [symbol.widthAnchor constraintEqualToConstant:20].active = YES;
    NSTextField *note = label({row.note, Theme::Typo::small, Theme::ink3});
    note.preferredMaxLayoutWidth =
        [self inner] - 2 * rowPadding - 28 - controlColumn - hotkeyColumn - pinColumn - 30;
    NSView *lines = stack(NSUserInterfaceLayoutOrientationVertical, 2,
                          @[ singleLineLabel({row.title, Theme::Typo::body, Theme::ink}), note ]);
    NSView *autoOff = row.autoOff
                          ? [self menu:*row.autoOff width:controlColumn]
                          : fixedWidth([[NSView alloc] initWithFrame:NSZeroRect], controlColumn);
    NSView *hotkey = fixedWidth([self hotkey:row.hotkey], hotkeyColumn);
    NSView *pin = [self checkbox:row.pin];
    NSView *pinCell = fixedWidth(
        stack(NSUserInterfaceLayoutOrientationHorizontal, 0, @[ spacer(), pin, spacer() ]),
        pinColumn);
    NSStackView *line = stack(NSUserInterfaceLayoutOrientationHorizontal, 10,
                              @[ symbol, lines, spacer(), autoOff, hotkey, pinCell ]);
    ScrimletBox *box = [ScrimletBox boxAround:line
                                       insets:NSEdgeInsetsMake(10, rowPadding, 10, rowPadding)];
    box.border = nil;
    return box;
}

- (NSView *)columns:(const ColumnHeader &)header {
    NSMutableArray<NSView *> *parts = [NSMutableArray arrayWithObject:spacer()];
    const CGFloat widths[] = {controlColumn, hotkeyColumn, pinColumn};
    for (size_t i = 0; i < header.columns.size(); ++i) {
        NSTextField *title = kicker(header.columns[i]);
        title.alignment = NSTextAlignmentCenter;
        [parts addObject:fixedWidth(title, i < 3 ? widths[i] : 80)];
    }
    ScrimletBox *box =
        [ScrimletBox boxAround:stack(NSUserInterfaceLayoutOrientationHorizontal, 10, parts)
                        insets:NSEdgeInsetsMake(8, rowPadding, 4, rowPadding)];
    box.border = nil;
    return box;
}

- (NSView *)text:(const TextBlock &)block {
    NSMutableArray<NSView *> *lines = [NSMutableArray array];
    const CGFloat room = [self inner] - 2 * rowPadding - (block.symbol ? 30 : 0);
    for (const StyledText &line : block.lines) {
        NSTextField *text = label(line);
        text.preferredMaxLayoutWidth = room;
        [lines addObject:text];
    }
    NSMutableArray<NSView *> *parts = [NSMutableArray array];
    if (block.symbol) {
        [parts addObject:symbolView(*block.symbol, 16, block.symbolColor)];
    }
    [parts addObject:stack(NSUserInterfaceLayoutOrientationVertical, 6, lines)];
    NSStackView *line = stack(NSUserInterfaceLayoutOrientationHorizontal, 12, parts);
    line.alignment = NSLayoutAttributeTop;
    ScrimletBox *box =
        [ScrimletBox boxAround:line
                        insets:NSEdgeInsetsMake(rowPadding, rowPadding, rowPadding, rowPadding)];
    box.border = nil;
    return box;
}

- (NSView *)steps:(const StepsBlock &)block {
    NSMutableArray<NSView *> *rows = [NSMutableArray array];
    long long n = 0;
    for (const std::string &step : block.steps) {
        NSView *number = cueNumberView({std::to_string(++n), Theme::ink2, Theme::wash});
        NSTextField *text = label({step, Theme::Typo::body, Theme::ink});
        text.preferredMaxLayoutWidth = [self inner] - 2 * rowPadding - 40;
        NSStackView *row = stack(NSUserInterfaceLayoutOrientationHorizontal, 10, @[ number, text ]);
        row.alignment = NSLayoutAttributeTop;
        [rows addObject:row];
    }
    ScrimletBox *box =
        [ScrimletBox boxAround:stack(NSUserInterfaceLayoutOrientationVertical, 10, rows)
                        insets:NSEdgeInsetsMake(rowPadding, rowPadding, rowPadding, rowPadding)];
    box.border = nil;
    return box;
}

- (NSView *)status:(const StatusBlock &)status {
    NSView *lines = stack(NSUserInterfaceLayoutOrientationVertical, 2, @[
        singleLineLabel({status.title, Theme::Typo::bodyStrong, Theme::ink}),
        singleLineLabel({status.detail, Theme::Typo::small, Theme::ink3})
    ]);
    ScrimletBox *box =
        [ScrimletBox boxAround:stack(NSUserInterfaceLayoutOrientationHorizontal, 10,
                                     @[ symbolView(status.symbol, 16, status.symbolColor), lines ])
                        insets:NSEdgeInsetsMake(rowPadding, rowPadding, rowPadding, rowPadding)];
    box.border = nil;
    box.accessibilityElement = YES;
    box.accessibilityRole = NSAccessibilityStaticTextRole;
    box.accessibilityLabel = nsString(status.title + ". " + status.detail);
    return box;
}

- (NSView *)buttons:(const ButtonsBlock &)block {
    NSMutableArray<NSView *> *parts = [NSMutableArray array];
    for (const ButtonControl &button : block.buttons) {
        [parts addObject:[self button:button]];
    }
    ScrimletBox *box = [ScrimletBox
        boxAround:stack(NSUserInterfaceLayoutOrientationHorizontal, Theme::Space::s, parts)
           insets:NSEdgeInsetsMake(rowPadding, rowPadding, rowPadding, rowPadding)];
    box.border = nil;
    return box;
}

- (NSView *)diagram:(const MenuBarDiagramModel &)diagram {
    const auto item = [](const MenuBarDiagramModel::Item &part) -> NSView * {
        if (part.text) {
            return singleLineLabel({*part.text, Theme::Typo::smallStrong, part.color});
        }
        if (part.glyph || !part.symbol) {
            // The program's own glyph, as the menu bar shows it while the house is open.
            NSImageView *glyph = [NSImageView imageViewWithImage:menuGlyphImage(false, false)];
            glyph.contentTintColor = nsColor(part.color);
            glyph.translatesAutoresizingMaskIntoConstraints = NO;
            return glyph;
        }
        return symbolView(*part.symbol, 13, part.color);
    };
    NSMutableArray<NSView *> *hidden = [NSMutableArray array];
    for (const auto &part : diagram.hidden) {
        [hidden addObject:item(part)];
    }
    NSMutableArray<NSView *> *shown = [NSMutableArray array];
    for (const auto &part : diagram.shown) {
        [shown addObject:item(part)];
    }
    NSView *left = stack(NSUserInterfaceLayoutOrientationHorizontal, 12, hidden);
    NSView *right = stack(NSUserInterfaceLayoutOrientationHorizontal, 12, shown);
    NSStackView *bar = stack(NSUserInterfaceLayoutOrientationHorizontal, 14,
                             @[ spacer(), left, item(diagram.divider), right ]);
    ScrimletBox *well = [ScrimletBox boxAround:bar insets:NSEdgeInsetsMake(6, 12, 6, 12)];
    well.fill = nsColor(diagram.background);
    well.border = nil;
    well.cornerRadius = Theme::Radius::tile;
    NSTextField *caption =
        singleLineLabel({diagram.hiddenCaption, Theme::Typo::small, diagram.captionColor});
    NSStackView *column = stack(NSUserInterfaceLayoutOrientationVertical, 4, @[ well, caption ]);
    column.alignment = NSLayoutAttributeLeading;
    [NSLayoutConstraint activateConstraints:@[
        [well.widthAnchor constraintEqualToConstant:[self inner] - 2 * rowPadding],
        [caption.centerXAnchor constraintEqualToAnchor:left.centerXAnchor],
    ]];
    ScrimletBox *box =
        [ScrimletBox boxAround:column
                        insets:NSEdgeInsetsMake(rowPadding, rowPadding, rowPadding, rowPadding)];
    box.border = nil;
    box.accessibilityElement = YES;
    box.accessibilityRole = NSAccessibilityImageRole;
    box.accessibilityLabel = nsString(diagram.accessibilityLabel);
    return box;
}

- (NSView *)palettes:(const PaletteGrid &)grid {
    NSMutableArray<NSView *> *swatches = [NSMutableArray array];
    for (const PaletteGrid::Swatch &swatch : grid.swatches) {
        BackdropStyle style;
        style.colors = swatch.colors;
        const MeshBackdrop mesh{BackdropView::colors(style)};
        SCDrawingView *picture = [[SCDrawingView alloc] initWithFrame:NSZeroRect];
        picture.maker = [mesh](scrimlet::Size size, Appearance) {
            Canvas canvas(size);
            canvas.save();
            canvas.clip(Path::roundedRect(canvas.bounds(), Theme::Radius::chip));
            mesh.draw(canvas, canvas.bounds());
            canvas.restore();
            return canvas.finish();
        };
        ScrimletBox *frame = [ScrimletBox boxAround:picture insets:NSEdgeInsetsMake(3, 3, 3, 3)];
        frame.cornerRadius = Theme::Radius::tile;
        frame.border = swatch.chosen ? nsColor(Theme::light) : nsColor(Theme::rule);
        frame.borderWidth = swatch.chosen ? 2 : 1;
        [NSLayoutConstraint activateConstraints:@[
            [frame.widthAnchor constraintEqualToConstant:80],
            [frame.heightAnchor constraintEqualToConstant:44],
        ]];
        frame.accessibilityElement = YES;
        frame.accessibilityRole = NSAccessibilityButtonRole;
        frame.accessibilityLabel = nsString(swatch.accessibilityLabel);
        frame.accessibilitySelected = swatch.chosen;
        const auto choose = swatch.choose;
        ScrimletTarget *target = [self target:^(id, StageStore &store) {
            choose(store);
        }];
        NSClickGestureRecognizer *click =
            [[NSClickGestureRecognizer alloc] initWithTarget:target action:@selector(act:)];
        [frame addGestureRecognizer:click];
        [swatches addObject:frame];
    }
    NSStackView *row = stack(NSUserInterfaceLayoutOrientationHorizontal, 10, swatches);
    ScrimletBox *box =
        [ScrimletBox boxAround:row
                        insets:NSEdgeInsetsMake(rowPadding, rowPadding, rowPadding, rowPadding)];
    box.border = nil;
    return box;
}

- (NSView *)item:(const SectionItem &)item {
    return std::visit(
        [self](const auto &i) -> NSView * {
            using I = std::decay_t<decltype(i)>;
            if constexpr (std::is_same_v<I, SettingRow>) {
                return [self row:i];
            } else if constexpr (std::is_same_v<I, SwitchSettingsRow>) {
                return [self switchRow:i];
            } else if constexpr (std::is_same_v<I, ColumnHeader>) {
                return [self columns:i];
            } else if constexpr (std::is_same_v<I, TextBlock>) {
                return [self text:i];
            } else if constexpr (std::is_same_v<I, StepsBlock>) {
                return [self steps:i];
            } else if constexpr (std::is_same_v<I, StatusBlock>) {
                return [self status:i];
            } else if constexpr (std::is_same_v<I, ButtonsBlock>) {
                return [self buttons:i];
            } else if constexpr (std::is_same_v<I, MenuBarDiagramModel>) {
                return [self diagram:i];
            } else {
                return [self palettes:i];
            }
        },
        item);
}

/// Whether a hairline follows this item in its card.
- (BOOL)ruledAfter:(const SectionItem &)item {
    if (const auto *row = std::get_if<SettingRow>(&item)) {
        return !row->last;
    }
    if (const auto *row = std::get_if<SwitchSettingsRow>(&item)) {
        return !row->last;
    }
    return NO;
}

#pragma mark - Blocks

- (NSView *)section:(const SettingsSection &)section {
    NSMutableArray<NSView *> *parts = [NSMutableArray arrayWithObject:kicker(section.title)];
    if (section.lead) {
        NSTextField *lead = label({*section.lead, Theme::Typo::small, Theme::ink2});
        lead.preferredMaxLayoutWidth = [self inner];
        [parts addObject:lead];
    }
    NSMutableArray<NSView *> *rows = [NSMutableArray array];
    for (const SectionItem &item : section.items) {
        [rows addObject:fixedWidth([self item:item], [self inner])];
        if ([self ruledAfter:item]) {
            [rows addObject:fixedWidth(hairline(), [self inner])];
        }
    }
    ScrimletBox *card =
        [ScrimletBox boxAround:stack(NSUserInterfaceLayoutOrientationVertical, 0, rows)
                        insets:NSEdgeInsetsMake(0, 0, 0, 0)];
    card.fill = nsColor(Theme::panel);
    card.border = nsColor(Theme::rule);
    card.cornerRadius = Theme::Radius::card;
    [parts addObject:card];
    if (section.footer) {
        NSTextField *footer = label({*section.footer, Theme::Typo::small, Theme::ink3});
        footer.preferredMaxLayoutWidth = [self inner];
        [parts addObject:footer];
    }
    return stack(NSUserInterfaceLayoutOrientationVertical, Theme::Space::s, parts);
}

/// The main screen's wallpaper, blurred as the preview wants it, read once for the page.
- (nullable NSImage *)wallpaper {
    if (!_wallpaperRead) {
        _wallpaperRead = YES;
        NSImage *image = Wallpaper::imageFor(NSScreen.mainScreen);
        _wallpaper = image ? Wallpaper::blurred(image, 30, 700) : nil;
    }
    return _wallpaper;
}

- (NSView *)preview:(const BackdropPreviewBlock &)preview {
    BackdropPreview miniature{preview.style, std::nullopt, std::nullopt};
    NSMutableDictionary<NSString *, NSImage *> *images = [NSMutableDictionary dictionary];
    if (preview.style.kind == BackdropStyle::Kind::wallpaper) {
        if (NSImage *wallpaper = [self wallpaper]) {
            images[@"wallpaper"] = wallpaper;
            miniature.wallpaper =
                ImageRef{"wallpaper", {wallpaper.size.width, wallpaper.size.height}};
        }
    }
    if (preview.style.kind == BackdropStyle::Kind::picture && preview.style.picturePath) {
        NSString *path = nsString(*preview.style.picturePath);
        if (NSImage *picture = [[NSImage alloc] initWithContentsOfFile:path]) {
            images[path] = picture;
            miniature.picture =
                ImageRef{*preview.style.picturePath, {picture.size.width, picture.size.height}};
        }
    }
    SCDrawingView *view = [[SCDrawingView alloc] initWithFrame:NSZeroRect];
    view.images = images;
    view.maker = [miniature](scrimlet::Size size, Appearance appearance) {
        return miniature.drawing(size, appearance);
    };
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [NSLayoutConstraint activateConstraints:@[
        [view.widthAnchor constraintEqualToConstant:[self inner]],
        [view.heightAnchor constraintEqualToConstant:220],
    ]];
    view.accessibilityElement = YES;
    view.accessibilityRole = NSAccessibilityImageRole;
    view.accessibilityLabel = nsString(preview.accessibilityLabel);
    return view;
}

- (NSView *)kinds:(const KindPicker &)picker {
    NSMutableArray<NSImage *> *images = [NSMutableArray array];
    for (const auto &segment : picker.segments) {
        NSImage *image =
            symbolImage(segment.symbol, 13, FontWeight::regular, nsString(segment.label));
        [images addObject:image ? image : [[NSImage alloc] init]];
    }
    const auto choose = picker.choose;
    ScrimletTarget *target = [self target:^(id sender, StageStore &store) {
        const NSInteger index = [sender selectedSegment];
        if (index >= 0) {
            choose(store, static_cast<size_t>(index));
        }
    }];
    NSSegmentedControl *control =
        [NSSegmentedControl segmentedControlWithImages:images
                                          trackingMode:NSSegmentSwitchTrackingSelectOne
                                                target:target
                                                action:@selector(act:)];
    for (NSInteger i = 0; i < static_cast<NSInteger>(picker.segments.size()); ++i) {
        const std::string &name = picker.segments[static_cast<size_t>(i)].label;
        [control setToolTip:nsString(name) forSegment:i];
        [control setWidth:56 forSegment:i];
    }
    control.selectedSegment = static_cast<NSInteger>(picker.selected);
    control.translatesAutoresizingMaskIntoConstraints = NO;
    return control;
}

- (void)showPage:(const SettingsPageModel &)page {
    for (NSView *view in [_column.arrangedSubviews copy]) {
        [_column removeArrangedSubview:view];
        [view removeFromSuperview];
    }
    [_targets removeAllObjects];
    [_fields removeAllObjects];
    [_wells removeAllObjects];
    [_hotkeys removeAllObjects];

    NSMutableArray<NSView *> *heading =
        [NSMutableArray arrayWithObject:singleLineLabel({page.title, pageTitleFont, Theme::ink})];
    if (page.subtitle) {
        NSTextField *subtitle = label({*page.subtitle, Theme::Typo::small, Theme::ink2});
        subtitle.preferredMaxLayoutWidth = [self inner];
        [heading addObject:subtitle];
    }
    [_column addArrangedSubview:stack(NSUserInterfaceLayoutOrientationVertical, 4, heading)];
    for (const PageBlock &block : page.blocks) {
        NSView *view = std::visit(
            [self](const auto &b) -> NSView * {
                using B = std::decay_t<decltype(b)>;
                if constexpr (std::is_same_v<B, SettingsSection>) {
                    return [self section:b];
                } else if constexpr (std::is_same_v<B, BannerModel>) {
                    return bannerView(b, [self inner],
                                      ^(const UiAction &){
                                      });
                } else if constexpr (std::is_same_v<B, BackdropPreviewBlock>) {
                    return [self preview:b];
                } else {
                    return [self kinds:b];
                }
            },
            block);
        [_column addArrangedSubview:view];
    }
}

@end
