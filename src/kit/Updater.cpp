#include "Updater.hpp"

#include "AtomicFile.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

namespace vantrel {

namespace {

namespace fs = std::filesystem;

const std::string autoUpdateKey = "VantrelAutoUpdate";
const std::string announcedKeyPrefix = "VantrelAnnounced-";

constexpr double firstCheckDelay = 8;
constexpr double checkInterval = 21600;
constexpr double feedTimeout = 20;
// A feed is a few hundred bytes; anything this large is not one.
constexpr std::size_t feedSizeLimit = 1 << 20;
// The feed's length is a promise, not a fact: reserve no more than this up front.
constexpr std::int64_t reserveLimit = std::int64_t{64} << 20;

const std::string checkFailed =
    "Couldn’t check for updates. Check your internet connection and try again.";
const std::string downloadFailed = "The update couldn’t be downloaded. ";
const std::string fileNotDownloaded = "The update file couldn’t be downloaded.";
const std::string incomplete = "The download was incomplete.";
const std::string tooLarge = "The download was larger than expected.";
const std::string signatureMismatch =
    "The update’s signature didn’t match, so it wasn’t installed.";
const std::string noApp = "The update didn’t contain an app.";
const std::string appMismatch = "The downloaded update didn’t match this app.";
const std::string signatureDamaged = "The downloaded app’s code signature is damaged.";

const std::string ditto = "/usr/bin/ditto";
const std::string xattr = "/usr/bin/xattr";
const std::string codesign = "/usr/bin/codesign";
const std::string shell = "/bin/sh";

/// The same addresses the platform's URL parser turns down: empty text, or text with
/// spaces or control characters in it.
bool isAddress(const std::string& text) {
    return !text.empty() && std::none_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) <= ' ' || c == '\x7f';
    });
}

std::optional<std::string> address(const BundleFacts& bundle, const std::string& key) {
    auto text = bundle.infoString(key);
    if (text && !isAddress(*text)) {
        return std::nullopt;
    }
    return text;
}

/// A build made without the maker's key writes the key as empty text: that is no key.
std::optional<std::string> nonEmpty(std::optional<std::string> text) {
    if (text && text->empty()) {
        return std::nullopt;
    }
    return text;
}

/// A version becomes a folder name, and the feed is not signed: never let it reach outside
/// the staging folder.
bool isPlainName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
}

std::string describe(const std::exception& error) {
    if (const auto* system = dynamic_cast<const std::system_error*>(&error)) {
        return system->code().message();
    }
    return error.what();
}

std::optional<UpdateFeed> loadFeed(HttpTransport& http, const HttpTransport::Request& request) {
    std::optional<int> status;
    std::string body;
    bool oversized = false;
    try {
        http.send(request, {[&](int code) {
                                status = code;
                                return code == 200;
                            },
                            [&](std::string_view piece) {
                                if (body.size() + piece.size() > feedSizeLimit) {
                                    oversized = true;
                                    return false;
                                }
                                body.append(piece);
                                return true;
                            }});
    } catch (const std::exception&) {
        return std::nullopt;
    }
    if (status != 200 || oversized) {
        return std::nullopt;
    }
    return UpdateFeed::decode(body);
}

void writeFile(const fs::path& path, std::string_view data) {
    if (!scrimlet::files::writeAtomically(path, data)) {
        throw std::system_error(errno != 0 ? errno : EIO, std::generic_category());
    }
}

} // namespace

const UpdateFeed* Updater::Phase::feed() const {
    return std::visit(
        [](const auto& phase) -> const UpdateFeed* {
            if constexpr (requires { phase.feed; }) {
                return &phase.feed;
            } else {
                return nullptr;
            }
        },
        value);
}

std::shared_ptr<Updater> Updater::create(BundleFacts bundle, std::filesystem::path cachesFolder,
                                         OperatingSystemVersion system, Services services) {
    return std::shared_ptr<Updater>(
        new Updater(std::move(bundle), std::move(cachesFolder), system, std::move(services)));
}

