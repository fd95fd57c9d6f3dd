#include "RunSheetsPage.hpp"

#include "InterfaceRig.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using testing::InterfaceRig;

std::string day(Date date) {
    return "day " + std::to_string(static_cast<long long>(date.seconds));
}

TEST(RunSheetsPage, EmptyUntilAShowEndsAndEmptyAgainWhenCleared) {
    InterfaceRig rig;
    RunSheetsPageModel page = RunSheetsPage::model(*rig.store, std::nullopt, day);
    EXPECT_EQ(page.title, "Run sheets");
    EXPECT_EQ(page.subtitle,
              "Every show, what it changed and what it put back. Kept on this Mac only.");
    ASSERT_TRUE(page.empty);
    EXPECT_EQ(page.empty->symbol, "list.bullet.clipboard");
    EXPECT_EQ(page.empty->title.text, "No shows yet");
    EXPECT_EQ(page.empty->title.font, Theme::Typo::titleSmall);
    EXPECT_EQ(page.empty->text.text,
              "When you share or record your screen, the show's run sheet appears here.");
    EXPECT_TRUE(page.cards.empty());
    EXPECT_FALSE(page.clear);

    rig.zoomShare();
    rig.seconds(120);
    rig.platform->snapshot = DemoCapture::idle();
    rig.seconds(5);
    rig.store->startShow("Started from the menu", false);
    rig.store->stopShow();
    page = RunSheetsPage::model(*rig.store, std::nullopt, day);
    ASSERT_EQ(page.cards.size(), 2u);
    EXPECT_FALSE(page.empty);
    EXPECT_EQ(page.cards[0].symbol, "hand.raised") << "newest first: stopped by hand";
    EXPECT_EQ(page.cards[0].summary, "under a minute · Stopped by you");
    EXPECT_EQ(page.cards[1].symbol, "theatermasks");
    EXPECT_EQ(page.cards[1].summary, "2 min · Sharing ended");
    EXPECT_EQ(page.cards[1].dateLine, day(rig.store->show().sheets()[1].startedAt))
        << "the platform writes the date";
    EXPECT_FALSE(page.cards[0].open);
    EXPECT_TRUE(page.cards[0].columns.empty()) << "a closed card shows no columns";
    ASSERT_TRUE(page.clear);
    EXPECT_EQ(page.clear->title, "Clear run sheets");
    EXPECT_EQ(page.clear->ink, Theme::velvet);

    perform(page.clear->action, *rig.store, rig.host);
    EXPECT_TRUE(RunSheetsPage::model(*rig.store, std::nullopt, day).empty);
    EXPECT_FALSE(rig.store->justEnded);
    EXPECT_EQ(rig.store->lastSheetCount(), 0);
}

TEST(RunSheetsPage, AnOpenCardShowsWhatWasSetAndStruck) {
    InterfaceRig rig;
    rig.zoomShare();
    rig.sys->userSet(EffectKey(EffectKind::alertVolume), JournalValue::number(0.5));
    rig.seconds(10);
    rig.store->stopShow();
    const Uuid id = rig.store->show().sheets().front().id;

    const RunSheetCard card = RunSheetsPage::model(*rig.store, id, day).cards.front();
    EXPECT_TRUE(card.open);
    EXPECT_EQ(card.chevronDegrees, 90);
    EXPECT_EQ(card.leftAloneTag->text, "1 left alone");
    EXPECT_EQ(card.leftAloneTag->tint, Theme::light);
    EXPECT_FALSE(card.problemsTag);
    ASSERT_EQ(card.columns.size(), 2u);
    EXPECT_EQ(card.columns[0].title, "Set");
    EXPECT_EQ(card.columns[1].title, "Struck");
    const RunSheetLine& first = card.columns[0].lines.front();
    EXPECT_EQ(first.number, "Q1");
    EXPECT_EQ(first.title, "Hide desktop icons");
    EXPECT_EQ(first.outcome, "Done");
    EXPECT_EQ(first.outcomeColor, Theme::sage);
    const auto& struck = card.columns[1].lines;
    EXPECT_TRUE(std::any_of(struck.begin(), struck.end(), [](const RunSheetLine& line) {
        return line.outcome == "Left alone — you changed it" && line.outcomeColor == Theme::light;
    }));
    EXPECT_EQ(card.accessibilityLabel, card.dateLine + ", " + card.summary + ", 1 left alone");

    // One card open at most; a second click closes it.
    const Uuid other = Uuid::random();
    EXPECT_EQ(RunSheetsPage::toggled(std::nullopt, id), id);
    EXPECT_EQ(RunSheetsPage::toggled(id, other), other);
    EXPECT_EQ(RunSheetsPage::toggled(id, id), std::nullopt);
}

TEST(RunSheetsPage, SummariesAndTagsFollowHowTheShowEnded) {
    RunSheet recovered = RunSheet::demo(Date{1'000}, 40, "Scrimlet quit unexpectedly", std::nullopt,
                                        EndReason::recovered, 0);
    EXPECT_EQ(RunSheetsPage::summary(recovered), "Put back at launch") << "no duration";
    EXPECT_EQ(RunSheetsPage::symbol(recovered), "arrow.uturn.backward.circle");

    RunSheet running(Date{1'000}, "Started from the menu");
    EXPECT_EQ(RunSheetsPage::summary(running), "") << "neither a duration nor a reason yet";
    RunSheet unreasoned =
        RunSheet::demo(Date{1'000}, 12, "x", std::nullopt, EndReason::timeLimit, 0);
    EXPECT_EQ(RunSheetsPage::summary(unreasoned), "12 min · Time limit reached");
    unreasoned.reason.reset();
    EXPECT_EQ(RunSheetsPage::summary(unreasoned), "12 min") << "only the duration line";
    EXPECT_EQ(RunSheetsPage::symbol(unreasoned), "theatermasks");

    InterfaceRig rig;
    RunSheet one = recovered;
    one.strike.front().outcome = CueOutcome::failed("it's gone");
    RunSheet two = one;
    two.id = Uuid::random();
    two.cues.push_back(one.strike.front());
    rig.store->show().restoreSheets({one, two});
    const auto cards = RunSheetsPage::model(*rig.store, one.id, day).cards;
    ASSERT_EQ(cards.size(), 2u);
    EXPECT_EQ(cards[0].problemsTag->text, "1 issue");
    EXPECT_EQ(cards[0].problemsTag->fill, Theme::velvetSoft);
    EXPECT_EQ(cards[1].problemsTag->text, "2 issues");
    EXPECT_EQ(cards[0].columns[1].title, "Put back at launch");
    EXPECT_EQ(cards[0].columns[1].lines.front().outcome, "Failed · it's gone");
    EXPECT_EQ(cards[0].columns[1].lines.front().outcomeColor, Theme::velvet);
    EXPECT_FALSE(cards[1].open);
}

} // namespace
} // namespace scrimlet
