#include "UpdateScreen.hpp"
#include "UpdaterWorld.hpp"

#include <algorithm>
#include <iterator>

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using Phase = Updater::Phase;

const std::string notDownloaded = "The update couldn’t be downloaded. ";

class UpdaterStory : public ::testing::Test, protected UpdaterWorld {
protected:
    static Phase failed(const std::string& message) { return {Phase::Failed{message}}; }

    /// Nothing of the update reached the disk and no tool ran on it.
    void expectNothingWritten() const {
        EXPECT_FALSE(fs::exists(caches));
        EXPECT_TRUE(tools->runs.empty());
    }
};

TEST_F(UpdaterStory, SameVersionIsUpToDateOnDemandAndIdleInTheBackground) {
    publish("1.0");
    const auto updater = make();
    updater->check(false);
    EXPECT_EQ(updater->phase(), Phase{Phase::Idle{}});
    EXPECT_EQ(host->windowsShown, 0);
    EXPECT_EQ(updater->lastChecked(), host->clock);

    std::vector<Phase> seen;
    updater->setOnChange([&] { seen.push_back(updater->phase()); });
    updater->check(true);
    EXPECT_EQ(seen.front(), Phase{Phase::Checking{}});
    EXPECT_EQ(updater->phase(), Phase{Phase::UpToDate{}});
    EXPECT_EQ(host->windowsShown, 1);

    const auto& request = server->requests.back();
    EXPECT_TRUE(request.ignoreLocalCache);
    EXPECT_EQ(request.timeoutSeconds, 20);
    EXPECT_EQ(request.headers, (decltype(request.headers){{"User-Agent", "Scrimlet/1.0"}}));
    EXPECT_EQ(server->requestsFor(archiveURL), 0);
}

TEST_F(UpdaterStory, FailedChecksSpeakOnlyWhenAsked) {
    const auto updater = make();
    updater->check(true);
    EXPECT_EQ(updater->phase(), failed("Couldn’t check for updates. Check your internet "
                                       "connection and try again."));

    publish("1.0");
    updater->check(true);
    const auto checkedAt = updater->lastChecked();
    host->clock += 3600;
    for (const fakes::Server::Route& route :
         {fakes::Server::Route{500, "{}"}, fakes::Server::Route{200, "<html>maintenance"}}) {
        server->routes[feedURL] = route;
        updater->check(false);
        EXPECT_EQ(updater->phase(), Phase{Phase::UpToDate{}});
        EXPECT_EQ(updater->lastChecked(), checkedAt);
    }
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
    EXPECT_EQ(server->requestsFor(archiveURL), 0);

    // Switched back on, the next check downloads by itself.
    updater->setAutomaticallyDownloads(true);
    EXPECT_EQ(defaults->values["VantrelAutoUpdate"], true);
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
    updater->check(false);

    ASSERT_EQ(updater->phase(), Phase{Phase::Ready{feed}});
    const fs::path folder = staging / "1.1";
    const fs::path app = folder / "Scrimlet.app";
    EXPECT_EQ(updater->stagedApp(), app);
    EXPECT_EQ(std::distance(fs::directory_iterator(staging), fs::directory_iterator()), 1);
    EXPECT_FALSE(fs::exists(folder / "update.zip"));
    EXPECT_EQ(tools->runs, (std::vector<fakes::Tools::Call>{
                               {"/usr/bin/ditto",
                                {"-x", "-k", (folder / "update.zip").string(), folder.string()}},
                               {"/usr/bin/xattr", {"-dr", "com.apple.quarantine", app.string()}},
                               {"/usr/bin/codesign", {"--verify", "--deep", app.string()}}}));
    EXPECT_EQ(host->windowsShown, 1);
    // From 0 to 1 in whole percents, not once a byte.
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_EQ(fractions.back(), 1);
    EXPECT_LE(fractions.size(), 102u);

    // A staged update is never disturbed by a later check.
    updater->check(true);
    EXPECT_EQ(updater->phase(), Phase{Phase::Ready{feed}});
    EXPECT_EQ(server->requestsFor(feedURL), 1);

    // Moved meanwhile to a place the user cannot write: the app stays as it is.
    updater->start();
    files->readOnly.insert(bundle.path.parent_path());
    host->terminate();
    EXPECT_TRUE(tools->launches.empty());
    files->readOnly.clear();

    updater->installAndRelaunch();
    ASSERT_EQ(tools->launches.size(), 1u);
    EXPECT_EQ(tools->launches[0],
              (fakes::Tools::Call{"/bin/sh",
                                  {"-c", std::string(Updater::installScript), "vantrel-update",
                                   "4242", app.string(), bundle.path.string(), "1"}}));
}

