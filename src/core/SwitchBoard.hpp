#pragma once

#include "Director.hpp"
#include "Settings.hpp"
#include "SwitchKind.hpp"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet {

/// The thirteen one-click switches. Each is an owner of its own in the director's journal,
/// so a switch and a show can hold the same effect and it goes back only when the last of
/// them lets go. A switch stores no on/off state: the journal alone says whether it is on,
/// so a crash cannot make the two disagree. Main thread only.
class SwitchBoard {
public:
    SwitchBoard(std::shared_ptr<Director> director, StageSettings settings, Clock clock);

    Director& director() const { return *director_; }

    /// Replaced by the store on every change.
    StageSettings settings;
    Clock clock;
    /// This program, never hidden.
    std::string selfBundleID = "app.vantrel.scrimlet";
    /// Called after every change of state.
    std::function<void()> onChange;

    /// When each timed switch goes off.
    const std::map<SwitchKind, Date>& expiries() const { return expiries_; }
    /// The last problem of each switch, for the interface; kept until its next `turnOn`.
    const std::map<SwitchKind, std::string>& notes() const { return notes_; }

    bool isOn(SwitchKind kind) const;
    int onCount() const;
    std::vector<CueRecord> toggle(SwitchKind kind);
    std::vector<CueRecord> turnOn(SwitchKind kind);
    std::vector<CueRecord> turnOff(SwitchKind kind);
    /// Turns every switch off; at shutdown, and as a button.
    void allOff();
    /// Once a second: the auto-offs that are due, and the switches whose every change the
    /// user has overridden by hand. Answers the switches that went off by themselves.
    std::vector<SwitchKind> tick();
    /// Seconds until the switch goes off by itself, never below 0; nothing without a timer.
    std::optional<double> remaining(SwitchKind kind) const;

private:
    void changed() const;

    std::shared_ptr<Director> director_;
    std::map<SwitchKind, Date> expiries_;
    std::map<SwitchKind, std::string> notes_;
    Date lastReconcile_ = Date::distantPast();
};

} // namespace scrimlet
