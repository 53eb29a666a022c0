#pragma once
/// Lowe high-resolution graphics board: its switch and its record. The board is not connected to
/// the bus, so switching it on changes nothing that the machine or the user sees.

#include "wall/state_record.h"

#include <cstdint>

struct lowe_board {
    uint32_t enabled = 0;
    uint32_t column = 0; ///< 0-63
    uint32_t row = 0;    ///< 0-255
    uint32_t display = 0;
    /// 0 or FF each, 384 a line. Not in the record of the state: nothing that the machine does
    /// reaches them.
    uint8_t pixels[131072] = {};
};
extern lowe_board lowe;
extern const state_record lowe_record;

/// Clears the board and switches it on.
void hires_lowe_init();
/// Switches it off; its contents stay.
void hires_lowe_destroy();
