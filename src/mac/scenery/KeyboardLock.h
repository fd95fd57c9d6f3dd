#pragma once

// The keyboard lock: an event tap that swallows every key at the system level, and on each
// screen a darkened panel, the main one with the card whose button asks to end it. The mouse
// stays alive: the button is the only way out. Main thread only.

#import "ScenePanel.h"

#include <functional>

namespace scrimlet::mac {

class KeyboardLock {
  public:
    KeyboardLock() = default;
    ~KeyboardLock();
    KeyboardLock(const KeyboardLock &) = delete;
    KeyboardLock &operator=(const KeyboardLock &) = delete;

    /// Locked means a tap is held.
    bool isLocked() const { return tap_ != nullptr; }
    /// Throws `StageError` without the Accessibility permission or when the system refuses
    /// the tap; nothing is left behind then. No effect when already locked: the first
    /// `done` stays.
    void lock(std::function<void()> done);
    /// Harmless when not locked.
    void unlock();

  private:
    CFMachPortRef tap_ = nullptr;
    CFRunLoopSourceRef source_ = nullptr;
    NSMutableArray<SCScenePanel *> *panels_ = [NSMutableArray array];
};

} // namespace scrimlet::mac
