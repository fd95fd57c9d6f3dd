#import "Hotkeys.hpp"

#import "Harness.hpp"
#import "HotkeySet.hpp"

#import <Carbon/Carbon.h>
#import <dispatch/dispatch.h>

// The hot-key service is Carbon's, the one that needs no permission. Its key presses arrive
// in a plain callback that only hops to the main queue, so that no action ever runs inside
// the event handler and every action runs where the store lives.

namespace scrimlet::mac::Hotkeys {

namespace {

constexpr OSType fourCharCode(const char (&code)[5]) {
    return (static_cast<OSType>(static_cast<unsigned char>(code[0])) << 24) |
           (static_cast<OSType>(static_cast<unsigned char>(code[1])) << 16) |
           (static_cast<OSType>(static_cast<unsigned char>(code[2])) << 8) |
           static_cast<OSType>(static_cast<unsigned char>(code[3]));
}

/// The signature under which the app's hot keys are registered.
constexpr OSType signature = fourCharCode("CRTN");

static_assert(cmdKey == Hotkey::cmd && shiftKey == Hotkey::shift && optionKey == Hotkey::option &&
                  controlKey == Hotkey::control,
              "a Hotkey keeps Carbon's modifier bits");

HotkeySet &shared();

OSStatus hotKeyPressed(EventHandlerCallRef, EventRef event, void *) {
    EventHotKeyID pressed = {0, 0};
    const OSStatus status = GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID,
                                              nullptr, sizeof(pressed), nullptr, &pressed);
    if (status == noErr && pressed.signature == signature) {
        const std::uint32_t identifier = pressed.id;
        dispatch_async(dispatch_get_main_queue(), ^{
            shared().pressed(identifier);
        });
    }
    return noErr;
}

class CarbonHotkeyService final : public HotkeyService {
  public:
    void installHandler() override {
        const EventTypeSpec pressed = {kEventClassKeyboard, kEventHotKeyPressed};
        InstallEventHandler(GetApplicationEventTarget(), hotKeyPressed, 1, &pressed, nullptr,
                            nullptr);
    }

    std::optional<Token> registerKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                     std::uint32_t identifier) override {
        EventHotKeyRef ref = nullptr;
        const EventHotKeyID hotKeyID = {signature, identifier};
        const OSStatus status =
            RegisterEventHotKey(keyCode, modifiers, hotKeyID, GetApplicationEventTarget(), 0, &ref);
        if (status != noErr || !ref) {
            return std::nullopt;
        }
        return reinterpret_cast<Token>(ref);
    }

    void unregisterKey(Token token) override {
        UnregisterEventHotKey(reinterpret_cast<EventHotKeyRef>(token));
    }
};

HotkeySet &shared() {
    static CarbonHotkeyService service;
    static HotkeySet set(service, [] { return Harness::isTestRun(); });
    return set;
}

} // namespace

std::vector<std::uint32_t> registerAll(std::vector<HotkeyEntry> entries) {
    return shared().registerAll(std::move(entries));
}

} // namespace scrimlet::mac::Hotkeys
