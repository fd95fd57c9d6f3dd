#pragma once

// Keeps the app current without a framework: checks the signed feed at launch and every six
// hours, downloads the archive with strict limits, verifies its signature before anything
// touches the disk, unpacks and validates it in the caches folder, and leaves the swap to a
// small shell script that runs once the process has quit.
//
// Threads: an Updater belongs to the main thread. Every public member except the three steps
// of a download (`fetch`, `stage`, `validate`) is called there, and its state changes only
// there. The blocking work of a check or a download goes to `UpdaterHost::runInBackground`
// and comes back through `UpdaterHost::runOnMain`; those steps read only what is fixed at
// creation, so they may run on any thread. With a host that runs tasks at once, as in
// tests, every call has finished when it returns.

#include "BundleFiles.hpp"
#include "HttpTransport.hpp"
#include "ToolRunner.hpp"
#include "UpdateFeed.hpp"
#include "UpdateLogic.hpp"
#include "UpdaterHost.hpp"
#include "UserDefaults.hpp"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vantrel {

class Updater : public std::enable_shared_from_this<Updater> {
public:
    /// Where an update stands; the "Software Update" window shows it.
    struct Phase {
        /// Nothing under way.
        struct Idle {
            bool operator==(const Idle&) const = default;
        };
        /// A check the user asked for is running.
        struct Checking {
            bool operator==(const Checking&) const = default;
        };
        /// The user asked, and there is nothing newer.
        struct UpToDate {
            bool operator==(const UpToDate&) const = default;
        };
        /// A newer version exists; nothing downloaded.
        struct Available {
            UpdateFeed feed;
            bool operator==(const Available&) const = default;
        };
        struct Downloading {
            UpdateFeed feed;
            /// 0 to 1.
            double fraction = 0;
            bool operator==(const Downloading&) const = default;
        };
        /// Unpacked and validated; installs at quit.
        struct Ready {
            UpdateFeed feed;
            bool operator==(const Ready&) const = default;
        };
        struct Failed {
            /// The sentence to show.
            std::string message;
            bool operator==(const Failed&) const = default;
        };

        std::variant<Idle, Checking, UpToDate, Available, Downloading, Ready, Failed> value;

        template <class Case>
        bool is() const {
            return std::holds_alternative<Case>(value);
        }
        template <class Case>
        const Case* as() const {
            return std::get_if<Case>(&value);
        }
        /// The feed of the phases that carry one.
        const UpdateFeed* feed() const;

        bool operator==(const Phase&) const = default;
    };

    /// The platform's parts, shared so that background work can keep them alive.
    struct Services {
        std::shared_ptr<UpdaterHost> host;
        std::shared_ptr<HttpTransport> http;
        std::shared_ptr<ToolRunner> tools;
        std::shared_ptr<UserDefaults> defaults;
        std::shared_ptr<BundleFiles> files;
    };

    /// The swap after quitting, run by "/bin/sh -c" with the arguments: the process to wait
    /// for, the staged app, the installed app, and "1" to open the new app afterwards. It
    /// waits up to 60 seconds for the process to end, moves the old app aside, copies the new
    /// one, puts the old one back on any failure, clears the quarantine flag so the new
    /// version opens without a warning, removes the staging folder and relaunches if asked.
    static constexpr std::string_view installScript =
        R"sh(PID="$1"; SRC="$2"; DEST="$3"; RELAUNCH="$4")sh"
        "\n"
        R"sh(i=0; while kill -0 "$PID" 2>/dev/null && [ $i -lt 600 ]; do sleep 0.1; i=$((i+1)); done)sh"
        "\n"
        R"sh(OLD="$DEST.vantrel-old"; rm -rf "$OLD")sh"
        "\n"
        R"sh(if mv "$DEST" "$OLD" && /usr/bin/ditto "$SRC" "$DEST"; then rm -rf "$OLD"; else rm -rf "$DEST"; mv "$OLD" "$DEST"; fi)sh"
        "\n"
        R"sh(/usr/bin/xattr -dr com.apple.quarantine "$DEST" 2>/dev/null)sh"
        "\n"
        R"sh(rm -rf "$(dirname "$SRC")")sh"
        "\n"
        R"sh([ "$RELAUNCH" = 1 ] && /usr/bin/open "$DEST")sh"
        "\n"
        R"sh(exit 0)sh";

    /// `bundle` is the running app; `cachesFolder` the user's caches directory.
    static std::shared_ptr<Updater> create(BundleFacts bundle, std::filesystem::path cachesFolder,
                                           OperatingSystemVersion system, Services services);

