#import "DropdownView.h"

#import "../kit/DemoAnchorView.h"
#import "Controls.h"
#import "DropdownLayout.hpp"
#import "Interface.hpp"
#import "Look.h"
#import "StageHeaderView.h"

#include "ControlLooks.hpp"
#include "Dropdown.hpp"
#include "DropdownAnchors.hpp"

#include <memory>

NSNotificationName const ScrimletStoreDidChangeNotification = @"ScrimletStoreDidChange";

using namespace scrimlet;
using namespace scrimlet::mac;

namespace {

/// The card's inner width: the dropdown less its margins.
constexpr CGFloat margin = Theme::Space::m;
constexpr CGFloat contentWidth = Theme::popoverWidth - 2 * margin;

NSView *pinnedWidth(NSView *view, CGFloat width) {
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [view.widthAnchor constraintEqualToConstant:width].active = YES;
    return view;
}

/// A rounded panel card with a hairline border, holding rows separated by hairlines.
NSView *card(NSArray<NSView *> *rows, CGFloat width) {
    NSMutableArray<NSView *> *parts = [NSMutableArray array];
    for (NSView *row in rows) {
        if (parts.count > 0) {
            [parts addObject:pinnedWidth(hairline(), width)];
        }
        [parts addObject:pinnedWidth(row, width)];
    }
    NSStackView *column = stack(NSUserInterfaceLayoutOrientationVertical, 0, parts);
    ScrimletBox *box = [ScrimletBox boxAround:column insets:NSEdgeInsetsMake(0, 0, 0, 0)];
    box.fill = nsColor(Theme::panel);
    box.border = nsColor(Theme::rule);
    box.cornerRadius = Theme::Radius::card;
    return box;
}

NSView *padded(NSView *content, CGFloat vertical, CGFloat horizontal) {
    ScrimletBox *box =
        [ScrimletBox boxAround:content
                        insets:NSEdgeInsetsMake(vertical, horizontal, vertical, horizontal)];
    box.border = nil;
    return box;
}

} // namespace

#pragma mark - Switch tile

/// One pinned switch: a lit tile when on, a hairline tile when off, glowing under the pointer.
@interface ScrimletSwitchTile : NSView
- (instancetype)initWithModel:(const SwitchTileModel &)model perform:(ScrimletPerform)perform;
@end

@implementation ScrimletSwitchTile {
    SwitchTileModel _model;
    ScrimletPerform _perform;
}

- (instancetype)initWithModel:(const SwitchTileModel &)model perform:(ScrimletPerform)perform {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _model = model;
        _perform = [perform copy];
        self.translatesAutoresizingMaskIntoConstraints = NO;
        NSImageView *symbol = symbolView(model.symbol, 12, model.titleColor);
        [symbol.widthAnchor constraintEqualToConstant:18].active = YES;
        NSMutableArray<NSView *> *lines =
            [NSMutableArray arrayWithObject:singleLineLabel({model.title, Theme::Typo::smallStrong,
                                                             model.titleColor})];
        if (model.subtitle) {
            [lines addObject:singleLineLabel(
                                 {*model.subtitle, Font::system(10), model.subtitleColor})];
        }
        NSStackView *content =
            stack(NSUserInterfaceLayoutOrientationHorizontal, 6,
                  @[ symbol, stack(NSUserInterfaceLayoutOrientationVertical, 1, lines), spacer() ]);
        [self addSubview:content];
        [ScrimletDemoAnchorView anchor:self as:DropdownAnchors::switchTile(model.kind)];
        [NSLayoutConstraint activateConstraints:@[
            [content.leadingAnchor constraintEqualToAnchor:self.leadingAnchor constant:8],
            [content.trailingAnchor constraintEqualToAnchor:self.trailingAnchor constant:-8],
            [content.topAnchor constraintGreaterThanOrEqualToAnchor:self.topAnchor constant:8],
            [content.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
            [self.heightAnchor constraintGreaterThanOrEqualToConstant:Dropdown::tileMinHeight],
            [self.heightAnchor constraintGreaterThanOrEqualToAnchor:content.heightAnchor
                                                           constant:16],
        ]];
        self.wantsLayer = YES;
        const Glow glow = Dropdown::tileHoverGlow();
        self.layer.shadowColor = nsColor(glow.color).CGColor;
        self.layer.shadowRadius = glow.radius;
        self.layer.shadowOffset = CGSizeZero;
        self.layer.shadowOpacity = 0;

        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilityButtonRole;
        self.accessibilityLabel = nsString(model.title);
        self.accessibilityValue = nsString(model.accessibilityValue);
        if (model.subtitle) {
            self.accessibilityHelp = nsString(*model.subtitle);
        }
    }
    return self;
}

