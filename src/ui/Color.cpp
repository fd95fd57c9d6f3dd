#include "Color.hpp"

namespace scrimlet {

Appearance appearanceFromBestMatch(std::string_view name) {
    return name == "NSAppearanceNameDarkAqua" ? Appearance::dark : Appearance::light;
}

std::string_view rawValue(Appearance appearance) {
    return appearance == Appearance::dark ? "dark" : "light";
}

} // namespace scrimlet
