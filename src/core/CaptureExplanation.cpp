#include "CaptureExplanation.hpp"

#include "CaptureLimits.hpp"
#include "CaptureRules.hpp"
#include "JsonCoding.hpp"

#include <cmath>
#include <cstdio>
#include <functional>
#include <set>

namespace scrimlet {

using json::Json;
using namespace CaptureLimits;

namespace {

struct RuleRow {
    CaptureRule rule;
    std::string_view raw;
    std::string_view title;
};

constexpr RuleRow ruleRows[] = {
    {CaptureRule::systemRecording, "systemRecording", "macOS screen recording"},
    {CaptureRule::callShare, "callShare", "Calls sharing a screen"},
    {CaptureRule::browserShare, "browserShare", "Browsers sharing a tab or screen"},
    {CaptureRule::takeloom, "takeloom", "Takeloom"},
    {CaptureRule::startWhenOpen, "startWhenOpen", "Start when these apps are open"},
    {CaptureRule::call, "call", "Also when I'm on a call"},
};

std::string fixed(double value, int decimals) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    std::string text = buffer;
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') {
            text.pop_back();
        }
    }
    return text == "-0" ? "0" : text;
}

// A number as the reader compares it with a limit: whole when it is whole, and otherwise
// with as many decimals as it takes not to read like the limit it missed (44.004 high must
// not show as "44 high, rule wants at most 44").
std::string number(double value, std::optional<double> limit = std::nullopt) {
    if (!std::isfinite(value)) {
        return std::isnan(value) ? "not a number" : (value > 0 ? "infinite" : "minus infinite");
    }
    int decimals = 2;
    std::string text = fixed(value, decimals);
    while (limit && value != *limit && decimals < 9 && text == fixed(*limit, decimals)) {
        text = fixed(value, ++decimals);
    }
    return text;
}

std::string percent(double share, double limit) {
    return number(share * 100, limit * 100) + "%";
}

std::string size(const Rect& r) {
    return number(r.width) + "×" + number(r.height);
}

std::string place(const Rect& r) {
    return size(r) + " at " + number(r.x) + "," + number(r.y);
}

std::string who(const WindowInfo& window) {
    if (!window.ownerName.empty()) {
        return window.ownerName;
    }
    return window.bundleID.value_or("pid " + std::to_string(window.ownerPID));
}

std::string displayName(const DisplayInfo& display) {
    return "display " + std::to_string(display.id);
}

std::string namesOf(const std::set<std::string>& names) {
    std::string text;
    size_t i = 0;
    for (const auto& name : names) {
        text += (i == 0 ? "" : (i + 1 == names.size() ? " and " : ", ")) + name;
        ++i;
    }
    return text;
}

std::string joined(const std::vector<RuleMiss>& misses) {
    std::string text;
    for (const auto& miss : misses) {
        text += (text.empty() ? "" : "; ") + miss.text;
    }
    return text;
}

// The limits one window missed. Words cost far more than the judgement itself, and only the
// nearest miss is ever told, so windows are first judged without words and the one that is
// told is judged again with them.
class Misses {
public:
    explicit Misses(bool words)
        : words_(words) {}

    template <typename Words>
    void add(const char* limit, Words&& words) {
        items_.push_back(RuleMiss{limit, words_ ? words() : std::string()});
    }
    void append(const Misses& other) {
        items_.insert(items_.end(), other.items_.begin(), other.items_.end());
    }
    std::size_t size() const { return items_.size(); }
    bool empty() const { return items_.empty(); }
    bool words() const { return words_; }
    std::vector<RuleMiss> take() { return std::move(items_); }

private:
    bool words_;
    std::vector<RuleMiss> items_;
};

// One window measured against one window rule: the display it was measured on, and what it
// missed. No misses means the window satisfies the rule.
struct Attempt {
    std::optional<std::uint32_t> display;
    Misses misses;
};

using DisplayCheck = std::function<void(const Rect& bounds, const DisplayInfo& display, Misses&)>;

// "There is a display for which ...": the first display that passes, or else the overlapping
// display that misses the fewest limits. A display the window does not touch is never nearer
// than one it does.
void measureOnDisplays(const CaptureSnapshot& snapshot, const Rect& bounds, Attempt& attempt,
                       const DisplayCheck& check) {
    if (snapshot.displays.empty()) {
        attempt.misses.add("display", [] { return "on no display, as the list holds none"; });
        return;
    }
    std::optional<Misses> nearest;
    for (const DisplayInfo& display : snapshot.displays) {
        if (!display.frame.intersects(bounds)) {
            continue;
        }
        Misses misses(attempt.misses.words());
        check(bounds, display, misses);
        if (!nearest || misses.size() < nearest->size()) {
            nearest = std::move(misses);
            attempt.display = display.id;
            if (nearest->empty()) {
                break;
            }
        }
    }
    if (!nearest) {
        attempt.misses.add("display", [&] {
            return "at " + number(bounds.x) + "," + number(bounds.y) +
                   ", outside every display, rule wants it on one";
        });
        return;
    }
    attempt.misses.append(*nearest);
}

