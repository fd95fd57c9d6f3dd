#include "Dropdown.hpp"

#include "InterfaceRig.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using testing::InterfaceRig;

std::vector<std::string> titles(const std::vector<CueRowModel>& rows) {
    std::vector<std::string> out;
    for (const auto& row : rows) {
        out.push_back(row.title);
    }
    return out;
}

const CueRowModel* rowOf(const std::vector<CueRowModel>& rows, EffectKind kind) {
    for (const auto& row : rows) {
        if (row.kind == kind) {
            return &row;
        }
    }
    return nullptr;
}

CueRecord record(EffectKey key, CueOutcome outcome) {
    return CueRecord(std::move(key), std::move(outcome), Date{0});
}

EffectKey app(const std::string& name, int pid) {
    return EffectKey(EffectKind::appHidden, AppTarget("com.example." + name, pid, name).encoded());
}

TEST(Dropdown, IdleOffersTheBigActionThePlanAndThePinnedSwitches) {
    InterfaceRig rig;
    const DropdownModel model = Dropdown::model(*rig.store);
    ASSERT_TRUE(model.home);
    EXPECT_FALSE(model.allSwitches);
    EXPECT_EQ(model.width, 360);
    const HomeModel& home = *model.home;

    EXPECT_EQ(home.header.face, StageHeaderModel::Face::offCurtain);
    EXPECT_EQ(home.header.height, 148);
    ASSERT_EQ(home.header.lines.size(), 2u);
    EXPECT_EQ(home.header.lines[0].text.text, "HOUSE OPEN");
    EXPECT_EQ(home.header.lines[0].text.color.dark, Theme::lightGlow.opacity(0.92));
    EXPECT_EQ(home.header.lines[1].text.text, "Waiting in the wings for a share or recording");
    EXPECT_EQ(home.header.lines[1].text.color.light, Color::white(0.72));
    EXPECT_EQ(home.header.accessibilityText, "House open. Nothing is being shared.");

    ASSERT_EQ(home.actionRow.buttons.size(), 1u);
    const ButtonModel& raise = home.actionRow.buttons[0];
    EXPECT_EQ(raise.title, "Raise the Curtain");
    EXPECT_EQ(raise.symbol, "theatermasks.fill");
    EXPECT_EQ(raise.trailing, "⌃⌥⌘S");
    EXPECT_EQ(raise.style, ButtonModel::Style::primary);
    EXPECT_EQ(raise.fill, fixed(Theme::lightFill));
    EXPECT_EQ(raise.ink, fixed(Theme::onLight));
    EXPECT_EQ(raise.key, ButtonModel::Key::defaultAction);
    EXPECT_EQ(home.actionRow.note->text,
              "Starts by itself when an app shares or records your screen. Or ⌥-click the icon.");
    EXPECT_EQ(home.actionRow.note->color, Theme::ink3);
    EXPECT_FALSE(home.note);

    // The plan as nine toggles, in the store's order, numbered from Q1.
    const auto& rows = home.cueList.rows;
    EXPECT_EQ(home.cueList.kicker, "Cue list");
    ASSERT_EQ(rows.size(), 9u);
    EXPECT_EQ(rows[0].title, "Hide desktop icons");
    EXPECT_EQ(rows[0].number.text, "Q1");
    EXPECT_EQ(rows[0].number.fill, fixed(Theme::lightFill)) << "a planned cue is lit";
    EXPECT_EQ(rows[2].title, "Backdrop · mesh");
    EXPECT_FALSE(rows[2].on);
    EXPECT_EQ(rows[2].number.ink, Theme::ink2);
    EXPECT_EQ(rows[8].number.text, "Q9");
    for (const auto& row : rows) {
        EXPECT_EQ(row.toggle, UiAction::togglePlan(row.kind));
        EXPECT_FALSE(row.outcome);
        EXPECT_FALSE(row.note);
    }

    // Eight switches pinned by default, none on.
    EXPECT_FALSE(home.switches.onTag);
    ASSERT_EQ(home.switches.tiles.size(), 8u);
    EXPECT_EQ(home.switches.tiles[0].title, "Hide Desktop Icons");
    EXPECT_EQ(home.switches.tiles[0].border, Theme::rule);
    EXPECT_EQ(home.switches.tiles[0].accessibilityValue, "Off");
    EXPECT_FALSE(home.switches.empty);
    EXPECT_EQ(home.switches.showAll.action, UiAction::goTo(PopoverRoute::switches));

    ASSERT_EQ(home.footer.size(), 3u);
    EXPECT_EQ(home.footer[0].help, "Run sheets");
    EXPECT_EQ(home.footer[0].action, UiAction::openSettings(SettingsTab::runSheets));
    EXPECT_EQ(home.footer[1].action, UiAction::openSettings(std::nullopt));
    EXPECT_EQ(home.footer[2].help, "Quit Scrimlet (puts everything back)");

    // Automatic starts off, no hotkey, and a capture on its way: each word changes.
    StageSettings quiet = rig.store->settings();
    quiet.autoStart = false;
    quiet.stageHotkey.reset();
    rig.store->setSettings(quiet);
    const HomeModel off = Dropdown::home(*rig.store);
    EXPECT_EQ(off.header.lines[1].text.text, "Automatic start is off");
    EXPECT_FALSE(off.actionRow.buttons[0].trailing);
    EXPECT_EQ(off.actionRow.note->text,
              "Automatic start is off. ⌥-click the icon or use the hotkey.");

    // A share the user stopped by hand goes on: the house is open, and says who shares.
    quiet.autoStart = true;
    rig.store->setSettings(quiet);
    rig.zoomShare();
    rig.store->stopShow();
    ASSERT_TRUE(rig.store->show().isDark());
    const StageHeaderModel detecting = Dropdown::header(*rig.store);
    EXPECT_EQ(detecting.lines[1].symbol, "exclamationmark.triangle");
    EXPECT_EQ(detecting.lines[1].text.text, "Zoom is starting to share…");
}

