#include "HotkeyRecorder.hpp"
#include "HotkeyField.hpp"

#include <gtest/gtest.h>

namespace scrimlet {
namespace {

using namespace HotkeyRecorder;

KeyInput press(std::uint32_t keyCode, std::uint64_t flags, std::optional<std::string> chars) {
    return KeyInput{keyCode, flags, std::move(chars)};
}

TEST(HotkeyRecorder, KeysAreNamedByCodeAndOtherwiseByTheirCharacters) {
    EXPECT_EQ(keyName(122), "F1");
    EXPECT_EQ(keyName(111), "F12");
    EXPECT_EQ(keyName(113), "F15");
    EXPECT_EQ(keyName(49), "Space");
    EXPECT_EQ(keyName(36), "↩");
    EXPECT_EQ(keyName(119), "↘");
    EXPECT_EQ(keyName(0), std::nullopt) << "A is named by its character";
    EXPECT_EQ(keyName(53), std::nullopt) << "escape has no name";

    const std::uint64_t cmdShift = CocoaModifiers::command | CocoaModifiers::shift;
    EXPECT_EQ(hotkey(press(1, cmdShift, "s")), (Hotkey{1, Hotkey::cmd | Hotkey::shift, "S"}));
    // The name wins over whatever the key types: F5 types a private-use character.
    EXPECT_EQ(hotkey(press(96, 0, "\xEF\x9C\x88")), (Hotkey{96, 0, "F5"}));
    EXPECT_EQ(hotkey(press(49, CocoaModifiers::option, " "))->display(), "⌥Space");
    // Keyboards beyond ASCII keep their letters, in upper case.
    EXPECT_EQ(hotkey(press(33, CocoaModifiers::control, "é"))->key, "É");
    EXPECT_EQ(hotkey(press(27, CocoaModifiers::control, "ß"))->key, "SS");
    EXPECT_EQ(hotkey(press(12, CocoaModifiers::control, "й"))->key, "Й");
    EXPECT_EQ(hotkey(press(12, CocoaModifiers::control, "ς"))->key, "Σ");
    EXPECT_EQ(hotkey(press(12, CocoaModifiers::control, "ł"))->key, "Ł");
    EXPECT_EQ(hotkey(press(12, CocoaModifiers::control, "ÿ"))->key, "Ÿ");
    EXPECT_EQ(hotkey(press(18, CocoaModifiers::command, "1"))->key, "1");
    EXPECT_EQ(uppercased("a\xFFz"), "A\xFFZ") << "bytes that are not UTF-8 stay";

    // No characters, or only invisible ones (keypad Enter types a control character, F16 a
    // private-use one): no hotkey, since it could not be labelled.
    EXPECT_EQ(hotkey(press(0, CocoaModifiers::command, std::nullopt)), std::nullopt);
    EXPECT_EQ(hotkey(press(0, CocoaModifiers::command, "")), std::nullopt);
    EXPECT_EQ(hotkey(press(76, CocoaModifiers::command, "\x03")), std::nullopt);
    EXPECT_EQ(hotkey(press(106, CocoaModifiers::command, "\xEF\x9C\x93")), std::nullopt);
}

TEST(HotkeyRecorder, ModifierFlagsBecomeTheServicesBits) {
    EXPECT_EQ(CocoaModifiers::shift, 0x20000u);
    EXPECT_EQ(CocoaModifiers::control, 0x40000u);
    EXPECT_EQ(CocoaModifiers::option, 0x80000u);
    EXPECT_EQ(CocoaModifiers::command, 0x100000u);
    EXPECT_EQ(carbonModifiers(CocoaModifiers::command), 0x100u);
    EXPECT_EQ(carbonModifiers(CocoaModifiers::shift), 0x200u);
    EXPECT_EQ(carbonModifiers(CocoaModifiers::option), 0x800u);
    EXPECT_EQ(carbonModifiers(CocoaModifiers::control), 0x1000u);
    // Caps lock (bit 16), the numeric pad (21), the fn key (23) and the device-dependent low
    // bits are not part of a hotkey.
    const std::uint64_t noise = (1ULL << 16) | (1ULL << 21) | (1ULL << 23) | 0x1F;
    EXPECT_EQ(carbonModifiers(noise), 0u);
    const std::uint64_t all = CocoaModifiers::command | CocoaModifiers::shift |
                              CocoaModifiers::option | CocoaModifiers::control | noise;
    const auto chord = hotkey(press(1, all, "s"));
    EXPECT_EQ(chord->modifiers, 0x1B00u);
    EXPECT_EQ(chord->display(), "⌃⌥⇧⌘S");

    // What counts as usable: command, option or control, or a function key on its own.
    EXPECT_TRUE(hotkey(press(1, CocoaModifiers::control, "s"))->isUsable());
    EXPECT_TRUE(hotkey(press(96, 0, std::nullopt))->isUsable());
    EXPECT_FALSE(hotkey(press(1, CocoaModifiers::shift, "s"))->isUsable());
    EXPECT_FALSE(hotkey(press(49, 0, " "))->isUsable());
}

TEST(HotkeyField, RecordsOneUsableChordAndSaysWhatItWaitsFor) {
    HotkeyField field(Hotkey::defaultStage());
    std::vector<std::optional<Hotkey>> changes;
    field.onChange = [&](const std::optional<Hotkey>& hotkey) { changes.push_back(hotkey); };
    EXPECT_EQ(field.text(), "⌃⌥⌘S");
    EXPECT_EQ(HotkeyField::accessibilityLabel, "Hotkey");
    EXPECT_EQ(field.accessibilityValue(), "⌃⌥⌘S");
    EXPECT_EQ(field.key(press(0, CocoaModifiers::command, "a")), HotkeyField::KeyOutcome::passedOn)
        << "a field that is not recording leaves keys alone";

    // Escape while recording leaves the old hotkey.
    field.click();
    EXPECT_EQ(field.text(), "Type shortcut…");
    EXPECT_EQ(field.key(press(53, 0, "\x1B")), HotkeyField::KeyOutcome::cancelled);
    EXPECT_FALSE(field.recording());
    EXPECT_EQ(field.hotkey(), Hotkey::defaultStage());

    // A bare letter is refused and recording goes on; a key with no label is ignored; the
    // next valid chord is taken.
    field.click();
    EXPECT_EQ(field.key(press(0, 0, "a")), HotkeyField::KeyOutcome::refused);
    EXPECT_EQ(field.text(), "Add ⌘, ⌃ or ⌥");
    EXPECT_EQ(field.key(press(0, CocoaModifiers::shift, "a")), HotkeyField::KeyOutcome::refused);
    EXPECT_EQ(field.key(press(76, CocoaModifiers::command, "\x03")),
              HotkeyField::KeyOutcome::ignored);
    EXPECT_TRUE(field.recording());
    EXPECT_EQ(field.key(press(0, CocoaModifiers::control | CocoaModifiers::option, "a")),
              HotkeyField::KeyOutcome::set);
    EXPECT_FALSE(field.recording());
    EXPECT_EQ(field.text(), "⌃⌥A");
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0], (Hotkey{0, Hotkey::control | Hotkey::option, "A"}));

