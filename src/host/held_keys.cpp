#include "host/held_keys.h"

#include "cgenie/input.h"
#include "files/file_names.h"
#include "host/key_map.h"

#include <string>

namespace {

constexpr unsigned MATRIX_KEYS = 64; ///< row x 8 + column
constexpr unsigned COLUMNS_OF_ROW = 8;
constexpr unsigned PAD_KEYS = 10;

struct {
    uint64_t keys = 0; ///< a bit for each
    uint16_t pad = 0;
    std::optional<machine_stick> sticks[2];
} holding;

} // namespace

std::optional<unsigned> held_key_named(std::string_view name) {
    const std::string wanted = lower_case(std::string(name));
    for (unsigned key = 0; key < MATRIX_KEYS; ++key) {
        const char* const printed = machine_key_name(key);
        if (printed && wanted == lower_case(printed)) return key;
    }
    for (unsigned digit = 0; digit < PAD_KEYS; ++digit) {
        if (wanted == "pad" + std::to_string(digit)) return MATRIX_KEYS + digit;
    }
    return {};
}

void hold_key(unsigned key, bool down) {
    if (key < MATRIX_KEYS) {
        const uint64_t bit = uint64_t(1) << key;
        holding.keys = down ? holding.keys | bit : holding.keys & ~bit;
    } else {
        const auto bit = uint16_t(1U << (key - MATRIX_KEYS));
        holding.pad = uint16_t(down ? holding.pad | bit : holding.pad & ~bit);
    }
}

void hold_stick(unsigned number, const std::optional<machine_stick>& stick) {
    holding.sticks[number] = stick;
}

void release_held_keys() { holding = {}; }

void press_held_keys(machine_input& input) {
    for (unsigned row = 0; row < MATRIX_KEYS / COLUMNS_OF_ROW; ++row) {
        input.direct[row] |= uint8_t(holding.keys >> (row * COLUMNS_OF_ROW));
    }
    input.keypad |= holding.pad;
    for (unsigned number = 0; number < 2; ++number) {
        if (holding.sticks[number]) input.sticks[number] = *holding.sticks[number];
    }
}
