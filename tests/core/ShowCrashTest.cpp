// A whole show that dies at every write it makes, raising the curtain or striking it, with
// the journal frozen as a dead process leaves it; the next launch must put the Mac back and
// say so on a run sheet.

#include "Show.hpp"

#include "StageRig.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace scrimlet {
namespace {

using testing::StageRig;
using Point = FakeStageSystem::CrashPoint;

// Every flag, and a size the demo display has.
StageSettings fullPlan() {
    StageSettings settings;
    settings.plan = StagePlan{true, true, true, true, true,
                              true, true, true, true, ResolutionPreset{1920, 1080}};
    return settings;
}

// Goes live with the full plan, looks once for changes by hand, and stops, unless the
// process dies first.
void playShow(Show& show, StageRig& rig) {
    show.start("Menu bar", false);
    rig.clock->advance(6);
    show.tick();
    if (!rig.sys->crashed()) {
        show.stop(EndReason::stopped);
    }
}

int writesOfACleanShow() {
    StageRig rig;
    Show show(rig.shareDirector(), fullPlan(), {}, ManualClock::reading(rig.clock));
    const auto before = rig.sys->state(false);
    playShow(show, rig);
    EXPECT_EQ(rig.sys->state(false), before);
    return rig.sys->writeCount();
}

TEST(ShowCrash, AShowThatDiesAtAnyWriteIsPutBackAtTheNextLaunch) {
    const int writes = writesOfACleanShow();
    // Sixteen effects: the cover, seven apps, and the eight other items of the plan; each
    // written on the way in and once more on the way out.
    ASSERT_EQ(writes, 32);
    int sheets = 0;
    for (const auto kind : {Point::Case::beforeWrite, Point::Case::afterWrite}) {
        for (int n = 1; n <= writes; ++n) {
            SCOPED_TRACE((kind == Point::Case::beforeWrite ? "before write " : "after write ") +
                         std::to_string(n));
            StageRig rig;
            const auto before = rig.sys->state(true);
            const Date showStart = rig.clock->now;
            {
                Show show(rig.shareDirector(), fullPlan(), {}, ManualClock::reading(rig.clock));
                rig.sys->onCrash = [store = rig.store] { store->freeze(); };
                rig.sys->setCrash(Point{kind, n});
                playShow(show, rig);
                ASSERT_TRUE(rig.sys->crashed());
            }
            const bool outlasting =
                std::ranges::any_of(JournalStore(rig.journalPath()).load(),
                                    [](const auto& entry) { return outlivesApp(entry.key.kind); });

            rig.clock->advance(30);
            rig.sys->revive();
            rig.sys->processDied();
            Show next(rig.relaunch(), fullPlan(), {}, ManualClock::reading(rig.clock));
            int changes = 0;
            next.onChange = [&] { ++changes; };
            const auto sheet = next.recoverAtLaunch();

            EXPECT_EQ(rig.sys->state(true), before);
            EXPECT_FALSE(std::filesystem::exists(rig.journalPath()));
            EXPECT_FALSE(next.director().hasOutstanding());
            EXPECT_EQ(next.recoverAtLaunch(), std::nullopt) << "nothing is left to put back";
            if (!outlasting) {
                // Only the desktop cover was on record, and it died with the process.
                EXPECT_EQ(sheet, std::nullopt);
                EXPECT_EQ(changes, 0);
                continue;
            }
            ++sheets;
            ASSERT_TRUE(sheet);
            EXPECT_EQ(sheet->how, "Scrimlet quit unexpectedly");
            EXPECT_EQ(sheet->reason, EndReason::recovered);
            EXPECT_EQ(sheet->startedAt, showStart);
            EXPECT_EQ(sheet->endedAt, rig.clock->now);
            EXPECT_EQ(sheet->problems(), 0);
            EXPECT_EQ(next.sheets(), std::vector<RunSheet>{*sheet});
            EXPECT_EQ(changes, 1);
        }
    }
    // Dying at the first write, or at the last undo, leaves only the cover on record.
    EXPECT_EQ(sheets, 2 * writes - 4);
}

} // namespace
} // namespace scrimlet
