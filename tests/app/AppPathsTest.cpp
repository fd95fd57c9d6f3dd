#include "AppPaths.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

TEST(AppPaths, TheSupportFolderFollowsTheUsersDataHome) {
#ifdef __APPLE__
    EXPECT_EQ(AppPaths::support({{"HOME", "/Users/ada"}}),
              "/Users/ada/Library/Application Support/Scrimlet");
#else
    EXPECT_EQ(AppPaths::support({{"HOME", "/home/ada"}}), "/home/ada/.local/share/Scrimlet");
    EXPECT_EQ(AppPaths::support({{"HOME", "/home/ada"}, {"XDG_DATA_HOME", "/data"}}),
              "/data/Scrimlet");
    EXPECT_EQ(AppPaths::support({{"HOME", "/home/ada"}, {"XDG_DATA_HOME", "relative"}}),
              "/home/ada/.local/share/Scrimlet");
#endif
}

} // namespace
} // namespace scrimlet