void layerRange(const WindowInfo& window, std::int64_t from, std::int64_t to, Misses& misses) {
    if (window.layer < from || window.layer > to) {
        misses.add("layer", [&] {
            return "at layer " + std::to_string(window.layer) + ", rule wants " +
                   std::to_string(from) + " to " + std::to_string(to);
        });
    }
}

// Each window rule in terms of one window. The filter's limits come first: a window that no
// rule may look at is only ever a distant miss.
void filterMisses(const WindowInfo& window, std::int32_t selfPID, Misses& misses) {
    if (window.ownerPID == selfPID) {
        misses.add("self", [&] {
            return "owned by Scrimlet itself (pid " + std::to_string(window.ownerPID) +
                   "), rule wants another process";
        });
    }
    if (!(window.alpha > minimumAlpha)) {
        misses.add("alpha", [&] {
            return "with alpha " + number(window.alpha, minimumAlpha) + ", rule wants above " +
                   number(minimumAlpha);
        });
    }
    if (!(window.bounds.width >= minimumSide && window.bounds.height >= minimumSide)) {
        misses.add("size", [&] {
            return size(window.bounds) + ", rule wants at least " + number(minimumSide) +
                   " each way";
        });
    }
}

void recordingIndicator(const WindowInfo& window, const CaptureSnapshot& snapshot,
                        Attempt& attempt) {
    auto& misses = attempt.misses;
    const Rect& bounds = window.bounds;
    layerRange(window, recordingLayerFrom, recordingLayerTo, misses);
    if (bounds.height > recordingMaxHeight) {
        misses.add("height", [&] {
            return number(bounds.height, recordingMaxHeight) + " high, rule wants at most " +
                   number(recordingMaxHeight);
        });
    }
    if (bounds.width > recordingMaxWidth) {
        misses.add("width", [&] {
            return number(bounds.width, recordingMaxWidth) + " wide, rule wants at most " +
                   number(recordingMaxWidth);
        });
    }
    measureOnDisplays(snapshot, bounds, attempt, [](const Rect& b, const DisplayInfo& d, auto& m) {
        const Rect& frame = d.frame;
        if (frame.minY() - recordingBandAbove <= b.minY() &&
            b.minY() <= frame.minY() + recordingBandBelow) {
            return;
        }
        m.add("topEdge", [&] {
            const double offset = b.minY() - frame.minY();
            return "with its top " + number(std::abs(offset)) + (offset < 0 ? " above" : " below") +
                   " the top of " + displayName(d) + ", rule wants from " +
                   number(recordingBandAbove) + " above to " + number(recordingBandBelow) +
                   " below";
        });
    });
}

void callShareFrame(const WindowInfo& window, const CaptureSnapshot& snapshot, Attempt& attempt) {
    layerRange(window, callLayerFrom, callLayerBelow - 1, attempt.misses);
    measureOnDisplays(
        snapshot, window.bounds, attempt, [](const Rect& b, const DisplayInfo& d, auto& m) {
            const Rect& frame = d.frame;
            const Rect overlap = frame.intersection(b).value_or(Rect{});
            if (!(overlap.width >= callShareOfWidth * frame.width)) {
                m.add("coverWidth", [&] {
                    return "covering " + percent(overlap.width / frame.width, callShareOfWidth) +
                           " of the width of " + displayName(d) + ", rule wants at least " +
                           number(callShareOfWidth * 100) + "%";
                });
            }
            if (!(overlap.height >= callShareOfHeight * frame.height)) {
                m.add("coverHeight", [&] {
                    return "covering " + percent(overlap.height / frame.height, callShareOfHeight) +
                           " of the height of " + displayName(d) + ", rule wants at least " +
                           number(callShareOfHeight * 100) + "%";
                });
            }
        });
}

