#pragma once

// Readable failures for the drawings' geometry and colours.

#include "Drawing.hpp"

#include <ostream>

namespace scrimlet {

inline void PrintTo(const Point& p, std::ostream* out) {
    *out << "(" << p.x << ", " << p.y << ")";
}
inline void PrintTo(const Size& s, std::ostream* out) {
    *out << s.width << " × " << s.height;
}
inline void PrintTo(const Rect& r, std::ostream* out) {
    *out << "(" << r.x << ", " << r.y << ", " << r.width << ", " << r.height << ")";
}
inline void PrintTo(const Color& c, std::ostream* out) {
    *out << "rgba(" << c.red * 255 << ", " << c.green * 255 << ", " << c.blue * 255 << ", "
         << c.alpha << ")";
}

} // namespace scrimlet
