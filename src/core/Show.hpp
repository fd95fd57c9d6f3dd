#pragma once

#include "CaptureWatcher.hpp"
#include "Director.hpp"
#include "EndReason.hpp"
#include "RunSheet.hpp"
#include "Settings.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet {

/// Where the show stands: curtain down, counting down, or up.
class ShowPhase {
public:
    enum class Case { dark, standby, live };

    static ShowPhase dark() { return ShowPhase(Case::dark, {}); }
    /// Counting down; the show goes live at `until`.
    static ShowPhase standby(Date until) { return ShowPhase(Case::standby, until); }
    static ShowPhase live() { return ShowPhase(Case::live, {}); }

    Case kind() const { return case_; }
    /// The end of the countdown; meaningful in `standby` only.
    Date until() const { return until_; }

    friend bool operator==(const ShowPhase& a, const ShowPhase& b) {
        return a.case_ == b.case_ && (a.case_ != Case::standby || a.until_ == b.until_);
    }

private:
    ShowPhase(Case c, Date until)
        : case_(c)
        , until_(until) {}
    Case case_;
    Date until_;
};

/// The state machine of one performance: when the plan is applied and when it is taken
/// back, for every way a show can start or end (a cue by hand, a countdown, a capture that
/// begins or ends, a time limit, a wake from sleep). It holds the run sheet of the running
/// show and the past sheets, and touches the Mac only through its director, as the owner
/// "stage". Main thread only; the callbacks run synchronously inside each operation.
class Show {
public:
    /// The show's owner name in the journal.
    static constexpr const char* owner = "stage";
    /// How many past sheets are kept.
    static constexpr size_t sheetLimit = 30;

    Show(std::shared_ptr<Director> director, StageSettings settings, std::vector<RunSheet> sheets,
         Clock clock);

    Director& director() const { return *director_; }

    /// Replaced by the store when the settings change.
    StageSettings settings;
    Clock clock;
    /// This application, always kept visible.
    std::string selfBundleID = "app.vantrel.scrimlet";
    double countdownSeconds = 3;
    /// Called after every visible change.
    std::function<void()> onChange;
    /// Called with the sheet when a show has ended.
    std::function<void(const RunSheet&)> onEnded;

    const ShowPhase& phase() const { return phase_; }
    /// Started or adopted by hand: the end of a capture no longer ends it.
    bool manual() const { return manual_; }
    const std::optional<CaptureSource>& source() const { return source_; }
    const std::optional<Date>& startedAt() const { return startedAt_; }
    /// When the time limit strikes; nothing means no limit.
    const std::optional<Date>& endsAt() const { return endsAt_; }
    /// Bundle IDs of the apps kept visible, sorted.
    const std::vector<std::string>& kept() const { return kept_; }
    /// The sheet of the running show.
    const std::optional<RunSheet>& current() const { return current_; }
    /// Past sheets, newest first.
    const std::vector<RunSheet>& sheets() const { return sheets_; }
    /// A capture whose show the user ended by hand; it must not raise the curtain again.
    const std::optional<CaptureSource>& dismissed() const { return dismissed_; }
    Date lastReconcile() const { return lastReconcile_; }
    const std::string& pendingHow() const { return pendingHow_; }

    bool isLive() const { return phase_.kind() == ShowPhase::Case::live; }
    bool isDark() const { return phase_.kind() == ShowPhase::Case::dark; }
    /// Whole seconds left in the countdown, rounded up and never below 1.
    std::optional<int> countdownRemaining() const;
    std::optional<double> elapsed() const;
    /// Seconds left before the time limit, never below 0.
    std::optional<double> remaining() const;

    /// A cue by hand. Without `countdown` the settings decide.
    void start(const std::string& how, std::optional<bool> countdown = std::nullopt);
    void stop(EndReason reason);
    void captureChanged(const CaptureWatcher::Change& change);
    /// Moves the time limit on by `minutes`; a show without a limit gains one.
    void extend(int minutes);
    void clearLimit();
    /// Once a second.
    void tick();
    /// After the Mac has woken, with the capture found at this moment.
    void wake(const std::optional<CaptureSource>& captureActive);
    void displaysChanged();
    /// Puts back what a crashed show left on the Mac; the sheet of that show, if any.
    std::optional<RunSheet> recoverAtLaunch();
    void clearSheets();
    void restoreSheets(std::vector<RunSheet> sheets);

private:
    void goLive();
    void changed() const;
    /// The director's log since `length`, added to the running show's cues.
    void noteDuringShow(size_t length);

    std::shared_ptr<Director> director_;
    ShowPhase phase_ = ShowPhase::dark();
    bool manual_ = false;
    std::optional<CaptureSource> source_;
    std::optional<Date> startedAt_;
    std::optional<Date> endsAt_;
    std::vector<std::string> kept_;
    std::optional<RunSheet> current_;
    std::vector<RunSheet> sheets_;
    std::optional<CaptureSource> dismissed_;
    Date lastReconcile_ = Date::distantPast();
    std::string pendingHow_;
};

} // namespace scrimlet