void browserSharingBar(const WindowInfo& window, const CaptureSnapshot& snapshot,
                       Attempt& attempt) {
    auto& misses = attempt.misses;
    const Rect& bounds = window.bounds;
    layerRange(window, browserLayerFrom, browserLayerBelow - 1, misses);
    if (!(bounds.height >= browserMinHeight && bounds.height <= browserMaxHeight)) {
        misses.add("height", [&] {
            const double limit =
                bounds.height < browserMinHeight ? browserMinHeight : browserMaxHeight;
            return number(bounds.height, limit) + " high, rule wants " + number(browserMinHeight) +
                   " to " + number(browserMaxHeight);
        });
    }
    if (!(bounds.width >= browserMinWidth && bounds.width <= browserMaxWidth)) {
        misses.add("width", [&] {
            const double limit = bounds.width < browserMinWidth ? browserMinWidth : browserMaxWidth;
            return number(bounds.width, limit) + " wide, rule wants " + number(browserMinWidth) +
                   " to " + number(browserMaxWidth);
        });
    }
    if (!(bounds.width / bounds.height >= browserMinRatio)) {
        misses.add("ratio", [&] {
            return "as wide as " + number(bounds.width / bounds.height, browserMinRatio) +
                   " times its height, rule wants at least " + number(browserMinRatio);
        });
    }
    measureOnDisplays(snapshot, bounds, attempt, [](const Rect& b, const DisplayInfo& d, auto& m) {
        const Rect& frame = d.frame;
        if (!(b.maxY() >= frame.maxY() - browserBottomBand ||
              b.minY() <= frame.minY() + browserTopBand)) {
            m.add("edge", [&] {
                return "with its bottom " + number(frame.maxY() - b.maxY(), browserBottomBand) +
                       " above the bottom of " + displayName(d) + " and its top " +
                       number(b.minY() - frame.minY(), browserTopBand) +
                       " below the top, rule wants the bottom within " + number(browserBottomBand) +
                       " or the top within " + number(browserTopBand);
            });
        }
        const double offset = std::abs(b.midX() - frame.midX());
        const double most = browserMaxCentreOffset * frame.width;
        if (!(offset <= most)) {
            m.add("centre", [&] {
                return "with its middle " + number(offset, most) + " from the middle of " +
                       displayName(d) + ", rule wants at most " + number(most) + " (" +
                       number(browserMaxCentreOffset * 100) + "% of its width)";
            });
        }
    });
}

void takeloomWindow(const WindowInfo& window, const CaptureSnapshot&, Attempt& attempt) {
    const Rect& bounds = window.bounds;
    const bool words = attempt.misses.words();
    // Two shapes count; the nearer one is the one worth telling about.
    Misses bar(words);
    if (window.layer != takeloomBarLayer) {
        bar.add("barLayer", [&] {
            return "at layer " + std::to_string(window.layer) + ", capture bar wants " +
                   std::to_string(takeloomBarLayer);
        });
    }
    if (!(bounds.width >= takeloomBarMinWidth)) {
        bar.add("barWidth", [&] {
            return number(bounds.width, takeloomBarMinWidth) +
                   " wide, capture bar wants at least " + number(takeloomBarMinWidth);
        });
    }
    if (!(bounds.height <= takeloomBarMaxHeight)) {
        bar.add("barHeight", [&] {
            return number(bounds.height, takeloomBarMaxHeight) +
                   " high, capture bar wants at most " + number(takeloomBarMaxHeight);
        });
    }
    Misses square(words);
    if (window.layer < takeloomSquareLayerFrom) {
        square.add("squareLayer", [&] {
            return "at layer " + std::to_string(window.layer) + ", square overlay wants " +
                   std::to_string(takeloomSquareLayerFrom) + " or above";
        });
    }
    const double apart = std::abs(bounds.width - bounds.height);
    if (!(apart < takeloomSquareSlack)) {
        square.add("squareSides", [&] {
            return size(bounds) + ", sides " + number(apart, takeloomSquareSlack) +
                   " apart, square overlay wants under " + number(takeloomSquareSlack);
        });
    }
    if (!(bounds.width <= takeloomSquareMaxWidth)) {
        square.add("squareWidth", [&] {
            return number(bounds.width, takeloomSquareMaxWidth) +
                   " wide, square overlay wants at most " + number(takeloomSquareMaxWidth);
        });
    }
    if (!bar.empty() && !square.empty()) {
        attempt.misses.append(square.size() < bar.size() ? square : bar);
    }
}

using WindowTest = void (*)(const WindowInfo&, const CaptureSnapshot&, Attempt&);

Attempt tryWindow(WindowTest test, const WindowInfo& window, const CaptureSnapshot& snapshot,
                  bool words) {
    Attempt attempt{std::nullopt, Misses(words)};
    filterMisses(window, snapshot.selfPID, attempt.misses);
    test(window, snapshot, attempt);
    return attempt;
}

