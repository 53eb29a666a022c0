#pragma once
/// Motorola MC6845 CRT controller: the register file and what the video derives from it.
///
/// Modelled: R0 to R15, character geometry, start address, cursor with its blink, and the vertical
/// placement of the picture in the 288-line frame, which follows the sync position smoothly.
/// Left out: light pen (R16, R17), status register, interlaced video. Reads return what was
/// written, also for registers that the chip cannot read back: the bus offers nothing else.
///
/// Character clocks are two processor cycles; lines are scan lines.

#include "wall/state_record.h"

#include <cstdint>

/// Derived values, recomputed when a register is written. Register numbers in comments.
struct crtc_state {
    uint8_t registers[16];             ///< as written; R12 masked to six bits
    uint32_t selected;                 ///< 0-15
    uint32_t horizontal_total;         ///< R0 + 1 character clocks
    uint32_t horizontal_displayed;     ///< R1 characters
    uint32_t horizontal_sync_position; ///< R2 + 1
    uint32_t sync_widths;              ///< R3: low nibble horizontal, high nibble vertical
    uint32_t vertical_total;           ///< R4 AND 7F rows, minus one
    uint32_t vertical_total_adjust;    ///< R5 AND 1F lines
    uint32_t vertical_displayed;       ///< R6 AND 7F rows
    uint32_t vertical_sync_position;   ///< (R7 AND 7F) + 1 rows
    uint32_t interlace_mask;           ///< R8 bit 0 in every bit
    uint32_t maximum_scan_line;        ///< R9 AND 1F, lines of a row minus one
    uint32_t cursor_mode;              ///< R10 AND 60
    uint32_t cursor_start_line;        ///< R10 AND 1F
    uint32_t cursor_end_line;          ///< R11 AND 1F
    uint32_t start_address;            ///< R12, R13: 14 bits
    uint32_t cursor_address;           ///< R14, R15: 16 bits
    uint32_t displayed_scan_lines;     ///< R6 x (R9 + 1)
    uint32_t vertical_sync_line;       ///< (R7 + 1) x (R9 + 1)
    uint32_t sync_line_average;        ///< follows vertical_sync_line by four fifths a frame
    uint32_t sync_offset;              ///< sync_line_average - displayed_scan_lines, at least 0
    uint32_t top_border;               ///< border lines above the picture, at least 0
    uint32_t frame_counter;
    uint8_t cursor_visible;
    uint8_t unused[3];
};

extern crtc_state crtc;
extern const state_record crtc_record;

/// Selects the register that the next data access reaches. Only the low four bits are wired.
void crtc_register_select(uint8_t value);
/// Writes the selected register.
void crtc_write(uint8_t value);
/// `number` is 0 to 15.
void crtc_write_register(uint32_t number, uint8_t value);
/// The selected register as it was written.
uint8_t crtc_read();
uint8_t crtc_read_register(uint32_t number);
/// Once per frame: frame counter, cursor blink, vertical placement.
void crtc_vblank();
/// Power-on: clears the placement and the frame counter; the register file stays.
void crtc_reset();
