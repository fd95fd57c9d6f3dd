#import "../common/Text.h"
#import "Controls.h"
#import "DropdownView.h"
#import "Interface.hpp"
#import "Look.h"
#import "SettingsPageController.h"
#import "SettingsPageView.h"

#include "ControlLooks.hpp"
#include "RunSheetsPage.hpp"
#include "SettingsModel.hpp"

#include <memory>

// The settings window: one window of seven tabs, each a scrolling page that follows the
// store. Main thread only.

using namespace scrimlet;
using namespace scrimlet::mac;

namespace {

constexpr CGFloat pageWidth = SettingsPages::windowWidth;
constexpr CGFloat pageHeight = SettingsPages::windowHeight;
constexpr CGFloat inner = pageWidth - 2 * Theme::Space::xl;

NSScrollView *scrolling(NSView *document) {
    NSScrollView *scroll =
        [[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, pageWidth, pageHeight)];
    scroll.hasVerticalScroller = YES;
    scroll.drawsBackground = YES;
    scroll.backgroundColor = nsColor(Theme::canvas);
    scroll.documentView = document;
    [document.topAnchor constraintEqualToAnchor:scroll.contentView.topAnchor].active = YES;
    [document.leadingAnchor constraintEqualToAnchor:scroll.contentView.leadingAnchor].active = YES;
    return scroll;
}

std::string dateText(Date date) {
    static NSDateFormatter *formatter = [] {
        NSDateFormatter *made = [[NSDateFormatter alloc] init];
        made.dateStyle = NSDateFormatterMediumStyle;
        made.timeStyle = NSDateFormatterShortStyle;
        made.doesRelativeDateFormatting = YES;
        return made;
    }();
    return toString([formatter stringFromDate:[NSDate dateWithTimeIntervalSince1970:date.seconds]]);
}

} // namespace

#pragma mark - Run sheets

/// The run sheets page's content: a card per show, one of them open.
@interface ScrimletRunSheetsView : NSView
@property(nonatomic, copy, nullable) void (^onEdit)(void);
- (instancetype)initWithStore:(std::weak_ptr<StageStore>)store;
- (void)reload;
@end

@implementation ScrimletRunSheetsView {
    std::weak_ptr<StageStore> _store;
    std::optional<Uuid> _open;
    std::optional<RunSheetsPageModel> _shown;
    NSStackView *_column;
}