- (BOOL)isFlipped {
    return YES;
}

- (void)drawRect:(NSRect)dirtyRect {
    NSBezierPath *shape = [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(self.bounds, 0.5, 0.5)
                                                          xRadius:Theme::Radius::tile
                                                          yRadius:Theme::Radius::tile];
    if (_model.fill) {
        [nsColor(*_model.fill) setFill];
        [shape fill];
    }
    if (_model.border) {
        [nsColor(*_model.border) setStroke];
        shape.lineWidth = 1;
        [shape stroke];
    }
}

- (void)updateTrackingAreas {
    [super updateTrackingAreas];
    trackHover(self);
}

- (void)glow:(BOOL)on {
    const Animation motion = Motion::forView(Motion::snappy, reduceMotion());
    [NSAnimationContext runAnimationGroup:^(NSAnimationContext *context) {
        context.duration = motionDuration(motion);
        context.allowsImplicitAnimation = YES;
        self.layer.shadowOpacity = on ? 1 : 0;
    }];
}

- (void)mouseEntered:(NSEvent *)event {
    [self glow:YES];
}

- (void)mouseExited:(NSEvent *)event {
    [self glow:NO];
}

- (void)mouseUp:(NSEvent *)event {
    if (NSPointInRect([self convertPoint:event.locationInWindow fromView:nil], self.bounds)) {
        _perform(_model.action);
    }
}

- (void)mouseDown:(NSEvent *)event {
    // Taken here so that the release comes back to this view.
}

- (BOOL)accessibilityPerformPress {
    _perform(_model.action);
    return YES;
}

@end

#pragma mark - Rows

/// A row that runs an action when clicked anywhere outside its own buttons.
@interface ScrimletClickableRow : NSView
@property(nonatomic, copy) void (^onClick)(void);
@end

@implementation ScrimletClickableRow

- (void)mouseDown:(NSEvent *)event {
}

- (void)mouseUp:(NSEvent *)event {
    if (self.onClick &&
        NSPointInRect([self convertPoint:event.locationInWindow fromView:nil], self.bounds)) {
        self.onClick();
    }
}

@end

