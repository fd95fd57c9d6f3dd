// The simulated Mac's state file, which `scrimlet rehearse` and the kill campaign read after
// a kill: taken part by part, and the state it gives survives being written and read again.

#include "FakeStageSystem.hpp"
#include "FuzzCheck.hpp"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using scrimlet::FakeStageSystem;
    const auto mac = FakeStageSystem::demo();
    mac->takePersistentState({reinterpret_cast<const char*>(data), size});
    const auto again = FakeStageSystem::demo();
    again->takePersistentState(mac->persistentStateText());
    FUZZ_CHECK(again->state(true) == mac->state(true));
    return 0;
}
