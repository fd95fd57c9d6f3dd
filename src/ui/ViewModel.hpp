#pragma once

// What the views of the dropdown and the settings window share: styled text, buttons, tags,
// banners, and what a control does when used (`UiAction`), carried out on the store by
// `perform`. The views only draw these values and hand the actions back; every text,
// condition and colour is decided here. Plain values; main thread only.

#include "Color.hpp"
#include "Font.hpp"
#include "StageStore.hpp"
#include "Theme.hpp"

#include <optional>
#include <string>

namespace scrimlet {

using SettingsTab = StageStore::SettingsTab;
using PopoverRoute = StageStore::PopoverRoute;

/// The same colour in both appearances.
constexpr AdaptiveColor fixed(Color color) {
    return {color, color};
}

/// A theme colour seen through a view's opacity, in both appearances.
constexpr AdaptiveColor faded(AdaptiveColor color, double factor) {
    return {color.light.opacity(factor), color.dark.opacity(factor)};
}

/// One piece of text as it stands on screen.
struct StyledText {
    std::string text;
    Font font;
    AdaptiveColor color;

    friend bool operator==(const StyledText&, const StyledText&) = default;
};

/// A soft light behind a text or a shape.
struct Glow {
    AdaptiveColor color;
    double radius = 0;

    friend bool operator==(const Glow&, const Glow&) = default;
};

/// What the interface needs from the platform beyond the store. The macOS shell answers
/// with AppKit; tests record the calls.
class InterfaceHost {
public:
    virtual ~InterfaceHost() = default;
    /// Closes the dropdown, brings the app forward and shows the settings window, on `tab`
    /// when one is given, on the last page otherwise.
    virtual void openSettings(std::optional<SettingsTab> tab) = 0;
    /// Quits through the application's lifecycle, which puts everything back.
    virtual void quit() = 0;
    virtual void copyToPasteboard(const std::string& text) = 0;
    virtual void openApplication(const std::string& path) = 0;
    /// Lets the user pick a picture file; `chosen` runs with its path, unless cancelled.
    virtual void chooseImage(std::function<void(const std::string& path)> chosen) = 0;
};

/// What a control does when used, as a value, so that a test can read which tab a banner
/// opens without clicking anything.
struct UiAction {
    enum class Kind {
        none,
        startShow,
        stopShow,
        extendShow,
        openSettings,
        dismissRecovered,
        dismissEnded,
        togglePlan,
        removeResolution,
        toggleSwitch,
        setSwitch,
        route,
        allSwitchesOff,
        quit,
        clearSheets,
        recheckShortcuts,
        openApplication,
        copy,
    };

    Kind kind = Kind::none;
    /// `openSettings`: the tab to open; none keeps the last one.
    std::optional<SettingsTab> tab;
    std::optional<EffectKind> effect;
    std::optional<SwitchKind> switchKind;
    /// `setSwitch`: the state asked for.
    bool on = false;
    std::optional<PopoverRoute> route;
    /// `openApplication`: the path; `copy`: the text.
    std::string text;

    static UiAction none() { return {}; }
    static UiAction of(Kind kind) {
        UiAction action;
        action.kind = kind;
        return action;
    }
    static UiAction openSettings(std::optional<SettingsTab> tab) {
        UiAction action = of(Kind::openSettings);
        action.tab = tab;
        return action;
    }
    static UiAction togglePlan(EffectKind kind) {
        UiAction action = of(Kind::togglePlan);
        action.effect = kind;
        return action;
    }
    static UiAction toggleSwitch(SwitchKind kind) {
        UiAction action = of(Kind::toggleSwitch);
        action.switchKind = kind;
        return action;
    }
    static UiAction setSwitch(SwitchKind kind, bool on) {
        UiAction action = of(Kind::setSwitch);
        action.switchKind = kind;
        action.on = on;
        return action;
    }
    static UiAction goTo(PopoverRoute route) {
        UiAction action = of(Kind::route);
        action.route = route;
        return action;
    }
    static UiAction openApplication(std::string path) {
        UiAction action = of(Kind::openApplication);
        action.text = std::move(path);
        return action;
    }
    static UiAction copy(std::string text) {
        UiAction action = of(Kind::copy);
        action.text = std::move(text);
        return action;
    }

    friend bool operator==(const UiAction&, const UiAction&) = default;
};

/// Carries out an action. Every change the store does not publish by itself is followed by
/// a `sync`, so the views (which follow the store's change signal) always redraw.
void perform(const UiAction& action, StageStore& store, InterfaceHost& host);

/// The words a show started from the dropdown or the menu leaves on its run sheet.
inline constexpr const char* startedFromMenu = "Started from the menu";

/// A capsule label: the shared `Tag`, and the outcome badges built on it.
struct TagModel {
    std::string text;
    std::optional<std::string> symbol;
    AdaptiveColor tint;
    AdaptiveColor fill;
    /// The tool tip, when the tag stands for more than it says.
    std::optional<std::string> help;

    friend bool operator==(const TagModel&, const TagModel&) = default;
};

/// A cue's number: "Q" and n; lit, dark on the stage light.
struct CueNumberModel {
    std::string text;
    AdaptiveColor ink;
    std::optional<AdaptiveColor> fill;

    friend bool operator==(const CueNumberModel&, const CueNumberModel&) = default;
};

CueNumberModel cueNumber(long long n, bool lit);

/// A button in one of the theme's styles.
struct ButtonModel {
    enum class Style {
        /// A filled, rounded button: the one big action.
        primary,
        /// Washed, with a hairline border.
        quiet,
        /// Text only.
        plain,
    };
    /// The key that presses it besides a click.
    enum class Key { none, defaultAction, cancel };

    std::string title;
    std::optional<std::string> symbol;
    /// Small text at the trailing edge, such as the hotkey.
    std::optional<std::string> trailing;
    Style style = Style::quiet;
    bool compact = false;
    bool fullWidth = false;
    /// `primary`: the fill; the other styles have none.
    AdaptiveColor fill = fixed(Theme::lightFill);
    /// The text colour (the tint of `quiet` and `plain`).
    AdaptiveColor ink = Theme::ink;
    std::optional<Font> font;
    /// Said by assistive technology; the title when empty.
    std::string accessibilityLabel;
    Key key = Key::none;
    bool enabled = true;
    UiAction action;

    friend bool operator==(const ButtonModel&, const ButtonModel&) = default;
};

/// A small borderless button with one symbol, its help as tool tip and accessibility label.
struct IconButtonModel {
    std::string symbol;
    std::string help;
    UiAction action;

    friend bool operator==(const IconButtonModel&, const IconButtonModel&) = default;
};

/// A note across the top of a page or of the dropdown.
struct BannerModel {
    std::string symbol;
    std::string text;
    AdaptiveColor tint;
    AdaptiveColor fill;
    std::optional<std::string> actionTitle;
    UiAction action;
    /// The small "xmark" button, labelled "Dismiss"; none when the note can't be dismissed.
    std::optional<UiAction> dismiss;

    friend bool operator==(const BannerModel&, const BannerModel&) = default;
};

/// The tint and fill of the outcome badges' three families.
TagModel outcomeBadge(const CueOutcome& outcome);

/// The text of a `Kicker`, upper-cased (ASCII letters only: the kickers are English words).
std::string kickerText(std::string_view text);

/// The on and off lamp of a toggle, for its accessibility value.
inline std::string onOff(bool on) {
    return on ? "On" : "Off";
}

} // namespace scrimlet
