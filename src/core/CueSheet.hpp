#pragma once

// Turns what the user chose (a plan, or one switch) into the ordered list of concrete
// effects that the director carries out, journal first. A switch and a plan item ask for
// exactly the same key and value, so they can share one journal entry. Pure: it only reads
// from the stage system and holds no state of its own, except the name order below.
// Main thread only.

#include "Effects.hpp"
#include "StagePlan.hpp"
#include "StageSystem.hpp"
#include "SwitchKind.hpp"

#include <compare>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet::CueSheet {

/// One step: drive this effect to this value.
struct Cue {
    EffectKey key;
    JournalValue value = JournalValue::boolean(true);

    friend bool operator==(const Cue&, const Cue&) = default;
};

/// How app names are ordered when apps are hidden: case-insensitive, in the user's locale.
/// Equal means "keep the order the system listed them in".
using NameOrder = std::function<std::weak_ordering(std::string_view, std::string_view)>;

/// The order used until a better one is handed in: ASCII letters compare without case,
/// everything else by its UTF-8 bytes, so "alpha" < "Beta" < "gamma". Strings that differ
/// only in ASCII case compare equal.
std::weak_ordering plainNameOrder(std::string_view a, std::string_view b);

/// The comparison that `hideApps` sorts by. It starts as `plainNameOrder`; the macOS app
/// replaces it at launch, before the first show, with the system's
/// `localizedCaseInsensitiveCompare:` so that the order matches Finder's in every locale,
/// and the command line with a collator for the user's locale. Set it only from the main
/// thread; an empty function falls back to `plainNameOrder`.
extern NameOrder nameOrder;

/// The cues of a plan, in their fixed order: desktop icons, the apps to hide (by name),
/// backdrop, menu bar tidy, Dock, Dark Mode, alert volume, Do Not Disturb, keep awake,
/// and last the resolution of the main display. `keep` holds the bundle identifiers that
/// must stay on screen; the caller decides what goes into it.
std::vector<Cue> cues(const StagePlan& plan, StageSystem& system,
                      const std::set<std::string>& keep);
/// The cues of one switch. Empty for the screen saver, which is an action and no effect,
/// and for the microphone when there is no input device.
std::vector<Cue> cues(SwitchKind kind, StageSystem& system, const std::set<std::string>& keep);
/// Hides every visible ordinary app whose bundle identifier is not in `keep`, one cue per
/// process, ordered by `nameOrder` and otherwise in the order the system lists them. An app
/// that is hidden already is left out, so that ending the show will not reveal it.
std::vector<Cue> hideApps(StageSystem& system, const std::set<std::string>& keep);
/// The effect a switch drives; nothing for the screen saver.
std::optional<EffectKind> kind(SwitchKind kind);

} // namespace scrimlet::CueSheet