struct WindowRule {
    CaptureRule rule;
    WindowTest test;
    std::function<bool(const std::string& bundleID)> owns;
    std::string_view whose;
    std::function<CaptureSource(const std::string& bundleID)> source;
};

// Says which of the rule's apps run without a window that could match, since "Teams is
// running" is the first thing a reader wonders about.
std::string runningOnes(const WindowRule& rule, const CaptureSnapshot& snapshot) {
    std::set<std::string> names;
    for (const auto& bundleID : snapshot.runningBundleIDs) {
        if (rule.owns(bundleID)) {
            names.insert(KnownApps::name(bundleID).value_or(bundleID));
        }
    }
    if (names.empty()) {
        return "";
    }
    return "; " + namesOf(names) + (names.size() == 1 ? " is" : " are") + " running";
}

RuleFinding judge(const WindowRule& rule, const CaptureSnapshot& snapshot) {
    RuleFinding finding;
    finding.rule = rule.rule;
    std::optional<std::size_t> nearest;
    std::size_t fewest = 0;
    for (std::size_t i = 0; i < snapshot.windows.size(); ++i) {
        const WindowInfo& window = snapshot.windows[i];
        if (!window.bundleID || !rule.owns(*window.bundleID)) {
            continue;
        }
        const std::size_t missed = tryWindow(rule.test, window, snapshot, false).misses.size();
        if (!nearest || missed < fewest) {
            nearest = i;
            fewest = missed;
            if (missed == 0) {
                break;
            }
        }
    }
    if (!nearest) {
        finding.misses.push_back(
            {"app", "no window of " + std::string(rule.whose) + runningOnes(rule, snapshot)});
        finding.text = finding.misses.front().text;
        return finding;
    }
    const WindowInfo& window = snapshot.windows[*nearest];
    Attempt told = tryWindow(rule.test, window, snapshot, true);
    finding.window = nearest;
    finding.display = told.display;
    finding.misses = told.misses.take();
    finding.matched = finding.misses.empty();
    if (finding.matched) {
        finding.source = rule.source(*window.bundleID);
        finding.text = who(window) + " window at layer " + std::to_string(window.layer) + ", " +
                       place(window.bounds) +
                       (finding.display ? ", on display " + std::to_string(*finding.display) : "");
    } else {
        finding.text = who(window) + " window " + joined(finding.misses);
    }
    return finding;
}

const std::vector<WindowRule>& windowRules() {
    static const std::vector<WindowRule> rules = {
        {CaptureRule::systemRecording, recordingIndicator,
         [](const std::string& id) { return id == KnownApps::screencaptureUI; },
         KnownApps::screencaptureUI,
         [](const std::string&) {
             return CaptureSource{std::string(KnownApps::screencaptureUI), "macOS screen recording",
                                  CaptureKind::systemRecording};
         }},
        {CaptureRule::callShare, callShareFrame,
         [](const std::string& id) { return KnownApps::calls().contains(id); }, "a known call app",
         [](const std::string& id) {
             return CaptureSource{id, KnownApps::calls().at(id), CaptureKind::callShare};
         }},
        {CaptureRule::browserShare, browserSharingBar,
         [](const std::string& id) { return KnownApps::browsers().contains(id); },
         "a known browser",
         [](const std::string& id) {
             return CaptureSource{id, KnownApps::browsers().at(id), CaptureKind::browserShare};
         }},
        {CaptureRule::takeloom, takeloomWindow,
         [](const std::string& id) { return id == KnownApps::takeloom; }, "Takeloom",
         [](const std::string&) {
             return CaptureSource{std::string(KnownApps::takeloom), "Takeloom",
                                  CaptureKind::recorder};
         }},
    };
    return rules;
}

RuleFinding openApps(const CaptureSnapshot& snapshot, const DetectionOptions& options) {
    RuleFinding finding;
    finding.rule = CaptureRule::startWhenOpen;
    for (const std::string& bundleID : options.startWhenOpen) {
        if (snapshot.runningBundleIDs.contains(bundleID)) {
            finding.matched = true;
            finding.source = CaptureSource{bundleID, KnownApps::name(bundleID).value_or(bundleID),
                                           CaptureKind::appOpen};
            finding.text = bundleID + " is running";
            return finding;
        }
    }
    if (options.startWhenOpen.empty()) {
        finding.misses.push_back({"listed", "no apps listed"});
    } else {
        const std::set<std::string> listed(options.startWhenOpen.begin(),
                                           options.startWhenOpen.end());
        finding.misses.push_back(
            {"running", (listed.size() == 1 ? "the listed app is not running: "
                                            : "none of the listed apps is running: ") +
                            namesOf(listed)});
    }
    finding.text = finding.misses.front().text;
    return finding;
}

