#pragma once
/// What is in a file or a medium, as lines for a person: beside the file dialogs, and in the panels
/// of disks and cassettes.

#include "media/disk_system.h"
#include "media/program_outline.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Of larger files only their beginning is looked at, or nothing but their size.
constexpr size_t LARGEST_PREVIEWED = 2 << 20; ///< bytes
constexpr size_t PREVIEW_LINES = 40;

/// The file in up to PREVIEW_LINES lines: its kind, and what is in it. It is never loaded, and what
/// it holds is not trusted. One that cannot be read gives a line that says so, a folder none.
std::vector<std::string> preview_of(const std::string& path);

/// Bytes of a file as text: printable ASCII, and "?" for all else.
std::string readable(std::string_view bytes);
/// The text, or "..." and its end where it is longer than so many bytes.
std::string ending_of(const std::string& text, size_t length);
/// "1 file", "2 files".
std::string counted(size_t count, const std::string& what);
/// "102400 bytes", or "1.2 MB" from a megabyte on.
std::string size_text(uint64_t bytes);
/// "0:00", minutes and seconds.
std::string duration_text(uint64_t seconds);

/// Layout, tracks and sectors.
std::string shape_text(const disk_record& disk);
/// BASIC, machine code or data.
std::string kind_text(const DiskFile& file);
/// Room on the disk that no file has.
std::string free_text(const DiskSystem& disk);

std::string kind_text(const TapeProgram& program);
/// Where machine code is loaded and started, such as "6000-6FFF, start 6000"; else empty.
std::string addresses_text(const ProgramOutline& program);
