#import "UpdaterPlatform.hpp"

#import "../common/Text.h"
#import "MacHttpTransport.hpp"

#import <AppKit/AppKit.h>

namespace scrimlet::mac::UpdaterPlatform {

namespace {

/// The text values of an Info dictionary; values of other types are left out.
std::map<std::string, std::string> textValues(NSDictionary *info) {
    std::map<std::string, std::string> values;
    for (id key in info) {
        id value = info[key];
        if ([key isKindOfClass:NSString.class] && [value isKindOfClass:NSString.class]) {
            values[toString(key)] = toString(value);
        }
    }
    return values;
}

NSString *pathString(const std::filesystem::path &path) { return toNSString(path.string()); }

class Defaults final : public vantrel::UserDefaults {
  public:
    std::optional<bool> boolValue(const std::string &key) const override {
        id value = [NSUserDefaults.standardUserDefaults objectForKey:toNSString(key)];
        if (![value isKindOfClass:NSNumber.class]) {
            return std::nullopt;
        }
        NSNumber *number = value;
        // What "defaults write … -bool" stores; "-int 0" and "-int 1" are read as the
        // system reads them as a Bool, and any other number is not one.
        if (CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID() ||
            [number isEqualToNumber:@0] || [number isEqualToNumber:@1]) {
            return number.boolValue;
        }
        return std::nullopt;
    }

    void setBool(const std::string &key, bool value) override {
        [NSUserDefaults.standardUserDefaults setBool:value forKey:toNSString(key)];
    }
};

class Files final : public vantrel::BundleFiles {
  public:
    std::optional<vantrel::BundleFacts> open(const std::filesystem::path &path) const override {
        NSURL *url = [NSURL fileURLWithPath:pathString(path) isDirectory:YES];
        // Read afresh each time: a bundle object would be cached by its path, and a second
        // download of the same version is staged at the same path.
        NSDictionary *info =
            CFBridgingRelease(CFBundleCopyInfoDictionaryInDirectory((__bridge CFURLRef)url));
        if (info.count == 0) {
            return std::nullopt;
        }
        vantrel::BundleFacts facts;
        facts.path = path;
        facts.info = textValues(info);
        if (const auto identifier = facts.infoString("CFBundleIdentifier")) {
            facts.bundleIdentifier = identifier;
        }
        return facts;
    }

    bool isWritable(const std::filesystem::path &path) const override {
        return [NSFileManager.defaultManager isWritableFileAtPath:pathString(path)];
    }
};

class Tools final : public vantrel::ToolRunner {
  public:
    int run(const std::string &path, const std::vector<std::string> &arguments) override {
        NSTask *task = make(path, arguments);
        if (![task launchAndReturnError:nil]) {
            return notStarted;
        }
        [task waitUntilExit];
        return task.terminationStatus;
    }

    void launch(const std::string &path, const std::vector<std::string> &arguments) override {
        [make(path, arguments) launchAndReturnError:nil];
    }

  private:
    /// The shell's status for a command it could not start.
    static constexpr int notStarted = 127;

    static NSTask *make(const std::string &path, const std::vector<std::string> &arguments) {
        NSTask *task = [[NSTask alloc] init];
        task.executableURL = [NSURL fileURLWithPath:toNSString(path) isDirectory:NO];
        NSMutableArray<NSString *> *list = [NSMutableArray array];
        for (const std::string &argument : arguments) {
            [list addObject:toNSString(argument)];
        }
        task.arguments = list;
        return task;
    }
};

class Host final : public vantrel::UpdaterHost {
  public:
    explicit Host(std::function<void(vantrel::WindowReason)> showWindow)
        : showWindow_(std::move(showWindow)) {}

    ~Host() override {
        for (NSTimer *timer : timers_) {
            [timer invalidate];
        }
        if (terminationObserver_) {
            [NSNotificationCenter.defaultCenter removeObserver:terminationObserver_];
        }
    }

    void runOnMain(Task task) override {
        dispatch_async(dispatch_get_main_queue(), ^{
            task();
        });
    }

    void runInBackground(Task task) override {
        dispatch_async(dispatch_get_global_queue(QOS_CLASS_UTILITY, 0), ^{
            task();
        });
    }

    void runAfter(double seconds, Task task) override {
        // Wall time goes on while the Mac sleeps, as a delay counted from launch should.
        dispatch_after(dispatch_walltime(nullptr, static_cast<int64_t>(seconds * NSEC_PER_SEC)),
                       dispatch_get_main_queue(), ^{
                           task();
                       });
    }

    void runEvery(double seconds, Task task) override {
        NSTimer *timer = [NSTimer scheduledTimerWithTimeInterval:seconds
                                                         repeats:YES
                                                           block:^(NSTimer *) {
                                                               task();
                                                           }];
        // The system's advice for a repeating timer: a tenth of the interval.
        timer.tolerance = seconds * 0.1;
        timers_.push_back(timer);
    }

    void whenTerminating(Task task) override {
        // No queue: the block runs at once on the thread that posts, the main one, before
        // the process is gone. A block queued for later would never run.
        terminationObserver_ = [NSNotificationCenter.defaultCenter
            addObserverForName:NSApplicationWillTerminateNotification
                        object:nil
                         queue:nil
                    usingBlock:^(NSNotification *) {
                        task();
                    }];
    }

    void terminate() override {
        NSApplication *app = NSApp;
        [app terminate:nil];
    }

    void showWindow(vantrel::WindowReason reason) override { showWindow_(reason); }

    int processId() const override { return NSProcessInfo.processInfo.processIdentifier; }

    double now() const override { return NSDate.date.timeIntervalSince1970; }

  private:
    std::function<void(vantrel::WindowReason)> showWindow_;
    std::vector<NSTimer *> timers_;
    id<NSObject> terminationObserver_ = nil;
};

} // namespace

vantrel::BundleFacts mainBundle() {
    NSBundle *bundle = NSBundle.mainBundle;
    vantrel::BundleFacts facts;
    facts.path = bundle.bundleURL.fileSystemRepresentation;
    if (NSString *identifier = bundle.bundleIdentifier) {
        facts.bundleIdentifier = toString(identifier);
    }
    facts.info = textValues(bundle.infoDictionary);
    return facts;
}

std::filesystem::path cachesFolder() {
    NSURL *caches = [NSFileManager.defaultManager URLsForDirectory:NSCachesDirectory
                                                         inDomains:NSUserDomainMask]
                        .firstObject;
    if (!caches) {
        return std::filesystem::temp_directory_path();
    }
    return caches.fileSystemRepresentation;
}

vantrel::OperatingSystemVersion systemVersion() {
    const NSOperatingSystemVersion version = NSProcessInfo.processInfo.operatingSystemVersion;
    return {static_cast<int>(version.majorVersion), static_cast<int>(version.minorVersion),
            static_cast<int>(version.patchVersion)};
}

vantrel::Updater::Services services(std::function<void(vantrel::WindowReason)> showWindow) {
    return {std::make_shared<Host>(std::move(showWindow)), makeHttpTransport(),
            std::make_shared<Tools>(), std::make_shared<Defaults>(), std::make_shared<Files>()};
}

} // namespace scrimlet::mac::UpdaterPlatform