TEST(Dropdown, StandbyCountsDownWithACancelAndTheComingPlan) {
    InterfaceRig rig;
    rig.store->startShow("Started from the menu", true);
    const HomeModel home = Dropdown::home(*rig.store);
    EXPECT_EQ(home.header.face, StageHeaderModel::Face::onStage);
    ASSERT_EQ(home.header.lines.size(), 2u);
    EXPECT_EQ(home.header.lines[0].text.text, "3");
    EXPECT_EQ(home.header.lines[0].glow, (Glow{fixed(Theme::lightFill.opacity(0.8)), 14}));
    EXPECT_EQ(home.header.lines[1].text.text, "STANDBY");
    EXPECT_EQ(home.header.accessibilityText, "Standby, 3");

    ASSERT_EQ(home.actionRow.buttons.size(), 1u);
    EXPECT_EQ(home.actionRow.buttons[0].title, "Cancel");
    EXPECT_EQ(home.actionRow.buttons[0].key, ButtonModel::Key::cancel);
    EXPECT_EQ(home.actionRow.buttons[0].action, UiAction::of(UiAction::Kind::stopShow));
    EXPECT_FALSE(home.actionRow.note);

    // Nothing has changed yet: the list reads the planned cues, and clicks change nothing.
    EXPECT_EQ(
        titles(home.cueList.rows),
        (std::vector<std::string>{"Hide desktop icons", "Hide other apps", "Hide the Dock",
                                  "Do Not Disturb", "Mute alert sounds", "Keep the Mac awake"}));
    for (const auto& row : home.cueList.rows) {
        EXPECT_FALSE(row.toggle);
    }

    rig.seconds(1);
    EXPECT_EQ(Dropdown::header(*rig.store).lines[0].text.text, "2");
    rig.act(home.actionRow.buttons[0].action);
    EXPECT_TRUE(rig.store->show().isDark());
}

