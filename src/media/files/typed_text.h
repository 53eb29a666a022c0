#pragma once
/// Where the text that the machine types (cgenie/typing/typing.h) comes from.

#include <cstdint>
#include <span>
#include <string>

/// Starts typing `keys_before` and then the whole file; 0 when it cannot be read, is no regular
/// file or is larger than LARGEST_FILE.
int keyboard_open_bas_file(const std::string& path, const std::string& keys_before = {});
/// The same for its bytes.
void type_listing(std::span<const uint8_t> bytes, const std::string& keys_before);
/// Types the text, up to a zero byte, from the machine's next look at its keyboard on.
void type_into_machine(const std::string& text);
/// Types the clipboard's text, where there is one; see lines_fit.
void gui_paste_from_clipboard();
/// Whether the firmware takes each line of the text whole. If not, the user is told which line of
/// `name` is too long, and the text should not be typed. What a ROM of the user's takes is not
/// known: then it is true.
bool lines_fit(const std::string& name, std::span<const uint8_t> text);
