#import "MacFacilities.hpp"

#import "CFHolder.hpp"

#import <CoreGraphics/CoreGraphics.h>

// The window server's list of on-screen windows: owner, layer, bounds, alpha and number,
// never a title or a picture, so that no screen-recording permission is needed.

namespace scrimlet::mac {

namespace {

constexpr CGWindowListOption onScreenWithoutDesktop =
    kCGWindowListOptionOnScreenOnly | kCGWindowListExcludeDesktopElements;
static_assert(onScreenWithoutDesktop == 17);

std::optional<Rect> rectangle(CFTypeRef value) {
    CGRect rect;
    if (!value || CFGetTypeID(value) != CFDictionaryGetTypeID() ||
        !CGRectMakeWithDictionaryRepresentation(static_cast<CFDictionaryRef>(value), &rect)) {
        return std::nullopt;
    }
    return Rect{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

} // namespace

std::vector<std::optional<RawWindow>> MacFacilities::windowList() {
    const auto list = CFHolder<CFArrayRef>::takeOver(
        CGWindowListCopyWindowInfo(onScreenWithoutDesktop, kCGNullWindowID));
    if (!list || CFGetTypeID(list.get()) != CFArrayGetTypeID()) {
        return {};
    }
    const CFIndex count = CFArrayGetCount(list.get());
    std::vector<std::optional<RawWindow>> out;
    out.reserve(static_cast<size_t>(count));
    for (CFIndex i = 0; i < count; ++i) {
        const CFTypeRef entry = CFArrayGetValueAtIndex(list.get(), i);
        if (!entry || CFGetTypeID(entry) != CFDictionaryGetTypeID()) {
            out.emplace_back();
            continue;
        }
        const auto window = static_cast<CFDictionaryRef>(entry);
        RawWindow raw;
        raw.ownerPID = numberValue(CFDictionaryGetValue(window, kCGWindowOwnerPID));
        raw.layer = numberValue(CFDictionaryGetValue(window, kCGWindowLayer));
        raw.bounds = rectangle(CFDictionaryGetValue(window, kCGWindowBounds));
        raw.ownerName = textValue(CFDictionaryGetValue(window, kCGWindowOwnerName));
        raw.alpha = numberValue(CFDictionaryGetValue(window, kCGWindowAlpha));
        raw.number = numberValue(CFDictionaryGetValue(window, kCGWindowNumber));
        out.push_back(std::move(raw));
    }
    return out;
}

} // namespace scrimlet::mac
