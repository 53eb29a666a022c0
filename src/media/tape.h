#pragma once
/// Cassette images: the bytes of a tape without the sound that carries them. The firmware's traps
/// (media/traps.h) read and write them a byte at a time.
///
/// On a tape: a leader of AA, the sync byte 66, then either a BASIC program (a name byte and the
/// program as the firmware saves it) or 55 and a machine-code program: six name bytes, blocks of
/// 3C, count (00 is 256), load address, data, checksum of address and data, and 78 with the entry
/// address. Words stand low byte first.
///
/// A CAS file is that stream from its first byte. A CGT file opens with a text that ends with a
/// zero byte, and the stream behind it starts at the sync byte.
///
/// Images are regular files of up to 16 MB. One is attached at a time: for reading, or for saving
/// from tape_create_cas on.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

enum TapeByte : uint8_t {
    TAPE_LEADER = 0xAA,
    TAPE_SYNC = 0x66,
    TAPE_MACHINE_CODE_MARK = 0x55,
    TAPE_BLOCK = 0x3C,
    TAPE_ENTRY = 0x78
};
constexpr size_t TAPE_NAME_SIZE = 6; ///< of a machine-code program

/// What is on a tape, by its first block.
enum TapeKind : int { TAPE_UNKNOWN = 0, TAPE_BASIC = 1, TAPE_MACHINE_CODE = 2 };

/// The cassette system has been initialised.
extern bool tape_ready;

/// 1 on success; 0 for an empty path or a file that cannot be opened, and then nothing is attached.
int tape_attach_cas(const std::string& path);
void tape_detach_cas();
/// 1 while an image is attached, for reading or for saving.
int tape_cas_is_attached();
/// The image to its start; nothing without one.
void tape_cas_rewind();
/// The kind of tape, and the first character of a machine-code program's name. Rewinds the image.
int tape_cas_type(char* name);
/// The path of the attached image, or the one remembered from the last run.
std::string& tape_get_cas_name();

/// The offset of the sync byte behind a CGT file's text, where the file then stands; 0 for any
/// other file, which stands at its start unless the text was there.
int cg_get_header_size(std::FILE* file);
/// Moves an image that stands in its text to the first byte of the tape.
void tape_cas_skip_header();
/// The next byte; 00 without an image, FF at its end.
uint8_t tape_read_one_byte();

/// Asks for a name and creates that image for saving; cancelled, nothing changes. A file that
/// cannot be created is told in the status bar.
void tape_create_cas();
/// The start of a save: tape_create_cas once the cassette system is ready.
void tape_write_case_header();
/// Appends a byte, which is in the operating system's hands on return. Dropped when no image is
/// being saved. The first byte that cannot be written ends the save and is told in the status bar.
void tape_write_one_byte(uint8_t value);

/// 1 when the file's first byte is FF, the mark of tokenized BASIC.
int is_tokenized_bas(const std::string& path);
/// Attaches a tokenized BASIC file as a cassette. 1 on success; else nothing is attached.
int bas_to_cas_open(const std::string& path);
/// Writes memory from start to end (inclusive), as the processor sees it, as a machine-code tape
/// named after the file; addresses are hexadecimal texts of up to four digits. 1 on success; what
/// fails is told in the status bar. An end below the start writes no file, and a path without a
/// folder gets no further than the sync byte and the mark.
int tape_dump_cas(const std::string& path, const std::string& start, const std::string& end,
                  const std::string& entry);
