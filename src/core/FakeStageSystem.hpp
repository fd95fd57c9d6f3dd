#pragma once

#include "StageSystem.hpp"

#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

/// What a write throws once the simulated process is dead.
struct SimulatedCrash : std::exception {
    const char* what() const noexcept override { return "the process died"; }
};

/// A complete simulated Mac behind `StageSystem`: the state of every effect lives in
/// memory and nothing real is touched. It drives the demo mode and the self check, and
/// can fail writes, report effects unavailable, die at an exact write, lose the state a
/// process holds, and be changed behind the program's back as a user would. Main thread
/// only.
class FakeStageSystem : public StageSystem {
public:
    /// Where an armed crash strikes, counting writes from 1 after arming.
    struct CrashPoint {
        enum class Case {
            beforeWrite, ///< The n-th write dies before it changes anything.
            afterWrite,  ///< The n-th write dies after its change took effect and was logged.
        };
        Case kind;
        int n;

        static CrashPoint beforeWrite(int n) { return {Case::beforeWrite, n}; }
        static CrashPoint afterWrite(int n) { return {Case::afterWrite, n}; }
        friend bool operator==(const CrashPoint&, const CrashPoint&) = default;
    };

    FakeStageSystem(std::vector<AppInfo> apps, std::optional<std::string> front,
                    std::vector<std::uint32_t> displays, std::vector<std::string> inputDevices);
    /// The Mac of the demo and the self check: the demo apps, Keynote in front, one display
    /// and the built-in microphone.
    static std::shared_ptr<FakeStageSystem> demo();

    // StageSystem
    std::optional<JournalValue> read(const EffectKey& key) override;
    std::optional<JournalValue> write(const EffectKey& key, const JournalValue& value) override;
    Availability availability(EffectKind kind) override;
    std::vector<AppInfo> runningApps() override { return apps; }
    std::optional<std::string> frontmostBundleID() override { return front; }
    std::vector<std::uint32_t> displays() override { return displayList; }
    std::optional<JournalValue> displayModeValue(const ResolutionPreset& preset,
                                                 std::uint32_t display) override;
    std::optional<std::uint32_t> mainDisplay() override;
    std::optional<std::string> defaultInputDevice() override;
    void startScreenSaver() override;

    // The simulated machine, open to the driver.
    std::map<EffectKey, JournalValue> values;
    std::vector<AppInfo> apps;
    std::optional<std::string> front;
    std::vector<std::uint32_t> displayList;
    std::map<std::uint32_t, std::map<std::string, double>> modes;
    std::vector<std::string> inputDevices;
    bool dnd = false;
    std::map<EffectKind, Availability> availabilityOverrides;
    std::set<EffectKind> failWrites;
    std::function<void()> onCrash;

    const std::vector<std::string>& writeLog() const { return writeLog_; }
    int writeCount() const { return writeCount_; }
    int screenSaverStarts() const { return screenSaverStarts_; }
    bool crashed() const { return crashed_; }
    const std::optional<CrashPoint>& crash() const { return crash_; }

    /// Arms a crash (or disarms it with nothing); writes are counted from this moment.
    void setCrash(std::optional<CrashPoint> point);
    /// Brings the simulated process back, leaving the state exactly as the crash left it.
    void revive();
    /// What the death of the process takes with it: the six effects that live in the
    /// program's own process are off again.
    void processDied();
    /// A change made by the user, bypassing `write`: nothing is counted or logged.
    void userSet(const EffectKey& key, const JournalValue& value);
    /// The first running app with that bundle identifier.
    std::optional<AppInfo> app(const std::string& bundleID) const;
    /// A snapshot of the whole simulated Mac, to compare before and after. With
    /// `persistentOnly`, the effects that die with the process are left out.
    std::map<std::string, std::string> state(bool persistentOnly) const;

    /// From now on the state that would outlive the process on a real Mac (what
    /// `state(true)` shows: the lasting effects, which apps are hidden, Do Not Disturb) lives
    /// in `file` as well, so that a simulated Mac survives a process that is killed: what the
    /// file holds now is taken first (and what killed saves left beside it is removed), and
    /// every change made through `write`, `userSet` or `processDied` is written there
    /// atomically before the call returns.
    void keepPersistentState(std::filesystem::path file);
    /// Takes the lasting state from a state file's text, field by field and as far as it can
    /// be read: what cannot be read stays as it is, effects that die with the process and
    /// apps that are not running are passed over. Never throws.
    void takePersistentState(std::string_view text) noexcept;
    /// The text `keepPersistentState` writes: pretty-printed JSON with sorted keys.
    std::string persistentStateText() const;
    const std::optional<std::filesystem::path>& stateFile() const { return stateFile_; }

private:
    AppInfo* findApp(const EffectKey& key);
    bool isConnectedDisplay(const std::string& target) const;

    void savePersistentState() const noexcept;

    std::optional<std::filesystem::path> stateFile_;
    std::vector<std::string> writeLog_;
    int writeCount_ = 0;
    int screenSaverStarts_ = 0;
    std::optional<CrashPoint> crash_;
    int crashBase_ = 0;
    bool crashed_ = false;
};

/// The apps of the demo mode and the self check, in order.
const std::vector<AppInfo>& demoApps();

} // namespace scrimlet
