#include "UpdateFeed.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace vantrel {
namespace {

TEST(UpdateFeed, DecodesKnownKeysAndIgnoresTheRest) {
    const auto feed = UpdateFeed::decode(R"({"version": "1.10", "url": "https://e.com",
        "notes": "Quieter.", "minimumSystemVersion": "14.0", "channel": "beta",
        "download": {"url": "https://e.com/s.zip", "length": 123456, "edSignature": "c2ln",
                     "sha256": "ignored"}})");
    ASSERT_TRUE(feed);
    EXPECT_EQ(*feed, (UpdateFeed{"1.10", "https://e.com", "Quieter.", "14.0",
                                 UpdateFeed::Download{"https://e.com/s.zip", 123456, "c2ln"}}));
    EXPECT_EQ(UpdateFeed::fromJson(feed->toJson()), feed);

    const auto bare = UpdateFeed::decode(R"({"version": "2", "url": "u", "notes": null})");
    ASSERT_TRUE(bare);
    EXPECT_FALSE(bare->notes || bare->minimumSystemVersion || bare->download);
}

TEST(UpdateFeed, RefusesMissingOrMistypedRequiredKeys) {
    for (
        const char* text : {
            R"({"url": "u"})",
            R"({"version": 2, "url": "u"})",
            R"({"version": "1.1", "url": "u", "notes": 5})",
            R"({"version": "1.1", "url": "u", "download": {"url": "d", "length": 10}})",
            R"({"version": "1.1", "url": "u", "download": {"url": "d", "edSignature": "s"}})",
            R"({"version": "1", "url": "u", "download": {"url": "d", "length": 1.5, "edSignature": "s"}})",
            R"({"version": "1.1", "url": "u")",
            R"(["version", "url"])",
        }) {
        EXPECT_FALSE(UpdateFeed::decode(text)) << text;
    }
}

} // namespace
} // namespace vantrel