TEST(Dropdown, LiveByAShareListsWhatTheShowDidWithTheAppsMerged) {
    StageSettings settings;
    settings.keepVisible = {"com.apple.Notes"};
    InterfaceRig rig(settings);
    rig.zoomShare();
    ASSERT_TRUE(rig.store->show().isLive());
    rig.seconds(5);
    const HomeModel home = Dropdown::home(*rig.store);

    ASSERT_EQ(home.header.lines.size(), 3u);
    EXPECT_EQ(home.header.lines[0].text.text, "ON STAGE");
    EXPECT_EQ(home.header.lines[1].text.text, "0:05");
    EXPECT_EQ(home.header.lines[2].text.text, "Zoom is sharing your screen");
    EXPECT_EQ(home.header.lines[2].text.color.dark, Color::white(0.62));
    EXPECT_EQ(home.header.accessibilityText,
              "On stage for under a minute. Zoom is sharing your screen");

    ASSERT_EQ(home.actionRow.buttons.size(), 2u);
    EXPECT_EQ(home.actionRow.buttons[0].title, "Bring It Down");
    EXPECT_EQ(home.actionRow.buttons[0].fill, fixed(Theme::velvetMid));
    EXPECT_EQ(home.actionRow.buttons[1].title, "+15 min");
    EXPECT_EQ(home.actionRow.buttons[1].accessibilityLabel, "Add 15 minutes to the time limit");
    // Four apps are kept besides this one, and the note names the first three.
    EXPECT_EQ(rig.store->keptAppNames().size(), 4u);
    EXPECT_EQ(home.actionRow.note->text,
              "Ends when sharing stops · Kept: Takeloom, Keynote, Notes — 📝 ideas");

    const auto& rows = home.cueList.rows;
    const CueRowModel* hidden = rowOf(rows, EffectKind::appHidden);
    ASSERT_TRUE(hidden);
    EXPECT_EQ(hidden->title, "Hide 5 apps");
    EXPECT_EQ(hidden->detail, "Finder, Mail, Messages +2 more");
    EXPECT_EQ(hidden->outcome, CueOutcome::applied());
    EXPECT_EQ(hidden->badge->text, "Done");
    EXPECT_EQ(hidden->badge->tint, Theme::sage);
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(),
                            [](const CueRowModel& r) { return r.kind == EffectKind::appHidden; }),
              1);
    EXPECT_EQ(rows.front().title, "Hide desktop icons");
    EXPECT_EQ(rows.front().number.text, "Q1");
    EXPECT_EQ(rows[1].id, "appHidden") << "the merged row takes the place of the first app";
    for (const auto& row : rows) {
        EXPECT_FALSE(row.toggle) << "a running show's cues are not the plan";
    }
}

TEST(Dropdown, LiveByHandAndTheEndsOfAShowNeverContradictEachOther) {
    InterfaceRig rig;
    rig.store->startShow("Started with ⌃⌥⌘S", false);
    EXPECT_EQ(Dropdown::liveNote(*rig.store),
              "On until you bring it down · Kept: Takeloom, Keynote");
    EXPECT_EQ(Dropdown::header(*rig.store).lines.size(), 2u) << "no source, no sentence";
    EXPECT_EQ(Dropdown::header(*rig.store).accessibilityText, "On stage for under a minute.");

    // The "+15 min" gives a show without a limit one, and the note turns to its end.
    const ActionRowModel row = Dropdown::actionRow(*rig.store);
    rig.act(row.buttons[1].action);
    EXPECT_EQ(Dropdown::liveNote(*rig.store), "Ends in 15:00 · Kept: Takeloom, Keynote");
    rig.seconds(65);
    EXPECT_EQ(Dropdown::liveNote(*rig.store), "Ends in 13:55 · Kept: Takeloom, Keynote");
    EXPECT_EQ(Dropdown::actionRow(*rig.store).buttons[1].title, "+15 min")
        << "it stands in every live show";
    rig.store->stopShow();

    // An automatic show with a time limit: both its ends, never "On until...".
    InterfaceRig timed;
    StageSettings limited = timed.store->settings();
    limited.timeLimitMinutes = 30;
    timed.store->setSettings(limited);
    timed.zoomShare();
    EXPECT_EQ(Dropdown::liveNote(*timed.store),
              "Ends in 30:00 · Ends when sharing stops · Kept: Takeloom, Keynote, zoom.us");

    // Adopted by hand, the same show no longer ends with the share.
    timed.store->startShow("Started from the menu");
    EXPECT_EQ(Dropdown::liveNote(*timed.store).find("Ends when sharing stops"), std::string::npos);
}