TEST_F(UpdaterStory, OversizedOrShortDownloadsAreRefusedBeforeTheDisk) {
    const UpdateFeed feed = publish("1.1");
    const auto length = static_cast<std::size_t>(feed.download->length);
    server->routes[archiveURL].body += std::string(1000, 'x');
    const auto updater = make();

    updater->check(false);
    EXPECT_EQ(server->delivered, length + 1);
    EXPECT_EQ(updater->phase(), failed(notDownloaded + "The download was larger than expected."));

    server->routes[archiveURL].body.resize(length - 1);
    updater->download(feed);
    EXPECT_EQ(updater->phase(), failed(notDownloaded + "The download was incomplete."));

    server->routes[archiveURL].status = 404;
    updater->download(feed);
    EXPECT_EQ(updater->phase(), failed(notDownloaded + "The update file couldn’t be downloaded."));
    expectNothingWritten();
}

TEST_F(UpdaterStory, BadSignatureWritesNothing) {
    UpdateFeed feed = publish("1.1");
    std::string& body = server->routes[archiveURL].body;
    body[3] = static_cast<char>(body[3] ^ 0x01);
    const auto updater = make();
    updater->check(false);
    const Phase refused = failed("The update’s signature didn’t match, so it wasn’t installed.");
    EXPECT_EQ(updater->phase(), refused);

    body = fakes::Archive{}.bytes();
    feed.download->edSignature = fakes::SigningKey{}.sign(body);
    updater->download(feed);
    EXPECT_EQ(updater->phase(), refused);
    expectNothingWritten();
}

TEST_F(UpdaterStory, AnotherAppOrAnotherVersionIsRefused) {
    const Phase mismatch = failed(notDownloaded + "The downloaded update didn’t match this app.");
    const auto updater = make();
    for (const fakes::Archive& archive : {fakes::Archive{.bundleIdentifier = "com.example.other"},
                                          fakes::Archive{.version = "1.2"}}) {
        updater->download(publish("1.1", archive));
        EXPECT_EQ(updater->phase(), mismatch) << archive.bytes();
        EXPECT_EQ(tools->runs.back().first, "/usr/bin/xattr");
    }
    // The feed is not signed, and its version names a folder: it may not climb out.
    updater->download(publish("1.1/../../../Escaped", {.version = "1.1/../../../Escaped"}));
    EXPECT_EQ(updater->phase(), mismatch);
    EXPECT_FALSE(fs::exists(caches / "Escaped"));

    tools->statuses["/usr/bin/codesign"] = 3;
    updater->download(publish("1.1"));
    EXPECT_EQ(updater->phase(),
              failed(notDownloaded + "The downloaded app’s code signature is damaged."));
    tools->statuses = {{"/usr/bin/ditto", 1}};
    updater->download(publish("1.1"));
    EXPECT_EQ(updater->phase(), failed(notDownloaded + "/usr/bin/ditto failed"));

    updater->installOnQuit();
    EXPECT_FALSE(updater->stagedApp());
    EXPECT_TRUE(tools->launches.empty());
}

TEST_F(UpdaterStory, AppsThatCannotUpdateInPlaceNeverDownloadByThemselves) {
    const fs::path places[] = {"/Volumes/Scrimlet/Scrimlet.app",
                               "/private/var/folders/x/AppTranslocation/1F2E/d/Scrimlet.app"};
    for (const fs::path& place : places) {
        bundle.path = place;
        publish("1.1");
        const auto updater = make();
        updater->check(false);
        EXPECT_TRUE(updater->phase().is<Phase::Available>()) << place;
        const UpdateScreen screen = UpdateScreen::of(*updater);
        EXPECT_EQ(screen.detail, "You have 1.0. Move Scrimlet to your Applications folder to "
                                 "get updates automatically.");
        EXPECT_EQ(screen.buttons.back().action, UpdateAction::openDownloadPage);
    }
    // Nor without the maker's key, from a good place.
    bundle.path = temp / "Applications" / "Scrimlet.app";
    bundle.info.erase("VantrelUpdatePublicKey");
    const auto keyless = make();
    keyless->check(false);
    EXPECT_EQ(UpdateScreen::of(*keyless).buttons.back().title, "Open Download Page");
    EXPECT_EQ(server->requestsFor(archiveURL), 0);
    expectNothingWritten();
}

TEST_F(UpdaterStory, StartSchedulesChecksOnlyWithAFeed) {
    bundle.info["VantrelUpdateFeedURL"] = "not a url";
    make()->start();
    make()->check(true);
    EXPECT_TRUE(host->delayed.empty() && host->repeating.empty() && server->requests.empty());

    bundle.info["VantrelUpdateFeedURL"] = feedURL;
    publish("1.0");
    const auto updater = make();
    updater->start();
    updater->start();
    ASSERT_EQ(host->delayed.size(), 1u);
    ASSERT_EQ(host->repeating.size(), 1u);
    EXPECT_EQ(host->delayed[0].first, 8);
    EXPECT_EQ(host->repeating[0].first, 21600);
    EXPECT_TRUE(server->requests.empty());
    host->delayed[0].second();
    host->repeating[0].second();
    EXPECT_EQ(server->requestsFor(feedURL), 2);
}

} // namespace
} // namespace vantrel
