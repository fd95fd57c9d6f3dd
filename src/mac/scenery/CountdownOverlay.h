#pragma once

// The countdown: the seconds of standby on a small card in the middle of the main screen,
// for the presenter's eyes. Main thread only.
//
// "Left out of screen sharing" is asked of the system with the window's sharing type set to
// none. It holds where capture goes through the older window-list and display-stream paths.
// From macOS 15 on, ScreenCaptureKit, which the sharing and recording apps use, ignores the
// sharing type and captures the screen as it is composed, so the card can appear in a share
// or a recording there. What can be promised: the card is small, centred on the main screen,
// shows for the three seconds of standby only, and goes before the show is live. What
// cannot: that no one watching ever sees it.

#import "ScenePanel.h"

@class SCDrawingView;

namespace scrimlet::mac {

class CountdownOverlay {
  public:
    /// Shows `seconds` on the card, making the panel on first use and keeping it; the change
    /// of number is animated. The panel moves to the main screen, if there is one.
    void show(int seconds);
    /// Orders the panel out, if there is one.
    void hide();

  private:
    SCScenePanel *panel_ = nil;
    SCDrawingView *card_ = nil;
    SCDrawingView *number_ = nil;
    long long value_ = 3;
};

} // namespace scrimlet::mac