TEST(Dropdown, AChangeByHandShowsAsYoursNowAndTheEndNoteSaysSo) {
    InterfaceRig rig;
    rig.zoomShare();
    rig.sys->userSet(EffectKey(EffectKind::alertVolume), JournalValue::number(0.5));
    rig.seconds(10);
    const auto rows = Dropdown::cueList(*rig.store).rows;
    const auto noticed = std::find_if(rows.begin(), rows.end(), [](const CueRowModel& row) {
        return row.outcome && row.outcome->kind() == CueOutcome::Case::leftAlone;
    });
    ASSERT_NE(noticed, rows.end());
    EXPECT_EQ(noticed->kind, EffectKind::alertVolume);
    EXPECT_EQ(noticed->badge->text, "Yours now");
    EXPECT_EQ(noticed->badge->tint, Theme::light);
    EXPECT_EQ(noticed->badge->fill, Theme::lightSoft);
    EXPECT_EQ(noticed->id, "alertVolume#2") << "the first cue of the kind keeps the plain id";

    rig.platform->snapshot = DemoCapture::idle();
    rig.seconds(5);
    ASSERT_TRUE(rig.store->show().isDark());
    const auto banner = Dropdown::notes(*rig.store);
    ASSERT_TRUE(banner);
    EXPECT_EQ(banner->symbol, "checkmark.circle");
    EXPECT_EQ(banner->tint, Theme::sage);
    EXPECT_EQ(banner->text, "Curtain down · 10 changes put back, 1 left as you set it.");
    EXPECT_EQ(banner->actionTitle, "Details");
    EXPECT_EQ(banner->action, UiAction::openSettings(SettingsTab::runSheets));
    rig.act(*banner->dismiss);
    EXPECT_FALSE(rig.store->justEnded);
    EXPECT_FALSE(Dropdown::notes(*rig.store));
}

TEST(Dropdown, TheRecoveredNoteWinsThenTheEndedNoteThenAHotkeyProblem) {
    RunSheet clean =
        RunSheet::demo(Date{0}, 10, "Started from the menu", std::nullopt, EndReason::stopped, 0);
    EXPECT_EQ(Dropdown::endedText(clean), "Curtain down · 8 changes put back.");
    RunSheet one = clean;
    one.strike.resize(1);
    EXPECT_EQ(Dropdown::endedText(one), "Curtain down · 1 change put back.");
    one.strike.front().outcome = CueOutcome::failed("it's gone");
    EXPECT_EQ(Dropdown::endedText(one), "Curtain down · 0 changes put back, 1 couldn't be.");
    RunSheet mixed = RunSheet::demo(Date{0}, 10, "x", std::nullopt, EndReason::stopped, 2);
    EXPECT_EQ(Dropdown::endedText(mixed),
              "Curtain down · 6 changes put back, 2 left as you set them.");

    RunSheet lost = RunSheet::demo(Date{0}, 10, "Scrimlet quit unexpectedly", std::nullopt,
                                   EndReason::recovered, 1);
    EXPECT_EQ(Dropdown::recoveredText(lost),
              "Scrimlet quit during a show. At launch it put back 7 things and left 1 you'd "
              "changed yourself.");
    lost.strike.resize(1);
    lost.strike.front().outcome = CueOutcome::restored();
    EXPECT_EQ(Dropdown::recoveredText(lost),
              "Scrimlet quit during a show. At launch it put back 1 thing.");

    InterfaceRig rig;
    rig.store->startShow("Started from the menu", false);
    rig.store->stopShow();
    ASSERT_TRUE(rig.store->justEnded);
    auto ended = Dropdown::notes(*rig.store);
    ASSERT_TRUE(ended);
    EXPECT_FALSE(ended->actionTitle) << "a clean show has no details to offer";
    EXPECT_EQ(ended->action, UiAction::none());

    rig.store->recovered = lost;
    auto recovered = Dropdown::notes(*rig.store);
    EXPECT_EQ(recovered->symbol, "arrow.uturn.backward.circle");
    EXPECT_EQ(recovered->tint, Theme::light);
    EXPECT_EQ(recovered->fill, Theme::lightSoft);
    EXPECT_EQ(recovered->actionTitle, "Run sheet");
    rig.act(recovered->action);
    EXPECT_EQ(rig.store->settingsTab, SettingsTab::runSheets);
    EXPECT_EQ(rig.host.calls.back(), "openSettings runSheets");
    rig.act(*recovered->dismiss);
    EXPECT_FALSE(rig.store->recovered);
    EXPECT_EQ(Dropdown::notes(*rig.store)->symbol, "checkmark.circle");

    // A hotkey another app holds: its note shows only once the others are gone.
    rig.platform->taken = {1};
    rig.store->registerHotkeys();
    ASSERT_TRUE(rig.store->hotkeyProblem());
    EXPECT_EQ(Dropdown::notes(*rig.store)->symbol, "checkmark.circle");
    rig.store->justEnded.reset();
    const auto problem = Dropdown::notes(*rig.store);
    EXPECT_EQ(problem->symbol, "keyboard");
    EXPECT_EQ(problem->text, *rig.store->hotkeyProblem() + " Pick another in Settings.");
    EXPECT_EQ(problem->tint, Theme::velvet);
    EXPECT_EQ(problem->action, UiAction::openSettings(SettingsTab::cues));
    EXPECT_FALSE(problem->dismiss);

    // The curtain-down note is for a dark house only.
    rig.store->justEnded = clean;
    rig.store->startShow("Started from the menu", false);
    EXPECT_EQ(Dropdown::notes(*rig.store)->symbol, "keyboard");
}

