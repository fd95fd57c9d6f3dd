#pragma once

// A film's platform side for tests: a run loop on a manual clock and a camera that keeps
// the frames it is given.

#include "DemoRecorder.hpp"

#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::testing {

/// A run loop on a manual clock: a wait moves time forward and fires the frame timer at
/// each of its ticks on the way, as the main run loop does while a script sleeps.
struct FakeClock : DemoClock {
    double now() const override { return time; }
    double wallNow() const override { return 1'793'202'120; }
    void wait(double seconds) override {
        const double end = time + seconds;
        while (tick && nextTick <= end + 1e-9) {
            time = nextTick;
            nextTick += interval;
            tick();
        }
        time = end;
    }
    void startTimer(double every, std::function<void()> task) override {
        interval = every;
        nextTick = time + every;
        tick = std::move(task);
    }
    void stopTimer() override { tick = nullptr; }

    double time = 5000;
    double interval = 0;
    double nextTick = 0;
    std::function<void()> tick;
};

/// The app's windows and a writer that keeps the frames it is given.
struct FakeCamera : DemoCamera {
    void open(const FilmFormat& format) override {
        if (openFailure) {
            throw DemoFailure::writer(*openFailure);
        }
        opened = format;
        // The writer creates its file at once, as the system's does.
        std::ofstream(format.file) << "";
    }
    bool isReady() override { return ready; }
    std::vector<FilmWindow> onScreenWindows() override { return windows; }
    int processId() const override { return 510; }
    Shot shoot(const FilmFrame& frame) override {
        if (captureFails) {
            return Shot::captureFailed;
        }
        frames.push_back(frame);
        return Shot::written;
    }
    std::optional<std::string> finish() override { return finishFailure; }

    std::optional<std::string> openFailure;
    std::optional<std::string> finishFailure;
    bool ready = true;
    bool captureFails = false;
    std::vector<FilmWindow> windows{
        {7, 501, {0, 0, 1512, 982}},    // another app, in front
        {41, 510, {100, 80, 360, 520}}, // the dropdown
        {42, 510, {1600, 0, 600, 400}}, // a window of this app on another screen
    };
    std::optional<FilmFormat> opened;
    std::vector<FilmFrame> frames;
};

} // namespace vantrel::testing
