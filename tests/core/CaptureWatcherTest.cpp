#include "CaptureWatcher.hpp"

#include "DemoCapture.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <utility>
#include <vector>

namespace scrimlet {

static void PrintTo(const CaptureWatcher::Change& change, std::ostream* out) {
    constexpr const char* names[] = {"started", "ended", "switched"};
    *out << names[static_cast<int>(change.kind())] << "(";
    if (change.from()) {
        *out << change.from()->name << " -> ";
    }
    *out << change.source().name << ")";
}

namespace {

using Change = CaptureWatcher::Change;

const CaptureSource zoom{"us.zoom.xos", "Zoom", CaptureKind::callShare};
const CaptureSource chrome{"com.google.Chrome", "Chrome", CaptureKind::browserShare};

const CaptureSnapshot nothing = DemoCapture::idle();
const CaptureSnapshot zoomShot = DemoCapture::zoomSharing();
const CaptureSnapshot chromeShot = DemoCapture::chromeSharing();

/// Seconds after an arbitrary start, so that the tests read like the timelines they are.
Date at(double seconds) {
    return Date{1'800'000'000} + seconds;
}

using Timeline = std::vector<std::pair<double, const CaptureSnapshot*>>;
using Events = std::vector<std::pair<double, Change>>;

/// Feeds the looks in order and collects every change with the time it came at.
Events run(CaptureWatcher& watcher, const Timeline& looks) {
    Events events;
    for (const auto& [time, snapshot] : looks) {
        if (auto change = watcher.observe(*snapshot, at(time))) {
            events.emplace_back(time, *change);
        }
    }
    return events;
}

/// A look every half second from `from` up to and including `to`.
Timeline steady(double from, double to, const CaptureSnapshot& snapshot) {
    Timeline looks;
    for (double t = from; t < to; t += 0.5) {
        looks.emplace_back(t, &snapshot);
    }
    looks.emplace_back(to, &snapshot);
    return looks;
}

Timeline operator+(Timeline a, const Timeline& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

TEST(CaptureWatcher, StartsOnlyAfterTheStartDelay) {
    CaptureWatcher watcher;
    EXPECT_EQ(run(watcher, {{0, &zoomShot}, {1, &zoomShot}, {1.49, &zoomShot}}), Events{});
    EXPECT_EQ(watcher.active(), std::nullopt);
    EXPECT_EQ(run(watcher, {{1.5, &zoomShot}, {2.5, &zoomShot}}),
              (Events{{1.5, Change::started(zoom)}}));
    EXPECT_EQ(watcher.active(), zoom);

    // A candidate that flickers out starts again from nothing.
    CaptureWatcher flicker;
    EXPECT_EQ(run(flicker, {{0, &zoomShot},
                            {1, &zoomShot},
                            {1.2, &nothing},
                            {1.4, &zoomShot},
                            {2.8, &zoomShot},
                            {2.9, &zoomShot}}),
              (Events{{2.9, Change::started(zoom)}}));

    // Another source takes over the candidacy, and its delay counts from its own first look.
    CaptureWatcher fickle;
    EXPECT_EQ(run(fickle, steady(0, 0.5, zoomShot) + steady(1, 3, chromeShot)),
              (Events{{2.5, Change::started(chrome)}}));

    CaptureWatcher eager;
    eager.startDelay = 0;
    EXPECT_EQ(run(eager, {{0, &chromeShot}}), (Events{{0, Change::started(chrome)}}));
}

TEST(CaptureWatcher, EndsOnlyAfterTheStopDelay) {
    CaptureWatcher watcher;
    EXPECT_EQ(run(watcher, steady(0, 9.5, zoomShot) + Timeline{{10, &nothing},
                                                               {11, &nothing},
                                                               {12.49, &nothing},
                                                               {12.5, &nothing},
                                                               {13.5, &nothing}}),
              (Events{{1.5, Change::started(zoom)}, {12.5, Change::ended(zoom)}}));
    EXPECT_EQ(watcher.active(), std::nullopt);

    // After the end the same source must serve its start delay again.
    EXPECT_EQ(run(watcher, {{20, &zoomShot}, {21, &zoomShot}, {21.5, &zoomShot}}),
              (Events{{21.5, Change::started(zoom)}}));

    // A single sighting during the gap restarts the loss timer.
    CaptureWatcher late;
    EXPECT_EQ(
        run(late, steady(0, 9.5, zoomShot) +
                      Timeline{{10, &nothing}, {12, &zoomShot}, {14.9, &nothing}, {15, &nothing}}),
        (Events{{1.5, Change::started(zoom)}, {15, Change::ended(zoom)}}));

    // A blink shorter than the stop delay passes unnoticed.
    CaptureWatcher blink;
    EXPECT_EQ(
        run(blink, steady(0, 5, zoomShot) + steady(6, 7, nothing) + steady(7.5, 20, zoomShot)),
        (Events{{1.5, Change::started(zoom)}}));
}

TEST(CaptureWatcher, MovingToAnotherSourceSwitchesOnce) {
    CaptureWatcher watcher;
    EXPECT_EQ(run(watcher, steady(0, 10, zoomShot) + steady(10.5, 20, chromeShot)),
              (Events{{1.5, Change::started(zoom)}, {12, Change::switched(zoom, chrome)}}));
    EXPECT_EQ(watcher.active(), chrome);

    // The old source coming back drops the pending newcomer, which then starts over.
    CaptureWatcher back;
    EXPECT_EQ(run(back, steady(0, 10, zoomShot) + Timeline{{10.5, &chromeShot},
                                                           {11.5, &zoomShot},
                                                           {12, &chromeShot},
                                                           {13, &chromeShot},
                                                           {13.5, &chromeShot}}),
              (Events{{1.5, Change::started(zoom)}, {13.5, Change::switched(zoom, chrome)}}));

    // A pending newcomer holds off the end of the active source even though it never wins.
    CaptureWatcher held;
    EXPECT_EQ(run(held, steady(0, 10, zoomShot) +
                            Timeline{{11, &chromeShot}, {13.9, &nothing}, {14, &nothing}}),
              (Events{{1.5, Change::started(zoom)}, {14, Change::ended(zoom)}}));
}

TEST(CaptureWatcher, ResetAndNewOptions) {
    CaptureWatcher watcher;
    run(watcher, steady(0, 5, zoomShot));
    ASSERT_EQ(watcher.active(), zoom);
    watcher.reset();
    EXPECT_EQ(watcher.active(), std::nullopt);
    EXPECT_EQ(run(watcher, steady(5, 8, nothing)), Events{});
    EXPECT_EQ(run(watcher, {{20, &zoomShot}, {21, &zoomShot}, {21.5, &zoomShot}}),
              (Events{{21.5, Change::started(zoom)}}));

    // Options that no longer match the active source act like the source going away.
    watcher.options.watchCalls = false;
    EXPECT_EQ(run(watcher, steady(22, 30, zoomShot)), (Events{{24.5, Change::ended(zoom)}}));
}

} // namespace
} // namespace scrimlet
