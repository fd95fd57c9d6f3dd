#include "SystemVersion.hpp"

#include <algorithm>

namespace scrimlet::SystemVersion {

int leadingNumber(std::string_view text) {
    int number = 0;
    size_t digits = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            break;
        }
        // Nothing real has more than a few digits; a longer run is noise, not a version.
        if (++digits > 6) {
            return 0;
        }
        number = number * 10 + (c - '0');
    }
    return number;
}

int macOSMajor(std::string_view productVersion, std::string_view darwinRelease) {
    int product = leadingNumber(productVersion);
    if (product >= 16 && product <= 25) {
        product += 10;
    }
    const int darwin = leadingNumber(darwinRelease);
    int fromKernel = 0;
    if (darwin >= 25) {
        fromKernel = darwin + 1;
    } else if (darwin >= 20) {
        fromKernel = darwin - 9;
    }
    return std::max(product, fromKernel);
}

} // namespace scrimlet::SystemVersion
