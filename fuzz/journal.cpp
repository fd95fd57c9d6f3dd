// The journal as the next launch reads it: whatever the file holds, the reader answers a
// whole list or none, and what it accepts the program can write and read back unchanged.

#include "FuzzCheck.hpp"
#include "JournalStore.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using scrimlet::JournalStore;
    const auto entries = JournalStore::decode({reinterpret_cast<const char*>(data), size});
    if (!entries.empty()) {
        // Dates lose their fractions in the first writing; from then on nothing changes.
        const std::string written = JournalStore::encode(entries);
        const auto again = JournalStore::decode(written);
        FUZZ_CHECK(again.size() == entries.size());
        FUZZ_CHECK(JournalStore::encode(again) == written);
    }
    return 0;
}
