// What the kit's reading and writing cost: an update archive read through the stream that
// meets the system's loading callbacks, one piece at a time from another thread, with the
// size cut and the progress counted on the way; and the editor's files of a two-minute
// demo film written at its end.

#include "DemoRecorder.hpp"
#include "HttpStream.hpp"
#include "TempDir.hpp"
#include "Updater.hpp"

#include <benchmark/benchmark.h>

#include <thread>

namespace vantrel {
namespace {

/// The archive arrives in pieces of the size the system hands out, on a thread of its own.
struct StreamedServer : HttpTransport {
    std::string body;
    std::size_t piece = 64 * 1024;

    void send(const Request&, const Receiver& receiver) override {
        HttpStream stream(receiver);
        std::thread queue([&] {
            bool more = stream.response(200);
            for (std::size_t at = 0; more && at < body.size(); at += piece) {
                more = stream.body(std::string_view(body).substr(at, piece));
            }
            stream.complete(std::nullopt);
        });
        stream.wait();
        queue.join();
    }
};

struct QuietHost : UpdaterHost {
    void runOnMain(Task task) override { task(); }
    void runInBackground(Task task) override { task(); }
    void runAfter(double, Task) override {}
    void runEvery(double, Task) override {}
    void whenTerminating(Task) override {}
    void terminate() override {}
    void showWindow(WindowReason) override {}
    int processId() const override { return 1; }
    double now() const override { return 0; }
};

struct NoDefaults : UserDefaults {
    std::optional<bool> boolValue(const std::string&) const override { return std::nullopt; }
    void setBool(const std::string&, bool) override {}
};

struct NoFiles : BundleFiles {
    std::optional<BundleFacts> open(const std::filesystem::path&) const override {
        return std::nullopt;
    }
    bool isWritable(const std::filesystem::path&) const override { return true; }
};

struct NoTools : ToolRunner {
    int run(const std::string&, const std::vector<std::string>&) override { return 0; }
    void launch(const std::string&, const std::vector<std::string>&) override {}
};

void BM_FetchThroughStream(benchmark::State& state) {
    auto server = std::make_shared<StreamedServer>();
    server->body.assign(static_cast<std::size_t>(state.range(0)) << 20, 'z');
    const auto updater = Updater::create(
        {"/Applications/Scrimlet.app", "app.vantrel.scrimlet", {}}, "/tmp", {14, 0, 0},
        {std::make_shared<QuietHost>(), server, std::make_shared<NoTools>(),
         std::make_shared<NoDefaults>(), std::make_shared<NoFiles>()});
    const auto length = static_cast<std::int64_t>(server->body.size());
    int reports = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            updater->fetch("https://example.com/a.zip", length, [&](double) { ++reports; }));
    }
    state.SetBytesProcessed(state.iterations() * length);
}
BENCHMARK(BM_FetchThroughStream)->Arg(8)->Arg(64)->UseRealTime()->Unit(benchmark::kMillisecond);

struct BenchClock : DemoClock {
    double time = 0;
    double now() const override { return time; }
    double wallNow() const override { return 1'793'202'120; }
    void wait(double seconds) override { time += seconds; }
    void startTimer(double, std::function<void()>) override {}
    void stopTimer() override {}
};

struct BenchCamera : DemoCamera {
    void open(const FilmFormat&) override {}
    bool isReady() override { return true; }
    std::vector<FilmWindow> onScreenWindows() override { return {{1, 1, {0, 0, 400, 600}}}; }
    int processId() const override { return 1; }
    Shot shoot(const FilmFrame&) override { return Shot::written; }
    std::optional<std::string> finish() override { return std::nullopt; }
};

/// Two minutes of a script at 60 frames a second: the cursor always moving, a click every
/// two seconds, a caption every three.
void BM_DemoFinish(benchmark::State& state) {
    scrimlet::testing::TempDir temp;
    for (auto _ : state) {
        state.PauseTiming();
        auto recorder =
            DemoRecorder::create(temp / "film", {0, 0, 1280, 800}, 60, {},
                                 {std::make_shared<BenchClock>(), std::make_shared<BenchCamera>(),
                                  std::make_shared<DemoAnchors>()});
        recorder->start();
        for (int second = 0; second < 120; ++second) {
            if (second % 3 == 0) {
                recorder->caption("Step " + std::to_string(second / 3) + " — the curtain rises");
            }
            if (second % 2 == 0) {
                recorder->click(Point{second * 7.0, second * 5.0}, 0.5, nullptr);
            }
            recorder->move({second * 9.0, 600 - second * 4.0}, 0.5);
        }
        state.ResumeTiming();
        benchmark::DoNotOptimize(recorder->finish("Scrimlet tour"));
    }
}
BENCHMARK(BM_DemoFinish)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace vantrel
