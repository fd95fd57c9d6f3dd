// Microphones, cameras and display modes over the recording fake: muting by volume with the
// level kept on disk, what counts as in use, and which mode a size gets.

#include "AtomicFile.hpp"
#include "Camera.hpp"
#include "Displays.hpp"
#include "Mic.hpp"
#include "RecordingFacilities.hpp"
#include "StageSystem.hpp"
#include "TempDir.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using testing::displayMode;
using testing::RecordingFacilities;
using Device = RecordingFacilities::AudioDevice;
using testing::TempDir;

std::optional<std::string> muteFailure(RecordingFacilities& mac, Mic::Device device, bool muted,
                                       const std::filesystem::path& file) {
    try {
        Mic::setMuted(mac, device, muted, mac.audioDevices[device].uid, file);
        return std::nullopt;
    } catch (const StageError& error) {
        return error.description();
    }
}

TEST(Mic, AMicrophoneWithoutMuteIsMutedByVolumeAndGetsItsLevelBack) {
    TempDir dir;
    const auto file = dir / "support" / "mic-levels.json";
    RecordingFacilities mac;
    mac.audioDevices[5] = Device::byVolume("USB", 0.625f);
    mac.audioDevices[6] = Device::byVolume("Dock", 0.4f);
    mac.audioDevices[6].volumeReadable = false;

    EXPECT_EQ(Mic::isMuted(mac, 5), false);
    Mic::setMuted(mac, 5, true, "USB", file);
    EXPECT_EQ(mac.audioDevices[5].volume, 0.0f);
    EXPECT_EQ(Mic::isMuted(mac, 5), true);
    EXPECT_EQ(Mic::loadLevels(file), (Mic::Levels{{"USB", 0.625}}));
    // A volume that cannot be read is remembered as three quarters.
    Mic::setMuted(mac, 6, true, "Dock", file);
    EXPECT_EQ(Mic::loadLevels(file), (Mic::Levels{{"Dock", 0.75}, {"USB", 0.625}}));

    Mic::setMuted(mac, 5, false, "USB", file);
    EXPECT_EQ(mac.audioDevices[5].volume, 0.625f);
    EXPECT_EQ(Mic::loadLevels(file), (Mic::Levels{{"Dock", 0.75}}));
    // Unmuting with nothing on record gives three quarters too.
    Mic::setMuted(mac, 5, false, "USB", file);
    EXPECT_EQ(mac.audioDevices[5].volume, 0.75f);

    // Two mutes in a row keep the silence as the level: the journal prevents it, not this.
    Mic::setMuted(mac, 5, true, "USB", file);
    Mic::setMuted(mac, 5, true, "USB", file);
    Mic::setMuted(mac, 5, false, "USB", file);
    EXPECT_EQ(mac.audioDevices[5].volume, 0.0f);

    mac.audioDevices[5].volume = 0.0005f;
    EXPECT_EQ(Mic::isMuted(mac, 5), true);
    mac.audioDevices[5].volume = 0.002f;
    EXPECT_EQ(Mic::isMuted(mac, 5), false);
    EXPECT_EQ(Mic::isMuted(mac, 6), std::nullopt);
    EXPECT_EQ(Mic::isMuted(mac, 99), std::nullopt);

    mac.audioDevices[5].refusesChanges = true;
    EXPECT_EQ(muteFailure(mac, 5, true, file), "The microphone wouldn't mute");
    mac.audioDevices[5].volumeSettable = false;
    EXPECT_EQ(muteFailure(mac, 5, true, file), "This microphone can't be muted");

    // A mute control wins over the volume, and no level is kept for it.
    mac.audioDevices[7] = Device::withMute("Studio", 0, 0.5f);
    files::remove(file);
    EXPECT_EQ(Mic::isMuted(mac, 7), false);
    Mic::setMuted(mac, 7, true, "Studio", file);
    EXPECT_EQ(mac.audioDevices[7].mute, 1u);
    EXPECT_EQ(mac.audioDevices[7].volume, 0.5f);
    EXPECT_FALSE(std::filesystem::exists(file));
    mac.audioDevices[7].refusesChanges = true;
    EXPECT_EQ(muteFailure(mac, 7, false, file), "The microphone wouldn't mute");
    // A mute control that cannot be set is no mute control.
    mac.audioDevices[7].muteSettable = false;
    mac.audioDevices[7].volume = 0;
    EXPECT_EQ(Mic::isMuted(mac, 7), true);
}

