#include "UpdateScreen.hpp"

#include "Updater.hpp"

#include <algorithm>
#include <cctype>

namespace vantrel {

namespace {

const UpdateButton later{"Later", UpdateAction::close};
const UpdateButton ok{"OK", UpdateAction::close};

} // namespace

std::string UpdateScreen::automaticUpdatesNote(const std::string& appName) {
    return "New versions download in the background and install when you quit " + appName + ".";
}

UpdateScreen UpdateScreen::of(const Updater& updater) {
    using Phase = Updater::Phase;
    const Phase& phase = updater.phase();
    const std::string& name = updater.appName();
    const std::string& current = updater.currentVersion();

    UpdateScreen screen;
    screen.buttons = {ok};
    if (const UpdateFeed* feed = phase.feed()) {
        screen.notes = feed->notes;
    }

    if (phase.is<Phase::Idle>() || phase.is<Phase::Checking>()) {
        screen.title = "Checking for updates…";
        screen.spinning = phase.is<Phase::Checking>();
    } else if (phase.is<Phase::UpToDate>()) {
        screen.title = "You’re up to date";
        screen.detail = name + " " + current + " is the newest version.";
    } else if (const auto* available = phase.as<Phase::Available>()) {
        screen.title = name + " " + available->feed.version + " is available";
        screen.detail = "You have " + current + ".";
        if (!updater.canInstallInPlace()) {
            screen.detail +=
                " Move " + name + " to your Applications folder to get updates automatically.";
        }
        screen.buttons = {later,
                          updater.canDownloadInPlace(available->feed)
                              ? UpdateButton{"Download & Install", UpdateAction::download}
                              : UpdateButton{"Open Download Page", UpdateAction::openDownloadPage}};
    } else if (const auto* downloading = phase.as<Phase::Downloading>()) {
        screen.title = "Downloading " + name + " " + downloading->feed.version;
        screen.progress = downloading->fraction;
    } else if (const auto* ready = phase.as<Phase::Ready>()) {
        screen.title = name + " " + ready->feed.version + " is ready";
        screen.detail = "It installs automatically the next time you quit " + name + ".";
        screen.buttons = {later, {"Restart Now", UpdateAction::installAndRelaunch}};
    } else if (const auto* failed = phase.as<Phase::Failed>()) {
        screen.title = "Update problem";
        screen.detail = failed->message;
    }
    return screen;
}

std::optional<std::string> UpdateScreen::downloadPage(const UpdateFeed& feed) {
    const std::string& url = feed.url;
    const auto colon = url.find(':');
    if (colon == std::string::npos) {
        return std::nullopt;
    }
    std::string scheme = url.substr(0, colon);
    std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const std::string rest = url.substr(colon + 1);
    const bool hasHost = rest.size() > 2 && rest.starts_with("//") && rest[2] != '/';
    const bool plain = std::none_of(url.begin(), url.end(), [](char c) {
        return static_cast<unsigned char>(c) <= ' ' || c == '\x7f';
    });
    if ((scheme == "https" || scheme == "http") && hasHost && plain) {
        return url;
    }
    return std::nullopt;
}

} // namespace vantrel
