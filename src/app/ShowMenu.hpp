#pragma once

// The app's "Show" menu as data: its items for the phase of the show, and what each does.
// The macOS shell builds the real menu from these rows each time it opens.

#include "Show.hpp"

#include <string>
#include <vector>

namespace scrimlet {

class StageStore;

namespace ShowMenu {

enum class Action { raiseCurtain, bringDown, addFifteenMinutes, runSheets };

/// One row: an item, or a divider when `divider` is set (and nothing else matters).
struct Item {
    std::string title;
    Action action = Action::raiseCurtain;
    bool enabled = true;
    /// The key equivalent, pressed with ⌥⌘, or empty for none.
    std::string key;
    bool divider = false;

    friend bool operator==(const Item&, const Item&) = default;
};

/// The rows for the show as it stands: "Raise the Curtain" while dark, otherwise "Bring It
/// Down", both on ⌥⌘S; "Add 15 Minutes", enabled only live; a divider; "Run Sheets…".
std::vector<Item> items(const ShowPhase& phase);

/// Carries out a row's action on the store. Answers true when the settings window must
/// then open (its tab is set already).
bool perform(Action action, StageStore& store);

} // namespace ShowMenu

} // namespace scrimlet
