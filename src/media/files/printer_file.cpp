#include "media/files/printer_file.h"

#include "core/machine_events.h"
#include "files/file_handle.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "media/printer.h"
#include "wall/report.h"

#include <cerrno>
#include <cstring>

namespace {

std::string printout_path;
FileHandle print;

void tell(const std::string& reason) {
    report({.text = "The printer's file cannot be written.",
            .file = printout_path,
            .reason = reason,
            .remedy = "The printer is not ready until it is switched on again."});
}

/// To be appended to; empty when it cannot be. A pipe that nobody reads would hold up the program,
/// so only files and devices are taken.
FileHandle open_printout() {
    FileHandle file = open_without_waiting(printout_path, "a");
    std::string reason = errno == ENXIO ? "is a pipe" : std::strerror(errno);
    const auto facts = file ? facts_of(file.get()) : std::nullopt;
    if (facts) {
        if (facts->kind != SystemFileFacts::Kind::other) return file;
        reason = "is neither a file nor a device";
    }
    tell(reason);
    return {};
}

void open_print() {
    if (print) return;
    make_folders(folder_of(printout_path)); // a failure shows when the file is opened
    print = open_printout();
    // Each byte reaches the file at once, for whoever watches it.
    if (print) std::setvbuf(print.get(), nullptr, _IONBF, 0);
}

} // namespace

void printer_set_filename(const std::string& directory) {
    printout_path = path_in(directory, "printer.txt");
}

const std::string& printer_file() { return printout_path; }

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
