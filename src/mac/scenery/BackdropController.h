#pragma once

// The backdrop: one panel per screen at the normal level, kept just behind whichever window
// is in front, so that a shared screen shows that window on a calm surface. Main thread only.

#import "ScenePanel.h"

#include "BackdropStyle.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace scrimlet::mac {

class BackdropController : public std::enable_shared_from_this<BackdropController> {
  public:
    /// `frontWindow` names the window to stand behind, when one is known.
    explicit BackdropController(std::function<std::optional<std::int64_t>()> frontWindow);
    ~BackdropController();
    BackdropController(const BackdropController &) = delete;
    BackdropController &operator=(const BackdropController &) = delete;

    bool isUp() const { return panels_.count > 0; }
    /// No effect when already up: only `hide` and `show` change the style.
    void show(const BackdropStyle &style);
    /// Stops the timer: nothing orders the panels again afterwards.
    void hide();
    /// Behind the front window of the last other app, or at the back of the normal level
    /// when none is known. Runs at `show`, every second while up, and when the front app
    /// changes.
    void orderBehindFront();

  private:
    std::function<std::optional<std::int64_t>()> frontWindow_;
    NSMutableArray<SCScenePanel *> *panels_ = [NSMutableArray array];
    NSTimer *timer_ = nil;
};

} // namespace scrimlet::mac
