// The update feed comes from the network and is not signed: it decodes or it does not, and a
// feed that decodes is the same feed once written by the maker's tools and read again.

#include "FuzzCheck.hpp"
#include "UpdateFeed.hpp"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using vantrel::UpdateFeed;
    const auto feed = UpdateFeed::decode({reinterpret_cast<const char*>(data), size});
    if (feed) {
        FUZZ_CHECK(UpdateFeed::decode(feed->toJson().dump()) == feed);
    }
    return 0;
}