RuleFinding callInProgress(const CaptureSnapshot& snapshot) {
    RuleFinding finding;
    finding.rule = CaptureRule::call;
    std::optional<std::string> first;
    for (const auto& entry : KnownApps::calls()) {
        if (snapshot.runningBundleIDs.contains(entry.first)) {
            first = entry.first;
            break;
        }
    }
    const bool devices = snapshot.micInUse || snapshot.cameraInUse;
    if (!devices) {
        finding.misses.push_back({"devices", "neither microphone nor camera in use"});
    }
    if (!first) {
        finding.misses.push_back({"running", "no call app running"});
    }
    if (!finding.misses.empty()) {
        finding.text = joined(finding.misses);
        return finding;
    }
    finding.matched = true;
    finding.source = CaptureSource{*first, KnownApps::calls().at(*first), CaptureKind::call};
    finding.text = std::string(snapshot.micInUse && snapshot.cameraInUse ? "microphone and camera"
                               : snapshot.micInUse                       ? "microphone"
                                                                         : "camera") +
                   " in use and " + finding.source->name + " (" + *first + ") running";
    return finding;
}

bool enabledByOptions(CaptureRule rule, const DetectionOptions& options) {
    switch (rule) {
    case CaptureRule::systemRecording:
        return options.watchSystemRecording;
    case CaptureRule::callShare:
        return options.watchCalls;
    case CaptureRule::browserShare:
        return options.watchBrowsers;
    case CaptureRule::takeloom:
        return options.watchTakeloom;
    case CaptureRule::startWhenOpen:
        // An empty list is what turns this rule off; there is no switch of its own.
        return !options.startWhenOpen.empty();
    case CaptureRule::call:
        return options.treatCallsAsSharing;
    }
    return false;
}

Json sourceJson(const std::optional<CaptureSource>& source) {
    return source ? toJson(*source) : Json(nullptr);
}

} // namespace

std::string_view rawValue(CaptureRule rule) {
    return ruleRows[static_cast<size_t>(rule)].raw;
}

std::string_view title(CaptureRule rule) {
    return ruleRows[static_cast<size_t>(rule)].title;
}

namespace CaptureRules {

CaptureExplanation explain(const CaptureSnapshot& snapshot, const DetectionOptions& options) {
    CaptureExplanation explanation;
    for (const WindowRule& rule : windowRules()) {
        explanation.rules.push_back(judge(rule, snapshot));
    }
    explanation.rules.push_back(openApps(snapshot, options));
    explanation.rules.push_back(callInProgress(snapshot));
    for (RuleFinding& finding : explanation.rules) {
        finding.enabled = enabledByOptions(finding.rule, options);
        if (finding.enabled && finding.matched && !explanation.verdict) {
            explanation.verdict = finding.source;
            explanation.decidedBy = finding.rule;
        }
    }
    return explanation;
}

std::vector<RuleMiss> ignoredBecause(const WindowInfo& window, std::int32_t selfPID) {
    Misses misses(true);
    filterMisses(window, selfPID, misses);
    return misses.take();
}

} // namespace CaptureRules

Json toJson(const RuleFinding& finding) {
    Json out = Json::object();
    out["rule"] = std::string(rawValue(finding.rule));
    out["title"] = std::string(title(finding.rule));
    out["enabled"] = finding.enabled;
    out["matched"] = finding.matched;
    out["source"] = sourceJson(finding.source);
    out["window"] = finding.window ? Json(*finding.window) : Json(nullptr);
    out["display"] = finding.display ? Json(*finding.display) : Json(nullptr);
    Json misses = Json::array();
    for (const auto& miss : finding.misses) {
        Json item = Json::object();
        item["limit"] = miss.limit;
        item["text"] = miss.text;
        misses.push_back(std::move(item));
    }
    out["misses"] = std::move(misses);
    out["text"] = finding.text;
    return out;
}

Json toJson(const CaptureExplanation& explanation) {
    Json out = Json::object();
    out["verdict"] = sourceJson(explanation.verdict);
    out["decidedBy"] =
        explanation.decidedBy ? Json(std::string(rawValue(*explanation.decidedBy))) : Json(nullptr);
    Json rules = Json::array();
    for (const auto& finding : explanation.rules) {
        rules.push_back(toJson(finding));
    }
    out["rules"] = std::move(rules);
    return out;
}

} // namespace scrimlet
