#pragma once

// Text that comes from other programs is not always valid UTF-8; what the rules keep of it
// must be.

#include <string>
#include <string_view>

namespace scrimlet::utf8 {

bool isValid(std::string_view bytes);
/// The bytes with every ill-formed sequence replaced by U+FFFD, one replacement for each
/// maximal part that cannot begin a character, as the platform's own text decoding does.
std::string repaired(std::string_view bytes);

} // namespace scrimlet::utf8
