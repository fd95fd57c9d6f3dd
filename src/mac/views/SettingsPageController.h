#pragma once

#import <AppKit/AppKit.h>

#include "StageStore.hpp"

#include <memory>

/// One page of the settings window on its own, as the window shows it on `tab`: a scrolling
/// page of the window's size that follows the store. The snapshots host it in a window of
/// their own.
NSViewController* ScrimletSettingsPageViewController(std::weak_ptr<scrimlet::StageStore> store,
                                                     scrimlet::StageStore::SettingsTab tab);
