#pragma once

// The settings window as data: seven pages, each a column of titled sections of rows, every
// control bound to one field of the settings. A control reads its value when the page is
// built and writes through the store's setter, so that saving and the store's reactions
// happen exactly as for any other change. Main thread only.

#include "ViewModel.hpp"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace scrimlet {

/// One field of the settings: its name (as the settings file spells its path), how to read
/// it, and how to write it into a copy.
template <class T>
struct SettingsField {
    std::string name;
    std::function<T(const StageSettings&)> read;
    std::function<void(StageSettings&, const T&)> write;

    /// Writes `value` through the store's setter: saved at once, and acted on.
    void assign(StageStore& store, const T& value) const {
        StageSettings settings = store.settings();
        write(settings, value);
        store.setSettings(std::move(settings));
    }
};

/// A lamp toggle (or a plain checkbox, for pins).
struct ToggleControl {
    bool on = false;
    bool enabled = true;
    std::string label;
    std::optional<std::string> help;
    /// The settings field, or "switch." and a switch for a toggle of the switch board.
    std::string field;
    std::function<void(StageStore&, bool)> set;
};

/// One choice of a menu.
struct MenuChoice {
    std::string title;
    std::optional<std::string> symbol;
    bool enabled = true;
    std::function<void(StageStore&)> pick;
};

struct MenuGroup {
    /// A heading over the group's choices; none for an untitled group.
    std::optional<std::string> title;
    std::vector<MenuChoice> choices;
};

/// A menu: a pop-up that shows the chosen value, or a pull-down that adds something.
struct MenuControl {
    /// The pull-down's title ("Add"); empty for a pop-up.
    std::string title;
    std::vector<MenuGroup> groups;
    /// The pop-up's current choice, counted over all groups.
    std::optional<size_t> selected;
    /// What a pull-down with no choices says instead.
    std::optional<std::string> emptyText;
    std::string label;
    std::string field;
};

struct SliderControl {
    double value = 0;
    double minimum = 0;
    double maximum = 1;
    std::string label;
    std::string field;
    std::function<void(StageStore&, double)> set;
};

/// A hotkey recorder.
struct HotkeyControl {
    std::optional<Hotkey> hotkey;
    std::string field;
    std::function<void(StageStore&, std::optional<Hotkey>)> set;
};

struct TextFieldControl {
    std::string value;
    std::string label;
    std::string field;
    std::function<void(StageStore&, std::string)> set;
};

struct ButtonControl {
    ButtonModel button;
    /// What the button does when it needs more than a `UiAction`: editing a list, or asking
    /// the platform for a file.
    std::function<void(StageStore&, InterfaceHost&)> press;
};

struct ColorWellControl {
    std::uint32_t color = 0;
    std::string label;
    std::string field;
    std::function<void(StageStore&, std::uint32_t)> set;
};

/// A state shown, not changed: ready as a sage mark, otherwise a velvet tag.
struct StateMarkControl {
    bool ready = false;
    std::optional<TagModel> tag;
    std::string accessibilityLabel;
};

using RowControl =
    std::variant<std::monostate, ToggleControl, MenuControl, SliderControl, HotkeyControl,
                 TextFieldControl, ButtonControl, ColorWellControl, StateMarkControl>;

/// A row: a symbol, a title with a detail under it, and a control at the trailing edge.
struct SettingRow {
    std::string title;
    std::optional<std::string> detail;
    std::optional<std::string> symbol;
    AdaptiveColor symbolColor = Theme::ink2;
    /// Velvet when the detail reports a problem.
    AdaptiveColor detailColor = Theme::ink3;
    /// Monospaced title, for links.
    bool monospaced = false;
    RowControl control;
    /// The last row of its card has no hairline under it.
    bool last = false;
};

/// A switch's row on the Switches page: its auto-off, hotkey and pin.
struct SwitchSettingsRow {
    SwitchKind kind = SwitchKind::hideDesktopIcons;
    std::string symbol;
    std::string title;
    std::string note;
    /// Action switches have no auto-off.
    std::optional<MenuControl> autoOff;
    HotkeyControl hotkey;
    ToggleControl pin;
    bool last = false;
};

/// The column heads over the switch rows.
struct ColumnHeader {
    std::vector<std::string> columns;
};

/// Lines of text in a card.
struct TextBlock {
    std::vector<StyledText> lines;
    /// A symbol beside the lines.
    std::optional<std::string> symbol;
    AdaptiveColor symbolColor = Theme::ink3;
};

