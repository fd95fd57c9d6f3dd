#pragma once

#include "CaptureModel.hpp"
#include "Date.hpp"
#include "EndReason.hpp"
#include "Journal.hpp"
#include "Uuid.hpp"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <vector>

namespace scrimlet {

/// The record of one show: how it started, what raising the curtain did and how each step
/// went, what was noticed during the show, how it ended, and what striking it did.
/// A plain value.
struct RunSheet {
    Uuid id;
    Date startedAt;
    /// Absent while the show runs.
    std::optional<Date> endedAt;
    /// How the show started, in words for the user.
    std::string how;
    /// The capture at the start of the show.
    std::optional<CaptureSource> source;
    /// Absent while the show runs.
    std::optional<EndReason> reason;
    /// The steps that raised the curtain, in order, then what was noticed during the show.
    std::vector<CueRecord> cues;
    /// What happened as the curtain fell, in the order of the undo.
    std::vector<CueRecord> strike;

    RunSheet() = default;
    /// A running show's new sheet, with a new id.
    RunSheet(Date startedAt, std::string how, std::optional<CaptureSource> source = std::nullopt);

    /// Seconds from start to end; absent while the show runs.
    std::optional<double> duration() const;
    /// The records of `cues` and `strike` that count as problems (skipped, failed, waiting).
    int problems() const;
    /// The changes the user made by hand and that were therefore not put back. Only the
    /// strike counts: the same effect noticed during the show shows up there again.
    int leftAlone() const;

    /// A finished sheet of eight everyday steps for the demo: desktop icons, three apps
    /// (Safari, Mail, Slack), Dock, alert volume, Do Not Disturb and keep awake, all done at
    /// `start`; `minutes` later all put back in reverse order, the first `leftAlone` of
    /// them left alone and the rest restored.
    static RunSheet demo(Date start, int minutes, std::string how,
                         std::optional<CaptureSource> source, EndReason reason, int leftAlone);

    friend bool operator==(const RunSheet&, const RunSheet&) = default;
};

/// Keys in field order; `endedAt`, `source` and `reason` are left out when absent.
nlohmann::ordered_json toJson(const RunSheet& sheet);
/// Strict but for the three optionals; throws `json::DecodeError`.
RunSheet runSheetFromJson(const nlohmann::ordered_json& value);

} // namespace scrimlet
