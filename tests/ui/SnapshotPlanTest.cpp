#include "SnapshotPlan.hpp"

#include "MenuGlyph.hpp"
#include "SceneCards.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace scrimlet {
namespace {

using Tab = StageStore::SettingsTab;

SnapshotShot find(const std::string& name) {
    const auto all = SnapshotPlan::shots();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const SnapshotShot& shot) { return shot.name == name; });
    EXPECT_NE(found, all.end()) << name;
    return found == all.end() ? SnapshotShot{} : *found;
}

std::shared_ptr<StageStore> staged(const std::string& name) {
    return SnapshotPlan::stage(find(name));
}

bool needsSetup(const StageStore& store, EffectKind kind) {
    const auto found = store.availability().find(kind);
    return found != store.availability().end() &&
           found->second.kind() == Availability::Case::needsSetup;
}

TEST(SnapshotPlan, EveryShotHasOneFileInEachLook) {
    const auto all = SnapshotPlan::shots();
    // Nine dropdowns, seven pages, four backdrop kinds, seven empty pages.
    ASSERT_EQ(all.size(), 27u);
    EXPECT_EQ(all.front().name, "popover-idle-");
    EXPECT_EQ(all[9].name, "settings-stage-");
    EXPECT_EQ(all[15].name, "settings-runSheets-");
    EXPECT_EQ(all[16].name, "settings-backdrop-color-");
    EXPECT_EQ(all[19].name, "settings-backdrop-wallpaper-");
    EXPECT_EQ(all.back().name, "settings-runSheets-empty-");
    std::set<std::string> files;
    for (const SnapshotLook& look : SnapshotPlan::looks) {
        for (const SnapshotShot& shot : all) {
            files.insert(SnapshotPlan::fileName(shot, look));
        }
    }
    EXPECT_EQ(files.size(), 54u);
    EXPECT_TRUE(files.contains("popover-live-zoom-dark.png"));
    EXPECT_TRUE(files.contains("settings-menuBar-empty-light.png"));
    EXPECT_EQ(SnapshotPlan::looks[1].appearance, Appearance::dark);
    EXPECT_EQ(SnapshotPlan::backdropFileName(BackdropStyle::Kind::mesh), "mesh.png");

    // The run ends by itself unless told to stay, even by an empty value.
    EXPECT_FALSE(SnapshotPlan::staysAfterShots({{"SCRIMLET_SNAPSHOT_DIR", "/tmp/shots"}}));
    EXPECT_TRUE(SnapshotPlan::staysAfterShots({{"SCRIMLET_SNAPSHOT_STAY", ""}}));
}

TEST(SnapshotPlan, TheDropdownIsShotInTheStateItsNameSays) {
    const auto idle = staged("popover-idle-");
    EXPECT_TRUE(idle->show().isDark());
    EXPECT_FALSE(idle->recovered || idle->justEnded);
    EXPECT_EQ(idle->show().sheets().size(), 3u);
    EXPECT_EQ(idle->route, StageStore::PopoverRoute::home);

    const auto recovered = staged("popover-recovered-");
    ASSERT_TRUE(recovered->recovered);
    EXPECT_EQ(recovered->recovered->how, "Scrimlet quit unexpectedly");
    EXPECT_EQ(recovered->recovered->reason, EndReason::recovered);
    EXPECT_FALSE(recovered->recovered->strike.empty());
    EXPECT_TRUE(recovered->show().isDark());
    EXPECT_FALSE(recovered->director().hasOutstanding());

    const auto standby = staged("popover-standby-");
    EXPECT_EQ(standby->phase().kind(), ShowPhase::Case::standby);
    EXPECT_EQ(standby->countdown(), 3);

    const auto zoom = staged("popover-live-zoom-");
    ASSERT_TRUE(zoom->show().isLive());
    ASSERT_TRUE(zoom->show().current() && zoom->show().current()->source);
    EXPECT_EQ(zoom->show().current()->source->bundleID, "us.zoom.xos");

    const auto manual = staged("popover-live-manual-");
    ASSERT_TRUE(manual->show().isLive());
    EXPECT_EQ(manual->show().current()->how, "Started with ⌃⌥⌘S");
    EXPECT_FALSE(manual->show().current()->source);

    const auto setup = staged("popover-needs-setup-");
    EXPECT_TRUE(needsSetup(*setup, EffectKind::doNotDisturb));
    EXPECT_TRUE(needsSetup(*setup, EffectKind::menuBarTidy));
    EXPECT_FALSE(needsSetup(*idle, EffectKind::doNotDisturb));

    const auto ended = staged("popover-ended-");
    EXPECT_TRUE(ended->show().isDark());
    ASSERT_TRUE(ended->justEnded);
    EXPECT_EQ(ended->justEnded->reason, EndReason::captureEnded);
    EXPECT_EQ(ended->show().sheets().size(), 4u);

    EXPECT_EQ(staged("popover-switches-")->route, StageStore::PopoverRoute::switches);
    EXPECT_TRUE(staged("popover-nothing-pinned-")->settings().pinnedSwitches().empty());
    EXPECT_FALSE(idle->settings().pinnedSwitches().empty());
}

