#pragma once

// The status item's picture: a small proscenium with a curtain, closed when dark, half open
// in standby, drawn back around a red lamp when live.

#include "Drawing.hpp"

#include <string_view>

namespace scrimlet::MenuGlyph {

/// 22 × 16 when live, room for the lamp; 18 × 16 otherwise.
Size size(bool live);
/// The dark and standby glyphs take the menu bar's colour; the live one keeps its red.
bool isTemplate(bool live);
/// "Scrimlet: on stage" when live, "Scrimlet" otherwise.
std::string_view accessibilityDescription(bool live);
/// The system's label colour, the live glyph's ink, as it resolves in each appearance.
Color labelColor(Appearance appearance);

/// The glyph as the image holds it: black ink for a template, the label colour of the
/// appearance and the on-air lamp when live.
Drawing drawing(bool live, bool standby, Appearance appearance);
/// The glyph as the menu bar shows it: a template takes the bar's text colour, black on a
/// light bar and white on a dark one.
Drawing asShown(bool live, bool standby, Appearance appearance);

} // namespace scrimlet::MenuGlyph
