#pragma once

// Ownership of CoreFoundation objects, said where it is taken: `takeOver` for what a Create
// or Copy call handed over, `retain` for what a Get call only lent. And the two plain values
// the facilities read out of them.

#include <CoreFoundation/CoreFoundation.h>

#include <cstring>
#include <optional>
#include <string>
#include <utility>

namespace scrimlet::mac {

template <typename Ref>
class CFHolder {
public:
    CFHolder() = default;
    /// Owns what a Create or Copy call answered; nothing to release for null.
    static CFHolder takeOver(Ref ref) { return CFHolder(ref); }
    /// Shares what a Get call answered, which the caller does not own.
    static CFHolder retain(Ref ref) {
        if (ref) {
            CFRetain(ref);
        }
        return CFHolder(ref);
    }

    ~CFHolder() {
        if (ref_) {
            CFRelease(ref_);
        }
    }
    CFHolder(const CFHolder& other)
        : ref_(other.ref_) {
        if (ref_) {
            CFRetain(ref_);
        }
    }
    CFHolder(CFHolder&& other) noexcept
        : ref_(std::exchange(other.ref_, nullptr)) {}
    CFHolder& operator=(CFHolder other) noexcept {
        std::swap(ref_, other.ref_);
        return *this;
    }

    Ref get() const { return ref_; }
    explicit operator bool() const { return ref_ != nullptr; }

private:
    explicit CFHolder(Ref ref)
        : ref_(ref) {}
    Ref ref_ = nullptr;
};

/// A boolean or a number as a double; nothing for any other type.
inline std::optional<double> numberValue(CFTypeRef value) {
    if (!value) {
        return std::nullopt;
    }
    if (CFGetTypeID(value) == CFBooleanGetTypeID()) {
        return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) ? 1.0 : 0.0;
    }
    double number = 0;
    if (CFGetTypeID(value) != CFNumberGetTypeID() ||
        !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberFloat64Type, &number)) {
        return std::nullopt;
    }
    return number;
}

/// A string's UTF-8; nothing for any other type.
inline std::optional<std::string> textValue(CFTypeRef value) {
    if (!value || CFGetTypeID(value) != CFStringGetTypeID()) {
        return std::nullopt;
    }
    const auto string = static_cast<CFStringRef>(value);
    if (const char* direct = CFStringGetCStringPtr(string, kCFStringEncodingUTF8)) {
        return std::string(direct);
    }
    const CFIndex capacity =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
    std::string text(static_cast<size_t>(capacity), '\0');
    if (!CFStringGetCString(string, text.data(), capacity, kCFStringEncodingUTF8)) {
        return std::nullopt;
    }
    text.resize(std::strlen(text.c_str()));
    return text;
}

} // namespace scrimlet::mac
