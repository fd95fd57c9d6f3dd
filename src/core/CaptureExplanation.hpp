#pragma once

// Why the capture rules said what they said about one snapshot: each rule in its order,
// whether it matched and, when it did not, the window that came nearest and the limits it
// missed, in words. It is what a user reads when Scrimlet did not notice a share, and what a
// saved window list replayed elsewhere is judged by. A separate walk from
// `CaptureRules::evaluate`, which stays as lean as it is; both read `CaptureLimits`.

#include "CaptureModel.hpp"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

/// The capture rules, in the order in which they decide.
enum class CaptureRule { systemRecording, callShare, browserShare, takeloom, startWhenOpen, call };

inline constexpr CaptureRule allCaptureRules[] = {
    CaptureRule::systemRecording, CaptureRule::callShare,     CaptureRule::browserShare,
    CaptureRule::takeloom,        CaptureRule::startWhenOpen, CaptureRule::call,
};

/// "systemRecording", "callShare", ...
std::string_view rawValue(CaptureRule rule);
/// The rule as the Cues settings page names its switch: "Calls sharing a screen", ...
std::string_view title(CaptureRule rule);

/// One limit that was not met. `limit` is a short stable key for tools ("layer", "width",
/// "coverHeight", "barWidth", ...); `text` says what was found and what the rule wants.
struct RuleMiss {
    std::string limit;
    std::string text;

    friend bool operator==(const RuleMiss&, const RuleMiss&) = default;
};

/// What one rule made of the snapshot.
struct RuleFinding {
    CaptureRule rule = CaptureRule::systemRecording;
    /// The user's options let the rule take part; a rule that is off is still judged, so
    /// that the explanation can say it would have matched.
    bool enabled = true;
    /// The rule's test holds for this snapshot, whether or not it is enabled.
    bool matched = false;
    /// What the rule gives when it matches.
    std::optional<CaptureSource> source;
    /// Position in `snapshot.windows` of the window that matched, or of the nearest miss.
    std::optional<std::size_t> window;
    /// The display that window was measured against.
    std::optional<std::uint32_t> display;
    /// The limits of the nearest miss, most basic first; empty when the rule matched.
    std::vector<RuleMiss> misses;
    /// The finding in one line: "zoom.us window at layer 0, rule wants 1 to 999".
    std::string text;

    friend bool operator==(const RuleFinding&, const RuleFinding&) = default;
};

struct CaptureExplanation {
    /// Always what `CaptureRules::evaluate` answers for the same snapshot and options.
    std::optional<CaptureSource> verdict;
    /// The rule that gave the verdict.
    std::optional<CaptureRule> decidedBy;
    /// Every rule, in its order.
    std::vector<RuleFinding> rules;

    friend bool operator==(const CaptureExplanation&, const CaptureExplanation&) = default;
};

namespace CaptureRules {

/// Judges every rule on its own and says why each matched or not.
CaptureExplanation explain(const CaptureSnapshot& snapshot, const DetectionOptions& options);

/// Why no rule looks at `window` at all: owned by this program, invisible or a sliver.
/// Empty for a window the rules do look at.
std::vector<RuleMiss> ignoredBecause(const WindowInfo& window, std::int32_t selfPID);

} // namespace CaptureRules

nlohmann::ordered_json toJson(const RuleFinding& finding);
nlohmann::ordered_json toJson(const CaptureExplanation& explanation);

} // namespace scrimlet
