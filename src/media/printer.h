#pragma once
/// Printer at the sound chip's port A. None is connected yet.

#include <cstdint>

extern bool printer_enabled;
void print_byte(uint8_t value);
int printer_is_ready();
int printer_is_busy();
