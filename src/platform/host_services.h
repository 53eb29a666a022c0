#pragma once
/// What the machine asks of the program around it. Implemented by the application shell.

#include "platform/report.h"

#include <string>

/// Parts of the status bar.
enum StatusPart : int { PART_CONFIGURATION, PART_LAMPS, PART_CASSETTE, PART_MESSAGES };

/// Shows a message in the status bar (printf rules).
[[gnu::format(printf, 1, 2)]] void StatusBarText(const char* format, ...);
/// Shows a text in a StatusPart; nothing for the lamps.
[[gnu::format(printf, 2, 3)]] void StatusBarPartText(int part, const char* format, ...);
/// Sets the window title to the product name, " - " and the text.
[[gnu::format(printf, 1, 2)]] void ui_set_window_title(const char* format, ...);
/// Lights the lamp of `drive` (0 to 3); any other value lights none.
void led_update(int drive);
/// Draws one frame into the canvas and presents it; 0 does nothing.
void update_screen(int flag);
/// Saves the canvas under the next free name after `last_file_name`, GIF or BMP by its depth, and
/// the video-RAM dump where that is switched on.
void host_save_screenshot();
/// Hands the canvas to the running video capture.
void host_capture_frame();
/// 1 when there is a canvas to draw into.
int host_has_canvas();
/// Asks for the name of a cassette image to save to; 1 when there is one.
int get_ui_save_tape_filename(std::string* path);
/// The program counter has reached the armed breakpoint. 1 when the machine is to stand there, 0
/// when it is to go on.
int host_breakpoint_reached();
