#include "media/printer.h"

#include "platform/file_handle.h"

#include <filesystem>
#include <system_error>

bool printer_enabled = false;

namespace {

constexpr int LINE_LENGTH = 64;
enum : uint8_t { FORM_FEED = 12, CARRIAGE_RETURN = 13 };

std::filesystem::path printout_path;
FileHandle print;
bool busy = false;
uint8_t data_in = 0;
int char_count = 0; ///< on this line

void end_line() {
    std::fputc('\n', print.get());
    char_count = 0;
}

void write_pending() {
    if (!busy || !print) return;
    // The byte that wraps a line is not counted: the line it begins holds one more.
    if (++char_count > LINE_LENGTH) end_line();
    if (data_in == FORM_FEED || data_in == CARRIAGE_RETURN) {
        end_line();
    } else {
        std::fputc(data_in, print.get());
    }
    busy = false;
}

} // namespace

void printer_set_filename(const std::string& directory) {
    printout_path = std::filesystem::path(directory) / "printer.txt";
}

void printer_init() {
    if (!print) {
        std::error_code ignored; // a directory that cannot be made shows when the file is opened
        std::filesystem::create_directories(printout_path.parent_path(), ignored);
        print = open_file(printout_path.string(), "a");
        // Each byte reaches the file at once, for whoever watches it.
        if (print) std::setvbuf(print.get(), nullptr, _IONBF, 0);
    }
    printer_reset();
}

void printer_reset() {
    busy = false;
    char_count = 0;
}

void printer_close() {
    write_pending();
    print.reset();
}

void print_byte(uint8_t value) {
    busy = true;
    data_in = value;
    write_pending();
}

int printer_is_ready() {
    write_pending();
    return print ? 1 : 0;
}

int printer_is_busy() {
    write_pending();
    return busy ? 1 : 0;
}