namespace {

NSView *cueRow(const CueRowModel &row, ScrimletPerform perform) {
    NSMutableArray<NSView *> *lines = [NSMutableArray
        arrayWithObject:singleLineLabel({row.title, Theme::Typo::body, Theme::ink})];
    if (row.detail) {
        [lines addObject:singleLineLabel({*row.detail, Theme::Typo::small, Theme::ink3})];
    }
    NSMutableArray<NSView *> *parts = [NSMutableArray
        arrayWithObjects:cueNumberView(row.number),
                         stack(NSUserInterfaceLayoutOrientationVertical, 1, lines), spacer(), nil];
    if (row.shortNote && row.noteAction) {
        ButtonModel note;
        note.title = row.shortNote->text;
        note.style = ButtonModel::Style::plain;
        note.font = row.shortNote->font;
        note.ink = row.shortNote->color;
        note.accessibilityLabel = *row.note;
        const UiAction open = *row.noteAction;
        ScrimletButton *button = [[ScrimletButton alloc] initWithModel:note
                                                               perform:^{
                                                                   perform(open);
                                                               }];
        button.toolTip = nsString(*row.note);
        [parts addObject:button];
    } else if (row.badge) {
        [parts addObject:tagView(*row.badge)];
    }
    if (row.remove) {
        const UiAction remove = row.remove->action;
        [parts addObject:[[ScrimletIconButton alloc] initWithModel:*row.remove
                                                           perform:^{
                                                               perform(remove);
                                                           }]];
    }
    ScrimletClickableRow *view = [[ScrimletClickableRow alloc] initWithFrame:NSZeroRect];
    if (row.toggle) {
        const UiAction toggle = *row.toggle;
        ScrimletLampToggle *lamp = [[ScrimletLampToggle alloc] initWithOn:row.on
                                                                    label:nsString(row.title)];
        lamp.onToggle = ^(BOOL) {
            perform(toggle);
        };
        [parts addObject:lamp];
        view.onClick = ^{
            perform(toggle);
        };
    }
    NSStackView *content =
        stack(NSUserInterfaceLayoutOrientationHorizontal, Theme::Space::s, parts);
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [view addSubview:content];
    [NSLayoutConstraint activateConstraints:@[
        [content.leadingAnchor constraintEqualToAnchor:view.leadingAnchor constant:10],
        [content.trailingAnchor constraintEqualToAnchor:view.trailingAnchor constant:-10],
        [content.topAnchor constraintEqualToAnchor:view.topAnchor constant:6],
        [content.bottomAnchor constraintEqualToAnchor:view.bottomAnchor constant:-6],
    ]];
    view.accessibilityElement = row.toggle ? NO : YES;
    if (!row.toggle) {
        view.accessibilityRole = NSAccessibilityStaticTextRole;
        view.accessibilityLabel = nsString(row.accessibilityLabel);
    }
    return view;
}

NSView *cueListView(const CueListModel &list, ScrimletPerform perform) {
    NSMutableArray<NSView *> *header =
        [NSMutableArray arrayWithObjects:kicker(list.kicker), spacer(), nil];
    if (list.headerNote) {
        [header addObject:singleLineLabel({*list.headerNote, Theme::Typo::small, Theme::ink3})];
    }
    NSMutableArray<NSView *> *rows = [NSMutableArray array];
    for (const CueRowModel &row : list.rows) {
        [rows addObject:cueRow(row, perform)];
    }
    NSMutableArray<NSView *> *parts = [NSMutableArray
        arrayWithObject:pinnedWidth(stack(NSUserInterfaceLayoutOrientationHorizontal,
                                          Theme::Space::s, header),
                                    contentWidth)];
    if (rows.count > 0) {
        [parts addObject:card(rows, contentWidth)];
    }
    NSStackView *out = stack(NSUserInterfaceLayoutOrientationVertical, Theme::Space::s, parts);
    [ScrimletDemoAnchorView anchor:out as:std::string(DropdownAnchors::cueList)];
    return out;
}

NSView *switchGridView(const SwitchGridModel &grid, ScrimletPerform perform) {
    NSMutableArray<NSView *> *header = [NSMutableArray arrayWithObject:kicker(grid.kicker)];
    if (grid.onTag) {
        [header addObject:tagView(*grid.onTag)];
    }
    [header addObject:spacer()];
    const UiAction showAll = grid.showAll.action;
    [header addObject:[[ScrimletButton alloc] initWithModel:grid.showAll
                                                    perform:^{
                                                        perform(showAll);
                                                    }]];
    NSMutableArray<NSView *> *parts = [NSMutableArray
        arrayWithObject:pinnedWidth(stack(NSUserInterfaceLayoutOrientationHorizontal,
                                          Theme::Space::s, header),
                                    contentWidth)];
    if (grid.empty) {
        NSTextField *empty = label(*grid.empty);
        empty.preferredMaxLayoutWidth = contentWidth;
        [parts addObject:empty];
    }
    const CGFloat gap = 6;
    const CGFloat tileWidth = (contentWidth - gap) / 2;
    for (size_t i = 0; i < grid.tiles.size(); i += 2) {
        NSMutableArray<NSView *> *pair = [NSMutableArray array];
        for (size_t j = i; j < i + 2; ++j) {
            NSView *tile = j < grid.tiles.size()
                               ? [[ScrimletSwitchTile alloc] initWithModel:grid.tiles[j]
                                                                   perform:perform]
                               : [[NSView alloc] initWithFrame:NSZeroRect];
            [pair addObject:pinnedWidth(tile, tileWidth)];
        }
        NSStackView *row = stack(NSUserInterfaceLayoutOrientationHorizontal, gap, pair);
        row.alignment = NSLayoutAttributeTop;
        [parts addObject:row];
    }
    NSStackView *out = stack(NSUserInterfaceLayoutOrientationVertical, gap, parts);
    [out setCustomSpacing:Theme::Space::s afterView:parts.firstObject];
    return out;
}

NSView *actionRowView(const ActionRowModel &row, ScrimletPerform perform) {
    NSMutableArray<NSView *> *buttons = [NSMutableArray array];
    for (const ButtonModel &model : row.buttons) {
        const UiAction action = model.action;
        [buttons addObject:[[ScrimletButton alloc] initWithModel:model
                                                         perform:^{
                                                             perform(action);
                                                         }]];
    }
    if (NSView *first = buttons.firstObject) {
        [ScrimletDemoAnchorView anchor:first as:std::string(DropdownAnchors::action)];
    }
    NSStackView *line = stack(NSUserInterfaceLayoutOrientationHorizontal, Theme::Space::s, buttons);
    line.distribution = NSStackViewDistributionFill;
    NSMutableArray<NSView *> *parts =
        [NSMutableArray arrayWithObject:pinnedWidth(line, contentWidth)];
    if (row.note) {
        NSTextField *note = label(*row.note);
        note.preferredMaxLayoutWidth = contentWidth;
        [parts addObject:note];
    }
    return stack(NSUserInterfaceLayoutOrientationVertical, 6, parts);
}

NSView *footerView(const std::vector<IconButtonModel> &buttons, ScrimletPerform perform) {
    NSMutableArray<NSView *> *parts = [NSMutableArray arrayWithObject:spacer()];
    for (const IconButtonModel &model : buttons) {
        const UiAction action = model.action;
        [parts addObject:[[ScrimletIconButton alloc] initWithModel:model
                                                           perform:^{
                                                               perform(action);
                                                           }]];
    }
    return pinnedWidth(stack(NSUserInterfaceLayoutOrientationHorizontal, 2, parts), contentWidth);
}

NSView *allSwitchesView(const AllSwitchesModel &all, ScrimletPerform perform) {
    const UiAction back = all.back.action;
    NSMutableArray<NSView *> *header = [NSMutableArray
        arrayWithObjects:[[ScrimletIconButton alloc] initWithModel:all.back
                                                           perform:^{
                                                               perform(back);
                                                           }],
                         singleLineLabel({all.title, Theme::Typo::titleSmall, Theme::ink}),
                         spacer(), nil];
    if (all.allOff) {
        const UiAction off = all.allOff->action;
        [header addObject:[[ScrimletButton alloc] initWithModel:*all.allOff
                                                        perform:^{
                                                            perform(off);
                                                        }]];
    }
    NSMutableArray<NSView *> *rows = [NSMutableArray array];
    for (const AllSwitchesRowModel &row : all.rows) {
        NSImageView *symbol = symbolView(row.symbol, 13, row.symbolColor);
        [symbol.widthAnchor constraintEqualToConstant:20].active = YES;
        NSTextField *detail = label({row.detail, Theme::Typo::small, Theme::ink3});
        detail.preferredMaxLayoutWidth = contentWidth - 130;
        NSView *lines =
            stack(NSUserInterfaceLayoutOrientationVertical, 1,
                  @[ singleLineLabel({row.title, Theme::Typo::body, Theme::ink}), detail ]);
        const UiAction action = row.action;
        NSView *control;
        if (row.isAction) {
            ButtonModel start;
            start.title = "Start";
            start.style = ButtonModel::Style::quiet;
            start.compact = true;
            start.accessibilityLabel = row.title;
            control = [[ScrimletButton alloc] initWithModel:start
                                                    perform:^{
                                                        perform(action);
                                                    }];
        } else {
            ScrimletLampToggle *lamp = [[ScrimletLampToggle alloc] initWithOn:row.on
                                                                        label:nsString(row.title)];
            lamp.onToggle = ^(BOOL) {
                perform(action);
            };
            control = lamp;
        }
        NSStackView *line = stack(NSUserInterfaceLayoutOrientationHorizontal, 10,
                                  @[ symbol, lines, spacer(), control ]);
        [rows addObject:padded(line, 8, 12)];
    }
    NSTextField *footnote = label(all.footnote);
    footnote.preferredMaxLayoutWidth = contentWidth;
    const UiAction settings = all.settings.action;
    NSView *settingsButton = [[ScrimletButton alloc] initWithModel:all.settings
                                                           perform:^{
                                                               perform(settings);
                                                           }];
    return stack(NSUserInterfaceLayoutOrientationVertical, Theme::Space::m, @[
        pinnedWidth(stack(NSUserInterfaceLayoutOrientationHorizontal, Theme::Space::s, header),
                    contentWidth),
        card(rows, contentWidth), footnote, settingsButton
    ]);
}

} // namespace

