#pragma once
/// Short texts in letters made of lines, which look the same on every host and are sharp in every
/// size: capitals, digits, the marks of ASCII, arrows, and the accented letters that stand on the
/// keys of European keyboards.

#include "host/drawing.h"

#include <string_view>

/// How a text looks: the height of its capitals and the width of its lines, in pixels.
struct Lettering {
    double height = 0;
    double line = 0;
};

/// Width in pixels of a text in UTF-8. Small letters count as capitals; what has no letter here is
/// left out.
double engraved_width(std::string_view text, const Lettering& lettering);
/// Draws the text, the top left corner of its capitals at `place`.
void engrave(Drawing& drawing, Point place, std::string_view text, const Lettering& lettering,
             Colour colour);
/// Is there a letter for the first character of the text?
bool can_be_engraved(std::string_view text);