TEST(Mic, TheLevelsFileIsReadForgivingly) {
    TempDir dir;
    const auto file = dir / "mic-levels.json";
    EXPECT_TRUE(Mic::loadLevels(file).empty());
    for (const std::string damaged : {"", "not json", "[0.5]", "{\"USB\": 0.5", "\xff\xfe"}) {
        files::writeAtomically(file, damaged);
        EXPECT_TRUE(Mic::loadLevels(file).empty()) << damaged;
    }
    files::writeAtomically(file, R"({"USB": 0.5, "Odd": "loud", "Hot": 7, "Cold": -1, "N": null})");
    EXPECT_EQ(Mic::loadLevels(file), (Mic::Levels{{"Cold", 0}, {"Hot", 1}, {"USB", 0.5}}));

    // A level that cannot be saved does not keep the microphone from muting.
    RecordingFacilities mac;
    mac.audioDevices[5] = Device::byVolume("USB", 0.5f);
    const auto blocked = dir / "mic-levels.json" / "inside";
    Mic::setMuted(mac, 5, true, "USB", blocked);
    EXPECT_EQ(mac.audioDevices[5].volume, 0.0f);
}

TEST(Mic, InUseAsksTheDefaultInputOnlyAndCamerasAsksEveryOne) {
    RecordingFacilities mac;
    EXPECT_EQ(Mic::defaultInput(mac), std::nullopt);
    EXPECT_FALSE(Mic::inUse(mac));
    mac.defaultInputDevice = 0;
    EXPECT_EQ(Mic::defaultInput(mac), std::nullopt);
    mac.audioDevices[5] = Device::byVolume("USB", 0.5f);
    mac.audioDevices[6] = Device::byVolume("Other", 0.5f);
    mac.audioDevices[6].running = 1;
    mac.defaultInputDevice = 5;
    EXPECT_FALSE(Mic::inUse(mac));
    mac.audioDevices[5].running = 1;
    EXPECT_TRUE(Mic::inUse(mac));
    EXPECT_EQ(Mic::allDevices(mac), (std::vector<Mic::Device>{5, 6}));

    EXPECT_FALSE(Camera::inUse(mac));
    mac.cameras = {{30, 0}, {31, 0}};
    EXPECT_FALSE(Camera::inUse(mac));
    mac.cameras[31] = 1;
    EXPECT_TRUE(Camera::inUse(mac));
    mac.camerasListed = false;
    EXPECT_FALSE(Camera::inUse(mac));
}

TEST(Displays, ASizeGetsTheSharpestModeAtTheNearestRate) {
    const auto m = [](std::int32_t id, double scale, double rate, bool usable = true) {
        return displayMode(id, 1920, 1080, scale, rate, usable);
    };
    const std::optional<DisplayMode> none;
    const auto id = [](const std::optional<DisplayMode>& mode) {
        return mode ? std::optional(mode->ioModeID) : std::nullopt;
    };
    const ResolutionPreset hd{1920, 1080};

    // Retina first, whatever the rates.
    EXPECT_EQ(id(Displays::choose({m(1, 1, 60), m(2, 2, 30)}, none, hd)), 2);
    EXPECT_EQ(id(Displays::choose({m(1, 1, 60), m(2, 2, 30)}, m(9, 1, 60), hd)), 2);
    // Among equals, the rate nearest to the current one, or to 60 without one.
    const std::vector<DisplayMode> rates = {m(1, 2, 30), m(2, 2, 60), m(3, 2, 120)};
    EXPECT_EQ(id(Displays::choose(rates, none, hd)), 2);
    EXPECT_EQ(id(Displays::choose(rates, m(9, 2, 100), hd)), 3);
    EXPECT_EQ(id(Displays::choose(rates, m(9, 2, 0), hd)), 1);
    // Ties keep the list's order; a rate that is no number loses.
    EXPECT_EQ(id(Displays::choose({m(4, 2, 50), m(5, 2, 70)}, none, hd)), 4);
    EXPECT_EQ(id(Displays::choose({m(6, 2, std::nan("")), m(7, 2, 24)}, none, hd)), 7);
    // Only exactly that size, and only what the desktop can use.
    EXPECT_EQ(
        id(Displays::choose({m(1, 2, 60, false), displayMode(2, 1920, 1200, 2, 60)}, none, hd)),
        std::nullopt);
    EXPECT_EQ(id(Displays::choose({}, none, hd)), std::nullopt);

    RecordingFacilities mac;
    mac.displayTable[3] = {{m(1, 1, 60), m(2, 2, 60)}, 1, {}};
    EXPECT_EQ(id(Displays::mode(mac, hd, 3)), 2);
    EXPECT_EQ(id(Displays::mode(mac, hd, 4)), std::nullopt);
    Displays::set(mac, 3, 2);
    EXPECT_EQ(mac.configured, (std::vector<std::pair<std::uint32_t, std::int32_t>>{{3, 2}}));
}

} // namespace
} // namespace scrimlet
