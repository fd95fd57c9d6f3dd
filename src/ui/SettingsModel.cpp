#include "SettingsModel.hpp"

#include "SettingsPagesParts.hpp"

#include <algorithm>
#include <cstdio>
#include <type_traits>

namespace scrimlet {

const SettingsSection* SettingsPageModel::section(std::string_view name) const {
    for (const PageBlock& block : blocks) {
        if (const auto* found = std::get_if<SettingsSection>(&block);
            found && found->title == name) {
            return found;
        }
    }
    return nullptr;
}

namespace SettingsPages {

const std::array<SettingsTabInfo, 7>& tabs() {
    static const std::array<SettingsTabInfo, 7> table = {{
        {SettingsTab::stage, "Stage", "theatermasks"},
        {SettingsTab::cues, "Cues", "bolt.horizontal"},
        {SettingsTab::backdrop, "Backdrop", "rectangle.inset.filled"},
        {SettingsTab::menuBar, "Menu Bar", "menubar.rectangle"},
        {SettingsTab::switches, "Switches", "switch.2"},
        {SettingsTab::quiet, "Quiet", "moon"},
        {SettingsTab::runSheets, "Run Sheets", "list.bullet.clipboard"},
    }};
    return table;
}

const SettingsTabInfo& tab(SettingsTab which) {
    return tabs()[static_cast<size_t>(which)];
}

SettingsPageModel page(SettingsTab which, const StageStore& store) {
    switch (which) {
    case SettingsTab::stage:
        return stage(store);
    case SettingsTab::cues:
        return cues(store);
    case SettingsTab::backdrop:
        return backdrop(store);
    case SettingsTab::menuBar:
        return menuBar(store);
    case SettingsTab::switches:
        return switches(store);
    case SettingsTab::quiet:
        return quiet(store);
    case SettingsTab::runSheets:
        break;
    }
    SettingsPageModel out;
    out.tab = SettingsTab::runSheets;
    out.title = "Run sheets";
    return out;
}

std::string appName(const StageStore& store, const std::string& bundleID) {
    for (const AppInfo& app : store.system().runningApps()) {
        if (app.bundleID == bundleID && !app.name.empty()) {
            return app.name;
        }
    }
    if (auto known = KnownApps::name(bundleID)) {
        return *known;
    }
    return bundleID;
}

} // namespace SettingsPages

namespace SettingsParts {

void markLastRows(SettingsSection& section) {
    for (auto it = section.items.rbegin(); it != section.items.rend(); ++it) {
        if (auto* row = std::get_if<SettingRow>(&*it)) {
            row->last = true;
            return;
        }
        if (auto* row = std::get_if<SwitchSettingsRow>(&*it)) {
            row->last = true;
            return;
        }
    }
}

SettingsField<bool> planFlag(const char* name, bool StagePlan::*member) {
    return {std::string("plan.") + name,
            [member](const StageSettings& settings) { return settings.plan.*member; },
            [member](StageSettings& settings, const bool& on) { settings.plan.*member = on; }};
}

SettingsField<bool> flag(const char* name, bool StageSettings::*member) {
    return {name, [member](const StageSettings& settings) { return settings.*member; },
            [member](StageSettings& settings, const bool& on) { settings.*member = on; }};
}

SettingsField<bool> detectionFlag(const char* name, bool DetectionOptions::*member) {
    return {std::string("detection.") + name,
            [member](const StageSettings& settings) { return settings.detection.*member; },
            [member](StageSettings& settings, const bool& on) { settings.detection.*member = on; }};
}

ToggleControl toggle(const SettingsField<bool>& field, const StageSettings& settings,
                     std::string label) {
    ToggleControl out;
    out.on = field.read(settings);
    out.label = std::move(label);
    out.field = field.name;
    out.set = [field](StageStore& store, bool on) { field.assign(store, on); };
    return out;
}

SettingRow row(std::string title, std::optional<std::string> detail,
               std::optional<std::string> symbol, RowControl control) {
    SettingRow out;
    out.title = std::move(title);
    out.detail = std::move(detail);
    out.symbol = std::move(symbol);
    out.control = std::move(control);
    return out;
}

SliderControl slider(const SettingsField<double>& field, const StageSettings& settings,
                     double minimum, double maximum, std::string label) {
    SliderControl out;
    out.value = std::clamp(field.read(settings), minimum, maximum);
    out.minimum = minimum;
    out.maximum = maximum;
    out.label = std::move(label);
    out.field = field.name;
    out.set = [field, minimum, maximum](StageStore& store, double value) {
        field.assign(store, std::clamp(value, minimum, maximum));
    };
    return out;
}

MenuControl minutesMenu(const SettingsField<std::optional<std::int64_t>>& field,
                        const StageSettings& settings, const std::string& noneTitle,
                        std::vector<std::int64_t> values,
                        const std::function<std::string(std::int64_t)>& titleOf,
                        std::string label) {
    const auto current = field.read(settings);
    // A value the menu doesn't offer (written by hand, or by an older version) still shows,
    // in its place among the others, rather than being silently replaced.
    if (current && std::find(values.begin(), values.end(), *current) == values.end() &&
        *current > 0) {
        values.insert(std::upper_bound(values.begin(), values.end(), *current), *current);
    }
    MenuControl out;
    out.label = std::move(label);
    out.field = field.name;
    MenuGroup group;
    const auto choose = [field](std::optional<std::int64_t> value) {
        return [field, value](StageStore& store) { field.assign(store, value); };
    };
    group.choices.push_back({noneTitle, std::nullopt, true, choose(std::nullopt)});
    out.selected = 0;
    for (const std::int64_t value : values) {
        if (current == value) {
            out.selected = group.choices.size();
        }
        group.choices.push_back({titleOf(value), std::nullopt, true, choose(value)});
    }
    out.groups.push_back(std::move(group));
    return out;
}

ButtonControl button(std::string title, UiAction action) {
    ButtonControl out;
    out.button.title = std::move(title);
    out.button.style = ButtonModel::Style::quiet;
    out.button.compact = true;
    out.button.action = action;
    out.press = [action](StageStore& store, InterfaceHost& host) { perform(action, store, host); };
    return out;
}

ButtonControl editButton(std::string title, std::function<void(StageStore&)> edit) {
    ButtonControl out;
    out.button.title = std::move(title);
    out.button.style = ButtonModel::Style::quiet;
    out.button.compact = true;
    out.press = [edit = std::move(edit)](StageStore& store, InterfaceHost&) { edit(store); };
    return out;
}

TextBlock paragraphs(std::vector<std::string> texts, AdaptiveColor color) {
    TextBlock out;
    for (auto& text : texts) {
        out.lines.push_back({std::move(text), Theme::Typo::small, color});
    }
    return out;
}

std::vector<AppInfo> otherRunningApps(const StageStore& store,
                                      const std::vector<std::string>& listed) {
    std::vector<AppInfo> out;
    for (const AppInfo& app : store.system().runningApps()) {
        const bool inList = std::find(listed.begin(), listed.end(), app.bundleID) != listed.end();
        const bool seen = std::any_of(out.begin(), out.end(), [&](const AppInfo& other) {
            return other.bundleID == app.bundleID;
        });
        if (app.isRegular && !app.bundleID.empty() && !inList && !seen &&
            app.bundleID != KnownApps::scrimlet) {
            out.push_back(app);
        }
    }
    std::stable_sort(out.begin(), out.end(), [](const AppInfo& a, const AppInfo& b) {
        return CueSheet::plainNameOrder(a.name, b.name) < 0;
    });
    return out;
}

SettingsField<std::vector<std::string>> keepVisibleField() {
    return {"keepVisible", [](const StageSettings& settings) { return settings.keepVisible; },
            [](StageSettings& settings, const std::vector<std::string>& list) {
                settings.keepVisible = list;
            }};
}

SettingsField<std::vector<std::string>> startWhenOpenField() {
    return {"detection.startWhenOpen",
            [](const StageSettings& settings) { return settings.detection.startWhenOpen; },
            [](StageSettings& settings, const std::vector<std::string>& list) {
                settings.detection.startWhenOpen = list;
            }};
}

std::function<void(StageStore&)> addTo(const SettingsField<std::vector<std::string>>& field,
                                       std::string bundleID) {
    return [field, bundleID](StageStore& store) {
        auto list = field.read(store.settings());
        if (std::find(list.begin(), list.end(), bundleID) == list.end()) {
            list.push_back(bundleID);
            field.assign(store, list);
        }
    };
}

std::function<void(StageStore&)> removeFrom(const SettingsField<std::vector<std::string>>& field,
                                            std::string bundleID) {
    return [field, bundleID](StageStore& store) {
        auto list = field.read(store.settings());
        list.erase(std::remove(list.begin(), list.end(), bundleID), list.end());
        field.assign(store, list);
    };
}

} // namespace SettingsParts

} // namespace scrimlet

