#pragma once

#include <algorithm>
#include <cctype>
#include <string>

namespace scrimlet {

/// Lower case for the plain ASCII words of links, verbs and titles; other bytes stay.
inline std::string lowercased(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace scrimlet
