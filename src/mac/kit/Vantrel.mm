#import "Vantrel.hpp"

#import "../app/SharedStore.hpp"
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

/// Whether others may be watching the screen: a show is up or counting down, or a share or
/// recording has been seen.
bool onStage() {
    const StageStore &store = sharedStore();
    return !store.show().isDark() || store.detecting().has_value();
}

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