#pragma mark - The dropdown

@interface ScrimletDropdownController : NSViewController
- (instancetype)initWithStore:(std::weak_ptr<StageStore>)store;
- (void)reload;
@end

@implementation ScrimletDropdownController {
    std::weak_ptr<StageStore> _store;
    std::optional<DropdownModel> _shown;
    NSStackView *_column;
    ScrimletStageHeaderView *_header;
    // The home page's parts, each rebuilt only when its own model changes.
    NSView *_actionRow;
    NSView *_note;
    NSView *_cueList;
    NSView *_switches;
    NSView *_footer;
    NSView *_allSwitches;
}

- (instancetype)initWithStore:(std::weak_ptr<StageStore>)store {
    if ((self = [super initWithNibName:nil bundle:nil])) {
        _store = std::move(store);
        [NSNotificationCenter.defaultCenter addObserver:self
                                               selector:@selector(storeDidChange:)
                                                   name:ScrimletStoreDidChangeNotification
                                                 object:nil];
    }
    return self;
}

- (void)dealloc {
    [NSNotificationCenter.defaultCenter removeObserver:self];
}

- (void)loadView {
    _column = stack(NSUserInterfaceLayoutOrientationVertical, Theme::Space::m, @[]);
    _column.edgeInsets = NSEdgeInsetsMake(margin, margin, margin, margin);
    _column.alignment = NSLayoutAttributeCenterX;
    ScrimletBox *root = [ScrimletBox boxAround:_column insets:NSEdgeInsetsMake(0, 0, 0, 0)];
    root.fill = nsColor(Theme::canvas);
    root.border = nil;
    [root.widthAnchor constraintEqualToConstant:Theme::popoverWidth].active = YES;
    self.view = root;
    [self reload];
}

