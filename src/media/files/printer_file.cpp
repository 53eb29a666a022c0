#include "media/files/printer_file.h"

#include "core/machine_events.h"
#include "files/file_handle.h"
#include "media/printer.h"
#include "wall/report.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

std::filesystem::path printout_path;
FileHandle print;

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

void open_print() {
    if (print) return;
    std::error_code ignored; // a directory that cannot be made shows when the file is opened
    std::filesystem::create_directories(printout_path.parent_path(), ignored);
    print = open_printout();
    // Each byte reaches the file at once, for whoever watches it.
    if (print) std::setvbuf(print.get(), nullptr, _IONBF, 0);
}

} // namespace

void printer_set_filename(const std::string& directory) {
    printout_path = std::filesystem::path(directory) / "printer.txt";
}

void printer_init() {
    open_print();
    machine_apply(event_kind::printer_reset);
    machine_apply(event_kind::printer_file, print != nullptr);
}

void printer_close() {
    machine_apply(event_kind::printer_file, 0);
    print.reset();
}

void printer_file_follow() {
    if (!printer_enabled) return print.reset();
    open_print();
    if (printer.open != (print != nullptr))
        machine_apply(event_kind::printer_file, print != nullptr);
}

int printer_file_write(const uint8_t* bytes, size_t count) {
    if (!print) return 0;
    if (std::fwrite(bytes, 1, count, print.get()) == count) return 1;
    const std::string reason = std::strerror(errno);
    print.reset();
    tell(reason);
    return 0;
}
