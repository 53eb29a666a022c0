#pragma once
/// The files of cassette images (media/tape.h): regular files of up to 16 MB. An image is read as a
/// whole when it is attached; a tape that is saved follows the machine byte by byte.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

/// Where the cassette traps do not fit the firmware, an image is put in as the sound of its tape
/// (tape_play_cassette), and the recorder's motor moves it.

/// 1 on success; 0 for an empty path or a file that cannot be opened, and then nothing is attached.
int tape_attach_cas(const std::string& path);
/// The same for the bytes of a file, which may be known by its name only.
void tape_attach_bytes(std::string path, std::span<const uint8_t> bytes);
void tape_detach_cas();
/// The path of the attached image, or the one remembered from the last run.
std::string& tape_get_cas_name();

/// 1 when the file's first byte is FF, the mark of tokenized BASIC.
int is_tokenized_bas(const std::string& path);
bool is_tokenized_bas(std::span<const uint8_t> bytes);
/// Attaches a tokenized BASIC file as a cassette. 1 on success; else nothing is attached.
int bas_to_cas_open(const std::string& path);
void tape_attach_basic(std::string path, std::span<const uint8_t> bytes);
/// Writes memory from start to end (inclusive), as the processor sees it, as a machine-code tape
/// named after the file; addresses are hexadecimal texts of up to four digits. 1 on success; what
/// fails is told in the status bar. An end below the start writes no file; with a path that has no
/// folder, only leader, sync byte and mark are written.
int tape_dump_cas(const std::string& path, const std::string& start, const std::string& end,
                  const std::string& entry);

/// Makes the file of a save, which the machine has asked for, and completes the one before. 1 when
/// it is there, to be answered with SAVE_READY; what fails is told in the status bar and is to be
/// answered with SAVE_FAILED.
int tape_create_file(const std::string& path);
/// Writes bytes of the tape that is saved; on return the operating system has them. When that
/// fails, the file ends, the status bar tells it, and the result is 0.
int tape_file_write(uint64_t position, const uint8_t* bytes, size_t count);
/// Ends the file of a saved tape and writes it through to the disk.
void tape_file_end();
/// For another state of the machine, whose tape has this path; empty without one. A .cas file that
/// holds just the tape that is being saved goes on. Any other stays as it was written: the first
/// byte that follows makes a new file in the rescue folder, with all of the tape, which the user is
/// told.
void tape_file_follow(const std::string& path);
