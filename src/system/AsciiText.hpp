#pragma once

// The plain ASCII handling of short texts from other programs: preference values, shortcut
// names and output. Other bytes pass untouched.

#include <string>
#include <string_view>

namespace scrimlet::ascii {

inline std::string lowercased(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return out;
}

/// The text without the given characters at either end.
inline std::string_view trimmed(std::string_view text, std::string_view blanks) {
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace scrimlet::ascii