    // A new recording forgets the earlier refusal; a click stops it with nothing changed.
    field.click();
    EXPECT_FALSE(field.refused());
    EXPECT_EQ(field.text(), "Type shortcut…");
    field.click();
    EXPECT_FALSE(field.recording());

    // Delete, or Forward Delete, clears the binding.
    field.click();
    EXPECT_EQ(field.key(press(51, 0, "\x7F")), HotkeyField::KeyOutcome::cleared);
    EXPECT_FALSE(field.recording());
    EXPECT_EQ(field.text(), "Record");
    EXPECT_EQ(field.accessibilityValue(), "None");
    ASSERT_EQ(changes.size(), 2u);
    EXPECT_EQ(changes[1], std::nullopt);

    field.click();
    EXPECT_EQ(field.key(press(96, 0, std::nullopt)), HotkeyField::KeyOutcome::set);
    EXPECT_EQ(field.text(), "F5") << "a bare function key is usable";
    field.click();
    EXPECT_EQ(field.key(press(117, 0, std::nullopt)), HotkeyField::KeyOutcome::cleared);
    EXPECT_EQ(field.hotkey(), std::nullopt);

    // The context menu's Clear, and a view that goes away while recording.
    field.setHotkey(Hotkey::defaultStage());
    EXPECT_EQ(changes.size(), 4u) << "following the settings reports nothing back";
    field.click();
    field.clear();
    EXPECT_EQ(changes.size(), 5u);
    EXPECT_EQ(field.text(), "Type shortcut…") << "clearing doesn't stop a recording";
    field.disappear();
    EXPECT_FALSE(field.recording());
    EXPECT_EQ(field.text(), "Record");
    EXPECT_EQ(HotkeyField::font.design, FontDesign::monospaced);
    EXPECT_EQ(HotkeyField::font.weight, FontWeight::medium);
    EXPECT_EQ(HotkeyField::font.size, 11.5);
}

} // namespace
} // namespace scrimlet
