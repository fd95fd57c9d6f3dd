#pragma once

// The last page of the settings: every show the program remembers, newest first, each a
// card that opens on what it set and what it struck. The one open card is the page's own
// state. Main thread only.

#include "ViewModel.hpp"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet {

/// One line of a column: "Q3", the record's title, its outcome.
struct RunSheetLine {
    std::string number;
    std::string title;
    std::string outcome;
    AdaptiveColor outcomeColor;

    friend bool operator==(const RunSheetLine&, const RunSheetLine&) = default;
};

struct RunSheetColumn {
    std::string title;
    std::vector<RunSheetLine> lines;

    friend bool operator==(const RunSheetColumn&, const RunSheetColumn&) = default;
};

struct RunSheetCard {
    Uuid id;
    std::string symbol;
    std::string dateLine;
    std::string summary;
    std::optional<TagModel> leftAloneTag;
    std::optional<TagModel> problemsTag;
    bool open = false;
    /// The chevron turns a quarter when the card is open.
    double chevronDegrees = 0;
    /// "Set", then "Struck" or "Put back at launch"; only when open.
    std::vector<RunSheetColumn> columns;
    std::string accessibilityLabel;

    friend bool operator==(const RunSheetCard&, const RunSheetCard&) = default;
};

/// The page without sheets.
struct RunSheetsEmpty {
    std::string symbol = "list.bullet.clipboard";
    StyledText title;
    StyledText text;

    friend bool operator==(const RunSheetsEmpty&, const RunSheetsEmpty&) = default;
};

struct RunSheetsPageModel {
    std::string title;
    std::string subtitle;
    std::vector<RunSheetCard> cards;
    std::optional<RunSheetsEmpty> empty;
    /// "Clear run sheets", under the cards.
    std::optional<ButtonModel> clear;

    friend bool operator==(const RunSheetsPageModel&, const RunSheetsPageModel&) = default;
};

namespace RunSheetsPage {

/// How a date is written; the platform's, in the user's locale.
using DateText = std::function<std::string(Date)>;

RunSheetsPageModel model(const StageStore& store, const std::optional<Uuid>& open,
                         const DateText& dateText);

/// "12 min · Sharing ended"
std::string summary(const RunSheet& sheet);
std::string symbol(const RunSheet& sheet);
RunSheetColumn column(std::string title, const std::vector<CueRecord>& records);

/// The open card after a click on the header of `clicked`: that card, or none when it was
/// the open one.
std::optional<Uuid> toggled(const std::optional<Uuid>& open, const Uuid& clicked);

} // namespace RunSheetsPage

} // namespace scrimlet
