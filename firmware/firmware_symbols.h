#pragma once
/// Names of the firmware's routines, tables and cells, taken from its assembly by the build.

#include <cstdint>
#include <span>

/// Which images have a name: a bit for each.
enum : uint8_t { SYMBOL_BASIC_V1 = 1, SYMBOL_BASIC_V2 = 2, SYMBOL_BASIC_V2SN = 4, SYMBOL_DISK = 8 };

struct firmware_symbol {
    uint16_t address;
    uint8_t images;
    const char* name;
};

/// In the order of their addresses; of several names for one address the best comes first.
extern const std::span<const firmware_symbol> firmware_symbols;
