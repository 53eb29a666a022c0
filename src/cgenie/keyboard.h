#pragma once
/// Keyboard: an 8 x 8 matrix in memory at F800-FBFF. The low eight address bits select a row, the
/// byte read has one bit per column, 1 = key down.

#include <cstdint>
#include <string>

/// Column byte of the row that the lowest set bit of `address_low` selects; 0 when no bit is set.
/// Rows never combine. Host keys are sampled at the moment of the read.
uint8_t keyboard_read(uint8_t address_low);
/// Builds the symbolic map for the host's present layout, and switches to the symbolic mapping.
void keyboard_init();
/// Takes every host key for released.
void keyboard_reset();
/// 1 symbolic, otherwise positional.
void keyboard_change_mapping(int mapping);

/// Starts typing the text, up to a zero byte; 1 on success.
int keyboard_open_from_buffer(const std::string& text);
/// Starts typing the whole file, behind the keys in front of it; 0 when it cannot be read, is no
/// regular file or is larger than LARGEST_FILE.
int keyboard_open_bas_file(const std::string& path, const std::string& keys_before = {});
/// Starts typing the clipboard's text, where there is one.
void gui_paste_from_clipboard();
/// The next character to type. At the end of the text 0, and `done` is set.
uint8_t keyboard_type_bas_file(int* done);
/// Stops typing and frees the text.
void keyboard_type_reset();
/// A character of the host as the machine's: "^" becomes "[" and "`" becomes "'". After a carriage
/// return, typing also skips a byte, the line feed of the pair.
uint8_t convert_typed_character(uint8_t character);
