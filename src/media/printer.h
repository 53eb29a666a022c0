#pragma once
/// Parallel printer at the sound chip's port A. What it prints is text, whose file is that of
/// media/files/printer_file.h.
///
/// Every write of register 14 prints one byte; no strobe is modelled. The status lines are read in
/// the upper half of port B, which the joysticks have while the printer is off. Form feed and
/// carriage return end a line; every other byte goes to the file as it is. A line that gets too
/// long is wrapped.

#include "wall/state_record.h"

#include <cstdint>

struct printer_state {
    uint64_t position = 0;  ///< bytes printed so far
    int32_t char_count = 0; ///< on this line
    uint8_t data_in = 0;    ///< the last byte received
    bool busy = false;      ///< `data_in` has not been printed yet
    bool open = false;      ///< there is a file
    bool enabled = false;
};
extern printer_state printer;
extern const state_record printer_record;
/// Kept in the settings; while it is on, port B shows the printer's status.
inline constexpr auto& printer_enabled = printer.enabled;

/// Tells whether there is a file to print to. When it is closed, the byte that waits is printed
/// first.
void printer_set_open(int open);
/// Clears the busy line and the column; what was not written is lost.
void printer_reset();
/// Prints one byte. Without a file it waits, and the printer stays busy; the next byte replaces it.
/// When the host cannot take it, there is no file any more.
void print_byte(uint8_t value);
/// 1 while the output file is open.
int printer_is_ready();
/// 1 from the arrival of a byte until it has been written; without a file that is never.
int printer_is_busy();
