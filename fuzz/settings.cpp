// The settings file as the app reads it at launch: field by field, never failing, and what
// it accepts written back and read again is the same settings.

#include "FuzzCheck.hpp"
#include "JsonCoding.hpp"
#include "SettingsFile.hpp"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace scrimlet;
    const StageSettings settings =
        SettingsFile::decode({reinterpret_cast<const char*>(data), size});
    const std::string written = json::sortedText(toJson(settings));
    FUZZ_CHECK(SettingsFile::decode(written) == settings);
    return 0;
}