TEST(Dropdown, CuesThatNeedSetupSayWhyInShortAndOpenTheirPage) {
    InterfaceRig rig;
    rig.sys->availabilityOverrides = {
        {EffectKind::doNotDisturb,
         Availability::needsSetup("Add the two Scrimlet shortcuts (Settings › Quiet)")},
        {EffectKind::dockAutohide,
         Availability::needsPermission("Allow Scrimlet to control System Events")},
        {EffectKind::menuBarTidy, Availability::needsSetup("Turn on the divider")},
    };
    StageSettings tidy = rig.store->settings();
    tidy.plan.tidyMenuBar = true;
    rig.store->setSettings(tidy);
    rig.store->refreshAvailability();
    const auto rows = Dropdown::cueList(*rig.store).rows;

    const CueRowModel* dnd = rowOf(rows, EffectKind::doNotDisturb);
    EXPECT_EQ(dnd->note, "Add the two Scrimlet shortcuts (Settings › Quiet)");
    EXPECT_EQ(dnd->shortNote, (StyledText{"Needs setup", Theme::Typo::small, Theme::velvet}));
    EXPECT_EQ(dnd->noteAction, UiAction::openSettings(SettingsTab::quiet));
    EXPECT_EQ(rowOf(rows, EffectKind::dockAutohide)->shortNote->text, "Needs permission");
    EXPECT_EQ(rowOf(rows, EffectKind::dockAutohide)->noteAction,
              UiAction::openSettings(SettingsTab::switches));
    EXPECT_EQ(rowOf(rows, EffectKind::menuBarTidy)->noteAction,
              UiAction::openSettings(SettingsTab::menuBar));
    EXPECT_FALSE(rowOf(rows, EffectKind::desktopIcons)->note);

    // The switch tiles tell the same story under their titles.
    for (const auto& tile : Dropdown::switchGrid(*rig.store).tiles) {
        if (tile.kind == SwitchKind::doNotDisturb) {
            EXPECT_EQ(tile.subtitle, "Add the two Scrimlet shortcuts (Settings › Quiet)");
        }
        if (tile.kind == SwitchKind::hideDesktopIcons) {
            EXPECT_FALSE(tile.subtitle);
        }
    }
    rig.host.calls.clear();
    rig.act(*dnd->noteAction);
    EXPECT_EQ(rig.host.calls, std::vector<std::string>{"openSettings quiet"});
}

