#import "LoginItem.hpp"

#import "../common/Text.h"

#import <ServiceManagement/ServiceManagement.h>

namespace scrimlet::mac::LoginItem {

std::optional<std::string> set(bool enabled) {
    SMAppService *service = SMAppService.mainAppService;
    NSError *error = nil;
    const BOOL done = enabled ? [service registerAndReturnError:&error]
                              : [service unregisterAndReturnError:&error];
    if (done) {
        return std::nullopt;
    }
    if (!error) {
        return std::string("The login item couldn't be changed.");
    }
    return toString(error.localizedDescription);
}

} // namespace scrimlet::mac::LoginItem