TEST(SnapshotPlan, PagesAreShotWithTheirDataAndWithout) {
    for (const SnapshotShot& shot : SnapshotPlan::shots()) {
        if (shot.view != SnapshotShot::View::settings) {
            continue;
        }
        const auto store = SnapshotPlan::stage(shot);
        EXPECT_EQ(store->settingsTab, shot.tab) << shot.name;
        EXPECT_TRUE(shot.name.starts_with("settings-" + std::string(rawValue(*shot.tab)) + "-"));
        EXPECT_EQ(shot.name.ends_with("-empty-"), shot.empty) << shot.name;
        // Shots never write: no settings, journal or sheets file.
        EXPECT_FALSE(store->settingsURL() || store->sheetsURL()) << shot.name;
        if (shot.empty) {
            EXPECT_TRUE(store->show().sheets().empty()) << shot.name;
            EXPECT_TRUE(store->settings().keepVisible.empty()) << shot.name;
        } else {
            EXPECT_EQ(store->show().sheets().size(), 3u) << shot.name;
            EXPECT_EQ(store->settings().keepVisible, std::vector<std::string>{"com.apple.Keynote"});
        }
        if (shot.backdrop) {
            EXPECT_EQ(shot.tab, Tab::backdrop);
            EXPECT_EQ(store->settings().backdropStyle.kind, *shot.backdrop);
            EXPECT_TRUE(shot.name.find(rawValue(*shot.backdrop)) != std::string::npos);
        }
    }
}

TEST(SnapshotPlan, TheOnceOnlyPicturesShowTheSceneryOnTheDemoScreen) {
    const auto all = SnapshotPlan::pictures(estimateTextSize);
    std::vector<std::string> files;
    for (const auto& picture : all) {
        files.push_back(picture.file);
    }
    EXPECT_EQ(files, (std::vector<std::string>{"menubar-glyphs.png", "overlay-countdown.png",
                                               "overlay-keyboard-lock.png", "overlay-spotlight.png",
                                               "backdrops/color.png", "backdrops/gradient.png",
                                               "backdrops/mesh.png", "backdrops/picture.png",
                                               "backdrops/wallpaper.png"}));

    // Three glyphs side by side: dark, standby, live, the last the widest, with its lamp.
    const Drawing& glyphs = all[0].drawing;
    EXPECT_EQ(glyphs.size.width, 12 * 4 + 18 + 18 + 22);
    std::size_t ops = 0;
    for (const auto& [live, standby] : {std::pair{false, false}, {false, true}, {true, false}}) {
        ops += MenuGlyph::asShown(live, standby, Appearance::light).ops.size();
    }
    EXPECT_EQ(glyphs.ops.size(), ops);

    EXPECT_EQ(all[1].drawing, CountdownCard{3}.drawing());
    const Size screen = SnapshotPlan::screenSize();
    EXPECT_EQ(screen, (Size{1512, 982}));
    const auto lockTexts = all[2].drawing.all<TextOp>();
    EXPECT_TRUE(std::any_of(lockTexts.begin(), lockTexts.end(),
                            [](const TextOp& text) { return text.text == LockCard::title; }));
    EXPECT_EQ(all[3].drawing.size, screen);

    // Only the picture and the wallpaper backdrops name an image, each its own.
    const auto images = [&](std::size_t i) {
        std::vector<std::string> names;
        for (const ImageOp& image : all[i].drawing.all<ImageOp>()) {
            names.push_back(image.image);
        }
        return names;
    };
    for (const std::size_t plain : {4u, 5u, 6u}) {
        EXPECT_TRUE(images(plain).empty()) << files[plain];
    }
    EXPECT_EQ(images(7), std::vector<std::string>{"demo-wallpaper"});
    EXPECT_EQ(images(8), std::vector<std::string>{"wallpaper"});
}

} // namespace
} // namespace scrimlet
