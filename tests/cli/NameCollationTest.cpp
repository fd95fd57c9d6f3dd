#include "NameCollation.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

TEST(NameCollation, LocaleComesFromTheEnvironmentWithoutEncoding) {
    EXPECT_EQ(NameCollation::localeName({}), "");
    EXPECT_EQ(NameCollation::localeName({{"LANG", "C.UTF-8"}}), "");
    EXPECT_EQ(NameCollation::localeName({{"LANG", "POSIX"}}), "");
    EXPECT_EQ(NameCollation::localeName({{"LANG", "ro_RO.UTF-8"}}), "ro_RO");
    EXPECT_EQ(NameCollation::localeName({{"LANG", "de_DE"}, {"LC_COLLATE", "sv_SE@euro"}}),
              "sv_SE");
    EXPECT_EQ(NameCollation::localeName({{"LC_ALL", ""}, {"LANG", "vi_VN.UTF-8"}}), "vi_VN");
}

TEST(NameCollation, OrdersLettersOfEveryScriptAsPeopleRead) {
#ifdef __APPLE__
    GTEST_SKIP() << "on macOS the command asks the system for its order";
#endif
    const auto order = NameCollation::userOrder({{"LANG", "C.UTF-8"}});
    ASSERT_TRUE(order.has_value());
    const auto& less = *order;
    EXPECT_TRUE(less("ŁÓDŹ ÉCLAIR", "łódź éclair") == 0);
    EXPECT_TRUE(less("ЯРЛЫК", "ярлык") == 0);
    EXPECT_TRUE(less("Mail", "mail") == 0);
    // Letters beyond Latin-1 take their place beside their base letter, not after "Z".
    for (const std::string pair :
         {"Émile<Eve", "Zoe<Zoë", "Zoë<Zoey", "Strasse<Straßer", "Æther<Affinity", "Ștefan<Tandem",
          "Ứng dụng<Vault", "Şahin<Ta", "Ölfarbe<Pages", "Zulu<Þorn", "_tool<app",
          "1Password<Affinity", "Zed<Ярлык", "Mail<Mailbox", "Ελλάδα<Ярлык"}) {
        const auto a = pair.substr(0, pair.find('<')), b = pair.substr(pair.find('<') + 1);
        EXPECT_TRUE(less(a, b) < 0) << pair;
        EXPECT_TRUE(less(b, a) > 0) << pair;
    }
    // Bytes that are no UTF-8 never break the order.
    EXPECT_TRUE(less("a\xC3", "a\xFF") == 0);
    EXPECT_TRUE(less("a\xC3", "b") < 0);
}

TEST(NameCollation, FollowsTheLocalesOwnAlphabet) {
#ifdef __APPLE__
    GTEST_SKIP() << "on macOS the command asks the system for its order";
#endif
    // Swedish puts "Ö" after "Z"; German files it with "O".
    const auto swedish = NameCollation::userOrder({{"LANG", "sv_SE.UTF-8"}});
    const auto german = NameCollation::userOrder({{"LANG", "de_DE.UTF-8"}});
    ASSERT_TRUE(swedish && german);
    EXPECT_TRUE((*swedish)("Zebra", "Öl") < 0);
    EXPECT_TRUE((*german)("Öl", "Zebra") < 0);
}

} // namespace
} // namespace scrimlet
