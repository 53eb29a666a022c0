#pragma once
/// The file that the printer (media/printer.h) prints to: text, appended.

#include <cstddef>
#include <cstdint>
#include <string>

/// The directory of the output file, "printer.txt".
void printer_set_filename(const std::string& directory);
/// The path of the output file, which may not exist yet.
const std::string& printer_file();
/// Opens the output file, unless it is open, and clears the printer's state. The directory is made
/// when it is missing. Where that fails, the user is told and the printer is there, but never
/// ready.
void printer_init();
/// Prints what waits, and closes the file.
void printer_close();
/// For another state of the machine: its printer goes on at the file's end.
void printer_file_follow();
/// Writes what is printed. When that fails, the file is closed, the user is told, and the result is
/// 0.
int printer_file_write(const uint8_t* bytes, size_t count);
