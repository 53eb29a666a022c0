#pragma once
/// The built-in firmware, assembled and drawn by the build. A BASIC ROM stands at 0000-3FFF, the
/// disk ROM at C000-DFFF; a character set has 256 characters of 8 rows, bit 7 the left pixel.

#include <cstdint>

extern const uint8_t firmware_basic_v1[16384];   ///< 24 rows
extern const uint8_t firmware_basic_v2[16384];   ///< 25 rows, northern machines
extern const uint8_t firmware_basic_v2sn[16384]; ///< 25 rows, southern machines
extern const uint8_t firmware_disk[8192];
extern const uint8_t firmware_charset_original[2048];
extern const uint8_t firmware_charset_german[2048];
extern const uint8_t firmware_charset_emulator[2048];
