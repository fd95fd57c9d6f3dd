#pragma once

// The spotlight: every screen dimmed but for a soft disc under the pointer, which follows it
// sixty times a second and is drawn anew only when the pointer has moved. The mouse passes
// through. Main thread only.

#import "ScenePanel.h"

#include "SpotlightView.hpp"

#include <memory>
#include <vector>

@class SCDrawingView;

namespace scrimlet::mac {

class SpotlightController : public std::enable_shared_from_this<SpotlightController> {
  public:
    SpotlightController() = default;
    ~SpotlightController();
    SpotlightController(const SpotlightController &) = delete;
    SpotlightController &operator=(const SpotlightController &) = delete;

    bool isUp() const { return panels_.count > 0; }
    /// No effect when already up: only `hide` and `show` change the radius.
    void show(double radius, double dim);
    void hide();

  private:
    void tick();

    NSMutableArray<SCScenePanel *> *panels_ = [NSMutableArray array];
    /// One view and what it draws for each panel, in the same order.
    NSMutableArray<SCDrawingView *> *views_ = [NSMutableArray array];
    std::vector<std::shared_ptr<SpotlightView>> spots_;
    PointerWatch watch_;
    NSTimer *timer_ = nil;
};

} // namespace scrimlet::mac