TEST(Dropdown, ShortNotesFollowTheFirstMatchAndCountCharacters) {
    EXPECT_EQ(Dropdown::shortNote("Add the Quiet SHORTCUTS"), "Needs setup");
    EXPECT_EQ(Dropdown::shortNote("Turn on the divider first"), "Needs setup");
    EXPECT_EQ(Dropdown::shortNote("Set up the two shortcuts and allow it"), "Needs setup");
    EXPECT_EQ(Dropdown::shortNote("Allow Automation of System Events"), "Needs permission");
    EXPECT_EQ(Dropdown::shortNote("No permission"), "Needs permission");
    EXPECT_EQ(Dropdown::shortNote("No microphone found"), "No microphone");
    EXPECT_EQ(Dropdown::shortNote("Exactly twenty-two ch."), "Exactly twenty-two ch.");
    EXPECT_EQ(Dropdown::shortNote("Exactly twenty-three ch"), "Exactly twenty-three …");
    // "…" and "é" are one character each, whatever their bytes.
    EXPECT_EQ(Dropdown::shortNote("Écran indisponible……"), "Écran indisponible……");
    EXPECT_EQ(Dropdown::shortNote("ééééééééééééééééééééééé"), "ééééééééééééééééééééé…");
    EXPECT_EQ(Dropdown::shortNote(""), "");
}

TEST(Dropdown, HiddenAppsMergeIntoOneRowWithTheOutcomeThatTookHold) {
    const std::map<EffectKind, Availability> ready;
    std::vector<CueRecord> one = {record(app("Mail", 1), CueOutcome::applied())};
    auto rows = Dropdown::sheetRows(one, ready);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].title, "Hide 1 app");
    EXPECT_EQ(rows[0].detail, "Mail");

    std::vector<CueRecord> four = {
        record(EffectKey(EffectKind::desktopIcons), CueOutcome::applied()),
        record(app("Mail", 1), CueOutcome::skipped("it's gone")),
        record(app("Notes", 2), CueOutcome::alreadySo()),
        record(EffectKey(EffectKind::dockAutohide), CueOutcome::applied()),
        record(app("Safari", 3), CueOutcome::joined()),
        record(app("Slack", 4), CueOutcome::applied()),
    };
    rows = Dropdown::sheetRows(four, ready);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[1].title, "Hide 4 apps");
    EXPECT_EQ(rows[1].detail, "Mail, Notes, Safari +1 more");
    EXPECT_EQ(rows[1].outcome, CueOutcome::joined()) << "the first that took hold";
    EXPECT_EQ(rows[2].number.text, "Q3");
    EXPECT_EQ(rows[2].title, "Hide the Dock");

    std::vector<CueRecord> failing = {record(app("Mail", 1), CueOutcome::failed("no")),
                                      record(app("Notes", 2), CueOutcome::gone())};
    rows = Dropdown::sheetRows(failing, ready);
    EXPECT_EQ(rows[0].outcome, CueOutcome::failed("no")) << "none took hold: the first one's";
    EXPECT_FALSE(rows[0].on);
    EXPECT_EQ(rows[0].badge->symbol, "exclamationmark.triangle");
    EXPECT_EQ(rows[0].badge->help, "Failed · no");
    EXPECT_EQ(rows[0].number.ink, Theme::ink2);
}

TEST(Dropdown, OutcomeBadgesComeInThreeFamilies) {
    using Case = CueOutcome::Case;
    for (const Case c :
         {Case::applied, Case::alreadySo, Case::joined, Case::restored, Case::alreadyBack}) {
        const TagModel tag = outcomeBadge(CueOutcome::of(c));
        EXPECT_EQ(tag.tint, Theme::sage);
        EXPECT_EQ(tag.fill.light, Theme::sage.light.opacity(0.12));
        EXPECT_FALSE(tag.symbol);
        EXPECT_FALSE(tag.help);
    }
    for (const Case c : {Case::leftAlone, Case::stillHeld}) {
        EXPECT_EQ(outcomeBadge(CueOutcome::of(c)).fill, Theme::lightSoft);
    }
    for (const Case c : {Case::skipped, Case::failed, Case::gone, Case::deferred}) {
        const TagModel tag = outcomeBadge(CueOutcome::of(c, "why"));
        EXPECT_EQ(tag.tint, Theme::velvet);
        EXPECT_EQ(tag.fill, Theme::velvetSoft);
        EXPECT_EQ(tag.symbol, "exclamationmark.triangle");
        EXPECT_EQ(tag.help, CueOutcome::of(c, "why").label());
    }
    EXPECT_EQ(outcomeBadge(CueOutcome::stillHeld()).text, "Kept");
}

