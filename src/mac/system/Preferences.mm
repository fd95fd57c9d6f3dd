#import "MacFacilities.hpp"

#import "../common/Text.h"
#import "CFHolder.hpp"

#import <CoreFoundation/CoreFoundation.h>

// Other applications' settings, read through CFPreferences after a synchronisation, so that
// a change the user just made in System Settings is seen.

namespace scrimlet::mac {

std::optional<PreferenceValue> MacFacilities::preference(const std::string &domain,
                                                         const std::string &key) {
    NSString *named = toNSString(domain);
    NSString *keyName = toNSString(key);
    const CFStringRef application = domain == SystemFacilities::anyApplication
                                        ? kCFPreferencesAnyApplication
                                        : (__bridge CFStringRef)named;
    CFPreferencesAppSynchronize(application);
    const auto value = CFHolder<CFPropertyListRef>::takeOver(
        CFPreferencesCopyAppValue((__bridge CFStringRef)keyName, application));
    if (!value) {
        return std::nullopt;
    }
    const CFTypeID type = CFGetTypeID(value.get());
    if (type == CFBooleanGetTypeID()) {
        return PreferenceValue(CFBooleanGetValue(static_cast<CFBooleanRef>(value.get())) != 0);
    }
    if (type == CFNumberGetTypeID()) {
        if (const auto number = numberValue(value.get())) {
            return PreferenceValue(*number);
        }
        return std::nullopt;
    }
    if (const auto text = textValue(value.get())) {
        return PreferenceValue(*text);
    }
    return std::nullopt;
}

} // namespace scrimlet::mac
