#include "Show.hpp"

#include "CueSheet.hpp"

#include <algorithm>
#include <cmath>
#include <set>

namespace scrimlet {

namespace {

// How often, at most, a live show looks for changes the user made by hand.
constexpr double reconcileInterval = 5;

std::vector<CueRecord> since(const std::vector<CueRecord>& log, size_t length) {
    return {log.begin() + static_cast<std::ptrdiff_t>(length), log.end()};
}

} // namespace

Show::Show(std::shared_ptr<Director> director, StageSettings settings_,
           std::vector<RunSheet> sheets, Clock clock_)
    : settings(std::move(settings_))
    , clock(std::move(clock_))
    , director_(std::move(director))
    , sheets_(std::move(sheets)) {}

std::optional<int> Show::countdownRemaining() const {
    if (phase_.kind() != ShowPhase::Case::standby) {
        return std::nullopt;
    }
    const double left = std::ceil(phase_.until() - clock());
    return std::max(1, static_cast<int>(left));
}

std::optional<double> Show::elapsed() const {
    if (!startedAt_) {
        return std::nullopt;
    }
    return clock() - *startedAt_;
}

std::optional<double> Show::remaining() const {
    if (!endsAt_) {
        return std::nullopt;
    }
    return std::max(0.0, *endsAt_ - clock());
}

void Show::changed() const {
    if (onChange) {
        onChange();
    }
}

void Show::noteDuringShow(size_t length) {
    if (current_) {
        const auto gained = since(director_->log(), length);
        current_->cues.insert(current_->cues.end(), gained.begin(), gained.end());
    }
}

void Show::goLive() {
    const Date now = clock();
    phase_ = ShowPhase::live();
    startedAt_ = now;
    endsAt_ = settings.timeLimitMinutes
                  ? std::optional<Date>(now + static_cast<double>(*settings.timeLimitMinutes) * 60)
                  : std::nullopt;

    StageSystem& system = director_->system();
    std::set<std::string> keep = {selfBundleID};
    if (const auto front = system.frontmostBundleID()) {
        keep.insert(*front);
    }
    if (source_) {
        keep.insert(source_->bundleID);
    }
    // QuickTime Player is kept only when it is what records: otherwise it is just a player.
    const bool systemRecording = source_ && source_->kind == CaptureKind::systemRecording;
    for (const auto& [bundleID, name] : KnownApps::recorders()) {
        if (bundleID != "com.apple.QuickTimePlayerX" || systemRecording) {
            keep.insert(bundleID);
        }
    }
    keep.insert(settings.keepVisible.begin(), settings.keepVisible.end());
    kept_.assign(keep.begin(), keep.end());

    std::string how = pendingHow_;
    if (how.empty()) {
        how = source_ ? source_->sentence() : "Started";
    }
    RunSheet sheet(now, how, source_);

    const size_t length = director_->log().size();
    const auto cues = CueSheet::cues(settings.plan, system, keep);
    for (const auto& cue : cues) {
        director_->claim(cue.key, cue.value, owner);
    }
    sheet.cues = since(director_->log(), length);

    // A resolution the display does not offer yields no cue at all; the user still learns
    // why nothing happened, from a line that never went through the director.
    const auto& resolution = settings.plan.resolution;
    const bool resized = std::any_of(cues.begin(), cues.end(), [](const CueSheet::Cue& cue) {
        return cue.key.kind == EffectKind::displayMode;
    });
    if (resolution && !resized) {
        sheet.cues.emplace_back(EffectKey(EffectKind::displayMode, ""),
                                CueOutcome::skipped("this display has no " +
                                                    std::to_string(resolution->width) + " × " +
                                                    std::to_string(resolution->height) + " mode"),
                                now);
    }
    current_ = std::move(sheet);
    lastReconcile_ = now;
    changed();
}

void Show::stop(EndReason reason) {
    switch (phase_.kind()) {
    case ShowPhase::Case::dark:
        return;
    case ShowPhase::Case::standby:
        phase_ = ShowPhase::dark();
        manual_ = false;
        pendingHow_.clear();
        changed();
        return;
    case ShowPhase::Case::live:
        break;
    }
    if (reason == EndReason::stopped && source_) {
        // The capture goes on; it must not raise the curtain again.
        dismissed_ = source_;
    }
    auto records = director_->releaseAll(owner);
    RunSheet sheet = current_ ? *current_ : RunSheet(startedAt_.value_or(clock()), "Show");
    sheet.endedAt = clock();
    sheet.reason = reason;
    sheet.strike = std::move(records);
    sheets_.insert(sheets_.begin(), sheet);
    if (sheets_.size() > sheetLimit) {
        sheets_.resize(sheetLimit);
    }
    phase_ = ShowPhase::dark();
    manual_ = false;
    source_.reset();
    startedAt_.reset();
    endsAt_.reset();
    current_.reset();
    kept_.clear();
    pendingHow_.clear();
    if (onEnded) {
        onEnded(sheet);
    }
    changed();
}

void Show::start(const std::string& how, std::optional<bool> countdown) {
    switch (phase_.kind()) {
    case ShowPhase::Case::standby:
        // A second cue skips the countdown; the first cue's words stay.
        goLive();
        return;
    case ShowPhase::Case::live:
        // A cue by hand adopts a running automatic show: it now outlives its capture.
        manual_ = true;
        changed();
        return;
    case ShowPhase::Case::dark:
        break;
    }
    manual_ = true;
    pendingHow_ = how;
    if (countdown.value_or(settings.countdown)) {
        phase_ = ShowPhase::standby(clock() + countdownSeconds);
        changed();
    } else {
        goLive();
    }
}

void Show::captureChanged(const CaptureWatcher::Change& change) {
    const CaptureSource& subject = change.source();
    if (change.kind() == CaptureWatcher::Change::Case::ended) {
        if (dismissed_ == subject) {
            // A new capture of the same app may start a show again.
            dismissed_.reset();
        }
        if (!source_ || *source_ != subject) {
            return;
        }
        if (isLive() && !manual_) {
            stop(EndReason::captureEnded);
            return;
        }
        source_.reset();
        changed();
        return;
    }

    if (change.kind() == CaptureWatcher::Change::Case::switched && dismissed_ == change.from()) {
        dismissed_.reset();
    }
    if (dismissed_ == subject) {
        return;
    }
    switch (phase_.kind()) {
    case ShowPhase::Case::standby:
        // An actual capture makes the countdown pointless.
        source_ = subject;
        goLive();
        return;
    case ShowPhase::Case::live:
        source_ = subject;
        changed();
        return;
    case ShowPhase::Case::dark:
        if (settings.autoStart) {
            source_ = subject;
            manual_ = false;
            pendingHow_ = subject.sentence();
            goLive();
        }
        return;
    }
}

void Show::extend(int minutes) {
    if (!isLive()) {
        return;
    }
    endsAt_ = endsAt_.value_or(clock()) + minutes * 60.0;
    changed();
}

void Show::clearLimit() {
    endsAt_.reset();
    changed();
}

void Show::tick() {
    const Date now = clock();
    switch (phase_.kind()) {
    case ShowPhase::Case::dark:
        return;
    case ShowPhase::Case::standby:
        if (now < phase_.until()) {
            changed();
        } else {
            goLive();
        }
        return;
    case ShowPhase::Case::live:
        break;
    }
    if (endsAt_ && now >= *endsAt_) {
        stop(EndReason::timeLimit);
        return;
    }
    if (now - lastReconcile_ >= reconcileInterval) {
        lastReconcile_ = now;
        const size_t length = director_->log().size();
        director_->reconcile();
        // A change by the user shows up as "left alone", an app that quit as "gone".
        noteDuringShow(length);
    }
    changed();
}

void Show::wake(const std::optional<CaptureSource>& captureActive) {
    if (!isLive()) {
        return;
    }
    const size_t length = director_->log().size();
    director_->reconcile();
    noteDuringShow(length);
    if (endsAt_ && clock() >= *endsAt_) {
        // The limit ran out in sleep.
        stop(EndReason::timeLimit);
        return;
    }
    if (!manual_ && !captureActive) {
        // The share went away during sleep, and no "ended" will ever come for it.
        stop(EndReason::captureEnded);
        return;
    }
    changed();
}

void Show::displaysChanged() {
    const auto records = director_->retryDeferred();
    // A display mode put back late belongs to the show that changed it.
    if (!records.empty() && !sheets_.empty()) {
        auto& strike = sheets_.front().strike;
        strike.insert(strike.end(), records.begin(), records.end());
    }
    changed();
}

std::optional<RunSheet> Show::recoverAtLaunch() {
    const auto& entries = director_->entries();
    if (entries.empty()) {
        return std::nullopt;
    }
    const Date lostStart =
        std::min_element(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
            return a.at < b.at;
        })->at;
    auto records = director_->recoverAtLaunch();
    if (records.empty()) {
        // Only effects that died with the process were on record.
        return std::nullopt;
    }
    RunSheet sheet(lostStart, "Scrimlet quit unexpectedly");
    sheet.endedAt = clock();
    sheet.reason = EndReason::recovered;
    sheet.strike = std::move(records);
    sheets_.insert(sheets_.begin(), sheet);
    changed();
    return sheet;
}

void Show::clearSheets() {
    sheets_.clear();
    changed();
}

void Show::restoreSheets(std::vector<RunSheet> sheets) {
    if (sheets.size() > sheetLimit) {
        sheets.resize(sheetLimit);
    }
    sheets_ = std::move(sheets);
    changed();
}

} // namespace scrimlet