TEST(Dropdown, ThePlanRowsToggleAndTheResolutionOnlyComesOff) {
    InterfaceRig rig;
    StageSettings sized = rig.store->settings();
    sized.plan.resolution = ResolutionPreset{1920, 1080};
    rig.store->setSettings(sized);
    auto rows = Dropdown::cueList(*rig.store).rows;
    ASSERT_EQ(rows.size(), 10u);
    EXPECT_EQ(rows[9].title, "Recording resolution");
    EXPECT_EQ(rows[9].detail, "1920 × 1080");
    ASSERT_TRUE(rows[9].remove);
    EXPECT_EQ(rows[9].remove->symbol, "xmark.circle.fill");
    EXPECT_EQ(rows[9].remove->help, "Remove recording resolution");

    rig.act(*rows[3].toggle);
    EXPECT_FALSE(rig.store->settings().plan.hideDock);
    EXPECT_FALSE(rig.saved().plan.hideDock) << "saved at once";
    rig.act(rows[9].remove->action);
    EXPECT_FALSE(rig.saved().plan.resolution);
    rows = Dropdown::cueList(*rig.store).rows;
    EXPECT_EQ(rows.size(), 9u);
    EXPECT_FALSE(rows[3].on);
}

TEST(Dropdown, TilesToggleTheirSwitchAndTellTheirTime) {
    StageSettings settings;
    SwitchPrefs awake = settings.prefs(SwitchKind::keepAwake);
    awake.autoOffMinutes = 5;
    settings.setPrefs(SwitchKind::keepAwake, awake);
    SwitchPrefs saver = settings.prefs(SwitchKind::screenSaver);
    saver.pinned = true;
    settings.setPrefs(SwitchKind::screenSaver, saver);
    InterfaceRig rig(settings);

    const auto tileOf = [&](SwitchKind kind) {
        for (const auto& tile : Dropdown::switchGrid(*rig.store).tiles) {
            if (tile.kind == kind) {
                return tile;
            }
        }
        ADD_FAILURE() << "no tile";
        return SwitchTileModel{};
    };
    const SwitchTileModel off = tileOf(SwitchKind::keepAwake);
    EXPECT_EQ(off.action, UiAction::setSwitch(SwitchKind::keepAwake, true));
    rig.act(off.action);
    rig.seconds(1);
    const SwitchTileModel on = tileOf(SwitchKind::keepAwake);
    EXPECT_TRUE(on.on);
    EXPECT_EQ(on.subtitle, "Off in 4:59");
    EXPECT_EQ(on.fill, fixed(Theme::lightFill));
    EXPECT_EQ(on.titleColor, fixed(Theme::onLight));
    EXPECT_EQ(on.subtitleColor, fixed(Theme::onLight.opacity(0.7)));
    EXPECT_FALSE(on.border);
    EXPECT_EQ(on.accessibilityValue, "On");
    EXPECT_EQ(on.action, UiAction::setSwitch(SwitchKind::keepAwake, false));
    EXPECT_EQ(Dropdown::switchGrid(*rig.store).onTag->text, "1 on");

    // An action fires each time: never asked to turn off.
    EXPECT_EQ(tileOf(SwitchKind::screenSaver).action,
              UiAction::setSwitch(SwitchKind::screenSaver, true));
    rig.act(tileOf(SwitchKind::screenSaver).action);
    rig.act(tileOf(SwitchKind::screenSaver).action);
    EXPECT_EQ(rig.sys->screenSaverStarts(), 2);

    rig.act(on.action);
    EXPECT_FALSE(rig.store->board().isOn(SwitchKind::keepAwake));
    EXPECT_EQ(Dropdown::tileHoverGlow(), (Glow{fixed(Theme::lightFill.opacity(0.35)), 6}));
}

