#pragma once
/// Printer at the sound chip's port A. None is connected yet.

#include <cstdint>
#include <string>

extern bool printer_enabled;
void printer_init();
void printer_close();
/// The directory of the printer's output file.
void printer_set_filename(const std::string& directory);
void print_byte(uint8_t value);
int printer_is_ready();
int printer_is_busy();
