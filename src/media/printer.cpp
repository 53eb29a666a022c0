#include "media/printer.h"

#include "files/file_handle.h"
#include "wall/report.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

bool printer_enabled = false;

namespace {

constexpr int LINE_LENGTH = 64;
enum : uint8_t { FORM_FEED = 12, CARRIAGE_RETURN = 13 };

std::filesystem::path printout_path;
FileHandle print;
bool busy = false;
uint8_t data_in = 0;
int char_count = 0; ///< on this line

void tell(const std::string& reason) {
    report({.text = "The printer's file cannot be written.",
            .file = printout_path.string(),
            .reason = reason,
            .remedy = "The printer is not ready until it is switched on again."});
}

/// To be appended to; empty when it cannot be. A pipe that nobody reads would hold up the program,
/// so only files and devices are taken.
FileHandle open_printout() {
    constexpr mode_t OWNERS_CHOICE = 0666;
    const int flags = O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_CLOEXEC;
    const int descriptor = open(printout_path.c_str(), flags, OWNERS_CHOICE);
    std::string reason = errno == ENXIO ? "is a pipe" : std::strerror(errno);
    FileHandle file = stream_of(descriptor, "a");
    struct stat status = {};
    if (file && fstat(descriptor, &status) == 0) {
        if (S_ISREG(status.st_mode) || S_ISCHR(status.st_mode)) return file;
        reason = "is neither a file nor a device";
    }
    tell(reason);
    return {};
}

bool put(uint8_t byte) { return std::fputc(byte, print.get()) != EOF; }

bool end_line() {
    char_count = 0;
    return put('\n');
}

bool put_pending() {
    // The byte that wraps a line is not counted: the line it begins holds one more.
    if (++char_count > LINE_LENGTH && !end_line()) return false;
    const bool ends_line = data_in == FORM_FEED || data_in == CARRIAGE_RETURN;
    return ends_line ? end_line() : put(data_in);
}

/// A printer that cannot print is out of paper: the byte waits, and it is not ready any more.
void write_pending() {
    if (!busy || !print) return;
    if (put_pending()) {
        busy = false;
        return;
    }
    const std::string reason = std::strerror(errno);
    print.reset();
    tell(reason);
}

} // namespace

void printer_set_filename(const std::string& directory) {
    printout_path = std::filesystem::path(directory) / "printer.txt";
}

void printer_init() {
    if (!print) {
        std::error_code ignored; // a directory that cannot be made shows when the file is opened
        std::filesystem::create_directories(printout_path.parent_path(), ignored);
        print = open_printout();
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
