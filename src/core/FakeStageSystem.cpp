#include "FakeStageSystem.hpp"

#include "AtomicFile.hpp"
#include "JsonCoding.hpp"

#include <algorithm>
#include <charconv>

namespace scrimlet {

namespace {

// A decimal unsigned 32-bit number, a leading "+" allowed; nothing else.
std::optional<std::uint32_t> parseDisplayID(std::string_view text) {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    if (text.empty() || text.front() == '-' || text.front() == '+') {
        return std::nullopt;
    }
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

bool diesWithProcess(EffectKind kind) {
    return !outlivesApp(kind);
}

} // namespace

FakeStageSystem::FakeStageSystem(std::vector<AppInfo> apps_, std::optional<std::string> front_,
                                 std::vector<std::uint32_t> displays_,
                                 std::vector<std::string> inputDevices_)
    : apps(std::move(apps_))
    , front(std::move(front_))
    , displayList(std::move(displays_))
    , inputDevices(std::move(inputDevices_)) {
    for (const auto id : displayList) {
        modes[id] = {{"1280x720", 11}, {"1440x900", 12}, {"1920x1080", 13}, {"2560x1440", 14}};
    }
    values = {
        {EffectKey(EffectKind::dockAutohide), JournalValue::boolean(false)},
        {EffectKey(EffectKind::darkMode), JournalValue::boolean(false)},
        {EffectKey(EffectKind::alertVolume), JournalValue::number(0.75)},
        {EffectKey(EffectKind::keepAwake), JournalValue::boolean(false)},
        {EffectKey(EffectKind::desktopIcons), JournalValue::boolean(false)},
        {EffectKey(EffectKind::backdrop), JournalValue::boolean(false)},
        {EffectKey(EffectKind::menuBarTidy), JournalValue::boolean(false)},
        {EffectKey(EffectKind::spotlight), JournalValue::boolean(false)},
        {EffectKey(EffectKind::keyboardLock), JournalValue::boolean(false)},
    };
    // A mode value that none of the offered modes has, so every preset is a real change.
    for (const auto id : displayList) {
        values.insert_or_assign(EffectKey(EffectKind::displayMode, std::to_string(id)),
                                JournalValue::number(20));
    }
    for (const auto& device : inputDevices) {
        values.insert_or_assign(EffectKey(EffectKind::micMute, device),
                                JournalValue::boolean(false));
    }
}

std::shared_ptr<FakeStageSystem> FakeStageSystem::demo() {
    return std::make_shared<FakeStageSystem>(demoApps(), "com.apple.Keynote",
                                             std::vector<std::uint32_t>{1},
                                             std::vector<std::string>{"BuiltInMicrophoneDevice"});
}

AppInfo* FakeStageSystem::findApp(const EffectKey& key) {
    const auto target = AppTarget::parse(key.target);
    if (!target) {
        return nullptr;
    }
    const auto found = std::find_if(apps.begin(), apps.end(), [&](const AppInfo& app) {
        return app.pid == target->pid && app.bundleID == target->bundleID;
    });
    return found == apps.end() ? nullptr : &*found;
}

bool FakeStageSystem::isConnectedDisplay(const std::string& target) const {
    const auto id = parseDisplayID(target);
    return id && std::find(displayList.begin(), displayList.end(), *id) != displayList.end();
}

std::optional<JournalValue> FakeStageSystem::read(const EffectKey& key) {
    switch (key.kind) {
    case EffectKind::micMute: {
        if (std::find(inputDevices.begin(), inputDevices.end(), key.target) == inputDevices.end()) {
            return std::nullopt;
        }
        const auto found = values.find(key);
        return found == values.end() ? JournalValue::boolean(false) : found->second;
    }
    case EffectKind::doNotDisturb:
        return std::nullopt;
    case EffectKind::appHidden: {
        const AppInfo* app = findApp(key);
        if (!app) {
            return std::nullopt;
        }
        return JournalValue::boolean(app->isHidden);
    }
    case EffectKind::displayMode:
        if (!isConnectedDisplay(key.target)) {
            return std::nullopt;
        }
        break;
    default:
        break;
    }
    const auto found = values.find(key);
    if (found == values.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::optional<JournalValue> FakeStageSystem::write(const EffectKey& key,
                                                   const JournalValue& value) {
    ++writeCount_;
    const int n = writeCount_ - crashBase_;
    if (crash_ && *crash_ == CrashPoint::beforeWrite(n)) {
        crashed_ = true;
        if (onCrash) {
            onCrash();
        }
    }
    if (crashed_) {
        throw SimulatedCrash();
    }
    if (failWrites.count(key.kind)) {
        throw StageError::failed("fake failure");
    }

    std::optional<JournalValue> result;
    const bool on = value.boolValue().value_or(false);
    switch (key.kind) {
    case EffectKind::micMute:
        if (std::find(inputDevices.begin(), inputDevices.end(), key.target) == inputDevices.end()) {
            throw StageError::targetGone();
        }
        values.insert_or_assign(key, value);
        break;
    case EffectKind::doNotDisturb:
        result = JournalValue::boolean(dnd);
        dnd = on;
        break;
    case EffectKind::appHidden: {
        AppInfo* app = findApp(key);
        if (!app) {
            throw StageError::targetGone();
        }
        app->isHidden = on;
        break;
    }
    case EffectKind::displayMode:
        if (!isConnectedDisplay(key.target)) {
            throw StageError::targetGone();
        }
        values.insert_or_assign(key, value);
        break;
    default:
        values.insert_or_assign(key, value);
        break;
    }
    savePersistentState();
    writeLog_.push_back(key.description() + " = " + value.description());

    if (crash_ && *crash_ == CrashPoint::afterWrite(n)) {
        crashed_ = true;
        if (onCrash) {
            onCrash();
        }
    }
    if (crashed_) {
        throw SimulatedCrash();
    }
    return result;
}

Availability FakeStageSystem::availability(EffectKind kind) {
    const auto found = availabilityOverrides.find(kind);
    return found == availabilityOverrides.end() ? Availability::ready() : found->second;
}

std::optional<JournalValue> FakeStageSystem::displayModeValue(const ResolutionPreset& preset,
                                                              std::uint32_t display) {
    const auto forDisplay = modes.find(display);
    if (forDisplay == modes.end()) {
        return std::nullopt;
    }
    const auto mode = forDisplay->second.find(preset.id());
    if (mode == forDisplay->second.end()) {
        return std::nullopt;
    }
    return JournalValue::number(mode->second);
}

std::optional<std::uint32_t> FakeStageSystem::mainDisplay() {
    if (displayList.empty()) {
        return std::nullopt;
    }
    return displayList.front();
}

std::optional<std::string> FakeStageSystem::defaultInputDevice() {
    if (inputDevices.empty()) {
        return std::nullopt;
    }
    return inputDevices.front();
}

void FakeStageSystem::startScreenSaver() {
    // The screen saver has no effect kind of its own; it fails along with keep-awake.
    if (failWrites.count(EffectKind::keepAwake)) {
        throw StageError::failed("fake failure");
    }
    ++screenSaverStarts_;
}

void FakeStageSystem::setCrash(std::optional<CrashPoint> point) {
    crash_ = point;
    crashBase_ = writeCount_;
}

void FakeStageSystem::revive() {
    crashed_ = false;
    crash_.reset();
    crashBase_ = writeCount_;
    onCrash = nullptr;
}

void FakeStageSystem::processDied() {
    for (auto& [key, value] : values) {
        if (diesWithProcess(key.kind)) {
            value = JournalValue::boolean(false);
        }
    }
    savePersistentState();
}

void FakeStageSystem::userSet(const EffectKey& key, const JournalValue& value) {
    const bool on = value.boolValue().value_or(false);
    switch (key.kind) {
    case EffectKind::doNotDisturb:
        dnd = on;
        break;
    case EffectKind::appHidden: {
        // The user acts on a process; the bundle identifier is not compared here.
        const auto target = AppTarget::parse(key.target);
        if (!target) {
            return;
        }
        const auto found = std::find_if(apps.begin(), apps.end(),
                                        [&](const AppInfo& app) { return app.pid == target->pid; });
        if (found != apps.end()) {
            found->isHidden = on;
        }
        break;
    }
    default:
        values.insert_or_assign(key, value);
        break;
    }
    savePersistentState();
}

std::optional<AppInfo> FakeStageSystem::app(const std::string& bundleID) const {
    const auto found = std::find_if(apps.begin(), apps.end(),
                                    [&](const AppInfo& a) { return a.bundleID == bundleID; });
    if (found == apps.end()) {
        return std::nullopt;
    }
    return *found;
}

std::map<std::string, std::string> FakeStageSystem::state(bool persistentOnly) const {
    std::map<std::string, std::string> out;
    for (const auto& [key, value] : values) {
        if (persistentOnly && diesWithProcess(key.kind)) {
            continue;
        }
        out[key.description()] = value.description();
    }
    for (const auto& app : apps) {
        out["app:" + app.bundleID + "#" + std::to_string(app.pid)] =
            app.isHidden ? "hidden" : "shown";
    }
    out["dnd"] = dnd ? "on" : "off";
    return out;
}

void FakeStageSystem::keepPersistentState(std::filesystem::path file) {
    // Like the program's own files: a save cut short by a kill leaves its temporary file.
    files::removeLeftovers(file);
    if (const auto text = files::read(file)) {
        takePersistentState(*text);
    }
    stateFile_ = std::move(file);
}

void FakeStageSystem::takePersistentState(std::string_view text) noexcept {
    try {
        const auto document = json::parse(text);
        if (!document || !document->is_object()) {
            return;
        }
        // Each part on its own: one that cannot be read costs nothing of the others.
        const auto each = [&](std::string_view key, const auto& take) {
            const json::Json* list = json::optionalField(*document, key);
            if (!list || !list->is_array()) {
                return;
            }
            for (const json::Json& item : *list) {
                try {
                    take(item);
                } catch (const std::exception&) {
                    // Passed over; the simulated Mac keeps what it had.
                }
            }
        };
        each("values", [&](const json::Json& item) {
            const EffectKey key = effectKeyFromJson(json::field(item, "key"));
            const JournalValue value = journalValueFromJson(json::field(item, "value"));
            if (outlivesApp(key.kind)) {
                values.insert_or_assign(key, value);
            }
        });
        each("apps", [&](const json::Json& item) {
            const AppInfo saved = appInfoFromJson(item);
            for (AppInfo& app : apps) {
                if (app.bundleID == saved.bundleID && app.pid == saved.pid) {
                    app.isHidden = saved.isHidden;
                }
            }
        });
        if (const json::Json* saved = json::optionalField(*document, "dnd");
            saved && saved->is_boolean()) {
            dnd = saved->get<bool>();
        }
    } catch (...) {
        // Whatever was taken before the fault stands; the rest stays as it was.
    }
}

std::string FakeStageSystem::persistentStateText() const {
    json::Json list = json::Json::array();
    for (const auto& [key, value] : values) {
        if (!diesWithProcess(key.kind)) {
            json::Json item = json::Json::object();
            item["key"] = toJson(key);
            item["value"] = toJson(value);
            list.push_back(std::move(item));
        }
    }
    json::Json running = json::Json::array();
    for (const auto& app : apps) {
        running.push_back(toJson(app));
    }
    json::Json document = json::Json::object();
    document["values"] = std::move(list);
    document["apps"] = std::move(running);
    document["dnd"] = dnd;
    return json::sortedText(document);
}

void FakeStageSystem::savePersistentState() const noexcept {
    if (!stateFile_) {
        return;
    }
    try {
        files::writeAtomically(*stateFile_, persistentStateText());
    } catch (...) {
        // As on a real Mac, the change stands; only its copy on disk is missing.
    }
}

const std::vector<AppInfo>& demoApps() {
    static const std::vector<AppInfo> apps = {
        {"com.apple.Keynote", "Keynote", 501, false, true},
        {"us.zoom.xos", "zoom.us", 502, false, true},
        {"com.apple.Safari", "Safari", 503, false, true},
        {"com.apple.mail", "Mail", 504, false, true},
        {"com.tinyspeck.slackmacgap", "Slack", 505, false, true},
        {"com.apple.MobileSMS", "Messages", 506, false, true},
        {"com.apple.finder", "Finder", 507, false, true},
        {"app.vantrel.takeloom", "Takeloom", 508, false, true},
        {"com.apple.Notes", "Notes — 📝 ideas", 509, false, true},
        {"app.vantrel.scrimlet", "Scrimlet", 510, false, true},
    };
    return apps;
}

} // namespace scrimlet
