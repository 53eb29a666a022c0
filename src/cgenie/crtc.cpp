#include "cgenie/crtc.h"

#include <cassert>

crtc_state crtc;

namespace {
/// Registers in the data sheet's order and names.
enum : uint32_t {
    R0_HORIZONTAL_TOTAL,
    R1_HORIZONTAL_DISPLAYED,
    R2_HORIZONTAL_SYNC_POSITION,
    R3_SYNC_WIDTHS,
    R4_VERTICAL_TOTAL,
    R5_VERTICAL_TOTAL_ADJUST,
    R6_VERTICAL_DISPLAYED,
    R7_VERTICAL_SYNC_POSITION,
    R8_INTERLACE,
    R9_MAXIMUM_SCAN_LINE,
    R10_CURSOR_START,
    R11_CURSOR_END,
    R12_START_ADDRESS_HIGH,
    R13_START_ADDRESS_LOW,
    R14_CURSOR_HIGH,
    R15_CURSOR_LOW,
    REGISTER_COUNT
};

constexpr uint8_t ROW_MASK = 0x7F;         // R4, R6, R7
constexpr uint8_t SCAN_LINE_MASK = 0x1F;   // R5, R9, R10, R11
constexpr uint8_t INTERLACE_ENABLE = 0x01; // R8
constexpr uint8_t CURSOR_MODE_MASK = 0x60; // R10
constexpr uint8_t START_HIGH_MASK = 0x3F;  // R12
constexpr uint32_t ALL_BITS = 0xFFFFFFFF;
constexpr uint32_t OUTPUT_LINES = 288;

enum : uint32_t {
    CURSOR_STEADY = 0x00,
    CURSOR_OFF = 0x20,
    CURSOR_BLINK_FAST = 0x40,
    CURSOR_BLINK_SLOW = 0x60
};
/// Bits of the frame counter that light a blinking cursor: 16 or 32 frames on, as many off.
constexpr uint32_t BLINK_FAST_BIT = 1u << 4;
constexpr uint32_t BLINK_SLOW_BIT = 1u << 5;

constexpr state_field crtc_fields[] = {
    {"registers", sizeof(crtc_state::registers)},
    {"selected", sizeof(crtc_state::selected)},
    {"horizontal_total", sizeof(crtc_state::horizontal_total)},
    {"horizontal_displayed", sizeof(crtc_state::horizontal_displayed)},
    {"horizontal_sync_position", sizeof(crtc_state::horizontal_sync_position)},
    {"sync_widths", sizeof(crtc_state::sync_widths)},
    {"vertical_total", sizeof(crtc_state::vertical_total)},
    {"vertical_total_adjust", sizeof(crtc_state::vertical_total_adjust)},
    {"vertical_displayed", sizeof(crtc_state::vertical_displayed)},
    {"vertical_sync_position", sizeof(crtc_state::vertical_sync_position)},
    {"interlace_mask", sizeof(crtc_state::interlace_mask)},
    {"maximum_scan_line", sizeof(crtc_state::maximum_scan_line)},
    {"cursor_mode", sizeof(crtc_state::cursor_mode)},
    {"cursor_start_line", sizeof(crtc_state::cursor_start_line)},
    {"cursor_end_line", sizeof(crtc_state::cursor_end_line)},
    {"start_address", sizeof(crtc_state::start_address)},
    {"cursor_address", sizeof(crtc_state::cursor_address)},
    {"displayed_scan_lines", sizeof(crtc_state::displayed_scan_lines)},
    {"vertical_sync_line", sizeof(crtc_state::vertical_sync_line)},
    {"sync_line_average", sizeof(crtc_state::sync_line_average)},
    {"sync_offset", sizeof(crtc_state::sync_offset)},
    {"top_border", sizeof(crtc_state::top_border)},
    {"frame_counter", sizeof(crtc_state::frame_counter)},
    {"cursor_visible", sizeof(crtc_state::cursor_visible)},
    {"unused", sizeof(crtc_state::unused)},
};

constexpr uint32_t MOST_COLUMNS = 256;
constexpr uint32_t MOST_LINES = (ROW_MASK + 1) * (SCAN_LINE_MASK + 1);

const char* fault(const crtc_state& c) {
    return first_fault({{"selected", c.selected < REGISTER_COUNT},
                        {"horizontal_total", c.horizontal_total <= MOST_COLUMNS},
                        {"horizontal_displayed", c.horizontal_displayed < MOST_COLUMNS},
                        {"horizontal_sync_position", c.horizontal_sync_position <= MOST_COLUMNS},
                        {"sync_widths", c.sync_widths <= UINT8_MAX},
                        {"vertical_total", c.vertical_total <= ROW_MASK},
                        {"vertical_total_adjust", c.vertical_total_adjust <= SCAN_LINE_MASK},
                        {"vertical_displayed", c.vertical_displayed <= ROW_MASK},
                        {"vertical_sync_position", c.vertical_sync_position <= ROW_MASK + 1},
                        {"interlace_mask", c.interlace_mask == 0 || c.interlace_mask == ALL_BITS},
                        {"maximum_scan_line", c.maximum_scan_line <= SCAN_LINE_MASK},
                        {"cursor_mode", (c.cursor_mode & ~CURSOR_MODE_MASK) == 0},
                        {"cursor_start_line", c.cursor_start_line <= SCAN_LINE_MASK},
                        {"cursor_end_line", c.cursor_end_line <= SCAN_LINE_MASK},
                        {"start_address", c.start_address >> 8 <= START_HIGH_MASK},
                        {"cursor_address", c.cursor_address <= UINT16_MAX},
                        {"displayed_scan_lines", c.displayed_scan_lines <= MOST_LINES},
                        {"vertical_sync_line", c.vertical_sync_line <= MOST_LINES},
                        {"sync_line_average", c.sync_line_average <= MOST_LINES},
                        {"sync_offset", c.sync_offset <= MOST_LINES},
                        {"top_border", c.top_border <= OUTPUT_LINES},
                        {"cursor_visible", c.cursor_visible <= 1}});
}

uint32_t difference_or_zero(uint32_t a, uint32_t b) { return a > b ? a - b : 0; }
uint32_t with_high_byte(uint32_t address, uint32_t high) { return high << 8 | (address & 0xFF); }
uint32_t with_low_byte(uint32_t address, uint32_t low) { return (address & ~0xFFu) | low; }

/// The lines from the last displayed one to the vertical sync lie below the picture; whatever the
/// output frame has left lies above it.
void place_picture() {
    crtc.sync_offset = difference_or_zero(crtc.sync_line_average, crtc.displayed_scan_lines);
    crtc.top_border =
        difference_or_zero(OUTPUT_LINES, crtc.sync_offset + crtc.displayed_scan_lines);
}

// Row counts become line counts.
void count_displayed_lines() {
    crtc.displayed_scan_lines = crtc.vertical_displayed * (crtc.maximum_scan_line + 1);
}
void count_sync_lines() {
    crtc.vertical_sync_line = crtc.vertical_sync_position * (crtc.maximum_scan_line + 1);
}

/// Moves the average four fifths of the way to the present sync line in each frame. When a program
/// moves the sync, the picture thus follows over a few frames, as on a television.
void follow_sync_line() {
    crtc.sync_line_average = (crtc.sync_line_average + 4 * crtc.vertical_sync_line) / 5;
    place_picture();
}

bool cursor_lit() {
    switch (crtc.cursor_mode) {
    case CURSOR_STEADY: return true;
    case CURSOR_BLINK_FAST: return (crtc.frame_counter & BLINK_FAST_BIT) != 0;
    case CURSOR_BLINK_SLOW: return (crtc.frame_counter & BLINK_SLOW_BIT) != 0;
    default: return false; // CURSOR_OFF
    }
}
} // namespace

