#include "RunSheetsPage.hpp"

#include "Fmt.hpp"

#include <cstdio>

namespace scrimlet::RunSheetsPage {

namespace {

std::string cueNumberText(long long n) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "Q%lld", n);
    return buffer;
}

TagModel tag(std::string text, AdaptiveColor tint, AdaptiveColor fill) {
    return {std::move(text), std::nullopt, tint, fill, std::nullopt};
}

} // namespace

std::string summary(const RunSheet& sheet) {
    std::string out;
    const bool recovered = sheet.reason == EndReason::recovered;
    if (const auto duration = sheet.duration(); duration && !recovered) {
        out = Fmt::duration(*duration);
    }
    if (sheet.reason) {
        if (!out.empty()) {
            out += " · ";
        }
        out += std::string(label(*sheet.reason));
    }
    return out;
}

std::string symbol(const RunSheet& sheet) {
    if (sheet.reason == EndReason::recovered) {
        return "arrow.uturn.backward.circle";
    }
    if (sheet.reason == EndReason::stopped) {
        return "hand.raised";
    }
    return "theatermasks";
}

RunSheetColumn column(std::string title, const std::vector<CueRecord>& records) {
    RunSheetColumn out;
    out.title = std::move(title);
    long long n = 0;
    for (const CueRecord& record : records) {
        out.lines.push_back({cueNumberText(++n), record.title, record.outcome.label(),
                             outcomeBadge(record.outcome).tint});
    }
    return out;
}

std::optional<Uuid> toggled(const std::optional<Uuid>& open, const Uuid& clicked) {
    if (open == clicked) {
        return std::nullopt;
    }
    return clicked;
}

RunSheetsPageModel model(const StageStore& store, const std::optional<Uuid>& open,
                         const DateText& dateText) {
    RunSheetsPageModel out;
    out.title = "Run sheets";
    out.subtitle = "Every show, what it changed and what it put back. Kept on this Mac only.";
    const auto& sheets = store.show().sheets();
    if (sheets.empty()) {
        out.empty = RunSheetsEmpty{
            "list.bullet.clipboard",
            {"No shows yet", Theme::Typo::titleSmall, Theme::ink},
            {"When you share or record your screen, the show's run sheet appears here.",
             Theme::Typo::small, Theme::ink3}};
        return out;
    }
    for (const RunSheet& sheet : sheets) {
        RunSheetCard card;
        card.id = sheet.id;
        card.symbol = symbol(sheet);
        card.dateLine = dateText ? dateText(sheet.startedAt) : sheet.startedAt.iso8601();
        card.summary = summary(sheet);
        if (const int n = sheet.leftAlone(); n > 0) {
            card.leftAloneTag =
                tag(std::to_string(n) + " left alone", Theme::light, Theme::lightSoft);
        }
        if (const int n = sheet.problems(); n > 0) {
            card.problemsTag = tag(std::to_string(n) + " issue" + (n == 1 ? "" : "s"),
                                   Theme::velvet, Theme::velvetSoft);
        }
        card.open = open == sheet.id;
        card.chevronDegrees = card.open ? 90 : 0;
        if (card.open) {
            card.columns.push_back(column("Set", sheet.cues));
            card.columns.push_back(
                column(sheet.reason == EndReason::recovered ? "Put back at launch" : "Struck",
                       sheet.strike));
        }
        card.accessibilityLabel = card.dateLine;
        if (!card.summary.empty()) {
            card.accessibilityLabel += ", " + card.summary;
        }
        for (const auto& extra : {card.leftAloneTag, card.problemsTag}) {
            if (extra) {
                card.accessibilityLabel += ", " + extra->text;
            }
        }
        out.cards.push_back(std::move(card));
    }
    ButtonModel clear;
    clear.title = "Clear run sheets";
    clear.style = ButtonModel::Style::quiet;
    clear.ink = Theme::velvet;
    clear.action = UiAction::of(UiAction::Kind::clearSheets);
    out.clear = std::move(clear);
    return out;
}

} // namespace scrimlet::RunSheetsPage
