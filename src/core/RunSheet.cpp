#include "RunSheet.hpp"

#include "JsonCoding.hpp"

#include <algorithm>

namespace scrimlet {

using json::Json;

namespace {

std::vector<CueRecord> recordList(const Json& value) {
    if (!value.is_array()) {
        throw json::DecodeError("expected an array of cue records");
    }
    std::vector<CueRecord> out;
    out.reserve(value.size());
    for (const Json& item : value) {
        out.push_back(cueRecordFromJson(item));
    }
    return out;
}

Json recordList(const std::vector<CueRecord>& records) {
    Json out = Json::array();
    for (const CueRecord& record : records) {
        out.push_back(toJson(record));
    }
    return out;
}

} // namespace

RunSheet::RunSheet(Date startedAt_, std::string how_, std::optional<CaptureSource> source_)
    : id(Uuid::random())
    , startedAt(startedAt_)
    , how(std::move(how_))
    , source(std::move(source_)) {}

std::optional<double> RunSheet::duration() const {
    if (!endedAt) {
        return std::nullopt;
    }
    return *endedAt - startedAt;
}

int RunSheet::problems() const {
    const auto isProblem = [](const CueRecord& record) { return record.outcome.isProblem(); };
    return static_cast<int>(std::count_if(cues.begin(), cues.end(), isProblem) +
                            std::count_if(strike.begin(), strike.end(), isProblem));
}

int RunSheet::leftAlone() const {
    return static_cast<int>(std::count_if(strike.begin(), strike.end(), [](const CueRecord& r) {
        return r.outcome.kind() == CueOutcome::Case::leftAlone;
    }));
}

RunSheet RunSheet::demo(Date start, int minutes, std::string how,
                        std::optional<CaptureSource> source, EndReason reason, int leftAloneCount) {
    const std::vector<EffectKey> keys = {
        EffectKey(EffectKind::desktopIcons),
        EffectKey(EffectKind::appHidden, "com.apple.Safari#503#Safari"),
        EffectKey(EffectKind::appHidden, "com.apple.mail#504#Mail"),
        EffectKey(EffectKind::appHidden, "com.tinyspeck.slackmacgap#505#Slack"),
        EffectKey(EffectKind::dockAutohide),
        EffectKey(EffectKind::alertVolume),
        EffectKey(EffectKind::doNotDisturb),
        EffectKey(EffectKind::keepAwake),
    };
    RunSheet sheet(start, std::move(how), std::move(source));
    const Date end = start + minutes * 60.0;
    sheet.endedAt = end;
    sheet.reason = reason;
    for (const EffectKey& key : keys) {
        sheet.cues.emplace_back(key, CueOutcome::applied(), start);
    }
    int index = 0;
    for (auto key = keys.rbegin(); key != keys.rend(); ++key, ++index) {
        sheet.strike.emplace_back(
            *key, index < leftAloneCount ? CueOutcome::leftAlone() : CueOutcome::restored(), end);
    }
    return sheet;
}

Json toJson(const RunSheet& sheet) {
    Json out = Json::object();
    out["id"] = json::encodeUuid(sheet.id);
    out["startedAt"] = json::encodeDate(sheet.startedAt);
    if (sheet.endedAt) {
        out["endedAt"] = json::encodeDate(*sheet.endedAt);
    }
    out["how"] = sheet.how;
    if (sheet.source) {
        out["source"] = toJson(*sheet.source);
    }
    if (sheet.reason) {
        out["reason"] = std::string(rawValue(*sheet.reason));
    }
    out["cues"] = recordList(sheet.cues);
    out["strike"] = recordList(sheet.strike);
    return out;
}

RunSheet runSheetFromJson(const Json& value) {
    RunSheet sheet;
    sheet.id = json::decodeUuid(json::field(value, "id"));
    sheet.startedAt = json::decodeDate(json::field(value, "startedAt"));
    if (const Json* endedAt = json::optionalField(value, "endedAt")) {
        sheet.endedAt = json::decodeDate(*endedAt);
    }
    sheet.how = json::decodeString(json::field(value, "how"));
    if (const Json* source = json::optionalField(value, "source")) {
        sheet.source = captureSourceFromJson(*source);
    }
    if (const Json* reason = json::optionalField(value, "reason")) {
        const auto decoded = endReasonFromRaw(json::decodeString(*reason));
        if (!decoded) {
            throw json::DecodeError("unknown end reason");
        }
        sheet.reason = *decoded;
    }
    sheet.cues = recordList(json::field(value, "cues"));
    sheet.strike = recordList(json::field(value, "strike"));
    return sheet;
}

} // namespace scrimlet
