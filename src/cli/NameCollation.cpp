#include "NameCollation.hpp"

#include <cstdint>
#include <memory>

#if defined(SCRIMLET_WITH_ICU)
#include <unicode/ucol.h>
#endif

namespace scrimlet::NameCollation {

std::string localeName(const Harness::Environment& environment) {
    for (const char* variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        const auto found = environment.find(variable);
        if (found == environment.end() || found->second.empty()) {
            continue;
        }
        std::string name = found->second.substr(0, found->second.find_first_of(".@"));
        return name == "C" || name == "POSIX" ? std::string() : name;
    }
    return {};
}

#if defined(SCRIMLET_WITH_ICU)

std::optional<CueSheet::NameOrder> userOrder(const Harness::Environment& environment) {
    UErrorCode status = U_ZERO_ERROR;
    const std::string locale = localeName(environment);
    std::shared_ptr<UCollator> collator(ucol_open(locale.c_str(), &status), ucol_close);
    if (U_FAILURE(status) || !collator) {
        return std::nullopt;
    }
    // Secondary strength: base letters decide, accents break ties, case never counts.
    ucol_setStrength(collator.get(), UCOL_SECONDARY);
    return [collator](std::string_view a, std::string_view b) {
        constexpr size_t limit = INT32_MAX;
        if (a.size() > limit || b.size() > limit) {
            return CueSheet::plainNameOrder(a, b);
        }
        UErrorCode error = U_ZERO_ERROR;
        const UCollationResult result =
            ucol_strcollUTF8(collator.get(), a.data(), static_cast<int32_t>(a.size()), b.data(),
                             static_cast<int32_t>(b.size()), &error);
        if (U_FAILURE(error)) {
            return CueSheet::plainNameOrder(a, b);
        }
        return result == UCOL_LESS      ? std::weak_ordering::less
               : result == UCOL_GREATER ? std::weak_ordering::greater
                                        : std::weak_ordering::equivalent;
    };
}

#else

std::optional<CueSheet::NameOrder> userOrder(const Harness::Environment&) {
    return std::nullopt;
}

#endif

} // namespace scrimlet::NameCollation