- (instancetype)initWithStore:(std::weak_ptr<StageStore>)store {
    if ((self = [super initWithFrame:NSMakeRect(0, 0, pageWidth, 100)])) {
        _store = std::move(store);
        _column = stack(NSUserInterfaceLayoutOrientationVertical, Theme::Space::s, @[]);
        _column.edgeInsets = NSEdgeInsetsMake(Theme::Space::xl, Theme::Space::xl, Theme::Space::xl,
                                              Theme::Space::xl);
        self.translatesAutoresizingMaskIntoConstraints = NO;
        [self addSubview:_column];
        pinToEdges(_column, self);
        [self.widthAnchor constraintEqualToConstant:pageWidth].active = YES;
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

- (NSView *)column:(const RunSheetColumn &)column {
    NSMutableArray<NSView *> *lines = [NSMutableArray
        arrayWithObject:singleLineLabel({column.title, Theme::Typo::small, Theme::ink3})];
    for (const RunSheetLine &line : column.lines) {
        NSTextField *title = singleLineLabel({line.title, Theme::Typo::small, Theme::ink});
        [title setContentCompressionResistancePriority:NSLayoutPriorityDefaultLow
                                        forOrientation:NSLayoutConstraintOrientationHorizontal];
        NSTextField *outcome =
            singleLineLabel({line.outcome, Theme::Typo::small, line.outcomeColor});
        outcome.toolTip = nsString(line.outcome);
        [lines addObject:stack(NSUserInterfaceLayoutOrientationHorizontal, 6, @[
                   singleLineLabel({line.number, Theme::Typo::cue, Theme::ink3}), title, outcome
               ])];
    }
    return stack(NSUserInterfaceLayoutOrientationVertical, 4, lines);
}

- (NSView *)card:(const RunSheetCard &)card {
    NSImageView *symbol = symbolView(card.symbol, 16, Theme::ink2);
    [symbol.widthAnchor constraintEqualToConstant:22].active = YES;
    NSMutableArray<NSView *> *lines = [NSMutableArray
        arrayWithObject:singleLineLabel({card.dateLine, Theme::Typo::bodyStrong, Theme::ink})];
    if (!card.summary.empty()) {
        [lines addObject:singleLineLabel({card.summary, Theme::Typo::small, Theme::ink3})];
    }
    NSMutableArray<NSView *> *header = [NSMutableArray
        arrayWithObjects:symbol, stack(NSUserInterfaceLayoutOrientationVertical, 2, lines),
                         spacer(), nil];
    for (const auto &tag : {card.leftAloneTag, card.problemsTag}) {
        if (tag) {
            [header addObject:tagView(*tag)];
        }
    }
    NSImageView *chevron = symbolView("chevron.right", 11, Theme::ink3, FontWeight::semibold);
    chevron.frameCenterRotation = -card.chevronDegrees;
    [header addObject:chevron];

    const Uuid id = card.id;
    __weak ScrimletRunSheetsView *weakSelf = self;
    ButtonModel toggle;
    toggle.style = ButtonModel::Style::plain;
    toggle.accessibilityLabel = card.accessibilityLabel;
    ScrimletButton *button = [[ScrimletButton alloc] initWithModel:toggle
                                                           perform:^{
                                                               [weakSelf toggle:id];
                                                           }];
    NSView *row = stack(NSUserInterfaceLayoutOrientationHorizontal, 10, header);
    [button addSubview:row];
    [NSLayoutConstraint activateConstraints:@[
        [row.leadingAnchor constraintEqualToAnchor:button.leadingAnchor],
        [row.trailingAnchor constraintEqualToAnchor:button.trailingAnchor],
        [row.topAnchor constraintEqualToAnchor:button.topAnchor],
        [row.bottomAnchor constraintEqualToAnchor:button.bottomAnchor],
        [button.widthAnchor constraintEqualToConstant:inner - 2 * Theme::Space::m],
    ]];
    for (NSView *part in header) {
        part.accessibilityElement = NO;
    }

    NSMutableArray<NSView *> *parts = [NSMutableArray arrayWithObject:button];
    if (card.open) {
        NSView *rule = hairline();
        [rule.widthAnchor constraintEqualToConstant:inner - 2 * Theme::Space::m].active = YES;
        [parts addObject:rule];
        NSMutableArray<NSView *> *columns = [NSMutableArray array];
        for (const RunSheetColumn &column : card.columns) {
            [columns addObject:[self column:column]];
        }
        NSStackView *opened =
            stack(NSUserInterfaceLayoutOrientationHorizontal, Theme::Space::m, columns);
        opened.alignment = NSLayoutAttributeTop;
        opened.distribution = NSStackViewDistributionFillEqually;
        [opened.widthAnchor constraintEqualToConstant:inner - 2 * Theme::Space::m].active = YES;
        [parts addObject:opened];
        const Animation motion = Motion::forView(Motion::snappy, reduceMotion());
        opened.alphaValue = 0;
        [NSAnimationContext runAnimationGroup:^(NSAnimationContext *context) {
            context.duration = motionDuration(motion);
            opened.animator.alphaValue = 1;
        }];
    }
    ScrimletBox *box = [ScrimletBox
        boxAround:stack(NSUserInterfaceLayoutOrientationVertical, Theme::Space::s, parts)
           insets:NSEdgeInsetsMake(Theme::Space::m, Theme::Space::m, Theme::Space::m,
                                   Theme::Space::m)];
    box.fill = nsColor(Theme::panel);
    box.border = nsColor(Theme::rule);
    box.cornerRadius = Theme::Radius::card;
    return box;
}

- (NSView *)empty:(const RunSheetsEmpty &)empty {
    NSTextField *text = label(empty.text);
    text.alignment = NSTextAlignmentCenter;
    text.preferredMaxLayoutWidth = inner - 2 * Theme::Space::l;
    NSStackView *content =
        stack(NSUserInterfaceLayoutOrientationVertical, Theme::Space::s,
              @[ symbolView(empty.symbol, 24, Theme::ink3), singleLineLabel(empty.title), text ]);
    content.alignment = NSLayoutAttributeCenterX;
    ScrimletBox *box = [ScrimletBox boxAround:content
                                       insets:NSEdgeInsetsMake(Theme::Space::l, Theme::Space::l,
                                                               Theme::Space::l, Theme::Space::l)];
    box.fill = nsColor(Theme::panel);
    box.border = nsColor(Theme::rule);
    box.cornerRadius = Theme::Radius::card;
    [box.widthAnchor constraintEqualToConstant:inner].active = YES;
    return box;
}

- (void)toggle:(const Uuid &)id {
    _open = RunSheetsPage::toggled(_open, id);
    [self reload];
}

- (void)reload {
    const auto store = _store.lock();
    if (!store) {
        return;
    }
    const RunSheetsPageModel page = RunSheetsPage::model(*store, _open, dateText);
    if (_shown == page) {
        return;
    }
    _shown = page;
    for (NSView *view in [_column.arrangedSubviews copy]) {
        [_column removeArrangedSubview:view];
        [view removeFromSuperview];
    }
    NSTextField *subtitle = label({page.subtitle, Theme::Typo::small, Theme::ink2});
    subtitle.preferredMaxLayoutWidth = inner;
    NSView *heading =
        stack(NSUserInterfaceLayoutOrientationVertical, 4,
              @[ singleLineLabel({page.title, pageTitleFont, Theme::ink}), subtitle ]);
    [_column addArrangedSubview:heading];
    [_column setCustomSpacing:Theme::Space::l afterView:heading];
    if (page.empty) {
        [_column addArrangedSubview:[self empty:*page.empty]];
    }
    for (const RunSheetCard &card : page.cards) {
        [_column addArrangedSubview:[self card:card]];
    }
    if (page.clear) {
        std::weak_ptr<StageStore> weakStore = _store;
        __weak ScrimletRunSheetsView *weakSelf = self;
        const UiAction clear = page.clear->action;
        ScrimletButton *button =
            [[ScrimletButton alloc] initWithModel:*page.clear
                                          perform:^{
                                              if (const auto target = weakStore.lock()) {
                                                  perform(clear, *target, Interface::host());
                                              }
                                              [weakSelf reload];
                                          }];
        [_column addArrangedSubview:button];
        [_column setCustomSpacing:Theme::Space::l
                        afterView:_column.arrangedSubviews[_column.arrangedSubviews.count - 2]];
    }
}

@end

#pragma mark - Pages

/// One tab: a scrolling page that is drawn anew when what it shows changes, though never
/// under the user's hands.
@interface ScrimletSettingsPageController : NSViewController
@property(nonatomic, readonly) SettingsTab tab;
- (instancetype)initWithTab:(SettingsTab)tab store:(std::weak_ptr<StageStore>)store;
@end

@implementation ScrimletSettingsPageController {
    std::weak_ptr<StageStore> _store;
    ScrimletSettingsPageView *_page;
    ScrimletRunSheetsView *_sheets;
    std::string _described;
    BOOL _pending;
}

- (instancetype)initWithTab:(SettingsTab)tab store:(std::weak_ptr<StageStore>)store {
    if ((self = [super initWithNibName:nil bundle:nil])) {
        _tab = tab;
        _store = std::move(store);
        const SettingsTabInfo &info = SettingsPages::tab(tab);
        self.title = nsString(info.title);
        self.preferredContentSize = NSMakeSize(pageWidth, pageHeight);
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
    __weak ScrimletSettingsPageController *weakSelf = self;
    NSView *document;
    if (_tab == SettingsTab::runSheets) {
        _sheets = [[ScrimletRunSheetsView alloc] initWithStore:_store];
        document = _sheets;
    } else {
        _page = [[ScrimletSettingsPageView alloc] initWithStore:_store width:pageWidth];
        _page.onEdit = ^{
            [weakSelf refresh];
        };
        document = _page;
    }
    self.view = scrolling(document);
    [self refresh];
}

- (void)viewWillAppear {
    [super viewWillAppear];
    [self refresh];
}

- (void)storeDidChange:(NSNotification *)notification {
    if (self.isViewLoaded) {
        [self refresh];
    }
}

- (void)refresh {
    const auto store = _store.lock();
    if (!store) {
        return;
    }
    if (_sheets) {
        [_sheets reload];
        return;
    }
    if (_page.isBusy) {
        // A slider in the middle of a drag, a field being typed in: look again shortly.
        if (!_pending) {
            _pending = YES;
            __weak ScrimletSettingsPageController *weakSelf = self;
            dispatch_after(dispatch_time(DISPATCH_TIME_NOW, NSEC_PER_SEC / 4),
                           dispatch_get_main_queue(), ^{
                               ScrimletSettingsPageController *strong = weakSelf;
                               if (strong) {
                                   strong->_pending = NO;
                                   [strong refresh];
                               }
                           });
        }
        return;
    }
    const SettingsPageModel model = SettingsPages::page(_tab, *store);
    std::string described = SettingsPages::describe(model);
    if (described == _described) {
        return;
    }
    _described = std::move(described);
    [_page showPage:model];
}

@end

#pragma mark - The window

@interface ScrimletSettingsTabs : NSTabViewController
- (instancetype)initWithStore:(std::weak_ptr<StageStore>)store;
- (void)select:(SettingsTab)tab;
@end

@implementation ScrimletSettingsTabs {
    std::weak_ptr<StageStore> _store;
}

- (instancetype)initWithStore:(std::weak_ptr<StageStore>)store {
    if ((self = [super initWithNibName:nil bundle:nil])) {
        _store = store;
        self.tabStyle = NSTabViewControllerTabStyleToolbar;
        for (const SettingsTabInfo &info : SettingsPages::tabs()) {
            ScrimletSettingsPageController *page =
                [[ScrimletSettingsPageController alloc] initWithTab:info.tab store:store];
            NSTabViewItem *item = [NSTabViewItem tabViewItemWithViewController:page];
            item.label = nsString(info.title);
            item.image = symbolImage(info.symbol, 16, FontWeight::regular, nsString(info.title));
            [self addTabViewItem:item];
        }
    }
    return self;
}

- (void)select:(SettingsTab)tab {
    self.selectedTabViewItemIndex = static_cast<NSInteger>(tab);
}

- (void)tabView:(NSTabView *)tabView didSelectTabViewItem:(NSTabViewItem *)tabViewItem {
    [super tabView:tabView didSelectTabViewItem:tabViewItem];
    const auto store = _store.lock();
    ScrimletSettingsPageController *page =
        (ScrimletSettingsPageController *)tabViewItem.viewController;
    if (store && page) {
        store->settingsTab = page.tab;
    }
}

@end

NSViewController *ScrimletSettingsPageViewController(std::weak_ptr<StageStore> store,
                                                     StageStore::SettingsTab tab) {
    return [[ScrimletSettingsPageController alloc] initWithTab:tab store:std::move(store)];
}

namespace scrimlet::mac::Interface {

void showSettingsWindow(StageStore &store) {
    static NSWindow *window = nil;
    static ScrimletSettingsTabs *tabs = nil;
    if (!window) {
        tabs = [[ScrimletSettingsTabs alloc] initWithStore:store.weak_from_this()];
        window = [NSWindow windowWithContentViewController:tabs];
        window.styleMask =
            NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskMiniaturizable;
        window.releasedWhenClosed = NO;
        window.backgroundColor = nsColor(Theme::canvas);
        [window setContentSize:NSMakeSize(pageWidth, pageHeight)];
        [window center];
        [window setFrameAutosaveName:@"ScrimletSettings"];
    }
    [tabs select:store.settingsTab];
    NSApplication *app = NSApp;
    if (@available(macOS 14.0, *)) {
        [app activate];
    } else {
        [app activateIgnoringOtherApps:YES];
    }
    [window makeKeyAndOrderFront:nil];
}

} // namespace scrimlet::mac::Interface