/// Numbered steps.
struct StepsBlock {
    std::vector<std::string> steps;
};

/// A row of the status of something, with a symbol in its colour.
struct StatusBlock {
    std::string symbol;
    AdaptiveColor symbolColor;
    std::string title;
    std::string detail;
};

/// A row of buttons.
struct ButtonsBlock {
    std::vector<ButtonControl> buttons;
};

/// The diagram of the menu bar with the divider.
struct MenuBarDiagramModel {
    struct Item {
        /// A system symbol, or (for the program's own glyph and the clock) none.
        std::optional<std::string> symbol;
        /// The clock's text.
        std::optional<std::string> text;
        /// The program's own glyph.
        bool glyph = false;
        AdaptiveColor color;
    };

    AdaptiveColor background = Theme::well;
    std::vector<Item> hidden;
    std::string hiddenCaption;
    AdaptiveColor captionColor = Theme::light;
    Item divider;
    std::vector<Item> shown;
    std::string accessibilityLabel;
};

/// The backdrop palettes to choose from.
struct PaletteGrid {
    struct Swatch {
        std::string name;
        std::vector<std::uint32_t> colors;
        bool chosen = false;
        std::string accessibilityLabel;
        std::function<void(StageStore&)> choose;
    };
    std::vector<Swatch> swatches;
};

using SectionItem = std::variant<SettingRow, SwitchSettingsRow, ColumnHeader, TextBlock, StepsBlock,
                                 StatusBlock, ButtonsBlock, MenuBarDiagramModel, PaletteGrid>;

/// A titled card of items, with a footer under it.
struct SettingsSection {
    std::string title;
    std::optional<std::string> footer;
    std::vector<SectionItem> items;
    /// Text between the title and the card.
    std::optional<std::string> lead;
};

/// The miniature of the backdrop at the top of its page.
struct BackdropPreviewBlock {
    BackdropStyle style;
    std::string accessibilityLabel;
};

/// The segmented choice of the backdrop's kind.
struct KindPicker {
    struct Segment {
        BackdropStyle::Kind kind = BackdropStyle::Kind::mesh;
        std::string label;
        std::string symbol;
    };
    std::vector<Segment> segments;
    size_t selected = 0;
    std::string field = "backdropStyle.kind";
    std::function<void(StageStore&, size_t)> choose;
};

using PageBlock = std::variant<SettingsSection, BannerModel, BackdropPreviewBlock, KindPicker>;

/// The size of a page's own title.
inline constexpr Font pageTitleFont = Font::system(22, FontWeight::bold);

/// One page of the settings window.
struct SettingsPageModel {
    SettingsTab tab = SettingsTab::stage;
    std::string title;
    std::optional<std::string> subtitle;
    std::vector<PageBlock> blocks;

    /// The section of that title, if the page has one.
    const SettingsSection* section(std::string_view name) const;
};

/// The tab of a page: its title and symbol.
struct SettingsTabInfo {
    SettingsTab tab = SettingsTab::stage;
    std::string title;
    std::string symbol;

    friend bool operator==(const SettingsTabInfo&, const SettingsTabInfo&) = default;
};

namespace SettingsPages {

/// The content size of the settings window.
inline constexpr double windowWidth = 660;
inline constexpr double windowHeight = 660;

/// The seven tabs in their order.
const std::array<SettingsTabInfo, 7>& tabs();
const SettingsTabInfo& tab(SettingsTab tab);

/// Any page but the run sheets, which have a model of their own.
SettingsPageModel page(SettingsTab tab, const StageStore& store);
SettingsPageModel stage(const StageStore& store);
SettingsPageModel cues(const StageStore& store);
SettingsPageModel backdrop(const StageStore& store);
SettingsPageModel menuBar(const StageStore& store);
SettingsPageModel switches(const StageStore& store);
SettingsPageModel quiet(const StageStore& store);

/// Everything a page shows, as text: when two models describe alike, the page on screen
/// needs no redrawing.
std::string describe(const SettingsPageModel& page);

/// Whether both shortcuts the Quiet page names exist, as the store last heard.
bool shortcutsReady(const StageStore& store);

/// The name of an app for a bundle identifier: a running app's, a known app's, or the
/// identifier itself.
std::string appName(const StageStore& store, const std::string& bundleID);

} // namespace SettingsPages

} // namespace scrimlet