TEST(Dropdown, AllSwitchesListsEveryKindWithItsDetailAndTheWayBack) {
    InterfaceRig rig;
    rig.store->setSwitch(SwitchKind::darkMode, true);
    rig.act(UiAction::goTo(PopoverRoute::switches));
    EXPECT_EQ(rig.platform->calls.back(), "updateStatusItem") << "the route is published";
    const DropdownModel model = Dropdown::model(*rig.store);
    EXPECT_FALSE(model.home);
    ASSERT_TRUE(model.allSwitches);
    const AllSwitchesModel& all = *model.allSwitches;
    EXPECT_EQ(all.title, "All switches");
    EXPECT_EQ(all.back.symbol, "chevron.left");
    EXPECT_EQ(all.back.help, "Back");
    ASSERT_TRUE(all.allOff);
    EXPECT_EQ(all.allOff->title, "All off");
    ASSERT_EQ(all.rows.size(), 13u);
    EXPECT_EQ(all.rows[0].detail, "Covers the icons with your wallpaper. Finder isn't touched.");
    EXPECT_EQ(all.rows[0].symbolColor, Theme::ink3);
    EXPECT_EQ(all.rows[5].kind, SwitchKind::darkMode);
    EXPECT_TRUE(all.rows[5].on);
    EXPECT_EQ(all.rows[5].symbolColor, Theme::light);
    EXPECT_EQ(all.rows[11].detail, "Swallows every key so you can wipe it. Click Done to unlock.");
    EXPECT_TRUE(all.rows[12].isAction);
    EXPECT_EQ(all.footnote.text,
              "Auto-off, hotkeys and which switches are pinned: Settings › Switches.");
    EXPECT_EQ(all.settings.action, UiAction::openSettings(SettingsTab::switches));

    rig.act(all.rows[11].action);
    EXPECT_EQ(Dropdown::detail(*rig.store, SwitchKind::lockKeyboard), "Turns off in 2:00")
        << "the lock's own two minutes";
    rig.act(all.allOff->action);
    EXPECT_FALSE(rig.store->board().isOn(SwitchKind::darkMode));
    EXPECT_FALSE(Dropdown::allSwitches(*rig.store).allOff);
    rig.act(all.back.action);
    EXPECT_EQ(rig.store->route, PopoverRoute::home);
}

TEST(Dropdown, NothingPinnedAndNoMicrophoneAreExplained) {
    StageSettings settings;
    for (const SwitchKind kind : switch_kind::allCases) {
        SwitchPrefs prefs = settings.prefs(kind);
        prefs.pinned = false;
        settings.setPrefs(kind, prefs);
    }
    InterfaceRig rig(settings);
    const SwitchGridModel grid = Dropdown::switchGrid(*rig.store);
    EXPECT_TRUE(grid.tiles.empty());
    EXPECT_EQ(grid.empty->text, "No switches pinned. Pick some in Settings › Switches.");

    rig.sys->inputDevices.clear();
    rig.store->setSwitch(SwitchKind::muteMic, true);
    EXPECT_EQ(Dropdown::detail(*rig.store, SwitchKind::muteMic), "No microphone found");
    EXPECT_EQ(Dropdown::subtitle(*rig.store, SwitchKind::muteMic, false), "No microphone found");
}

TEST(Dropdown, ActionsReachTheStoreAndThePlatform) {
    InterfaceRig rig;
    rig.act(UiAction::of(UiAction::Kind::startShow));
    ASSERT_FALSE(rig.store->show().isDark());
    rig.seconds(3);
    ASSERT_TRUE(rig.store->show().isLive());
    EXPECT_EQ(rig.store->show().current()->how, "Started from the menu");
    rig.act(UiAction::of(UiAction::Kind::stopShow));
    EXPECT_TRUE(rig.store->show().isDark());

    rig.act(UiAction::openSettings(std::nullopt));
    EXPECT_EQ(rig.store->settingsTab, SettingsTab::stage) << "the footer keeps the last tab";
    rig.act(UiAction::of(UiAction::Kind::quit));
    rig.act(UiAction::copy("scrimlet://start"));
    EXPECT_EQ(rig.host.calls,
              (std::vector<std::string>{"openSettings -", "quit", "copy scrimlet://start"}));
    EXPECT_TRUE(rig.store->show().isDark()) << "quitting is the platform's to do";
}

} // namespace
} // namespace scrimlet
