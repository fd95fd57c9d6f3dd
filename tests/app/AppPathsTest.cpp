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

TEST(AppPaths, TheAppMayNameTheApplicationSupportFolderItself) {
    AppPaths::setApplicationSupport("");
    EXPECT_EQ(AppPaths::support(), AppPaths::support(Harness::env())) << "an empty name is no name";
    AppPaths::setApplicationSupport("/Users/ada/Library/Containers/x/Application Support");
    EXPECT_EQ(AppPaths::support(), "/Users/ada/Library/Containers/x/Application Support/Scrimlet");
}

} // namespace
} // namespace scrimlet
