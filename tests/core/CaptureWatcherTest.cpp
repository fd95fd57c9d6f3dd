#include "CaptureWatcher.hpp"

#include "DemoCapture.hpp"

#include <gtest/gtest.h>

#include <initializer_list>
#include <ostream>
#include <utility>
#include <vector>

namespace scrimlet {

static void PrintTo(const CaptureWatcher::Change& change, std::ostream* out) {
    constexpr const char* names[] = {"started", "ended", "switched"};
    *out << names[static_cast<int>(change.kind())] << "("
         << (change.from() ? change.from()->name + " -> " : "") << change.source().name << ")";
}

namespace {

using Change = CaptureWatcher::Change;

const CaptureSource zoom{"us.zoom.xos", "Zoom", CaptureKind::callShare};
const CaptureSource chrome{"com.google.Chrome", "Chrome", CaptureKind::browserShare};

const CaptureSnapshot nothing = DemoCapture::idle();
const CaptureSnapshot zoomShot = DemoCapture::zoomSharing();
const CaptureSnapshot chromeShot = DemoCapture::chromeSharing();

using Timeline = std::vector<std::pair<double, const CaptureSnapshot*>>;
using Events = std::vector<std::pair<double, Change>>;

/// Feeds the looks in order, to `shared` or else to a new watcher, and collects every change
/// with its time in seconds from an arbitrary start, so the tests read like timelines.
Events run(std::initializer_list<Timeline> parts, CaptureWatcher* shared = nullptr) {
    CaptureWatcher fresh;
    CaptureWatcher& watcher = shared ? *shared : fresh;
    Events events;
    for (const Timeline& part : parts) {
        for (const auto& [time, snapshot] : part) {
            if (auto change = watcher.observe(*snapshot, Date{1'800'000'000} + time)) {
                events.emplace_back(time, *change);
            }
        }
    }
    return events;
}

/// One look at each of `times`.
Timeline looks(std::initializer_list<double> times, const CaptureSnapshot& snapshot) {
    Timeline out;
    for (double t : times) {
        out.emplace_back(t, &snapshot);
    }
    return out;
}

/// A look every half second from `from` up to and including `to`.
Timeline steady(double from, double to, const CaptureSnapshot& snapshot) {
    Timeline out;
    for (double t = from; t <= to; t += 0.5) {
        out.emplace_back(t, &snapshot);
    }
    return out;
}

TEST(CaptureWatcher, StartsAndEndsAfterItsDelays) {
    CaptureWatcher watcher;
    EXPECT_EQ(run({looks({0, 1, 1.49}, zoomShot)}, &watcher), Events{});
    EXPECT_EQ(run({steady(1.5, 9.5, zoomShot), looks({10, 12.49}, nothing)}, &watcher),
              (Events{{1.5, Change::started(zoom)}}));
    EXPECT_EQ(run({looks({12.5, 13.5}, nothing)}, &watcher), (Events{{12.5, Change::ended(zoom)}}));
    EXPECT_EQ(watcher.active(), std::nullopt);
    // After the end the same source serves its start delay again.
    EXPECT_EQ(run({looks({20, 21, 21.5}, zoomShot)}, &watcher),
              (Events{{21.5, Change::started(zoom)}}));

    // A candidate that drops out for one look starts again from nothing.
    EXPECT_EQ(
        run({looks({0, 1}, zoomShot), looks({1.2}, nothing), looks({1.4, 2.8, 2.9}, zoomShot)}),
        (Events{{2.9, Change::started(zoom)}}));
    // Another source takes over the candidacy, and its delay counts from its own first look.
    EXPECT_EQ(run({steady(0, 0.5, zoomShot), steady(1, 3, chromeShot)}),
              (Events{{2.5, Change::started(chrome)}}));
    // A blink shorter than the stop delay passes unnoticed.
    EXPECT_EQ(run({steady(0, 5, zoomShot), steady(6, 7, nothing), steady(7.5, 20, zoomShot)}),
              (Events{{1.5, Change::started(zoom)}}));
}

TEST(CaptureWatcher, MovingToAnotherSourceSwitchesOnce) {
    CaptureWatcher watcher;
    EXPECT_EQ(run({steady(0, 10, zoomShot), steady(10.5, 20, chromeShot)}, &watcher),
              (Events{{1.5, Change::started(zoom)}, {12, Change::switched(zoom, chrome)}}));
    EXPECT_EQ(watcher.active(), chrome);

    // The old source coming back drops the pending newcomer, which then starts over.
    EXPECT_EQ(run({steady(0, 10, zoomShot), looks({10.5}, chromeShot), looks({11.5}, zoomShot),
                   looks({12, 13, 13.5}, chromeShot)}),
              (Events{{1.5, Change::started(zoom)}, {13.5, Change::switched(zoom, chrome)}}));
    // A pending newcomer holds off the end of the active source even though it never wins.
    EXPECT_EQ(run({steady(0, 10, zoomShot), looks({11}, chromeShot), looks({13.9, 14}, nothing)}),
              (Events{{1.5, Change::started(zoom)}, {14, Change::ended(zoom)}}));
}

TEST(CaptureWatcher, ResetAndNewOptions) {
    CaptureWatcher watcher;
    run({steady(0, 5, zoomShot)}, &watcher);
    ASSERT_EQ(watcher.active(), zoom);
    // Forgotten without an end: no change comes while nothing is seen.
    watcher.reset();
    EXPECT_EQ(watcher.active(), std::nullopt);
    EXPECT_EQ(run({steady(5, 8, nothing), looks({20, 21, 21.5}, zoomShot)}, &watcher),
              (Events{{21.5, Change::started(zoom)}}));

    // Options that no longer match the active source act like the source going away.
    watcher.options.watchCalls = false;
    EXPECT_EQ(run({steady(22, 30, zoomShot)}, &watcher), (Events{{24.5, Change::ended(zoom)}}));
}

} // namespace
} // namespace scrimlet
