#pragma once

#include "Date.hpp"

#include <map>
#include <optional>
#include <string>

namespace scrimlet {

/// Decides from the process environment whether this run is a normal run or a scripted run
/// that must never touch the machine. The environment is read once, on first use.
namespace Harness {

using Environment = std::map<std::string, std::string>;

/// The process environment, as read at first use.
const Environment& env();

/// True as soon as the environment looks like a scripted run: a snapshot, self-check or
/// demo folder, any "SCRIMLET_" variable naming a kind of test, or an XCTest run. The wide
/// match is on purpose: a misspelt or new test variable must never reach the real system.
bool isTestRun(const Environment& environment);
bool isTestRun();
/// The folders of a snapshot run and of a self check, present when the variable is set,
/// even to an empty value.
std::optional<std::string> snapshotDir(const Environment& environment);
std::optional<std::string> snapshotDir();
std::optional<std::string> selfTestDir(const Environment& environment);
std::optional<std::string> selfTestDir();
/// The folder a demo film is made in, present when "SCRIMLET_DEMO_DIR" is set.
std::optional<std::string> demoDir(const Environment& environment);
std::optional<std::string> demoDir();

/// The fixed moment demo runs begin at: 28 October 2026, 15:42:00, local time.
Date demoNow();

} // namespace Harness

} // namespace scrimlet