- (void)viewWillAppear {
    [super viewWillAppear];
    [self reload];
}

- (void)storeDidChange:(NSNotification *)notification {
    if (self.isViewLoaded) {
        [self reload];
    }
}

- (ScrimletPerform)performer {
    __weak ScrimletDropdownController *weakSelf = self;
    std::weak_ptr<StageStore> weakStore = _store;
    return ^(const UiAction &action) {
        if (const auto store = weakStore.lock()) {
            perform(action, *store, Interface::host());
        }
        [weakSelf reload];
    };
}

/// Makes the column hold exactly `views`, in order, moving the ones it has already.
- (void)arrange:(NSArray<NSView *> *)views {
    for (NSView *view in [_column.arrangedSubviews copy]) {
        if (![views containsObject:view]) {
            [_column removeArrangedSubview:view];
            [view removeFromSuperview];
        }
    }
    for (NSUInteger i = 0; i < views.count; ++i) {
        if (i >= _column.arrangedSubviews.count || _column.arrangedSubviews[i] != views[i]) {
            [_column insertArrangedSubview:views[i] atIndex:static_cast<NSInteger>(i)];
        }
    }
}

- (void)reload {
    const auto store = _store.lock();
    if (!store || !self.isViewLoaded) {
        return;
    }
    const DropdownModel model = Dropdown::model(*store);
    if (_shown == model) {
        return;
    }
    const bool routeChanged = _shown && _shown->route != model.route;
    ScrimletPerform perform = [self performer];
    if (model.allSwitches) {
        if (!_allSwitches || !_shown || _shown->allSwitches != model.allSwitches) {
            _allSwitches = allSwitchesView(*model.allSwitches, perform);
        }
        [self arrange:@[ _allSwitches ]];
    } else {
        const HomeModel &home = *model.home;
        const HomeModel *was = _shown && _shown->home ? &*_shown->home : nullptr;
        if (!_header) {
            _header = [[ScrimletStageHeaderView alloc] initWithWidth:contentWidth];
        }
        [_header showModel:home.header];
        if (!was || was->actionRow != home.actionRow) {
            _actionRow = actionRowView(home.actionRow, perform);
        }
        if (!was || was->note != home.note) {
            _note = home.note
                        ? pinnedWidth(bannerView(*home.note, contentWidth, perform), contentWidth)
                        : nil;
            if (_note) {
                [ScrimletDemoAnchorView anchor:_note as:std::string(DropdownAnchors::note)];
            }
        }
        if (!was || was->cueList != home.cueList) {
            _cueList = cueListView(home.cueList, perform);
        }
        if (!was || was->switches != home.switches) {
            _switches = switchGridView(home.switches, perform);
        }
        if (!was || was->footer != home.footer) {
            _footer = footerView(home.footer, perform);
        }
        NSMutableArray<NSView *> *views =
            [NSMutableArray arrayWithObjects:_header, _actionRow, nil];
        if (_note) {
            [views addObject:_note];
        }
        [views addObjectsFromArray:@[ _cueList, _switches, _footer ]];
        [self arrange:views];
    }
    if (routeChanged) {
        // The other page comes in with the snappy spring's timing, or a fade when motion is
        // reduced: either way over in a fraction of a second.
        const Animation motion = Motion::forView(Motion::snappy, reduceMotion());
        _column.alphaValue = 0;
        [NSAnimationContext runAnimationGroup:^(NSAnimationContext *context) {
            context.duration = motionDuration(motion);
            self->_column.animator.alphaValue = 1;
        }];
    }
    _shown = model;
    [self.view layoutSubtreeIfNeeded];
    self.preferredContentSize = self.view.fittingSize;
}

@end

NSViewController *ScrimletDropdownViewController(StageStore &store) {
    return [[ScrimletDropdownController alloc] initWithStore:store.weak_from_this()];
}

namespace scrimlet::mac {

DropdownSize layOutDropdown(StageStore &store) {
    ScrimletDropdownController *controller =
        [[ScrimletDropdownController alloc] initWithStore:store.weak_from_this()];
    NSView *view = controller.view;
    [controller reload];
    NSSize size = view.fittingSize;
    [view setFrameSize:size];
    [view layoutSubtreeIfNeeded];
    size = view.fittingSize;
    return {size.width, size.height};
}

} // namespace scrimlet::mac
