#include "cgenie/keyboard.h"

#include "cgenie/input.h"

#include <algorithm>
#include <bit>

namespace {

constexpr unsigned COLUMNS = 8;
constexpr unsigned ROW_SHIFT = 7;
constexpr uint8_t COLUMN_SHIFT = 1 << 0;

/// A program looks at row 7 right behind a key's own row, some of them more than once.
constexpr uint8_t SHIFT_READS = 3;

/// Row 7 in the symbolic mapping: SHIFT is down when the character needs it, whatever the host's
/// own Shift key does.
uint8_t symbolic_shift_row() {
    if (input_state.next_shift_state == 0) return 0;
    --input_state.next_shift_state;
    return COLUMN_SHIFT;
}

uint8_t symbolic_row(const machine_input& input, unsigned row) {
    if (row == ROW_SHIFT) return symbolic_shift_row();
    const uint8_t alone = input.symbolic[0][row], shifted = input.symbolic[1][row];
    // With several keys down, the last one decides about SHIFT.
    for (unsigned column = 0; column < COLUMNS; ++column) {
        const auto bit = uint8_t(1U << column);
        if (alone & bit) {
            input_state.next_shift_state = 0;
        } else if (shifted & bit) {
            input_state.next_shift_state = SHIFT_READS;
        }
    }
    return alone | shifted;
}

uint8_t column_byte(const machine_input& input, uint8_t address_low) {
    const unsigned row = unsigned(std::countr_zero(address_low));
    const bool symbolic = input_state.keyboard_mapping == MAPPING_SYMBOLIC;
    return input.direct[row] | (symbolic ? symbolic_row(input, row) : input.positional[row]);
}

} // namespace

uint8_t keyboard_read(uint8_t address_low) {
    return address_low ? column_byte(input_now(), address_low) : 0;
}

uint8_t keyboard_peek(uint8_t address_low) {
    if (!address_low) return 0;
    const uint8_t shift_state = input_state.next_shift_state;
    const uint8_t value = column_byte(input_state.now, address_low);
    input_state.next_shift_state = shift_state;
    return value;
}

void keyboard_init() {
    keyboard_change_mapping(MAPPING_SYMBOLIC);
    keyboard_reset();
}

void keyboard_reset() {
    machine_input& input = input_state.now;
    for (auto* rows : {&input.symbolic[0], &input.symbolic[1], &input.positional, &input.direct}) {
        std::ranges::fill(*rows, uint8_t(0));
    }
    input_state.next_shift_state = 0;
}

void keyboard_change_mapping(int mapping) {
    input_state.keyboard_mapping = mapping == MAPPING_SYMBOLIC ? MAPPING_SYMBOLIC : 0;
}