namespace scrimlet::SettingsPages {

namespace {

std::string number(double value) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%.4f", value);
    return buffer;
}

void describeTag(std::string& out, const std::optional<TagModel>& tag) {
    if (tag) {
        out += "[tag " + tag->text + "]";
    }
}

void describeMenu(std::string& out, const MenuControl& menu) {
    out += "menu " + menu.title + "|" + menu.label + "|" + menu.emptyText.value_or("") + "|";
    for (const MenuGroup& group : menu.groups) {
        out += "(" + group.title.value_or("") + ":";
        for (const MenuChoice& choice : group.choices) {
            out += choice.title + (choice.enabled ? "," : "-,");
        }
        out += ")";
    }
    out += menu.selected ? std::to_string(*menu.selected) : "-";
}

void describeToggle(std::string& out, const ToggleControl& toggle) {
    out += "toggle " + toggle.field + (toggle.on ? " on" : " off") +
           (toggle.enabled ? "" : " disabled") + "|" + toggle.label;
}

void describeHotkey(std::string& out, const HotkeyControl& hotkey) {
    out += "hotkey " + hotkey.field + " " + (hotkey.hotkey ? hotkey.hotkey->display() : "-");
}

void describeControl(std::string& out, const RowControl& control) {
    std::visit(
        [&out](const auto& c) {
            using C = std::decay_t<decltype(c)>;
            if constexpr (std::is_same_v<C, ToggleControl>) {
                describeToggle(out, c);
            } else if constexpr (std::is_same_v<C, MenuControl>) {
                describeMenu(out, c);
            } else if constexpr (std::is_same_v<C, SliderControl>) {
                out += "slider " + c.field + " " + number(c.value) + " " + number(c.minimum) + " " +
                       number(c.maximum);
            } else if constexpr (std::is_same_v<C, HotkeyControl>) {
                describeHotkey(out, c);
            } else if constexpr (std::is_same_v<C, TextFieldControl>) {
                out += "text " + c.field + " " + c.value;
            } else if constexpr (std::is_same_v<C, ButtonControl>) {
                out += "button " + c.button.title + "|" + c.button.symbol.value_or("") + "|" +
                       c.button.accessibilityLabel;
            } else if constexpr (std::is_same_v<C, ColorWellControl>) {
                out += "colour " + c.field + " " + std::to_string(c.color);
            } else if constexpr (std::is_same_v<C, StateMarkControl>) {
                out += c.ready ? "ready" : "not ready";
                describeTag(out, c.tag);
            } else {
                out += "none";
            }
        },
        control);
}

void describeItem(std::string& out, const SectionItem& item) {
    std::visit(
        [&out](const auto& i) {
            using I = std::decay_t<decltype(i)>;
            if constexpr (std::is_same_v<I, SettingRow>) {
                out += "row " + i.title + "|" + i.detail.value_or("") + "|" +
                       i.symbol.value_or("") + "|";
                describeControl(out, i.control);
            } else if constexpr (std::is_same_v<I, SwitchSettingsRow>) {
                out += "switch " + i.title + "|";
                if (i.autoOff) {
                    describeMenu(out, *i.autoOff);
                }
                describeHotkey(out, i.hotkey);
                describeToggle(out, i.pin);
            } else if constexpr (std::is_same_v<I, ColumnHeader>) {
                for (const auto& column : i.columns) {
                    out += column + ",";
                }
            } else if constexpr (std::is_same_v<I, TextBlock>) {
                for (const auto& line : i.lines) {
                    out += line.text + "|";
                }
            } else if constexpr (std::is_same_v<I, StepsBlock>) {
                for (const auto& step : i.steps) {
                    out += step + "|";
                }
            } else if constexpr (std::is_same_v<I, StatusBlock>) {
                out += "status " + i.title + "|" + i.detail;
            } else if constexpr (std::is_same_v<I, ButtonsBlock>) {
                for (const auto& button : i.buttons) {
                    out += button.button.title + "|";
                }
            } else if constexpr (std::is_same_v<I, MenuBarDiagramModel>) {
                out += "diagram";
            } else {
                for (const auto& swatch : i.swatches) {
                    out += swatch.name + (swatch.chosen ? "*" : "") + ",";
                }
            }
        },
        item);
    out += "\n";
}

} // namespace

std::string describe(const SettingsPageModel& page) {
    std::string out = page.title + "\n" + page.subtitle.value_or("") + "\n";
    for (const PageBlock& block : page.blocks) {
        std::visit(
            [&out](const auto& b) {
                using B = std::decay_t<decltype(b)>;
                if constexpr (std::is_same_v<B, SettingsSection>) {
                    out += "section " + b.title + "|" + b.lead.value_or("") + "|" +
                           b.footer.value_or("") + "\n";
                    for (const SectionItem& item : b.items) {
                        describeItem(out, item);
                    }
                } else if constexpr (std::is_same_v<B, BannerModel>) {
                    out += "banner " + b.text + "\n";
                } else if constexpr (std::is_same_v<B, BackdropPreviewBlock>) {
                    out += "preview " + b.accessibilityLabel + " " + number(b.style.angle) + " " +
                           number(b.style.blur) + " " + number(b.style.dim);
                    for (const auto color : b.style.colors) {
                        out += " " + std::to_string(color);
                    }
                    out += "\n";
                } else {
                    out += "kinds " + std::to_string(b.selected) + "\n";
                }
            },
            block);
    }
    return out;
}

} // namespace scrimlet::SettingsPages
