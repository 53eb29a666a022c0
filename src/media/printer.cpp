#include "media/printer.h"

#include "wall/machine_host.h"

namespace {

constexpr int32_t LINE_LENGTH = 64;
enum : uint8_t { LINE_END = 10, FORM_FEED = 12, CARRIAGE_RETURN = 13 };

constexpr state_field fields[] = {
    {"position", sizeof(printer_state::position)},
    {"char_count", sizeof(printer_state::char_count)},
    {"data_in", sizeof(printer_state::data_in)},
    {"busy", sizeof(printer_state::busy)},
    {"open", sizeof(printer_state::open)},
    {"enabled", sizeof(printer_state::enabled)},
};

const char* fault(const printer_state& state) {
    return first_fault({{"char_count", state.char_count >= 0 && state.char_count <= LINE_LENGTH},
                        {"busy", is_bool(state.busy)},
                        {"open", is_bool(state.open)},
                        {"enabled", is_bool(state.enabled)}});
}

bool put(uint8_t byte) {
    if (!machine_host.write(STREAM_PRINTER, printer.position, &byte, 1)) return false;
    ++printer.position;
    return true;
}

bool end_line() {
    printer.char_count = 0;
    return put(LINE_END);
}

bool put_pending() {
    // The byte that wraps a line is not counted: the line it begins holds one more.
    if (++printer.char_count > LINE_LENGTH && !end_line()) return false;
    const bool ends_line = printer.data_in == FORM_FEED || printer.data_in == CARRIAGE_RETURN;
    return ends_line ? end_line() : put(printer.data_in);
}

/// A printer that cannot print is out of paper: the byte waits, and it is not ready any more.
void write_pending() {
    if (!printer.busy || !printer.open) return;
    const bool printed = put_pending();
    (printed ? printer.busy : printer.open) = false;
}

} // namespace

printer_state printer;
constexpr state_record printer_record = {"printer", &printer, sizeof printer, fields,
                                         fault_of<printer_state, fault>};

void printer_set_open(int open) {
    write_pending();
    printer.open = open != 0;
}

void printer_reset() {
    printer.busy = false;
    printer.char_count = 0;
}

void print_byte(uint8_t value) {
    printer.busy = true;
    printer.data_in = value;
    write_pending();
}

int printer_is_ready() {
    write_pending();
    return printer.open ? 1 : 0;
}

int printer_is_busy() {
    write_pending();
    return printer.busy ? 1 : 0;
}
