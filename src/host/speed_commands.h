#pragma once
/// The commands that change how fast the machine runs and how far ahead it is shown.

#include <cstdint>

/// From normal speed to half, to a quarter, and back; the status bar tells.
void step_slow_motion();
/// Run-ahead by so many frames, 0 to MOST_FRAMES_AHEAD.
void choose_run_ahead(uint32_t frames);
/// For a machine that stops: shows its own picture in place of one from ahead.
void show_true_frame();
