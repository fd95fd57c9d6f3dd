#pragma once

// The menu bar divider: a second status item that the user ⌘-drags icons to the left of.
// Grown long, it pushes those icons out of sight; back at its resting length, it lets them
// return. This is its state table and every rule about it; the platform only makes,
// re-sizes, re-draws and removes the item. Main thread only.

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace scrimlet {

class StageStore;

/// What the divider's length depends on: the widths of the attached displays, in points,
/// and the macOS major version (`SystemVersion::macOSMajor`).
struct MenuBarMetrics {
    std::vector<double> displayWidths;
    int systemMajor = 0;
};

/// The status bar as the divider uses it: one item, made and removed whole.
class DividerBar {
public:
    virtual ~DividerBar() = default;
    /// Makes the item at `length`, with the constants of `MenuBarDivider` (autosave name,
    /// tool tip, accessibility description) and `symbol` as its template image.
    virtual void addItem(double length, std::string_view symbol) = 0;
    virtual void removeItem() = 0;
    /// Re-sizes the item and replaces its image: the symbol, or no image at all.
    virtual void showItem(double length, std::optional<std::string_view> symbol) = 0;
};

class MenuBarDivider {
public:
    static constexpr double restingLength = 14;
    /// The collapsed length up to macOS 26, which clamps an item to the bar.
    static constexpr double expandedLength = 10000;
    static constexpr std::string_view autosaveName = "ScrimletDivider";
    static constexpr std::string_view openSymbol = "chevron.compact.left";
    static constexpr std::string_view collapsedSymbol = "chevron.compact.right";
    static constexpr std::string_view symbolDescription = "Scrimlet divider";
    static constexpr std::string_view toolTip =
        "Scrimlet divider — ⌘-drag icons to the left of this to hide them during a show. "
        "Click to hide or show them now.";
    static constexpr std::string_view offMessage = "The menu bar divider is off";

    enum class State { notInstalled, open, collapsed };

    /// `isTestRun` is asked at each `setInstalled`; `metrics` each time a length is chosen.
    MenuBarDivider(DividerBar& bar, std::function<bool()> isTestRun,
                   std::function<MenuBarMetrics()> metrics);

    /// Makes or removes the item; does nothing in a scripted run. Removing it also brings
    /// the icons back, since the long item goes with it.
    void setInstalled(bool installed);
    /// Pushes the icons out of sight or lets them back. Without an item it throws
    /// `StageError::failed(offMessage)` either way: there is no silent success.
    void setCollapsed(bool collapsed);
    /// The displays changed: a collapsed divider takes the length that suits them now, if
    /// that is another.
    void displaysChanged();

    State state() const;
    bool isInstalled() const { return installed_; }
    bool isCollapsed() const { return collapsed_; }
    /// The item's length now; 0 without an item.
    double length() const { return length_; }

private:
    void show();
    void showCollapsed(const MenuBarMetrics& metrics);

    DividerBar& bar_;
    std::function<bool()> isTestRun_;
    std::function<MenuBarMetrics()> metrics_;
    bool installed_ = false;
    bool collapsed_ = false;
    double length_ = 0;
};

/// The length that pushes the icons away without the bar throwing the item out.
double collapsedLength(const MenuBarMetrics& metrics);
/// Whether the collapsed divider draws its chevron: not from macOS 27 on, where its span
/// lies in plain sight on the bar instead of off its edge.
bool showsSymbolWhileCollapsed(int systemMajor);

/// The divider's click: it goes through the switch board as the menu bar switch, never
/// straight to the divider, so that the journal and the switch's owners stay true.
void dividerClicked(StageStore& store);

} // namespace scrimlet
