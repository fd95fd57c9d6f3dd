#include "Dropdown.hpp"

#include "CueSheet.hpp"
#include "Fmt.hpp"

#include <algorithm>
#include <cstdio>

namespace scrimlet::Dropdown {

namespace {

// The header's own type: the kicker's condensed cut, larger and heavier, for a sign over a
// stage; and figures that do not jitter as the seconds change.
constexpr Font signFont = Font{20, FontWeight::heavy, FontWidth::condensed}.tracked(3);
constexpr Font captionFont = Font{11, FontWeight::heavy, FontWidth::condensed}.tracked(2.4);
constexpr Font countdownFont = Font::system(46, FontWeight::heavy).withMonospacedDigits();
constexpr Font clockFont = Font::system(30, FontWeight::semibold).withMonospacedDigits();
constexpr Font hotkeyFont = {11.5, FontWeight::medium, FontWidth::standard, FontDesign::monospaced};

std::string count(long long n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

std::string integer(long long n) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%lld", n);
    return buffer;
}

std::string joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string out;
    for (const auto& part : parts) {
        if (!out.empty()) {
            out += separator;
        }
        out += part;
    }
    return out;
}

HeaderLine line(StyledText text, std::optional<Glow> glow = std::nullopt) {
    return HeaderLine{std::move(text), std::nullopt, std::move(glow)};
}

/// The note of an effect that can't run here; nothing when it can, or when it has not been
/// asked yet.
std::optional<std::string> unavailableNote(const std::map<EffectKind, Availability>& availability,
                                           EffectKind kind) {
    const auto found = availability.find(kind);
    if (found == availability.end()) {
        return std::nullopt;
    }
    return found->second.note();
}

std::optional<std::string> boardNote(const StageStore& store, SwitchKind kind) {
    const auto& notes = store.board().notes();
    const auto found = notes.find(kind);
    if (found == notes.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::optional<std::string> effectNote(const StageStore& store, SwitchKind kind) {
    const auto effect = CueSheet::kind(kind);
    if (!effect) {
        return std::nullopt;
    }
    return unavailableNote(store.availability(), *effect);
}

int restoredCount(const RunSheet& sheet) {
    const auto restored = [](const CueRecord& record) {
        return record.outcome.kind() == CueOutcome::Case::restored;
    };
    return static_cast<int>(std::count_if(sheet.cues.begin(), sheet.cues.end(), restored) +
                            std::count_if(sheet.strike.begin(), sheet.strike.end(), restored));
}

bool isLowerCaseMatch(const std::string& lower, std::initializer_list<const char*> words) {
    return std::any_of(words.begin(), words.end(),
                       [&](const char* word) { return lower.find(word) != std::string::npos; });
}

/// How many characters (not bytes) a UTF-8 text has, and where the n-th one starts.
size_t characterCount(std::string_view text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

size_t byteOffset(std::string_view text, size_t characters) {
    size_t seen = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
            if (seen == characters) {
                return i;
            }
            ++seen;
        }
    }
    return text.size();
}

/// Fills in how a row shows: its number, badge and note.
void dress(CueRowModel& row, long long number,
           const std::map<EffectKind, Availability>& availability) {
    row.number = cueNumber(number, row.on);
    if (row.outcome) {
        row.badge = outcomeBadge(*row.outcome);
    }
    row.note = unavailableNote(availability, row.kind);
    if (row.note) {
        row.shortNote = StyledText{shortNote(*row.note), Theme::Typo::small, Theme::velvet};
        row.noteAction = UiAction::openSettings(setupTab(row.kind));
    }
    row.accessibilityLabel = row.title;
    if (row.detail) {
        row.accessibilityLabel += ", " + *row.detail;
    }
    if (row.outcome) {
        row.accessibilityLabel += ", " + row.outcome->label();
    }
    if (row.note) {
        row.accessibilityLabel += ", " + *row.note;
    }
}

std::vector<CueRowModel> planRows(const StageStore& store, bool editable) {
    std::vector<CueRowModel> rows;
    const auto& resolution = store.settings().plan.resolution;
    for (const auto& planned : store.plannedCues()) {
        if (!editable && !planned.on) {
            continue;
        }
        CueRowModel row;
        row.id = std::string(rawValue(planned.kind));
        row.kind = planned.kind;
        row.title = planned.title;
        row.on = planned.on;
        if (planned.kind == EffectKind::displayMode) {
            row.title = "Recording resolution";
            if (resolution) {
                row.detail = resolution->label();
            }
            if (editable) {
                row.remove = IconButtonModel{"xmark.circle.fill", "Remove recording resolution",
                                             UiAction::of(UiAction::Kind::removeResolution)};
            }
        }
        if (editable) {
            row.toggle = UiAction::togglePlan(planned.kind);
        }
        dress(row, static_cast<long long>(rows.size()) + 1, store.availability());
        rows.push_back(std::move(row));
    }
    return rows;
}

TagModel onTag(int n) {
    return {std::to_string(n) + " on", std::nullopt, Theme::light, Theme::lightSoft, std::nullopt};
}

} // namespace

DropdownModel model(const StageStore& store) {
    DropdownModel out;
    out.route = store.route;
    if (store.route == PopoverRoute::switches) {
        out.allSwitches = allSwitches(store);
    } else {
        out.home = home(store);
    }
    return out;
}

HomeModel home(const StageStore& store) {
    return {header(store),  actionRow(store),  notes(store),
            cueList(store), switchGrid(store), footer()};
}

StageHeaderModel header(const StageStore& store) {
    StageHeaderModel out;
    const auto white = [](double opacity) { return fixed(Color::white(opacity)); };
    switch (store.phase().kind()) {
    case ShowPhase::Case::dark: {
        out.face = StageHeaderModel::Face::offCurtain;
        out.lines.push_back(line({"HOUSE OPEN", signFont, fixed(Theme::lightGlow.opacity(0.92))}));
        HeaderLine below = line({"", Theme::Typo::small, white(0.72)});
        if (const auto& source = store.detecting()) {
            below.symbol = "exclamationmark.triangle";
            below.text.text = source->name + " is starting to share…";
        } else if (store.settings().autoStart) {
            below.text.text = "Waiting in the wings for a share or recording";
        } else {
            below.text.text = "Automatic start is off";
        }
        out.lines.push_back(std::move(below));
        out.accessibilityText = "House open. Nothing is being shared.";
        break;
    }
    case ShowPhase::Case::standby: {
        out.face = StageHeaderModel::Face::onStage;
        out.open = 1;
        out.lit = 0.5;
        const long long seconds = store.countdown().value_or(0);
        out.lines.push_back(line({integer(seconds), countdownFont, fixed(Theme::lightGlow)},
                                 Glow{fixed(Theme::lightFill.opacity(0.8)), 14}));
        out.lines.push_back(line({"STANDBY", captionFont, fixed(Theme::lightGlow.opacity(0.75))}));
        out.accessibilityText = "Standby, " + integer(seconds);
        break;
    }
    case ShowPhase::Case::live: {
        out.face = StageHeaderModel::Face::onStage;
        out.open = 1;
        out.lit = 1;
        const double elapsed = store.show().elapsed().value_or(0);
        out.lines.push_back(line({"ON STAGE", captionFont, white(0.9)}));
        out.lines.push_back(line({Fmt::clock(elapsed), clockFont, white(1)}));
        out.accessibilityText = "On stage for " + Fmt::duration(elapsed) + ".";
        if (const auto& source = store.show().source()) {
            out.lines.push_back(line({source->sentence(), Theme::Typo::small, white(0.62)}));
            out.accessibilityText += " " + source->sentence();
        }
        break;
    }
    }
    return out;
}

ActionRowModel actionRow(const StageStore& store) {
    ActionRowModel out;
    const auto smallNote = [](std::string text) {
        return StyledText{std::move(text), Theme::Typo::small, Theme::ink3};
    };
    switch (store.phase().kind()) {
    case ShowPhase::Case::dark: {
        ButtonModel raise;
        raise.title = "Raise the Curtain";
        raise.symbol = "theatermasks.fill";
        if (const auto& hotkey = store.settings().stageHotkey) {
            raise.trailing = hotkey->display();
        }
        raise.style = ButtonModel::Style::primary;
        raise.fullWidth = true;
        raise.fill = fixed(Theme::lightFill);
        raise.ink = fixed(Theme::onLight);
        raise.key = ButtonModel::Key::defaultAction;
        raise.action = UiAction::of(UiAction::Kind::startShow);
        out.buttons.push_back(std::move(raise));
        out.note = smallNote(store.settings().autoStart
                                 ? "Starts by itself when an app shares or records your screen. "
                                   "Or ⌥-click the icon."
                                 : "Automatic start is off. ⌥-click the icon or use the hotkey.");
        break;
    }
    case ShowPhase::Case::standby: {
        ButtonModel cancel;
        cancel.title = "Cancel";
        cancel.style = ButtonModel::Style::quiet;
        cancel.fullWidth = true;
        cancel.ink = Theme::ink;
        cancel.key = ButtonModel::Key::cancel;
        cancel.action = UiAction::of(UiAction::Kind::stopShow);
        out.buttons.push_back(std::move(cancel));
        break;
    }
    case ShowPhase::Case::live: {
        ButtonModel down;
        down.title = "Bring It Down";
        down.symbol = "arrow.down.to.line";
        down.style = ButtonModel::Style::primary;
        down.fullWidth = true;
        down.fill = fixed(Theme::velvetMid);
        down.ink = fixed(Color::white());
        down.action = UiAction::of(UiAction::Kind::stopShow);
        out.buttons.push_back(std::move(down));
        ButtonModel more;
        more.title = "+15 min";
        more.style = ButtonModel::Style::quiet;
        more.ink = Theme::ink;
        more.accessibilityLabel = "Add 15 minutes to the time limit";
        more.action = UiAction::of(UiAction::Kind::extendShow);
        out.buttons.push_back(std::move(more));
        out.note = smallNote(liveNote(store));
        break;
    }
    }
    for (auto& button : out.buttons) {
        if (button.trailing) {
            button.font = hotkeyFont;
        }
    }
    return out;
}

std::string liveNote(const StageStore& store) {
    const Show& show = store.show();
    const auto remaining = show.remaining();
    const bool hasSource = show.source().has_value();
    std::vector<std::string> parts;
    if (remaining) {
        parts.push_back("Ends in " + Fmt::clock(*remaining));
    }
    if (!show.manual() && hasSource) {
        parts.push_back("Ends when sharing stops");
    }
    if ((show.manual() || !hasSource) && !remaining) {
        parts.push_back("On until you bring it down");
    }
    auto kept = store.keptAppNames();
    if (!kept.empty()) {
        kept.resize(std::min<size_t>(kept.size(), 3));
        parts.push_back("Kept: " + joined(kept, ", "));
    }
    return joined(parts, " · ");
}

std::optional<BannerModel> notes(const StageStore& store) {
    if (store.recovered) {
        return BannerModel{"arrow.uturn.backward.circle",
                           recoveredText(*store.recovered),
                           Theme::light,
                           Theme::lightSoft,
                           "Run sheet",
                           UiAction::openSettings(SettingsTab::runSheets),
                           UiAction::of(UiAction::Kind::dismissRecovered)};
    }
    if (store.justEnded && store.phase().kind() == ShowPhase::Case::dark) {
        const RunSheet& sheet = *store.justEnded;
        BannerModel banner{"checkmark.circle",
                           endedText(sheet),
                           Theme::sage,
                           faded(Theme::sage, 0.12),
                           std::nullopt,
                           UiAction::none(),
                           UiAction::of(UiAction::Kind::dismissEnded)};
        if (sheet.leftAlone() > 0 || sheet.problems() > 0) {
            banner.actionTitle = "Details";
            banner.action = UiAction::openSettings(SettingsTab::runSheets);
        }
        return banner;
    }
    if (const auto& problem = store.hotkeyProblem()) {
        return BannerModel{
            "keyboard", *problem + " Pick another in Settings.",   Theme::velvet, Theme::velvetSoft,
            "Settings", UiAction::openSettings(SettingsTab::cues), std::nullopt};
    }
    return std::nullopt;
}

std::string recoveredText(const RunSheet& sheet) {
    std::string out = "Scrimlet quit during a show. At launch it put back " +
                      count(restoredCount(sheet), "thing", "things");
    if (const int mine = sheet.leftAlone(); mine > 0) {
        out += " and left " + std::to_string(mine) + " you'd changed yourself";
    }
    return out + ".";
}

std::string endedText(const RunSheet& sheet) {
    std::string out =
        "Curtain down · " + count(restoredCount(sheet), "change", "changes") + " put back";
    if (const int mine = sheet.leftAlone(); mine > 0) {
        out += ", " + std::to_string(mine) + " left as you set " + (mine == 1 ? "it" : "them");
    }
    if (const int problems = sheet.problems(); problems >= 1) {
        out += ", " + std::to_string(problems) + " couldn't be";
    }
    return out + ".";
}

std::string shortNote(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    if (isLowerCaseMatch(lower, {"shortcut", "divider", "set up"})) {
        return "Needs setup";
    }
    if (isLowerCaseMatch(lower, {"automation", "accessibility", "allow", "permission"})) {
        return "Needs permission";
    }
    if (isLowerCaseMatch(lower, {"microphone"})) {
        return "No microphone";
    }
    if (characterCount(text) < 23) {
        return std::string(text);
    }
    return std::string(text.substr(0, byteOffset(text, 21))) + "…";
}

SettingsTab setupTab(EffectKind kind) {
    switch (kind) {
    case EffectKind::menuBarTidy:
        return SettingsTab::menuBar;
    case EffectKind::doNotDisturb:
        return SettingsTab::quiet;
    default:
        return SettingsTab::switches;
    }
}

std::vector<CueRowModel> sheetRows(const std::vector<CueRecord>& cues,
                                   const std::map<EffectKind, Availability>& availability) {
    std::vector<CueRowModel> rows;
    std::vector<const CueRecord*> hidden;
    for (const CueRecord& record : cues) {
        if (record.key.kind == EffectKind::appHidden) {
            hidden.push_back(&record);
        }
    }
    std::map<std::string, int> seen;
    bool appsListed = false;
    for (const CueRecord& record : cues) {
        CueRowModel row;
        row.kind = record.key.kind;
        if (row.kind == EffectKind::appHidden) {
            if (appsListed) {
                continue;
            }
            appsListed = true;
            const auto n = static_cast<long long>(hidden.size());
            row.id = std::string(rawValue(row.kind));
            row.title = "Hide " + count(n, "app", "apps");
            std::vector<std::string> names;
            for (size_t i = 0; i < hidden.size() && i < 3; ++i) {
                const auto target = AppTarget::parse(hidden[i]->key.target);
                names.push_back(target ? target->name : hidden[i]->title);
            }
            std::string detail = joined(names, ", ");
            if (n > 3) {
                detail += " +" + std::to_string(n - 3) + " more";
            }
            row.detail = detail;
            const auto took = std::find_if(hidden.begin(), hidden.end(), [](const CueRecord* r) {
                const auto c = r->outcome.kind();
                return c == CueOutcome::Case::applied || c == CueOutcome::Case::joined;
            });
            row.outcome = (took != hidden.end() ? *took : hidden.front())->outcome;
        } else {
            row.id = std::string(rawValue(row.kind));
            if (!record.key.target.empty()) {
                row.id += "." + record.key.target;
            }
            // A change noticed during the show repeats its cue's key; the row stays apart.
            if (const int earlier = seen[row.id]++; earlier > 0) {
                row.id += "#" + std::to_string(earlier + 1);
            }
            row.title = record.title;
            row.outcome = record.outcome;
        }
        row.on = !row.outcome->isProblem();
        dress(row, static_cast<long long>(rows.size()) + 1, availability);
        rows.push_back(std::move(row));
    }
    return rows;
}

CueListModel cueList(const StageStore& store) {
    CueListModel out;
    switch (store.phase().kind()) {
    case ShowPhase::Case::dark:
        out.rows = planRows(store, true);
        out.headerNote = "Click a cue to change the plan";
        break;
    case ShowPhase::Case::standby:
        // Nothing has changed yet and the show has no sheet: the plan is what comes.
        out.rows = planRows(store, false);
        out.headerNote = "Up next";
        break;
    case ShowPhase::Case::live: {
        const auto& current = store.show().current();
        if (current) {
            out.rows = sheetRows(current->cues, store.availability());
            if (const int problems = current->problems(); problems > 0) {
                out.headerNote = count(problems, "problem", "problems");
            }
        }
        break;
    }
    }
    return out;
}

SwitchGridModel switchGrid(const StageStore& store) {
    SwitchGridModel out;
    const SwitchBoard& board = store.board();
    if (const int n = board.onCount(); n > 0) {
        out.onTag = onTag(n);
    }
    out.showAll.title = "Show all";
    out.showAll.style = ButtonModel::Style::plain;
    out.showAll.font = Theme::Typo::small;
    out.showAll.ink = Theme::light;
    out.showAll.action = UiAction::goTo(PopoverRoute::switches);
    for (const SwitchKind kind : store.settings().pinnedSwitches()) {
        SwitchTileModel tile;
        tile.kind = kind;
        tile.symbol = std::string(symbol(kind));
        tile.title = std::string(title(kind));
        tile.on = board.isOn(kind);
        tile.subtitle = subtitle(store, kind, tile.on);
        if (tile.on) {
            tile.fill = fixed(Theme::lightFill);
            tile.titleColor = fixed(Theme::onLight);
            tile.subtitleColor = fixed(Theme::onLight.opacity(0.7));
        } else {
            tile.border = Theme::rule;
            tile.titleColor = Theme::ink;
            tile.subtitleColor = Theme::ink3;
        }
        tile.accessibilityValue = onOff(tile.on);
        tile.action = UiAction::setSwitch(kind, tile.on ? isAction(kind) : true);
        out.tiles.push_back(std::move(tile));
    }
    if (out.tiles.empty()) {
        out.empty = StyledText{"No switches pinned. Pick some in Settings › Switches.",
                               Theme::Typo::small, Theme::ink3};
    }
    return out;
}

std::optional<std::string> subtitle(const StageStore& store, SwitchKind kind, bool on) {
    if (const auto remaining = store.board().remaining(kind)) {
        return "Off in " + Fmt::clock(*remaining);
    }
    if (on) {
        return std::nullopt;
    }
    if (auto note = boardNote(store, kind)) {
        return note;
    }
    return effectNote(store, kind);
}

std::string detail(const StageStore& store, SwitchKind kind) {
    if (const auto remaining = store.board().remaining(kind)) {
        return "Turns off in " + Fmt::clock(*remaining);
    }
    if (auto note = boardNote(store, kind)) {
        return *note;
    }
    if (auto note = effectNote(store, kind)) {
        return *note;
    }
    return std::string(note(kind));
}

AllSwitchesModel allSwitches(const StageStore& store) {
    AllSwitchesModel out;
    out.back = {"chevron.left", "Back", UiAction::goTo(PopoverRoute::home)};
    const SwitchBoard& board = store.board();
    if (board.onCount() > 0) {
        ButtonModel off;
        off.title = "All off";
        off.style = ButtonModel::Style::quiet;
        off.compact = true;
        off.ink = Theme::ink;
        off.action = UiAction::of(UiAction::Kind::allSwitchesOff);
        out.allOff = std::move(off);
    }
    for (const SwitchKind kind : switch_kind::allCases) {
        AllSwitchesRowModel row;
        row.kind = kind;
        row.on = board.isOn(kind);
        row.symbol = std::string(symbol(kind));
        row.symbolColor = row.on ? Theme::light : Theme::ink3;
        row.title = std::string(title(kind));
        row.detail = detail(store, kind);
        row.isAction = isAction(kind);
        row.action = UiAction::setSwitch(kind, row.on ? row.isAction : true);
        out.rows.push_back(std::move(row));
    }
    out.footnote = {"Auto-off, hotkeys and which switches are pinned: Settings › Switches.",
                    Theme::Typo::small, Theme::ink3};
    out.settings.title = "Settings";
    out.settings.style = ButtonModel::Style::plain;
    out.settings.font = Theme::Typo::small;
    out.settings.ink = Theme::light;
    out.settings.action = UiAction::openSettings(SettingsTab::switches);
    return out;
}

std::vector<IconButtonModel> footer() {
    return {
        {"list.bullet.clipboard", "Run sheets", UiAction::openSettings(SettingsTab::runSheets)},
        {"gearshape", "Settings", UiAction::openSettings(std::nullopt)},
        {"power", "Quit Scrimlet (puts everything back)", UiAction::of(UiAction::Kind::quit)},
    };
}

Glow tileHoverGlow() {
    return {fixed(Theme::lightFill.opacity(0.35)), 6};
}

} // namespace scrimlet::Dropdown
