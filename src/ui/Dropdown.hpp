#pragma once

// The dropdown as a function of the store: the curtain header, the action of the moment,
// the note that matters most, the cue list, the switches and the footer, or the page of all
// switches. The only view state it takes is the hover of a tile, which changes no text.
// Main thread only.

#include "ViewModel.hpp"

#include <optional>
#include <string>
#include <vector>

namespace scrimlet {

/// One line on the curtain or on the stage behind it.
struct HeaderLine {
    StyledText text;
    /// A system symbol before the text.
    std::optional<std::string> symbol;
    std::optional<Glow> glow;

    friend bool operator==(const HeaderLine&, const HeaderLine&) = default;
};

/// The curtain at the top: closed with the house open, or drawn back on the stage.
struct StageHeaderModel {
    enum class Face {
        /// The closed curtain, phase dark.
        offCurtain,
        /// The stage behind the open curtain, standby and live.
        onStage,
    };

    Face face = Face::offCurtain;
    double height = 148;
    /// How far the curtain is drawn back, 0 to 1, and how bright the stage is.
    double open = 0;
    double lit = 0;
    /// What the face says, top to bottom.
    std::vector<HeaderLine> lines;
    std::string accessibilityText;

    friend bool operator==(const StageHeaderModel&, const StageHeaderModel&) = default;
};

/// The big action of the moment and the small note under it.
struct ActionRowModel {
    std::vector<ButtonModel> buttons;
    std::optional<StyledText> note;

    friend bool operator==(const ActionRowModel&, const ActionRowModel&) = default;
};

/// One row of the cue list.
struct CueRowModel {
    /// A stable identity: the effect kind's raw name, or a name built from it.
    std::string id;
    EffectKind kind = EffectKind::dockAutohide;
    std::string title;
    std::optional<std::string> detail;
    /// Planned, or done.
    bool on = false;
    std::optional<CueOutcome> outcome;
    /// Why the effect can't run here, as the system says it.
    std::optional<std::string> note;

    // How the row shows and behaves.
    CueNumberModel number;
    std::optional<TagModel> badge;
    /// `note` shortened for the row, in velvet; a click on it opens `noteAction`.
    std::optional<StyledText> shortNote;
    std::optional<UiAction> noteAction;
    /// Phase dark: the row is a toggle of the plan.
    std::optional<UiAction> toggle;
    /// The resolution row's way off the plan.
    std::optional<IconButtonModel> remove;
    std::string accessibilityLabel;

    friend bool operator==(const CueRowModel&, const CueRowModel&) = default;
};

struct CueListModel {
    std::string kicker = "Cue list";
    /// The small text at the header's trailing edge, when useful.
    std::optional<std::string> headerNote;
    std::vector<CueRowModel> rows;

    friend bool operator==(const CueListModel&, const CueListModel&) = default;
};

/// One switch on the dropdown's front.
struct SwitchTileModel {
    SwitchKind kind = SwitchKind::hideDesktopIcons;
    std::string symbol;
    std::string title;
    std::optional<std::string> subtitle;
    bool on = false;
    /// Off: a hairline border and no fill; on: the stage light.
    std::optional<AdaptiveColor> fill;
    std::optional<AdaptiveColor> border;
    AdaptiveColor titleColor;
    AdaptiveColor subtitleColor;
    std::string accessibilityValue;
    UiAction action;

    friend bool operator==(const SwitchTileModel&, const SwitchTileModel&) = default;
};

struct SwitchGridModel {
    std::string kicker = "Switches";
    /// "n on", when any switch is on.
    std::optional<TagModel> onTag;
    ButtonModel showAll;
    std::vector<SwitchTileModel> tiles;
    /// With nothing pinned, the way to pin some.
    std::optional<StyledText> empty;

    friend bool operator==(const SwitchGridModel&, const SwitchGridModel&) = default;
};

struct HomeModel {
    StageHeaderModel header;
    ActionRowModel actionRow;
    std::optional<BannerModel> note;
    CueListModel cueList;
    SwitchGridModel switches;
    std::vector<IconButtonModel> footer;

    friend bool operator==(const HomeModel&, const HomeModel&) = default;
};

/// One row of the page of all switches.
struct AllSwitchesRowModel {
    SwitchKind kind = SwitchKind::hideDesktopIcons;
    std::string symbol;
    AdaptiveColor symbolColor;
    std::string title;
    std::string detail;
    bool on = false;
    /// A lamp toggle, or for an action switch the button "Start".
    bool isAction = false;
    UiAction action;

    friend bool operator==(const AllSwitchesRowModel&, const AllSwitchesRowModel&) = default;
};

struct AllSwitchesModel {
    IconButtonModel back;
    std::string title = "All switches";
    /// "All off", when any switch is on.
    std::optional<ButtonModel> allOff;
    std::vector<AllSwitchesRowModel> rows;
    StyledText footnote;
    ButtonModel settings;

    friend bool operator==(const AllSwitchesModel&, const AllSwitchesModel&) = default;
};

/// The dropdown's whole content: the home page or all switches, by the store's route.
struct DropdownModel {
    PopoverRoute route = PopoverRoute::home;
    double width = Theme::popoverWidth;
    std::optional<HomeModel> home;
    std::optional<AllSwitchesModel> allSwitches;

    friend bool operator==(const DropdownModel&, const DropdownModel&) = default;
};

namespace Dropdown {

DropdownModel model(const StageStore& store);

HomeModel home(const StageStore& store);
StageHeaderModel header(const StageStore& store);
ActionRowModel actionRow(const StageStore& store);
/// The first note that holds: a recovered show, a show just ended, a hotkey problem.
std::optional<BannerModel> notes(const StageStore& store);
CueListModel cueList(const StageStore& store);
SwitchGridModel switchGrid(const StageStore& store);
AllSwitchesModel allSwitches(const StageStore& store);
std::vector<IconButtonModel> footer();

/// "Scrimlet quit during a show. At launch it put back 2 things…"
std::string recoveredText(const RunSheet& sheet);
/// "Curtain down · 5 changes put back, 1 left as you set it."
std::string endedText(const RunSheet& sheet);
/// What stands under the live show's buttons: its end, what ends it, what it kept.
std::string liveNote(const StageStore& store);
/// An availability note cut to fit a cue row.
std::string shortNote(std::string_view text);
/// The cue list's rows of a show's cues, the hidden apps merged into one.
std::vector<CueRowModel> sheetRows(const std::vector<CueRecord>& cues,
                                   const std::map<EffectKind, Availability>& availability);
/// The settings page where an effect that isn't available can be set up.
SettingsTab setupTab(EffectKind kind);
/// The small line of a tile: its auto-off time, or why it can't run.
std::optional<std::string> subtitle(const StageStore& store, SwitchKind kind, bool on);
/// The line under a switch on the page of all switches.
std::string detail(const StageStore& store, SwitchKind kind);

/// How the hover glow of a tile looks, and how it comes and goes.
inline constexpr double tileMinHeight = 36;
Glow tileHoverGlow();

} // namespace Dropdown

} // namespace scrimlet
