#import "UpdateWindow.hpp"

#import "../common/Text.h"
#import "UpdateScreen.hpp"

#import <AppKit/AppKit.h>

#include <vector>

namespace {

namespace Layout {
constexpr CGFloat margin = 20;
constexpr CGFloat gap = 16;
constexpr CGFloat lineGap = 6;
constexpr CGFloat notesHeight = 120;
/// The width left for the text beside the icon.
constexpr CGFloat textWidth =
    vantrel::UpdateScreen::windowWidth - margin * 2 - vantrel::UpdateScreen::iconSize - gap;
} // namespace Layout

NSColor *nsColor(const scrimlet::Color &color) {
    return [NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue alpha:color.alpha];
}

} // namespace

@interface VantrelUpdateWindow : NSObject
@property(nonatomic) NSWindow *window;
@property(nonatomic) NSColor *accent;
- (void)showFor:(std::shared_ptr<vantrel::Updater>)updater reason:(vantrel::WindowReason)reason;
- (void)refresh;
@end

@implementation VantrelUpdateWindow {
    std::weak_ptr<vantrel::Updater> _updater;
    std::vector<vantrel::UpdateButton> _buttons;
    NSStackView *_text;
    NSStackView *_buttonRow;
}

- (instancetype)init {
    if ((self = [super init])) {
        [self build];
    }
    return self;
}

- (void)build {
    NSWindow *window = [[NSWindow alloc]
        initWithContentRect:NSMakeRect(0, 0, vantrel::UpdateScreen::windowWidth, 160)
                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable
                    backing:NSBackingStoreBuffered
                      defer:YES];
    window.title = scrimlet::mac::toNSString(vantrel::UpdateScreen::windowTitle);
    window.identifier = scrimlet::mac::toNSString(vantrel::UpdateScreen::windowIdentifier);
    window.releasedWhenClosed = NO;
    // An agent's window otherwise stays on the Space it was first shown on.
    window.collectionBehavior |= NSWindowCollectionBehaviorMoveToActiveSpace;

    NSApplication *app = NSApp;
    NSImageView *iconView = [NSImageView imageViewWithImage:app.applicationIconImage];
    iconView.translatesAutoresizingMaskIntoConstraints = NO;

    _text = [[NSStackView alloc] init];
    _text.orientation = NSUserInterfaceLayoutOrientationVertical;
    _text.alignment = NSLayoutAttributeLeading;
    _text.spacing = Layout::lineGap;
    _text.translatesAutoresizingMaskIntoConstraints = NO;

    _buttonRow = [[NSStackView alloc] init];
    _buttonRow.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    _buttonRow.spacing = 8;
    _buttonRow.translatesAutoresizingMaskIntoConstraints = NO;

    NSView *content = [[NSView alloc] init];
    [content addSubview:iconView];
    [content addSubview:_text];
    [content addSubview:_buttonRow];
    const CGFloat iconSize = vantrel::UpdateScreen::iconSize;
    [NSLayoutConstraint activateConstraints:@[
        [content.widthAnchor constraintEqualToConstant:vantrel::UpdateScreen::windowWidth],
        [iconView.widthAnchor constraintEqualToConstant:iconSize],
        [iconView.heightAnchor constraintEqualToConstant:iconSize],
        [iconView.leadingAnchor constraintEqualToAnchor:content.leadingAnchor
                                               constant:Layout::margin],
        [iconView.topAnchor constraintEqualToAnchor:content.topAnchor constant:Layout::margin],
        [_text.leadingAnchor constraintEqualToAnchor:iconView.trailingAnchor constant:Layout::gap],
        [_text.trailingAnchor constraintEqualToAnchor:content.trailingAnchor
                                             constant:-Layout::margin],
        [_text.topAnchor constraintEqualToAnchor:content.topAnchor constant:Layout::margin],
        [_buttonRow.topAnchor constraintGreaterThanOrEqualToAnchor:_text.bottomAnchor
                                                          constant:Layout::margin],
        [_buttonRow.topAnchor constraintGreaterThanOrEqualToAnchor:iconView.bottomAnchor
                                                          constant:Layout::margin],
        [_buttonRow.trailingAnchor constraintEqualToAnchor:content.trailingAnchor
                                                  constant:-Layout::margin],
        [_buttonRow.bottomAnchor constraintEqualToAnchor:content.bottomAnchor
                                                constant:-Layout::margin],
    ]];
    window.contentView = content;
    self.window = window;
}

- (void)showFor:(std::shared_ptr<vantrel::Updater>)updater reason:(vantrel::WindowReason)reason {
    _updater = updater;
    const BOOL wasVisible = self.window.visible;
    [self refresh];
    if (!wasVisible) {
        [self.window center];
    }
    if (vantrel::UpdateScreen::takesFocus(reason)) {
        NSApplication *app = NSApp;
        if (@available(macOS 14.0, *)) {
            [app activate];
        } else {
            [app activateIgnoringOtherApps:YES];
        }
        [self.window makeKeyAndOrderFront:nil];
    }
    // An accessory app is rarely the active one: without this its window would open behind
    // the app the user is in.
    [self.window orderFrontRegardless];
}

