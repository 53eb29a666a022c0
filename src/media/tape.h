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
/// One image is attached at a time, as bytes in memory: for reading, or for saving from
/// tape_create_cas on. The files that it comes from and goes to are in
/// media/files/cassette_files.h.

#include "wall/machine_host.h"
#include "wall/shared_bytes.h"
#include "wall/state_record.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

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

struct cassette_state {
    uint64_t position = 0;        ///< of the next byte to read
    uint32_t cas_header_size = 0; ///< where the tape's first byte stands in the image
    uint8_t attached = 0;         ///< there is an image
    uint8_t saving = 0;           ///< it takes bytes
    uint8_t ready = 0;            ///< the cassette system has been initialised
    uint8_t unused = 0;
};
extern cassette_state cassette;
extern const state_record cassette_record;
inline constexpr auto& tape_ready = cassette.ready;
/// The attached image.
extern shared_bytes cas;

/// Attaches an image in place of the one that is in. It stands at its start, or behind the text of
/// a CGT file.
void tape_put_in(shared_bytes image);
/// Detaches the image; nothing without one.
void tape_take_out();
/// Takes out image and WAV file, and puts the traps in: the cassette system as it waits for an
/// image.
void tape_make_room();
/// 1 while an image is attached, for reading or for saving.
int tape_cas_is_attached();
/// The image to its start; nothing without one.
void tape_cas_rewind();
/// The image to this byte, or to its end.
void tape_cas_seek(uint64_t place);
/// The kind of tape that an image holds, and the first character of a machine-code program's name.
int tape_type(std::span<const uint8_t> image, char* name);
/// The same of the attached image, which is rewound.
int tape_cas_type(char* name);

/// The offset of the sync byte behind a CGT file's text; 0 for any other. `position` is where it
/// then stands: there, at its start, or with the text but no sync byte behind the byte looked at.
uint32_t cg_get_header_size(std::span<const uint8_t> image, uint64_t* position);
/// Moves an image that stands in its text to the first byte of the tape.
void tape_cas_skip_header();
/// The next byte; 00 without an image, FF at its end.
uint8_t tape_read_one_byte();

/// Asks for an image to save to, and attaches it. Refused or not answered yet, nothing changes;
/// where none could be made, none is attached.
save_answer tape_create_cas();
/// The start of a save: tape_create_cas once the cassette system is ready, refused before.
save_answer tape_write_case_header();
/// Appends a byte, which has left the machine on return. Dropped when no image is being saved. The
/// first byte that the host cannot take ends the save.
void tape_write_one_byte(uint8_t value);

/// The tape that a tokenized BASIC file becomes; its first byte, the mark, stays out. `name` is a
/// program's on the tape, in any case.
std::vector<uint8_t> tape_of_basic(std::span<const uint8_t> file, char name);
/// Leader, sync byte and mark of a machine-code tape.
std::vector<uint8_t> tape_of_no_program();
/// Memory from `first` to `last` (inclusive), as the processor sees it, as a machine-code tape
/// named after a file.
std::vector<uint8_t> tape_of_memory(std::string_view file_name, uint16_t first, uint16_t last,
                                    uint16_t entry);
