#pragma once
/// The status bar: configuration, drive lamps, cassette, messages.

#include <string>

constexpr const char* PRODUCT_NAME = "Tarvelin";

/// Creates the bar once, with its parts and lamps.
void CreateStatusBar();
/// Removes the bar. In full screen messages are then shown over the picture (overlay.h), else
/// nothing is shown.
void DestroyStatusBar();
/// Shows in a new bar what there was to show while there was none.
void restore_status();
/// Shows a text in the part for messages. Its tool tip shows `details`, which may be empty.
void show_status(const std::string& text, const std::string& details);
/// Shows a sentence over the whole bar; an empty one, or a new message, ends that.
void show_tip(const std::string& tip);
/// The message that was shown last.
const std::string& shown_status();
int StatusBarHeight(); ///< 0 without a bar
/// Lays the bar out again after a change of the window's size.
void StatusBarRedraw();
/// Draws the lamps' bevels, and the lamps too when `lamps` is set.
void led_redraw(int lamps);
/// Shows a text in a StatusPart; nothing for the lamps.
void show_status_part(int part, const char* text);
/// Left edge of a button in the bar: 0 to 3 the lamps, 4 the cassette's part.
int status_button_left(int button);
/// Sets the window title to the product name, " - " and the text.
[[gnu::format(printf, 1, 2)]] void ui_set_window_title(const char* format, ...);
/// Lights the lamp of `drive` (0 to 3); any other value lights none. To be called after each frame.
void light_lamp(int drive);
/// The drive writes: for a quarter of a second there is a mark in its lamp, while that is lit.
void mark_lamp(int drive);
