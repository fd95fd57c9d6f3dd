#include "UpdateScreen.hpp"
#include "UpdaterWorld.hpp"

#include <iterator>

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using Phase = Updater::Phase;

const std::string notDownloaded = "The update couldn’t be downloaded. ";

Phase failed(const std::string& message) {
    return {Phase::Failed{message}};
}

class UpdaterStory : public ::testing::Test, protected UpdaterWorld {};

TEST_F(UpdaterStory, WithoutAUsableFeedNothingHappens) {
    bundle.info["VantrelUpdateFeedURL"] = "not a url";
    make()->start();
    make()->check(true);
    EXPECT_TRUE(host->delayed.empty() && server->requests.empty() && host->windowsShown == 0);
}

TEST_F(UpdaterStory, ChecksSpeakOnlyWhenAsked) {
    const auto updater = make();
    updater->check(true);
    EXPECT_EQ(updater->phase(), failed("Couldn’t check for updates. Check your internet "
                                       "connection and try again."));
    publish("1.0");
    updater->check(false);
    EXPECT_EQ(updater->phase(), Phase{Phase::Idle{}});
    EXPECT_TRUE(server->requests.back().ignoreLocalCache);
    updater->check(true);
    EXPECT_EQ(updater->phase(), Phase{Phase::UpToDate{}});
    EXPECT_EQ(updater->lastChecked(), host->clock);

    // A broken feed later is neither news nor a check.
    host->clock += 3600;
    server->routes[feedURL] = {200, "<html>maintenance"};
    updater->check(false);
    EXPECT_EQ(updater->phase(), Phase{Phase::UpToDate{}});
    EXPECT_EQ(updater->lastChecked(), host->clock - 3600);
    EXPECT_EQ(host->windowsShown, 2);
}

TEST_F(UpdaterStory, ANewVersionAnnouncesItselfOnce) {
    defaults->values["VantrelAutoUpdate"] = false;
    const UpdateFeed feed = publish("1.1");
    const auto updater = make();
    updater->check(false);
    updater->check(false);
    make()->check(false);
    EXPECT_EQ(updater->phase(), Phase{Phase::Available{feed}});
    EXPECT_EQ(host->windowsShown, 1);

    publish("1.2", {.version = "1.2"});
    updater->check(false);
    EXPECT_EQ(host->windowsShown, 2);

    // Switched back on, the next check downloads by itself.
    updater->setAutomaticallyDownloads(true);
    updater->check(false);
    EXPECT_TRUE(updater->phase().is<Phase::Ready>());
}

TEST_F(UpdaterStory, AutomaticUpdateStagesValidatesAndInstallsAtQuit) {
    fakes::writeText(staging / "0.9" / "Old.app" / "Info", "left over\n");
    const UpdateFeed feed = publish("1.1", {.padding = 20000});
    const auto updater = make();
    std::vector<double> fractions;
    updater->setOnChange([&] {
        if (const auto* downloading = updater->phase().as<Phase::Downloading>()) {
            fractions.push_back(downloading->fraction);
        }
    });
    // The first check comes 8 seconds after launch, then one every six hours.
    updater->start();
    updater->start();
    ASSERT_EQ(std::pair(host->delayed.size(), host->repeating.size()),
              (std::pair<size_t, size_t>(1, 1)));
    EXPECT_EQ(std::pair(host->delayed[0].first, host->repeating[0].first), std::pair(8.0, 21600.0));
    host->delayed[0].second();

    ASSERT_EQ(updater->phase(), Phase{Phase::Ready{feed}});
    const fs::path app = staging / "1.1" / "Scrimlet.app";
    EXPECT_EQ(updater->stagedApp(), app);
    EXPECT_EQ(std::distance(fs::directory_iterator(staging), fs::directory_iterator()), 1);
    EXPECT_EQ(host->windowsShown, 1);
    // From 0 to 1 in whole percents, not once a byte.
    EXPECT_EQ(fractions.back(), 1);
    EXPECT_LE(fractions.size(), 102u);

    // A staged update is never disturbed by a later check.
    host->repeating[0].second();
    updater->check(true);
    EXPECT_EQ(updater->phase(), Phase{Phase::Ready{feed}});
    EXPECT_EQ(server->requests.size(), 2u);

    // Moved meanwhile to a place the user cannot write: the app stays as it is.
    files->readOnly.insert(bundle.path.parent_path());
    host->terminate();
    EXPECT_TRUE(tools->launches.empty());
    files->readOnly.clear();

    updater->installAndRelaunch();
    EXPECT_EQ(tools->launches, (std::vector<fakes::Tools::Call>{
                                   {"/bin/sh",
                                    {"-c", std::string(Updater::installScript), "vantrel-update",
                                     "4242", app.string(), bundle.path.string(), "1"}}}));
}

