#pragma once
/// Keyboard: an 8 x 8 matrix in memory at F800-FBFF. The low eight address bits select a row, the
/// byte read has one bit per column, 1 = key down.

#include <cstdint>

/// Column byte of the row that the lowest set bit of `address_low` selects; 0 when no bit is set.
/// Rows never combine. Host keys are sampled at the moment of the read.
uint8_t keyboard_read(uint8_t address_low);
void keyboard_init();
void keyboard_reset();
/// Stops typing and frees the typing buffer.
void keyboard_type_reset();
