#pragma once

// A simulated Mac for the updater: a server that plays the feed and the archive, tools that
// unpack a pretend archive into real folders, defaults in memory, and a host that runs every
// task at once on the test's thread.

#include "TempDir.hpp"
#include "Updater.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sodium.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace vantrel {

inline void PrintTo(const Updater::Phase& phase, std::ostream* out) {
    *out << "phase #" << phase.value.index();
    if (const auto* feed = phase.feed()) {
        *out << " of " << feed->version;
    }
    if (const auto* failed = phase.as<Updater::Phase::Failed>()) {
        *out << " \"" << failed->message << '"';
    }
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

inline std::string base64(const unsigned char* bytes, std::size_t length) {
    std::string text(sodium_base64_encoded_len(length, sodium_base64_VARIANT_ORIGINAL), '\0');
    sodium_bin2base64(text.data(), text.size(), bytes, length, sodium_base64_VARIANT_ORIGINAL);
    text.pop_back();
    return text;
}

/// An Ed25519 key pair of the test's own.
struct SigningKey {
    unsigned char publicKey[crypto_sign_PUBLICKEYBYTES];
    unsigned char secretKey[crypto_sign_SECRETKEYBYTES];

    SigningKey() {
        EXPECT_GE(sodium_init(), 0);
        crypto_sign_keypair(publicKey, secretKey);
    }
    std::string publicBase64() const { return base64(publicKey, sizeof publicKey); }
    std::string sign(std::string_view data) const {
        unsigned char signature[crypto_sign_BYTES];
        crypto_sign_detached(signature, nullptr,
                             reinterpret_cast<const unsigned char*>(data.data()), data.size(),
                             secretKey);
        return base64(signature, sizeof signature);
    }
};

/// What the pretend archive unpacks to: a folder `name` whose "Info" file holds the bundle
/// identifier and the version, one per line.
struct Archive {
    std::string name = "Scrimlet.app";
    std::string bundleIdentifier = "app.vantrel.scrimlet";
    std::string version = "1.1";
    /// Makes the archive as long as a real one might be.
    std::size_t padding = 0;

    std::string bytes() const {
        return name + "\n" + bundleIdentifier + "\n" + version + "\n" + std::string(padding, 'z');
    }
};

inline std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        out.push_back(line);
    }
    return out;
}

struct Host : UpdaterHost {
    void runOnMain(Task task) override { task(); }
    void runInBackground(Task task) override { task(); }
    void runAfter(double seconds, Task task) override { delayed.push_back({seconds, task}); }
    void runEvery(double seconds, Task task) override { repeating.push_back({seconds, task}); }
    void whenTerminating(Task task) override { terminationTasks.push_back(task); }
    void terminate() override {
        for (const auto& task : terminationTasks) {
            task();
        }
    }
    void showWindow() override { ++windowsShown; }
    int processId() const override { return 4242; }
    double now() const override { return clock; }

    std::vector<std::pair<double, Task>> delayed, repeating;
    std::vector<Task> terminationTasks;
    int windowsShown = 0;
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
        if (!receiver.status(found->second.status)) {
            return;
        }
        // One byte at a time, the worst case for anyone counting.
        for (const char byte : found->second.body) {
            ++delivered;
            if (!receiver.body(std::string_view(&byte, 1))) {
                return;
            }
        }
    }
    int requestsFor(const std::string& url) const {
        return static_cast<int>(std::count_if(requests.begin(), requests.end(),
                                              [&](const Request& r) { return r.url == url; }));
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
            const auto archive = lines(readText(arguments.at(2)));
            writeText(fs::path(arguments.at(3)) / archive.at(0) / "Info",
                      archive.at(1) + "\n" + archive.at(2) + "\n");
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
        const auto info = lines(readText(path / "Info"));
        if (info.size() != 2) {
            return std::nullopt;
        }
        return BundleFacts{path, info[0], {{"CFBundleShortVersionString", info[1]}}};
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
                        {"VantrelUpdatePublicKey", key.publicBase64()}}};
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
                                 key.sign(bytes)}};
        server->routes[feedURL] = {200, feed.toJson().dump()};
        server->routes[archiveURL] = {200, bytes};
        return feed;
    }
};

} // namespace vantrel
