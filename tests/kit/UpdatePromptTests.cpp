#include "UpdateScreen.hpp"
#include "UpdaterWorld.hpp"

namespace vantrel {
namespace {

using Phase = Updater::Phase;
using Reasons = std::vector<WindowReason>;

class UpdatePrompt : public ::testing::Test, protected UpdaterWorld {};

TEST_F(UpdatePrompt, RemindersWaitForTheShowToEndAnswersNeverWait) {
    defaults->values["VantrelAutoUpdate"] = false;
    const UpdateFeed feed = publish("1.1");
    const auto updater = make();
    bool onStage = true;
    updater->holdRemindersWhile([&] { return onStage; });

    // News during a show is held, and looked at again every few seconds, once at a time.
    updater->check(false);
    updater->check(false);
    EXPECT_EQ(updater->phase(), Phase{Phase::Available{feed}});
    EXPECT_EQ(host->windowsShown, 0);
    ASSERT_EQ(host->delayed.size(), 1u);
    EXPECT_EQ(host->delayed[0].first, Updater::reminderRetry);
    host->delayed[0].second();
    ASSERT_EQ(host->delayed.size(), 2u);
    EXPECT_EQ(host->windowsShown, 0);

    // The curtain falls: the next look shows it, gently, and only once.
    onStage = false;
    host->delayed[1].second();
    host->delayed[1].second();
    EXPECT_EQ(host->reasons, Reasons{WindowReason::reminder});

    // The user asking during a show is answered at once, and a reminder held before is
    // dropped: it would only reopen the window they have seen.
    onStage = true;
    publish("1.2", {.version = "1.2"});
    updater->check(false);
    updater->check(true);
    onStage = false;
    host->delayed.back().second();
    EXPECT_EQ(host->reasons, (Reasons{WindowReason::reminder, WindowReason::answer}));

    // A staged update held through a show is still news when it ends; a failure is not.
    updater->setAutomaticallyDownloads(true);
    onStage = true;
    publish("1.3", {.version = "1.3"});
    updater->check(false);
    ASSERT_TRUE(updater->phase().is<Phase::Ready>());
    onStage = false;
    host->delayed.back().second();
    EXPECT_EQ(host->reasons.back(), WindowReason::reminder);
    EXPECT_EQ(host->reasons.size(), 3u);
}

TEST_F(UpdatePrompt, AStaleReminderIsDropped) {
    defaults->values["VantrelAutoUpdate"] = false;
    const UpdateFeed feed = publish("1.1");
    bool onStage = true;
    const auto manual = make();
    manual->holdRemindersWhile([&] { return onStage; });
    manual->check(false);
    // The user downloads from the menu meanwhile, and the archive turns out to be bad.
    server->routes[archiveURL].body += "x";
    manual->download(feed);
    ASSERT_TRUE(manual->phase().is<Phase::Failed>());
    onStage = false;
    ASSERT_EQ(host->delayed.size(), 1u);
    host->delayed.back().second();
    EXPECT_EQ(host->windowsShown, 0);
}

TEST_F(UpdatePrompt, EveryPhaseSaysWhatItMeans) {
    defaults->values["VantrelAutoUpdate"] = false;
    const auto updater = make();
    const auto screen = [&] { return UpdateScreen::of(*updater); };
    const std::vector<UpdateButton> ok{{"OK", UpdateAction::close}};

    UpdateScreen idle = screen();
    EXPECT_EQ(idle.title, "Checking for updates…");
    EXPECT_EQ(idle.detail, "");
    EXPECT_FALSE(idle.spinning || idle.progress || idle.notes);
    EXPECT_EQ(idle.buttons, ok);

    // Asked while the server is unreachable.
    updater->check(true);
    EXPECT_EQ(screen().title, "Update problem");
    EXPECT_EQ(screen().detail,
              "Couldn’t check for updates. Check your internet connection and try again.");
    EXPECT_EQ(screen().buttons, ok);

    publish("1.0");
    updater->check(true);
    EXPECT_EQ(screen().title, "You’re up to date");
    EXPECT_EQ(screen().detail, "Scrimlet 1.0 is the newest version.");
    EXPECT_EQ(screen().buttons, ok);

    const UpdateFeed feed = publish("1.1");
    updater->check(true);
    EXPECT_EQ(screen().title, "Scrimlet 1.1 is available");
    EXPECT_EQ(screen().detail, "You have 1.0.");
    EXPECT_EQ(screen().notes, "Faster curtains.");
    EXPECT_EQ(screen().buttons,
              (std::vector<UpdateButton>{{"Later", UpdateAction::close},
                                         {"Download & Install", UpdateAction::download}}));

    // Watched halfway through its download.
    std::vector<UpdateScreen> seen;
    updater->setOnChange([&] { seen.push_back(screen()); });
    updater->download(feed);
    ASSERT_GE(seen.size(), 3u);
    EXPECT_EQ(seen[1].title, "Downloading Scrimlet 1.1");
    EXPECT_EQ(seen[1].detail, "");
    EXPECT_TRUE(seen[1].progress && *seen[1].progress > 0 && *seen[1].progress <= 1);
    EXPECT_EQ(seen[1].buttons, ok);

    EXPECT_EQ(screen().title, "Scrimlet 1.1 is ready");
    EXPECT_EQ(screen().detail, "It installs automatically the next time you quit Scrimlet.");
    EXPECT_EQ(screen().buttons,
              (std::vector<UpdateButton>{{"Later", UpdateAction::close},
                                         {"Restart Now", UpdateAction::installAndRelaunch}}));

    // A check the user asks for spins while the feed loads.
    const auto fresh = make();
    bool spun = false;
    fresh->setOnChange([&] { spun = spun || UpdateScreen::of(*fresh).spinning; });
    fresh->check(true);
    EXPECT_TRUE(spun);
    EXPECT_FALSE(UpdateScreen::of(*fresh).spinning);

    EXPECT_EQ(UpdateScreen::automaticUpdatesNote("Scrimlet"),
              "New versions download in the background and install when you quit Scrimlet.");
    EXPECT_TRUE(UpdateScreen::takesFocus(WindowReason::answer));
    EXPECT_FALSE(UpdateScreen::takesFocus(WindowReason::reminder));
}

TEST(UpdateScreenPage, OnlyWebPagesAreOpened) {
    const auto page = [](const std::string& url) {
        return UpdateScreen::downloadPage(UpdateFeed{"1.1", url, {}, {}, {}});
    };
    EXPECT_EQ(page("https://example.com/scrimlet"), "https://example.com/scrimlet");
    EXPECT_EQ(page("HTTP://example.com"), "HTTP://example.com");
    for (const char* refused :
         {"file:///Applications/Calculator.app", "ssh://example.com", "https:///nohost",
          "javascript:alert(1)", "https://example.com/a b", "example.com", "", "https:"}) {
        EXPECT_EQ(page(refused), std::nullopt) << refused;
    }
}

} // namespace
} // namespace vantrel
