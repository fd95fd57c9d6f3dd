#pragma once

// A simulated Mac for the updater: a server that plays the feed and the archive, tools that
// unpack a pretend archive into real folders, defaults in memory, and a host that runs every
// task at once on the test's thread.

#include "TempDir.hpp"
#include "Updater.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sodium.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace vantrel {

inline void PrintTo(const Updater::Phase& phase, std::ostream* out) {
    const auto* failed = phase.as<Updater::Phase::Failed>();
    *out << "phase #" << phase.value.index() << (failed ? " " + failed->message : "");
}

namespace fakes {

namespace fs = std::filesystem;

inline std::string readText(const fs::path& path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline void writeText(const fs::path& path, const std::string& text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string base64(std::string_view raw) {
    std::string text(sodium_base64_encoded_len(raw.size(), sodium_base64_VARIANT_ORIGINAL), '\0');
    sodium_bin2base64(text.data(), text.size(), reinterpret_cast<const unsigned char*>(raw.data()),
                      raw.size(), sodium_base64_VARIANT_ORIGINAL);
    text.pop_back();
    return text;
}

/// An Ed25519 key pair of the test's own.
struct SigningKey {
    std::string publicKey = std::string(crypto_sign_PUBLICKEYBYTES, '\0');
    unsigned char secretKey[crypto_sign_SECRETKEYBYTES];

    SigningKey() {
        EXPECT_GE(sodium_init(), 0);
        crypto_sign_keypair(reinterpret_cast<unsigned char*>(publicKey.data()), secretKey);
    }
    /// The raw 64 bytes.
    std::string sign(std::string_view data) const {
        std::string signature(crypto_sign_BYTES, '\0');
        crypto_sign_detached(reinterpret_cast<unsigned char*>(signature.data()), nullptr,
                             reinterpret_cast<const unsigned char*>(data.data()), data.size(),
                             secretKey);
        return signature;
    }
};

/// The pretend archive unpacks to a Scrimlet.app whose "Info" is the archive itself: the
/// bundle identifier and the version on the first two lines, then padding to make it as long
/// as a real one might be.
struct Archive {
    std::string bundleIdentifier = "app.vantrel.scrimlet";
    std::string version = "1.1";
    std::size_t padding = 0;

    std::string bytes() const {
        return bundleIdentifier + "\n" + version + "\n" + std::string(padding, 'z');
    }
};

struct Host : UpdaterHost {
    void runOnMain(Task task) override { task(); }
    void runInBackground(Task task) override { task(); }
    void runAfter(double seconds, Task task) override { delayed.push_back({seconds, task}); }
    void runEvery(double seconds, Task task) override { repeating.push_back({seconds, task}); }
    void whenTerminating(Task task) override { onTerminate = task; }
    void terminate() override { onTerminate(); }
    void showWindow(WindowReason reason) override {
        ++windowsShown;
        reasons.push_back(reason);
    }
    int processId() const override { return 4242; }
    double now() const override { return clock; }

    std::vector<std::pair<double, Task>> delayed, repeating;
    Task onTerminate;
    int windowsShown = 0;
    std::vector<WindowReason> reasons;
    double clock = 1'700'000'000;
};

struct Server : HttpTransport {
    struct Route {
        int status = 200;
        std::string body;
    };

    void send(const Request& request, const Receiver& receiver) override {
        requests.push_back(request);
        delivered = 0;
        const auto found = routes.find(request.url);
        if (found == routes.end()) {
            throw HttpError("A server with the specified hostname could not be found.");
        }
        // An empty piece, which real transfers deliver too, then one byte at a time: the
        // worst cases for anyone counting.
        const std::string& body = found->second.body;
        bool more = receiver.status(found->second.status) && receiver.body({});
        for (std::size_t i = 0; more && i < body.size(); ++i, ++delivered) {
            more = receiver.body(std::string_view(body).substr(i, 1));
        }
    }

    std::map<std::string, Route> routes;
    std::vector<Request> requests;
    /// Body bytes handed over during the last request.
    std::size_t delivered = 0;
};

struct Tools : ToolRunner {
    using Call = std::pair<std::string, std::vector<std::string>>;

    int run(const std::string& path, const std::vector<std::string>& arguments) override {
        runs.push_back({path, arguments});
        if (statuses.contains(path)) {
            return statuses[path];
        }
        if (path == "/usr/bin/ditto") {
            writeText(fs::path(arguments.at(3)) / "Scrimlet.app" / "Info", readText(arguments[2]));
        }
        return 0;
    }
    void launch(const std::string& path, const std::vector<std::string>& arguments) override {
        launches.push_back({path, arguments});
    }

    std::map<std::string, int> statuses;
    std::vector<Call> runs, launches;
};

struct Defaults : UserDefaults {
    std::optional<bool> boolValue(const std::string& key) const override {
        return values.contains(key) ? std::optional(values.at(key)) : std::nullopt;
    }
    void setBool(const std::string& key, bool value) override { values[key] = value; }

    std::map<std::string, bool> values;
};

struct Files : BundleFiles {
    std::optional<BundleFacts> open(const fs::path& path) const override {
        std::ifstream info(path / "Info");
        std::string identifier, version;
        std::getline(std::getline(info, identifier), version);
        return BundleFacts{path, identifier, {{"CFBundleShortVersionString", version}}};
    }
    bool isWritable(const fs::path& path) const override { return !readOnly.contains(path); }

    std::set<fs::path> readOnly;
};

} // namespace fakes

/// One running Scrimlet 1.0 in a temporary folder, with its feed on a fake server.
struct UpdaterWorld {
    static constexpr const char* feedURL = "https://updates.example/scrimlet/feed.json";
    static constexpr const char* archiveURL = "https://updates.example/scrimlet/Scrimlet.zip";

    scrimlet::testing::TempDir temp;
    std::shared_ptr<fakes::Host> host = std::make_shared<fakes::Host>();
    std::shared_ptr<fakes::Server> server = std::make_shared<fakes::Server>();
    std::shared_ptr<fakes::Tools> tools = std::make_shared<fakes::Tools>();
    std::shared_ptr<fakes::Defaults> defaults = std::make_shared<fakes::Defaults>();
    std::shared_ptr<fakes::Files> files = std::make_shared<fakes::Files>();
    fakes::SigningKey key;
    BundleFacts bundle{temp / "Applications" / "Scrimlet.app",
                       "app.vantrel.scrimlet",
                       {{"CFBundleShortVersionString", "1.0"},
                        {"CFBundleName", "Scrimlet"},
                        {"VantrelUpdateFeedURL", feedURL},
                        {"VantrelUpdatePublicKey", fakes::base64(key.publicKey)}}};
    std::filesystem::path caches = temp / "Caches";
    std::filesystem::path staging = caches / "app.vantrel.scrimlet" / "VantrelUpdate";

    std::shared_ptr<Updater> make() const {
        return Updater::create(bundle, caches, {14, 4, 1}, {host, server, tools, defaults, files});
    }

    /// Publishes a feed offering `version` with `archive`, signed by the test's key.
    UpdateFeed publish(const std::string& version, const fakes::Archive& archive = {}) {
        const std::string bytes = archive.bytes();
        const UpdateFeed feed{
            version, "https://example.com/scrimlet", "Faster curtains.", std::nullopt,
            UpdateFeed::Download{archiveURL, static_cast<std::int64_t>(bytes.size()),
                                 fakes::base64(key.sign(bytes))}};
        server->routes[feedURL] = {200, feed.toJson().dump()};
        server->routes[archiveURL] = {200, bytes};
        return feed;
    }
};

} // namespace vantrel
