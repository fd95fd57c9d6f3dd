#import "Scenery.hpp"

#import "../menubar/MenuBarTidy.hpp"
#import "../system/MacSystem.hpp"
#import "BackdropController.h"
#import "CountdownOverlay.h"
#import "DesktopCover.h"
#import "KeyboardLock.h"
#import "SpotlightController.h"

#include "Harness.hpp"
#include "SceneryControl.hpp"

#include <memory>

namespace scrimlet::mac::Scenery {

namespace {

// The scene controllers, as the portable rules of the scenery reach them.
class MacSceneryPanels final : public SceneryPanels {
  public:
    bool coverUp() const override { return cover.isUp(); }
    void showCover() override { cover.show(); }
    void hideCover() override { cover.hide(); }

    bool backdropUp() const override { return backdrop->isUp(); }
    void showBackdrop(const BackdropStyle &style) override { backdrop->show(style); }
    void hideBackdrop() override { backdrop->hide(); }

    bool spotlightUp() const override { return spot->isUp(); }
    void showSpotlight(double radius, double dim) override { spot->show(radius, dim); }
    void hideSpotlight() override { spot->hide(); }

    bool keyboardLocked() const override { return lock.isLocked(); }
    void lockKeyboard(std::function<void()> done) override { lock.lock(std::move(done)); }
    void unlockKeyboard() override { lock.unlock(); }

    bool menuBarCollapsed() const override { return MenuBarTidy::isCollapsed(); }
    void setMenuBarCollapsed(bool collapsed) override { MenuBarTidy::setCollapsed(collapsed); }

    DesktopCover cover;
    // Shared, so that their timers can hold them weakly.
    std::shared_ptr<BackdropController> backdrop =
        std::make_shared<BackdropController>([]() -> std::optional<std::int64_t> {
            const auto pid = frontAppPID();
            return pid ? frontWindowNumber(*pid) : std::nullopt;
        });
    std::shared_ptr<SpotlightController> spot = std::make_shared<SpotlightController>();
    KeyboardLock lock;
    CountdownOverlay countdown;
};

// The one scenery of the process, made on first use and never torn down: its windows die
// with the process.
struct Shared {
    MacSceneryPanels panels;
    SceneryControl control{panels, [] { return Harness::isTestRun(); }};
};

Shared &shared() {
    static Shared *scenery = new Shared();
    return *scenery;
}

} // namespace

void installHooks(SceneryHooks hooks) { shared().control.installHooks(std::move(hooks)); }

bool isOn(EffectKind kind) { return shared().control.isOn(kind); }

void set(EffectKind kind, bool on) { shared().control.set(kind, on); }

void screensChanged() { shared().control.screensChanged(); }

void showCountdown(int seconds) { shared().panels.countdown.show(seconds); }

void hideCountdown() { shared().panels.countdown.hide(); }

bool backdropShowing() { return shared().panels.backdrop->isUp(); }

void restyleBackdrop() { shared().control.restyleBackdrop(); }

void orderBackdropBehindFront() { shared().panels.backdrop->orderBehindFront(); }

} // namespace scrimlet::mac::Scenery
