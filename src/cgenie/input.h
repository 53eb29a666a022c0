#pragma once
/// What is connected to the machine and moved by a person: keyboard, joysticks, keypads. Positions
/// of the machine's own, not keys of any host: the program around the machine fills them in.

#include "wall/state_record.h"

#include <cstdint>

struct machine_stick {
    uint16_t x = 32767; ///< 0 left to 65535 right
    uint16_t y = 32767; ///< 0 down to 65535 up
    uint8_t first_button = 0;
    uint8_t second_button = 0;
};

/// Keyboard rows have a bit per column, 1 = pressed.
struct machine_input {
    /// Keys by the character that the user means: of plane 0 alone, of plane 1 with the machine's
    /// SHIFT. Row 7 is not looked at.
    uint8_t symbolic[2][8] = {};
    /// Keys by where they are.
    uint8_t positional[8] = {};
    /// Keys of the machine that are held as such, whatever the mapping: on a picture of its
    /// keyboard, or by touch.
    uint8_t direct[8] = {};
    machine_stick sticks[2];
    uint16_t keypad = 0; ///< bits 0 to 9: the digits of the keypads, pressed
};

struct input_contents {
    machine_input now;
    uint8_t look;             ///< whether the next read asks the host again; see input_now
    uint8_t keyboard_mapping; ///< 1 symbolic, otherwise positional
    uint8_t next_shift_state; ///< reads of row 7 to come that report SHIFT as down
    uint8_t unused;
};
extern input_contents input_state;
extern const state_record input_record;

/// For the frame driver: a frame begins, or has ended.
void input_begin_frame();
void input_end_frame();
/// The input for a device that is read at this moment. Within a frame it stays as it was at the
/// first read; outside of one, each read asks the host.
const machine_input& input_now();
