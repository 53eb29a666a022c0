#pragma once
/// Parallel printer at the sound chip's port A, as text appended to a file.
///
/// Every write of register 14 prints one byte; no strobe is modelled. The status lines are read in
/// the upper half of port B, which the joysticks have while the printer is off. Form feed and
/// carriage return end a line; every other byte goes to the file as it is. A line that gets too
/// long is wrapped.

#include <cstdint>
#include <string>

/// Kept in the settings; while it is on, port B shows the printer's status.
extern bool printer_enabled;

/// Opens the output file, unless it is open, and clears the state. The directory is made when it is
/// missing. Where that fails, the user is told and the printer is there, but never ready.
void printer_init();
/// Clears the busy line and the column; what was not written is lost.
void printer_reset();
/// Prints what waits, and closes the file.
void printer_close();
/// The directory of the output file, "printer.txt".
void printer_set_filename(const std::string& directory);
/// Prints one byte. Without a file it waits, and the printer stays busy; the next byte replaces it.
/// When the file cannot take it, the file is closed and the user told, once.
void print_byte(uint8_t value);
/// 1 while the output file is open.
int printer_is_ready();
/// 1 from the arrival of a byte until it has been written; without a file that is never.
int printer_is_busy();
