#pragma once
/// Keyboard: an 8 x 8 matrix in memory at F800-FBFF. The low eight address bits select a row, the
/// byte read has one bit per column, 1 = key down.

#include <cstdint>

constexpr int MAPPING_SYMBOLIC = 1; ///< of keyboard_change_mapping

/// Column byte of the row that the lowest set bit of `address_low` selects; 0 when no bit is set.
/// Rows never combine.
uint8_t keyboard_read(uint8_t address_low);
/// The same of the keys that were looked at last, without any effect.
uint8_t keyboard_peek(uint8_t address_low);
/// Power-on: the symbolic mapping, and every key released.
void keyboard_init();
/// Takes every key for released, until the next look at the input.
void keyboard_reset();
/// 1 symbolic, otherwise positional.
void keyboard_change_mapping(int mapping);
