#pragma once
/// The overlay: a message over the top of the picture, where there is no status bar to show it. It
/// goes by itself after three seconds, also while the machine stands still.

#include <cstdint>
#include <optional>
#include <string>

/// Shows the text for three seconds from now on, in place of the one before.
void overlay_show(const std::string& text);
void overlay_hide();
/// Draws the text once more, when one is shown.
void overlay_draw();
/// Once a turn: hides a text whose time is over. Microseconds that are left of one that is shown.
std::optional<int64_t> overlay_turn();