Updater::Updater(BundleFacts bundle, std::filesystem::path cachesFolder,
                 OperatingSystemVersion system, Services services)
    : bundle_(std::move(bundle))
    , cachesFolder_(std::move(cachesFolder))
    , system_(system)
    , services_(std::move(services))
    , feedURL_(address(bundle_, "VantrelUpdateFeedURL"))
    , publicKey_(nonEmpty(bundle_.infoString("VantrelUpdatePublicKey")))
    , currentVersion_(bundle_.infoString("CFBundleShortVersionString").value_or("1.0"))
    , appName_(bundle_.infoString("CFBundleName").value_or(""))
    , automaticallyDownloads_(services_.defaults->boolValue(autoUpdateKey).value_or(true)) {}

void Updater::setAutomaticallyDownloads(bool on) {
    automaticallyDownloads_ = on;
    services_.defaults->setBool(autoUpdateKey, on);
    changed();
}

void Updater::start() {
    if (!feedURL_ || started_) {
        return;
    }
    started_ = true;
    const std::weak_ptr<Updater> weak = weak_from_this();
    services_.host->whenTerminating([weak] {
        if (const auto self = weak.lock()) {
            self->installOnQuit();
        }
    });
    const auto backgroundCheck = [weak] {
        if (const auto self = weak.lock()) {
            self->check(false);
        }
    };
    services_.host->runAfter(firstCheckDelay, backgroundCheck);
    services_.host->runEvery(checkInterval, backgroundCheck);
}

void Updater::check(bool userInitiated) {
    if (!feedURL_) {
        return;
    }
    // A download under way or a staged update is never interrupted.
    if (isBusy()) {
        if (userInitiated) {
            answer();
        }
        return;
    }
    if (userInitiated) {
        setPhase({Phase::Checking{}});
        answer();
    }
    HttpTransport::Request request;
    request.url = *feedURL_;
    request.headers = {{"User-Agent", appName_ + "/" + currentVersion_}};
    request.timeoutSeconds = feedTimeout;
    request.ignoreLocalCache = true;
    auto http = services_.http;
    auto host = services_.host;
    const std::weak_ptr<Updater> weak = weak_from_this();
    host->runInBackground([http, host, weak, request, userInitiated] {
        auto feed = loadFeed(*http, request);
        host->runOnMain([weak, feed = std::move(feed), userInitiated] {
            if (const auto self = weak.lock()) {
                self->finishCheck(feed, userInitiated);
            }
        });
    });
}

void Updater::finishCheck(const std::optional<UpdateFeed>& feed, bool userInitiated) {
    if (feed) {
        lastChecked_ = services_.host->now();
        changed();
    }
    // A download the user started while the feed was loading wins over what it says.
    if (isBusy()) {
        return;
    }
    if (!feed) {
        if (userInitiated) {
            setPhase({Phase::Failed{checkFailed}});
        }
        return;
    }
    if (UpdateLogic::isNewer(feed->version, currentVersion_) &&
        UpdateLogic::systemSupports(feed->minimumSystemVersion, system_)) {
        if (automaticallyDownloads_ && canDownloadInPlace(*feed)) {
            download(*feed);
            return;
        }
        setPhase({Phase::Available{*feed}});
        if (!userInitiated && shouldAnnounce(*feed)) {
            remind();
        }
        return;
    }
    setPhase(userInitiated ? Phase{Phase::UpToDate{}} : Phase{Phase::Idle{}});
}

bool Updater::shouldAnnounce(const UpdateFeed& feed) {
    const std::string key = announcedKeyPrefix + feed.version;
    const bool announced = services_.defaults->boolValue(key).value_or(false);
    if (!announced) {
        services_.defaults->setBool(key, true);
    }
    return !announced;
}

bool Updater::canInstallInPlace() const {
    const fs::path app = appPath();
    const std::string path = app.string();
    if (path.starts_with("/Volumes/") || path.find("/AppTranslocation/") != std::string::npos) {
        return false;
    }
    return services_.files->isWritable(app.parent_path()) && services_.files->isWritable(app);
}

