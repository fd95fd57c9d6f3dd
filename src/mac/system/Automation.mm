#import "MacFacilities.hpp"

#import "../common/Text.h"

#import <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>

// Scripts run in this process through NSAppleScript, and the Automation permission asked of
// the system without ever prompting.

namespace scrimlet::mac {

ScriptOutcome MacFacilities::runAppleScript(const std::string &source) {
    ScriptOutcome outcome;
    NSAppleScript *script = [[NSAppleScript alloc] initWithSource:toNSString(source)];
    if (!script) {
        outcome.made = false;
        return outcome;
    }
    NSDictionary<NSString *, id> *error = nil;
    NSAppleEventDescriptor *result = [script executeAndReturnError:&error];
    if (error) {
        outcome.failed = true;
        id number = error[NSAppleScriptErrorNumber];
        if ([number isKindOfClass:NSNumber.class]) {
            outcome.errorNumber = static_cast<std::int64_t>([number longLongValue]);
        }
        id message = error[NSAppleScriptErrorMessage];
        if ([message isKindOfClass:NSString.class]) {
            outcome.errorMessage = toString(message);
        }
        return outcome;
    }
    // A script that ends without a value answers nil or the null descriptor.
    if (result && result.descriptorType != typeNull) {
        outcome.result = result.int32Value;
    }
    return outcome;
}

std::optional<std::int32_t> MacFacilities::automationPermission(const std::string &bundleID) {
    NSAppleEventDescriptor *target =
        [NSAppleEventDescriptor descriptorWithBundleIdentifier:toNSString(bundleID)];
    if (!target || !target.aeDesc) {
        return std::nullopt;
    }
    return AEDeterminePermissionToAutomateTarget(target.aeDesc, typeWildCard, typeWildCard, false);
}

} // namespace scrimlet::mac