    const Phase& phase() const { return phase_; }
    /// Download new versions in the background and install them at quit.
    bool automaticallyDownloads() const { return automaticallyDownloads_; }
    void setAutomaticallyDownloads(bool on);
    /// Seconds since 1970 of the last check that read the feed.
    std::optional<double> lastChecked() const { return lastChecked_; }
    /// Without a feed the updater does nothing at all.
    const std::optional<std::string>& feedURL() const { return feedURL_; }
    /// Base64 of the maker's raw 32-byte Ed25519 key.
    const std::optional<std::string>& publicKey() const { return publicKey_; }
    const std::string& currentVersion() const { return currentVersion_; }
    const std::string& appName() const { return appName_; }
    const std::optional<std::filesystem::path>& stagedApp() const { return stagedApp_; }
    bool relaunchAfterInstall() const { return relaunchAfterInstall_; }

    /// Called on the main thread after any observable change.
    void setOnChange(std::function<void()> onChange) { onChange_ = std::move(onChange); }
    /// While `busy` answers true, news the user did not ask for waits, and is looked at again
    /// every `reminderRetry` seconds: the app around may be on a screen that others watch.
    /// What the user asks for is always answered at once.
    void holdRemindersWhile(std::function<bool()> busy) { holdReminders_ = std::move(busy); }
    static constexpr double reminderRetry = 5;

    /// Once at launch: the first check comes 8 seconds later, then one every six hours.
    void start();
    /// A check the user asked for shows the window and says what it found, failures
    /// included; one in the background stays silent unless there is news.
    void check(bool userInitiated);
    void download(const UpdateFeed& feed);
    /// Quits the app, which installs the staged update and opens the new version.
    void installAndRelaunch();
    /// On termination: starts the install script when a validated update waits.
    void installOnQuit();

    /// True the first time it is asked about a version, then never again.
    bool shouldAnnounce(const UpdateFeed& feed);
    /// False on a disk image, at a translocated path, or where the user cannot write.
    bool canInstallInPlace() const;
    /// Whether the feed's archive can be fetched and installed here, not just pointed to.
    bool canDownloadInPlace(const UpdateFeed& feed) const;

    /// Reads the archive, stopping at `expected` + 1 bytes whatever the server claims.
    /// Throws `UpdateError` for a status other than 200 or too many bytes, `HttpError` for a
    /// failed transfer. `progress` receives fractions from 0 to 1 on the calling thread.
    std::string fetch(const std::string& url, std::int64_t expected,
                      const std::function<void(double)>& progress) const;
    /// Unpacks the archive into a fresh staging folder in the caches, replacing any update
    /// staged before, and answers the app inside it.
    std::filesystem::path stage(std::string_view zip, const std::string& version) const;
    /// Throws unless the staged app is this app, in the version the feed promised, with an
    /// intact code signature.
    void validate(const std::filesystem::path& staged, const std::string& expectedVersion) const;

private:
    Updater(BundleFacts bundle, std::filesystem::path cachesFolder, OperatingSystemVersion system,
            Services services);

    struct Staged {
        std::filesystem::path app;
    };
    using DownloadOutcome = std::variant<Staged, Phase::Failed>;

    bool isBusy() const;
    std::filesystem::path appPath() const;
    void setPhase(Phase phase);
    void changed();
    void finishCheck(const std::optional<UpdateFeed>& feed, bool userInitiated);
    DownloadOutcome fetchAndStage(const UpdateFeed& feed,
                                  const std::function<void(double)>& progress) const;
    void showProgress(double fraction);
    void finishDownload(const UpdateFeed& feed, const DownloadOutcome& outcome);
    void answer();
    /// Shows the window as a reminder, or holds it while the app around is busy.
    void remind();
    void retryReminder();
    void runTool(const std::string& path, const std::vector<std::string>& arguments) const;

    const BundleFacts bundle_;
    const std::filesystem::path cachesFolder_;
    const OperatingSystemVersion system_;
    const Services services_;
    const std::optional<std::string> feedURL_;
    const std::optional<std::string> publicKey_;
    const std::string currentVersion_;
    const std::string appName_;

    Phase phase_;
    bool automaticallyDownloads_ = true;
    std::optional<double> lastChecked_;
    std::optional<std::filesystem::path> stagedApp_;
    bool relaunchAfterInstall_ = false;
    bool started_ = false;
    bool reminderHeld_ = false;
    std::function<void()> onChange_;
    std::function<bool()> holdReminders_;
};

} // namespace vantrel