bool Updater::canDownloadInPlace(const UpdateFeed& feed) const {
    return feed.download.has_value() && publicKey_.has_value() && canInstallInPlace();
}

void Updater::download(const UpdateFeed& feed) {
    if (!feed.download || !publicKey_ || !isAddress(feed.download->url)) {
        setPhase({Phase::Failed{downloadFailed + fileNotDownloaded}});
        return;
    }
    setPhase({Phase::Downloading{feed, 0}});
    // The job keeps the updater alive for its steps, which read only what never changes.
    const std::shared_ptr<const Updater> job = shared_from_this();
    const std::weak_ptr<Updater> weak = weak_from_this();
    services_.host->runInBackground([job, weak, feed] {
        const auto host = job->services_.host;
        const auto progress = [host, weak](double fraction) {
            host->runOnMain([weak, fraction] {
                if (const auto updater = weak.lock()) {
                    updater->showProgress(fraction);
                }
            });
        };
        auto outcome = job->fetchAndStage(feed, progress);
        host->runOnMain([weak, feed, outcome = std::move(outcome)] {
            if (const auto updater = weak.lock()) {
                updater->finishDownload(feed, outcome);
            }
        });
    });
}

Updater::DownloadOutcome Updater::fetchAndStage(const UpdateFeed& feed,
                                                const std::function<void(double)>& progress) const {
    const UpdateFeed::Download& archive = *feed.download;
    try {
        const std::string data = fetch(archive.url, archive.length, progress);
        if (static_cast<std::int64_t>(data.size()) != archive.length) {
            throw UpdateError(incomplete);
        }
        // Nothing has touched the disk yet, and a forged archive never will.
        if (!UpdateLogic::verify(data, archive.edSignature, publicKey_.value_or(""))) {
            return Phase::Failed{signatureMismatch};
        }
        const fs::path app = stage(data, feed.version);
        validate(app, feed.version);
        return Staged{app};
    } catch (const UpdateError& error) {
        return Phase::Failed{downloadFailed + error.message};
    } catch (const std::exception& error) {
        return Phase::Failed{downloadFailed + describe(error)};
    }
}

void Updater::showProgress(double fraction) {
    if (const auto* downloading = phase_.as<Phase::Downloading>()) {
        setPhase({Phase::Downloading{downloading->feed, fraction}});
    }
}

void Updater::finishDownload(const UpdateFeed& feed, const DownloadOutcome& outcome) {
    if (const auto* failed = std::get_if<Phase::Failed>(&outcome)) {
        setPhase({*failed});
        return;
    }
    stagedApp_ = std::get<Staged>(outcome).app;
    setPhase({Phase::Ready{feed}});
    if (shouldAnnounce(feed)) {
        remind();
    }
}

void Updater::answer() {
    // The user is looking now: a reminder still held would only reopen what they close.
    reminderHeld_ = false;
    services_.host->showWindow(WindowReason::answer);
}

void Updater::remind() {
    if (!holdReminders_ || !holdReminders_()) {
        reminderHeld_ = false;
        services_.host->showWindow(WindowReason::reminder);
        return;
    }
    if (reminderHeld_) {
        return;
    }
    reminderHeld_ = true;
    const std::weak_ptr<Updater> weak = weak_from_this();
    services_.host->runAfter(reminderRetry, [weak] {
        if (const auto self = weak.lock()) {
            self->retryReminder();
        }
    });
}

void Updater::retryReminder() {
    if (!reminderHeld_) {
        return;
    }
    reminderHeld_ = false;
    // News that went stale meanwhile (a failed download, say) is no reminder.
    if (phase_.is<Phase::Available>() || phase_.is<Phase::Ready>()) {
        remind();
    }
}

