#pragma once
/// Text that the machine types for its user. While the typing trap is in the ROM (media/traps.h),
/// each call of the firmware's keyboard routine takes the next character.

#include "wall/shared_bytes.h"
#include "wall/state_record.h"

#include <cstdint>
#include <span>
#include <string>

struct typing_state {
    uint64_t position = 0; ///< of the next byte; may be one behind the end
};
extern typing_state typing;
extern const state_record typing_record;
/// The whole text.
extern shared_bytes typing_text;

/// Starts typing all of these bytes.
void keyboard_open_from_bytes(shared_bytes text);
/// Starts typing the text, up to a zero byte; 1 on success.
int keyboard_open_from_buffer(const std::string& text);
/// The next character to type. At the end of the text 0, and `done` is set.
uint8_t keyboard_type_bas_file(int* done);
/// Stops typing and frees the text.
void keyboard_type_reset();
/// A character of the host as the machine's: "^" becomes "[" and "`" becomes "'". After a carriage
/// return, typing also skips a byte, the line feed of the pair.
uint8_t convert_typed_character(uint8_t character);

/// Characters that the firmware takes in a line.
constexpr size_t LONGEST_TYPED_LINE = 240;
struct long_line {
    size_t number = 0; ///< of the text's lines, counted from 1; 0 = none
    size_t length = 0; ///< in characters
};
/// The first line of a text that the firmware would cut if it were typed.
long_line first_long_line(std::span<const uint8_t> text);
