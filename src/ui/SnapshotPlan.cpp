#include "SnapshotPlan.hpp"

#include "BackdropView.hpp"
#include "DemoCapture.hpp"
#include "FakeStageSystem.hpp"
#include "Harness.hpp"
#include "JournalStore.hpp"
#include "ManualClock.hpp"
#include "MenuGlyph.hpp"
#include "SceneCards.hpp"
#include "SpotlightView.hpp"

namespace scrimlet::SnapshotPlan {

namespace {

using Tab = StageStore::SettingsTab;
using Kind = BackdropStyle::Kind;

constexpr std::array<Tab, 7> tabs = {Tab::stage,    Tab::cues,  Tab::backdrop, Tab::menuBar,
                                     Tab::switches, Tab::quiet, Tab::runSheets};
constexpr std::array<Kind, 4> backdropPages = {Kind::color, Kind::gradient, Kind::picture,
                                               Kind::wallpaper};

SnapshotShot dropdown(std::string name) {
    return {std::move(name), SnapshotShot::View::dropdown, std::nullopt, std::nullopt, false};
}

SnapshotShot settings(Tab tab, std::string suffix = "", std::optional<Kind> kind = std::nullopt,
                      bool empty = false) {
    return {"settings-" + std::string(rawValue(tab)) + "-" + suffix, SnapshotShot::View::settings,
            tab, kind, empty};
}

std::shared_ptr<StageStore> demoStore(bool sheets, std::optional<StageSettings> settings) {
    return StageStore::demo(Harness::demoNow(), std::nullopt, std::move(settings),
                            FakeStageSystem::demo(), sheets);
}

/// Zoom shares until the curtain is up; the watcher waits a moment before it believes it.
void shareUntilLive(StageStore& store) {
    for (int second = 0; second < 10 && !store.show().isLive(); ++second) {
        store.demoObserve(DemoCapture::zoomSharing());
    }
}

/// A show that dies mid-way, leaving its journal, and the next launch that heals it.
std::shared_ptr<StageStore> recovered() {
    const auto system = FakeStageSystem::demo();
    const auto launch = [&](std::shared_ptr<JournalStore> journal) {
        return StageStore::create(StageStore::Mode::demo, system, system, std::move(journal),
                                  StageStore::demoSettings(), std::nullopt, std::nullopt,
                                  std::make_shared<ManualClock>(Harness::demoNow()));
    };
    const auto dying = std::make_shared<JournalStore>();
    {
        const auto doomed = launch(dying);
        // At the instant of death nothing more reaches the journal.
        system->onCrash = [dying] { dying->freeze(); };
        system->setCrash(FakeStageSystem::CrashPoint::afterWrite(4));
        doomed->startShow("Started from the menu", false);
    }
    system->onCrash = nullptr;
    system->revive();
    system->processDied();
    // The next process reads what the dead one left.
    const auto left = std::make_shared<JournalStore>();
    left->save(dying->load());
    const auto store = launch(left);
    store->recoverAtLaunch();
    store->refreshAvailability();
    return store;
}

} // namespace

std::vector<SnapshotShot> shots() {
    std::vector<SnapshotShot> all = {
        dropdown("popover-idle-"),           dropdown("popover-recovered-"),
        dropdown("popover-standby-"),        dropdown("popover-live-zoom-"),
        dropdown("popover-live-manual-"),    dropdown("popover-needs-setup-"),
        dropdown("popover-ended-"),          dropdown("popover-switches-"),
        dropdown("popover-nothing-pinned-"),
    };
    for (const Tab tab : tabs) {
        all.push_back(settings(tab));
    }
    for (const Kind kind : backdropPages) {
        all.push_back(settings(Tab::backdrop, std::string(rawValue(kind)) + "-", kind));
    }
    for (const Tab tab : tabs) {
        all.push_back(settings(tab, "empty-", std::nullopt, true));
    }
    return all;
}

std::string fileName(const SnapshotShot& shot, const SnapshotLook& look) {
    return shot.name + std::string(look.name) + ".png";
}

bool staysAfterShots(const Harness::Environment& environment) {
    return environment.contains("SCRIMLET_SNAPSHOT_STAY");
}

Size screenSize() {
    return DemoCapture::display().frame.size();
}

std::vector<Picture> pictures(const TextMeasurer& measure) {
    std::vector<Picture> all;

    // Dark, standby and live, as a light menu bar shows them, a glyph's width apart.
    constexpr double gap = 12;
    const std::array<std::pair<bool, bool>, 3> states = {
        {{false, false}, {false, true}, {true, false}}};
    double width = gap;
    double height = 0;
    for (const auto& [live, standby] : states) {
        width += MenuGlyph::size(live).width + gap;
        height = std::max(height, MenuGlyph::size(live).height);
    }
    Canvas glyphs({width, height + gap * 2});
    double x = gap;
    for (const auto& [live, standby] : states) {
        glyphs.draw(MenuGlyph::asShown(live, standby, Appearance::light), {x, gap});
        x += MenuGlyph::size(live).width + gap;
    }
    all.push_back({std::string(menuBarGlyphs), glyphs.finish()});

    const Size screen = screenSize();
    all.push_back({std::string(countdownOverlay), CountdownCard{3}.drawing()});
    all.push_back(
        {std::string(keyboardLockOverlay), LockCard{true}.layout(screen, measure).drawing});
    // The pointer in the middle of the screen, with the spotlight as the demo sets it; the
    // pointer's place is read y upward, as the system gives it.
    const StageSettings settings = StageStore::demoSettings();
    SpotlightView spotlight;
    spotlight.radius = settings.spotlightRadius;
    spotlight.dim = settings.spotlightDim;
    spotlight.pointer = {screen.width * 0.5, screen.height * 0.5};
    all.push_back({std::string(spotlightOverlay), spotlight.drawing(screen)});

    for (const BackdropStyle::Kind kind : backdrop_kind::allCases) {
        BackdropView view;
        view.style.kind = kind;
        if (kind == BackdropStyle::Kind::picture) {
            view.style.picturePath = std::string(paintedWallpaper);
            view.picture = ImageRef{std::string(paintedWallpaper), screen};
        }
        if (kind == BackdropStyle::Kind::wallpaper) {
            view.wallpaper = ImageRef{std::string(blurredWallpaper), screen};
        }
        all.push_back(
            {std::string(backdropsFolder) + "/" + backdropFileName(kind), view.drawing(screen)});
    }
    return all;
}

std::string backdropFileName(BackdropStyle::Kind kind) {
    return std::string(rawValue(kind)) + ".png";
}

std::shared_ptr<StageStore> stage(const SnapshotShot& shot) {
    if (shot.view == SnapshotShot::View::settings) {
        StageSettings settings = shot.empty ? StageSettings() : StageStore::demoSettings();
        if (shot.backdrop) {
            settings.backdropStyle.kind = *shot.backdrop;
        }
        auto store = demoStore(!shot.empty, settings);
        store->settingsTab = *shot.tab;
        return store;
    }
    const std::string& name = shot.name;
    if (name == "popover-recovered-") {
        return recovered();
    }
    if (name == "popover-nothing-pinned-") {
        StageSettings settings = StageStore::demoSettings();
        for (const SwitchKind kind : switch_kind::allCases) {
            SwitchPrefs prefs = settings.prefs(kind);
            prefs.pinned = false;
            settings.setPrefs(kind, prefs);
        }
        return demoStore(true, settings);
    }
    auto store = demoStore(true, std::nullopt);
    if (name == "popover-standby-") {
        store->startShow("Started from the menu", true);
    } else if (name == "popover-live-zoom-") {
        shareUntilLive(*store);
    } else if (name == "popover-live-manual-") {
        store->startShow("Started with ⌃⌥⌘S", false);
    } else if (name == "popover-needs-setup-") {
        store->fake()->availabilityOverrides = {
            {EffectKind::doNotDisturb,
             Availability::needsSetup("Add the two Scrimlet shortcuts (Settings › Quiet)")},
            {EffectKind::menuBarTidy,
             Availability::needsSetup("Turn on the menu bar divider (Settings › Menu Bar)")}};
        store->refreshAvailability();
    } else if (name == "popover-ended-") {
        shareUntilLive(*store);
        for (int second = 0; second < 10 && !store->show().isDark(); ++second) {
            store->demoObserve(DemoCapture::idle());
        }
    } else if (name == "popover-switches-") {
        store->route = StageStore::PopoverRoute::switches;
    }
    return store;
}

} // namespace scrimlet::SnapshotPlan