- (void)refresh {
    const auto updater = _updater.lock();
    if (!updater) {
        return;
    }
    const vantrel::UpdateScreen screen = vantrel::UpdateScreen::of(*updater);
    for (NSView *view in _text.arrangedSubviews.copy) {
        [_text removeArrangedSubview:view];
        [view removeFromSuperview];
    }

    NSTextField *title = [NSTextField labelWithString:scrimlet::mac::toNSString(screen.title)];
    title.font = [NSFont boldSystemFontOfSize:NSFont.systemFontSize];
    [self addText:title];
    if (!screen.detail.empty()) {
        NSTextField *detail =
            [NSTextField wrappingLabelWithString:scrimlet::mac::toNSString(screen.detail)];
        detail.font = [NSFont systemFontOfSize:NSFont.smallSystemFontSize];
        [self addText:detail];
    }
    if (screen.progress) {
        NSProgressIndicator *bar = [[NSProgressIndicator alloc] init];
        bar.style = NSProgressIndicatorStyleBar;
        bar.indeterminate = NO;
        bar.minValue = 0;
        bar.maxValue = 1;
        bar.doubleValue = *screen.progress;
        [self addText:bar];
    } else if (screen.spinning) {
        NSProgressIndicator *spinner = [[NSProgressIndicator alloc] init];
        spinner.style = NSProgressIndicatorStyleSpinning;
        spinner.controlSize = NSControlSizeSmall;
        spinner.indeterminate = YES;
        [spinner startAnimation:nil];
        [_text addArrangedSubview:spinner];
    }
    if (screen.notes && !screen.notes->empty()) {
        NSScrollView *scroll = [NSTextView scrollableTextView];
        NSTextView *notes = scroll.documentView;
        notes.editable = NO;
        notes.string = scrimlet::mac::toNSString(*screen.notes);
        notes.font = [NSFont systemFontOfSize:NSFont.smallSystemFontSize];
        scroll.borderType = NSBezelBorder;
        [self addText:scroll];
        [scroll.heightAnchor constraintEqualToConstant:Layout::notesHeight].active = YES;
    }

    [self setButtons:screen.buttons];
    [self fitWindow];
}

/// A full-width line of the text column.
- (void)addText:(NSView *)view {
    view.translatesAutoresizingMaskIntoConstraints = NO;
    if ([view isKindOfClass:NSTextField.class]) {
        static_cast<NSTextField *>(view).preferredMaxLayoutWidth = Layout::textWidth;
    }
    [_text addArrangedSubview:view];
    [view.widthAnchor constraintEqualToConstant:Layout::textWidth].active = YES;
}

- (void)setButtons:(const std::vector<vantrel::UpdateButton> &)buttons {
    _buttons = buttons;
    for (NSView *view in _buttonRow.arrangedSubviews.copy) {
        [_buttonRow removeArrangedSubview:view];
        [view removeFromSuperview];
    }
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        NSButton *button = [NSButton buttonWithTitle:scrimlet::mac::toNSString(buttons[i].title)
                                              target:self
                                              action:@selector(act:)];
        button.tag = static_cast<NSInteger>(i);
        if (i + 1 == buttons.size()) {
            button.keyEquivalent = @"\r";
            button.bezelColor = self.accent;
        } else if (buttons[i].action == vantrel::UpdateAction::close) {
            button.keyEquivalent = @"\033";
        }
        [_buttonRow addArrangedSubview:button];
    }
}

/// The window's height follows what it says; its top edge stays where it was.
- (void)fitWindow {
    NSView *content = self.window.contentView;
    [content layoutSubtreeIfNeeded];
    const NSSize size = content.fittingSize;
    const NSRect old = self.window.frame;
    NSRect frame = [self.window frameRectForContentRect:NSMakeRect(0, 0, size.width, size.height)];
    frame.origin = NSMakePoint(old.origin.x, NSMaxY(old) - frame.size.height);
    [self.window setFrame:frame display:YES];
}

- (void)act:(NSButton *)sender {
    const auto updater = _updater.lock();
    const auto index = static_cast<std::size_t>(sender.tag);
    if (!updater || index >= _buttons.size()) {
        return;
    }
    // A copy: the action itself changes the phase that holds the feed.
    std::optional<vantrel::UpdateFeed> feed;
    if (const vantrel::UpdateFeed *shown = updater->phase().feed()) {
        feed = *shown;
    }
    switch (_buttons[index].action) {
    case vantrel::UpdateAction::close:
        [self.window close];
        break;
    case vantrel::UpdateAction::download:
        if (feed) {
            updater->download(*feed);
        }
        break;
    case vantrel::UpdateAction::openDownloadPage:
        if (const auto page = feed ? vantrel::UpdateScreen::downloadPage(*feed) : std::nullopt) {
            NSURL *url = [NSURL URLWithString:scrimlet::mac::toNSString(*page)];
            if (url) {
                [NSWorkspace.sharedWorkspace openURL:url];
            }
        }
        [self.window close];
        break;
    case vantrel::UpdateAction::installAndRelaunch:
        updater->installAndRelaunch();
        break;
    }
}

@end

namespace scrimlet::mac::UpdateWindow {

namespace {

VantrelUpdateWindow *__strong &current() {
    static VantrelUpdateWindow *window = nil;
    return window;
}

} // namespace

void show(const std::shared_ptr<vantrel::Updater> &updater, vantrel::WindowReason reason,
          const Color &accent) {
    if (!updater) {
        return;
    }
    if (!current()) {
        current() = [[VantrelUpdateWindow alloc] init];
    }
    current().accent = nsColor(accent);
    [current() showFor:updater reason:reason];
}

void refresh() { [current() refresh]; }

} // namespace scrimlet::mac::UpdateWindow
