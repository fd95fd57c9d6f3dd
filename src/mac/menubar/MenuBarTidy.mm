#import "MenuBarTidy.hpp"

#import "../app/SharedStore.hpp"
#import "../common/Text.h"
#import "Harness.hpp"
#import "MenuBarDivider.hpp"
#import "MenuBarScreens.h"

#import <AppKit/AppKit.h>

/// The divider button's target: its click goes to the switch board, like any switch.
@interface ScrimletDividerTarget : NSObject
- (void)clicked:(id)sender;
@end

@implementation ScrimletDividerTarget

- (void)clicked:(id)sender {
    scrimlet::dividerClicked(scrimlet::mac::sharedStore());
}

@end

namespace scrimlet::mac::MenuBarTidy {

namespace {

NSImage *symbolImage(std::string_view name) {
    return [NSImage imageWithSystemSymbolName:toNSString(name)
                     accessibilityDescription:toNSString(MenuBarDivider::symbolDescription)];
}

/// The divider's item in the system's status bar.
class StatusBarDivider final : public DividerBar {
  public:
    void addItem(double length, std::string_view symbol) override {
        item_ = [NSStatusBar.systemStatusBar statusItemWithLength:length];
        // The place the user drags it to survives restarts under this name.
        item_.autosaveName = toNSString(MenuBarDivider::autosaveName);
        NSStatusBarButton *button = item_.button;
        NSImage *image = symbolImage(symbol);
        [image setTemplate:YES];
        button.image = image;
        button.target = target_;
        button.action = @selector(clicked:);
        button.toolTip = toNSString(MenuBarDivider::toolTip);
        // Labelled on its own too, for the stretch where it shows no image.
        button.accessibilityLabel = toNSString(MenuBarDivider::symbolDescription);
        observeDisplays();
    }

    void removeItem() override {
        if (item_) {
            [NSStatusBar.systemStatusBar removeStatusItem:item_];
        }
        item_ = nil;
    }

    void showItem(double length, std::optional<std::string_view> symbol) override {
        item_.length = length;
        item_.button.image = symbol ? symbolImage(*symbol) : nil;
    }

  private:
    void observeDisplays();

    NSStatusItem *item_ = nil;
    ScrimletDividerTarget *target_ = [[ScrimletDividerTarget alloc] init];
    id displaysObserver_ = nil;
};

MenuBarDivider &divider() {
    static StatusBarDivider bar;
    static MenuBarDivider shared(
        bar, [] { return Harness::isTestRun(); }, [] { return MenuBarScreens::metrics(); });
    return shared;
}

void StatusBarDivider::observeDisplays() {
    if (displaysObserver_) {
        return;
    }
    displaysObserver_ = [NSNotificationCenter.defaultCenter
        addObserverForName:NSApplicationDidChangeScreenParametersNotification
                    object:nil
                     queue:NSOperationQueue.mainQueue
                usingBlock:^(NSNotification *) {
                    divider().displaysChanged();
                }];
}

} // namespace

void setInstalled(bool installed) { divider().setInstalled(installed); }

bool isInstalled() { return divider().isInstalled(); }

bool isCollapsed() { return divider().isCollapsed(); }

void setCollapsed(bool collapsed) { divider().setCollapsed(collapsed); }

} // namespace scrimlet::mac::MenuBarTidy
