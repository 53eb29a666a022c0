#pragma once
/// Keyboard: an 8 x 8 matrix in memory at F800-FBFF. The low eight address bits select a row, the
/// byte read has one bit per column, 1 = key down.

#include <cstdint>

/// Column byte of the row that the lowest set bit of `address_low` selects; 0 when no bit is set.
/// Rows never combine. Host keys are sampled at the moment of the read.
uint8_t keyboard_read(uint8_t address_low);
/// Builds the symbolic map for the host's present layout, and switches to the symbolic mapping.
void keyboard_init();
/// Takes every host key for released.
void keyboard_reset();
/// 1 symbolic, otherwise positional.
void keyboard_change_mapping(int mapping);
