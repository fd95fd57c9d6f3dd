// Links in the "scrimlet" scheme and the verbs of the cue notification come from any other
// app. Each input is handed to a fresh store on the simulated Mac both ways, as a link and as
// a notification's verb, and then once more as a link, which may turn a show or a switch off
// again; whatever happens, the journal and the Mac must agree afterwards.

#include "FakeStageSystem.hpp"
#include "FuzzCheck.hpp"
#include "Harness.hpp"
#include "StageStore.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace scrimlet;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto mac = FakeStageSystem::demo();
    const auto before = mac->state(false);
    const auto store = StageStore::demo(Harness::demoNow(), std::nullopt, std::nullopt, mac, false);
    store->handle(text);
    store->cue(text, "Cued by another app");
    store->handle(text);
    store->shutdown();
    // Everything put back: a one-click action leaves no trace, nothing else may either.
    FUZZ_CHECK(!store->director().hasOutstanding());
    auto after = mac->state(false);
    FUZZ_CHECK(after == before);
    return 0;
}
