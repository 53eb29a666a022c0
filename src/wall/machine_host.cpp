#include "wall/machine_host.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

constexpr machine_host_calls defaults = {
    .status_text = [](const char*) {},
    .part_text = [](int, const char*) {},
    .report = [](const Report&) {},
    .print = [](text_stream, const char*) {},
    .lamp = [](int) {},
    .disk_written = [](int) {},
    .frame = [](int) {},
    .fragment = [](const uint16_t*) {},
    .sound_begins = [] {},
    .sound_was_reset = [] {},
    .stream_ends = [](output_stream) {},
    .was_reset = [] {},
    .stale = [] {},
    .fragment_decision = [](int) { return 1; },
    .write = [](output_stream, uint64_t, const uint8_t*, size_t) { return 1; },
    .read_rom = [](rom_file, uint8_t*, size_t) { return ROM_NOT_NAMED; },
    .read_tape = [](uint64_t, uint8_t*, size_t) -> size_t { return 0; },
    .read_input = [](machine_input&) {},
    .save_question = [] { return SAVE_REFUSED; },
    .breakpoint_reached = [] { return 0; },
    .watch_hit = [] { return 0; },
};

/// Of any length: paths may stand in it.
std::string format_text(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    std::string text(size_t(std::vsnprintf(nullptr, 0, format, again)), '\0');
    va_end(again);
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

} // namespace

machine_host_calls machine_host = defaults;

machine_host_calls machine_without_host() { return defaults; }

void StatusBarText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    machine_host.status_text(format_text(format, arguments).c_str());
    va_end(arguments);
}

void StatusBarPartText(int part, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    machine_host.part_text(part, format_text(format, arguments).c_str());
    va_end(arguments);
}

void machine_print(text_stream to, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    machine_host.print(to, format_text(format, arguments).c_str());
    va_end(arguments);
}

void report(const Report& told) { machine_host.report(told); }
void led_update(int drive) { machine_host.lamp(drive); }
void update_screen(int flag) { machine_host.frame(flag); }
