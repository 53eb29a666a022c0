#pragma once
/// Memory as the processor would read it at this moment, without what a read does to devices and
/// clock: the keyboard as it was last looked at, the disk controller's registers as they are.

#include <cstdint>
#include <optional>

uint8_t debug_peek(uint16_t address);
/// Two bytes, low byte first; behind FFFF comes 0000.
uint16_t debug_peek_word(uint16_t address);
/// The CALL or RST that ends directly before the address, so that its return would lead there;
/// nothing without one.
std::optional<uint16_t> debug_call_before(uint16_t address);
