#pragma once

// The desktop cover: one panel per screen, just above the desktop icons and below every
// window, showing the screen's own wallpaper, so that the icons are gone from the picture.
// Main thread only.
//
// On macOS 14 and later, "Click wallpaper to reveal desktop" moves every window aside when
// the wallpaper is clicked. The cover lies above the icons and takes clicks, so a click on
// it never reaches the wallpaper: while the cover is up, clicking what looks like the
// wallpaper reveals nothing and does nothing. When the desktop is revealed some other way
// (the gesture, the key, Mission Control), the cover is stationary and stays: the icons and
// widgets stay hidden under it. Reports from other apps at this level agree; it has not been
// watched on a Mac here.

#import "ScenePanel.h"

namespace scrimlet::mac {

class DesktopCover {
  public:
    bool isUp() const { return panels_.count > 0; }
    /// One panel per screen; a second call keeps the panels of the first.
    void show();
    void hide();

  private:
    NSMutableArray<SCScenePanel *> *panels_ = [NSMutableArray array];
};

} // namespace scrimlet::mac