TEST_F(UpdaterStory, OversizedShortOrMissingDownloadsAndBadSignaturesWriteNothing) {
    const UpdateFeed feed = publish("1.1");
    const auto length = static_cast<std::size_t>(feed.download->length);
    std::string& body = server->routes[archiveURL].body;
    body += std::string(1000, 'x');
    const auto updater = make();
    updater->check(false);
    EXPECT_EQ(server->delivered, length + 1);
    EXPECT_EQ(updater->phase(), failed(notDownloaded + "The download was larger than expected."));

    body.resize(length - 1);
    updater->download(feed);
    EXPECT_EQ(updater->phase(), failed(notDownloaded + "The download was incomplete."));

    body = fakes::Archive{}.bytes();
    body[3] = static_cast<char>(body[3] ^ 0x01);
    updater->download(feed);
    EXPECT_EQ(updater->phase(),
              failed("The update’s signature didn’t match, so it wasn’t installed."));

    // A feed that promises nothing at all: no progress can be told, yet nothing breaks.
    UpdateFeed empty = feed;
    empty.download->length = 0;
    body.clear();
    std::vector<double> fractions;
    updater->setOnChange([&] {
        if (const auto* downloading = updater->phase().as<Phase::Downloading>()) {
            fractions.push_back(downloading->fraction);
        }
    });
    updater->download(empty);
    EXPECT_EQ(updater->phase(),
              failed("The update’s signature didn’t match, so it wasn’t installed."));
    for (const double fraction : fractions) {
        EXPECT_TRUE(fraction >= 0 && fraction <= 1) << fraction;
    }
    updater->setOnChange({});

    server->routes[archiveURL].status = 404;
    updater->download(feed);
    EXPECT_EQ(updater->phase(), failed(notDownloaded + "The update file couldn’t be downloaded."));
    EXPECT_FALSE(fs::exists(caches) || !tools->runs.empty());
}

TEST_F(UpdaterStory, AnotherAppOrVersionOrAFailedToolIsRefused) {
    const auto updater = make();
    const auto refused = [&](const std::string& version, const fakes::Archive& archive,
                             const std::string& message) {
        updater->download(publish(version, archive));
        EXPECT_EQ(updater->phase(), failed(notDownloaded + message)) << archive.bytes();
    };
    const std::string mismatch = "The downloaded update didn’t match this app.";
    refused("1.1", {.bundleIdentifier = "com.example.other"}, mismatch);
    refused("1.1", {.version = "1.2"}, mismatch);
    // The feed is not signed, and its version names a folder: it may not climb out.
    refused("1.1/../../../Escaped", {.version = "1.1/../../../Escaped"}, mismatch);
    EXPECT_FALSE(fs::exists(caches / "Escaped"));
    tools->statuses = {{"/usr/bin/codesign", 3}};
    refused("1.1", {}, "The downloaded app’s code signature is damaged.");
    tools->statuses = {{"/usr/bin/ditto", 1}};
    refused("1.1", {}, "/usr/bin/ditto failed");

    updater->installOnQuit();
    EXPECT_FALSE(updater->stagedApp() || !tools->launches.empty());
}

TEST_F(UpdaterStory, AppsThatCannotUpdateInPlaceNeverDownloadByThemselves) {
    publish("1.1");
    for (const fs::path place : {"/Volumes/Scrimlet/Scrimlet.app",
                                 "/private/var/folders/x/AppTranslocation/1F2E/d/Scrimlet.app"}) {
        bundle.path = place;
        const auto updater = make();
        updater->check(false);
        const UpdateScreen screen = UpdateScreen::of(*updater);
        EXPECT_EQ(screen.detail, "You have 1.0. Move Scrimlet to your Applications folder to "
                                 "get updates automatically.")
            << place;
    }
    // Nor without the maker's key, from a good place: an empty key, as a build without one
    // writes it, counts as none.
    bundle.path = temp / "Applications" / "Scrimlet.app";
    bundle.info["VantrelUpdatePublicKey"] = "";
    const auto emptyKey = make();
    emptyKey->check(false);
    EXPECT_EQ(UpdateScreen::of(*emptyKey).buttons.back().title, "Open Download Page");
    bundle.info.erase("VantrelUpdatePublicKey");
    const auto keyless = make();
    keyless->check(false);
    EXPECT_EQ(UpdateScreen::of(*keyless).buttons.back().title, "Open Download Page");
    // Four checks, and never the archive.
    EXPECT_EQ(server->requests.size(), 4u);
    EXPECT_FALSE(fs::exists(caches) || !tools->runs.empty());
}

} // namespace
} // namespace vantrel
