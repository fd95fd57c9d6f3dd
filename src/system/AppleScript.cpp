#include "AppleScript.hpp"

#include "StageSystem.hpp"

namespace scrimlet::AppleScript {

void run(SystemFacilities& facilities, const std::string& source) {
    const ScriptOutcome outcome = facilities.runAppleScript(source);
    if (!outcome.made) {
        throw StageError::failed("script");
    }
    if (!outcome.failed) {
        return;
    }
    const std::int64_t number = outcome.errorNumber.value_or(0);
    if (number == notPermitted) {
        throw StageError::failed(
            "Not allowed to control System Events (Privacy & Security › Automation)");
    }
    throw StageError::failed(
        outcome.errorMessage.value_or("AppleScript error " + std::to_string(number)));
}

std::optional<double> number(SystemFacilities& facilities, bool testRun,
                             const std::string& source) {
    if (testRun) {
        return std::nullopt;
    }
    const ScriptOutcome outcome = facilities.runAppleScript(source);
    if (!outcome.made || outcome.failed || !outcome.result) {
        return std::nullopt;
    }
    return static_cast<double>(*outcome.result);
}

Permission systemEventsPermission(SystemFacilities& facilities, bool testRun) {
    if (testRun) {
        return Permission::unknown;
    }
    const auto status = facilities.automationPermission(systemEvents);
    if (!status) {
        return Permission::unknown;
    }
    switch (*status) {
    case 0:
        return Permission::granted;
    case notPermitted:
        return Permission::denied;
    case wouldPrompt:
        return Permission::notDetermined;
    default:
        return Permission::unknown;
    }
}

} // namespace scrimlet::AppleScript
