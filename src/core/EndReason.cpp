#include "EndReason.hpp"

namespace scrimlet {

namespace {

struct ReasonRow {
    std::string_view raw;
    std::string_view label;
};

constexpr std::array<ReasonRow, 5> reasonRows = {{
    {"stopped", "Stopped by you"},
    {"captureEnded", "Sharing ended"},
    {"timeLimit", "Time limit reached"},
    {"quit", "Scrimlet quit"},
    {"recovered", "Put back at launch"},
}};

} // namespace

std::string_view rawValue(EndReason reason) {
    return reasonRows[static_cast<size_t>(reason)].raw;
}

std::optional<EndReason> endReasonFromRaw(std::string_view raw) {
    for (const EndReason reason : end_reason::allCases) {
        if (rawValue(reason) == raw) {
            return reason;
        }
    }
    return std::nullopt;
}

std::string_view label(EndReason reason) {
    return reasonRows[static_cast<size_t>(reason)].label;
}

} // namespace scrimlet
