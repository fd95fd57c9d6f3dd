// The run sheets file: all sheets or none, and what the reader accepts the program writes
// and reads back unchanged.

#include "FuzzCheck.hpp"
#include "RunSheetFile.hpp"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace scrimlet;
    const auto sheets = RunSheetFile::decode({reinterpret_cast<const char*>(data), size});
    if (!sheets.empty()) {
        const std::string written = RunSheetFile::encode(sheets);
        const auto again = RunSheetFile::decode(written);
        FUZZ_CHECK(again.size() == sheets.size());
        FUZZ_CHECK(RunSheetFile::encode(again) == written);
    }
    return 0;
}