const state_record crtc_record = {"crtc", &crtc, sizeof crtc, crtc_fields,
                                  fault_of<crtc_state, fault>};

void crtc_register_select(uint8_t value) { crtc.selected = value & 0x0F; }
void crtc_write(uint8_t value) { crtc_write_register(crtc.selected, value); }
uint8_t crtc_read() { return crtc_read_register(crtc.selected); }

void crtc_write_register(uint32_t number, uint8_t value) {
    assert(number < REGISTER_COUNT);
    if (number == R12_START_ADDRESS_HIGH) value &= START_HIGH_MASK;
    crtc.registers[number] = value;
    switch (number) {
    case R0_HORIZONTAL_TOTAL: crtc.horizontal_total = value + 1u; break;
    case R1_HORIZONTAL_DISPLAYED: crtc.horizontal_displayed = value; break;
    case R2_HORIZONTAL_SYNC_POSITION: crtc.horizontal_sync_position = value + 1u; break;
    case R3_SYNC_WIDTHS:
        crtc.sync_widths = value;
        place_picture();
        break;
    case R4_VERTICAL_TOTAL: crtc.vertical_total = value & ROW_MASK; break;
    case R5_VERTICAL_TOTAL_ADJUST: crtc.vertical_total_adjust = value & SCAN_LINE_MASK; break;
    case R6_VERTICAL_DISPLAYED:
        crtc.vertical_displayed = value & ROW_MASK;
        count_displayed_lines();
        place_picture();
        break;
    case R7_VERTICAL_SYNC_POSITION:
        crtc.vertical_sync_position = (value & ROW_MASK) + 1u;
        count_sync_lines();
        place_picture();
        break;
    case R8_INTERLACE: crtc.interlace_mask = value & INTERLACE_ENABLE ? ALL_BITS : 0; break;
    case R9_MAXIMUM_SCAN_LINE:
        crtc.maximum_scan_line = value & SCAN_LINE_MASK;
        count_displayed_lines();
        count_sync_lines();
        place_picture();
        break;
    case R10_CURSOR_START:
        crtc.cursor_mode = value & CURSOR_MODE_MASK;
        crtc.cursor_start_line = value & SCAN_LINE_MASK;
        break;
    case R11_CURSOR_END: crtc.cursor_end_line = value & SCAN_LINE_MASK; break;
    case R12_START_ADDRESS_HIGH:
        crtc.start_address = with_high_byte(crtc.start_address, value);
        break;
    case R13_START_ADDRESS_LOW:
        crtc.start_address = with_low_byte(crtc.start_address, value);
        break;
    case R14_CURSOR_HIGH: crtc.cursor_address = with_high_byte(crtc.cursor_address, value); break;
    case R15_CURSOR_LOW: crtc.cursor_address = with_low_byte(crtc.cursor_address, value); break;
    default: break;
    }
}

uint8_t crtc_read_register(uint32_t number) {
    assert(number < REGISTER_COUNT);
    return crtc.registers[number];
}

void crtc_vblank() {
    ++crtc.frame_counter;
    crtc.cursor_visible = cursor_lit();
    follow_sync_line();
}

void crtc_reset() {
    crtc.displayed_scan_lines = 0;
    crtc.vertical_sync_line = 0;
    crtc.sync_line_average = 1;
    crtc.sync_offset = 0;
    crtc.top_border = 0;
    crtc.frame_counter = 0;
}
