#pragma once
/// Lowe high-resolution graphics board: its switch and its record. The board is not connected to
/// the bus, so switching it on changes nothing that the machine or the user sees.

#include <array>
#include <cstdint>

struct lowe_board {
    uint32_t enabled = 0;
    uint32_t column = 0; ///< 0-63
    uint32_t row = 0;    ///< 0-255
    uint32_t display = 0;
    std::array<uint8_t, 131072> pixels = {}; ///< 0 or FF each, 384 a line
};
extern lowe_board lowe;

/// Clears the board and switches it on.
void hires_lowe_init();
/// Switches it off; its contents stay.
void hires_lowe_destroy();
