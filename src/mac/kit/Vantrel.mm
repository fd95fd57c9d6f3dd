#import "Vantrel.hpp"

#import "../app/SharedStore.hpp"
#import "StatusItemPresence.hpp"
#import "UpdateScreen.hpp"
#import "UpdateWindow.hpp"
#import "UpdaterPlatform.hpp"

namespace scrimlet::mac::Vantrel {

namespace {

struct Kit {
    std::shared_ptr<vantrel::Updater> updater;
    /// The accent of the kit's window. The brand's light colour has no place in it: the
    /// system draws its progress bars and text in colours of its own.
    Color velvet;
};

/// Nothing until `start`.
std::optional<Kit> &kit() {
    static std::optional<Kit> shared;
    return shared;
}

/// Whether a window opening now would land in front of an audience.
bool onStage() { return StatusItemPresence::isBusy(sharedStore()); }

} // namespace

void start(const Color &velvet, const Color &) {
    if (kit()) {
        return;
    }
    kit() = Kit{nullptr, velvet};
    auto updater =
        vantrel::Updater::create(UpdaterPlatform::mainBundle(), UpdaterPlatform::cachesFolder(),
                                 UpdaterPlatform::systemVersion(),
                                 UpdaterPlatform::services([](vantrel::WindowReason reason) {
                                     UpdateWindow::show(kit()->updater, reason, kit()->velvet);
                                 }));
    updater->setOnChange([] { UpdateWindow::refresh(); });
    updater->holdRemindersWhile(onStage);
    kit()->updater = updater;
    updater->start();
}

void checkForUpdates() {
    if (kit()) {
        kit()->updater->check(true);
    }
}

bool updatesAvailable() { return kit() && kit()->updater->feedURL().has_value(); }

bool automaticallyDownloads() { return kit() && kit()->updater->automaticallyDownloads(); }

void setAutomaticallyDownloads(bool on) {
    if (kit()) {
        kit()->updater->setAutomaticallyDownloads(on);
    }
}

std::string automaticUpdatesNote() {
    return vantrel::UpdateScreen::automaticUpdatesNote(kit() ? kit()->updater->appName() : "");
}

} // namespace scrimlet::mac::Vantrel
