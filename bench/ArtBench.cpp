// What the art costs to make, and on Linux to render: the curtain is made anew at every
// frame of its animation, the spotlight's drawing at every move of the pointer.
#include "BackdropView.hpp"
#include "Curtain.hpp"
#include "SceneCards.hpp"
#include "SpotlightView.hpp"

#ifdef SCRIMLET_BENCH_RENDER
#include "Renderer.hpp"
#endif

#include <benchmark/benchmark.h>

namespace scrimlet {
namespace {

void CurtainDrawing(benchmark::State& state) {
    double open = 0;
    for (auto _ : state) {
        open = open >= 1 ? 0 : open + 0.01;
        benchmark::DoNotOptimize(
            Proscenium{open, open, 148, {}, {}}.drawing(360, Appearance::dark));
    }
}
BENCHMARK(CurtainDrawing);

void SpotlightDrawing(benchmark::State& state) {
    SpotlightView spot{110, 0.55, {0, 0}, {700, 500}};
    for (auto _ : state) {
        spot.pointer.x += 1;
        benchmark::DoNotOptimize(spot.drawing({1440, 900}));
    }
}
BENCHMARK(SpotlightDrawing);

void LockCardLayout(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(LockCard{true}.layout({1440, 900}));
    }
}
BENCHMARK(LockCardLayout);

#ifdef SCRIMLET_BENCH_RENDER
void RenderCurtainAt2x(benchmark::State& state) {
    const Drawing curtain = Proscenium{1, 1, 148, {}, {}}.drawing(360, Appearance::dark);
    for (auto _ : state) {
        benchmark::DoNotOptimize(render::rasterize(curtain, 2));
    }
}
BENCHMARK(RenderCurtainAt2x)->Unit(benchmark::kMillisecond);

void RenderSpotlightScreen(benchmark::State& state) {
    const Drawing spot = SpotlightView{110, 0.55, {0, 0}, {700, 500}}.drawing({1440, 900});
    for (auto _ : state) {
        benchmark::DoNotOptimize(render::rasterize(spot));
    }
}
BENCHMARK(RenderSpotlightScreen)->Unit(benchmark::kMillisecond);

void RenderMeshBackdrop(benchmark::State& state) {
    const Drawing mesh = BackdropView{BackdropStyle{}, {}, {}}.drawing({1440, 900});
    for (auto _ : state) {
        benchmark::DoNotOptimize(render::rasterize(mesh));
    }
}
BENCHMARK(RenderMeshBackdrop)->Unit(benchmark::kMillisecond);
#endif

} // namespace
} // namespace scrimlet