std::string Updater::fetch(const std::string& url, std::int64_t expected,
                           const std::function<void(double)>& progress) const {
    // The most that is ever kept: one byte past the promise proves the server wrong.
    const std::uint64_t limit = static_cast<std::uint64_t>(std::max<std::int64_t>(expected, 0)) + 1;
    std::string data;
    data.reserve(static_cast<std::size_t>(std::clamp<std::int64_t>(expected, 1, reserveLimit)));
    std::optional<int> status;
    bool overflowed = false;
    int reportedPercent = 0;

    HttpTransport::Request request;
    request.url = url;
    services_.http->send(
        request,
        {[&](int code) {
             status = code;
             return code == 200;
         },
         [&](std::string_view piece) {
             const auto room = limit - data.size();
             data.append(piece.substr(0, std::min<std::uint64_t>(room, piece.size())));
             if (static_cast<std::int64_t>(data.size()) > expected) {
                 overflowed = true;
                 return false;
             }
             // A promise of nothing leaves no share to tell until the end.
             if (expected <= 0) {
                 return true;
             }
             // Whole percents only, so the main thread is not flooded with redraws.
             const auto percent = static_cast<int>(static_cast<double>(data.size()) * 100 /
                                                   static_cast<double>(expected));
             if (percent > reportedPercent) {
                 reportedPercent = percent;
                 progress(static_cast<double>(data.size()) / static_cast<double>(expected));
             }
             return true;
         }});
    if (status != 200) {
        throw UpdateError(fileNotDownloaded);
    }
    if (overflowed) {
        throw UpdateError(tooLarge);
    }
    progress(1);
    return data;
}

fs::path Updater::stage(std::string_view zip, const std::string& version) const {
    if (!isPlainName(version)) {
        throw UpdateError(appMismatch);
    }
    // One staging folder, emptied each time, so that at most one update waits.
    const fs::path root =
        cachesFolder_ / bundle_.bundleIdentifier.value_or("app.vantrel") / "VantrelUpdate";
    fs::remove_all(root);
    const fs::path folder = root / version;
    fs::create_directories(folder);

    const fs::path archive = folder / "update.zip";
    writeFile(archive, zip);
    runTool(ditto, {"-x", "-k", archive.string(), folder.string()});
    fs::remove(archive);

    std::vector<fs::path> apps;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".app") {
            apps.push_back(entry.path());
        }
    }
    if (apps.empty()) {
        throw UpdateError(noApp);
    }
    const fs::path app = *std::min_element(apps.begin(), apps.end());
    runTool(xattr, {"-dr", "com.apple.quarantine", app.string()});
    return app;
}

void Updater::validate(const fs::path& staged, const std::string& expectedVersion) const {
    const auto facts = services_.files->open(staged);
    if (!facts || !facts->bundleIdentifier || facts->bundleIdentifier != bundle_.bundleIdentifier ||
        facts->infoString("CFBundleShortVersionString") != expectedVersion) {
        throw UpdateError(appMismatch);
    }
    if (services_.tools->run(codesign, {"--verify", "--deep", staged.string()}) != 0) {
        throw UpdateError(signatureDamaged);
    }
}

void Updater::installAndRelaunch() {
    relaunchAfterInstall_ = true;
    changed();
    services_.host->terminate();
}

void Updater::installOnQuit() {
    if (!phase_.is<Phase::Ready>() || !stagedApp_ || !canInstallInPlace()) {
        return;
    }
    // The script outlives this process, so it is handed everything it needs.
    services_.tools->launch(shell,
                            {"-c", std::string(installScript), "vantrel-update",
                             std::to_string(services_.host->processId()), stagedApp_->string(),
                             appPath().string(), relaunchAfterInstall_ ? "1" : "0"});
}

bool Updater::isBusy() const {
    return phase_.is<Phase::Downloading>() || phase_.is<Phase::Ready>();
}

fs::path Updater::appPath() const {
    const fs::path& path = bundle_.path;
    return path.has_filename() ? path : path.parent_path();
}

void Updater::setPhase(Phase phase) {
    if (phase == phase_) {
        return;
    }
    phase_ = std::move(phase);
    changed();
}

void Updater::changed() {
    if (onChange_) {
        onChange_();
    }
}

void Updater::runTool(const std::string& path, const std::vector<std::string>& arguments) const {
    if (services_.tools->run(path, arguments) != 0) {
        throw UpdateError(path + " failed");
    }
}

} // namespace vantrel
