// A saved window list comes from another person's Mac, attached to a report: it is a window
// list or it is not, a damaged window costs only itself, and what the reader accepts is
// written and read back unchanged, with nothing left to note.

#include "FuzzCheck.hpp"
#include "WindowListFile.hpp"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace scrimlet;
    const auto reading = WindowListFile::decode({reinterpret_cast<const char*>(data), size});
    FUZZ_CHECK(reading.list.has_value() == reading.problem.empty());
    if (reading.list) {
        // Dates lose their fractions in the first writing; from then on nothing changes.
        const std::string written = WindowListFile::encode(*reading.list);
        const auto again = WindowListFile::decode(written);
        FUZZ_CHECK(again.list && again.notes.empty());
        FUZZ_CHECK(WindowListFile::encode(*again.list) == written);
    }
    return 0;
}
