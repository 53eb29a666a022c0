/// Cassette images (CAS, CGT and tokenized BASIC): looked at, read to the end and beyond, read by
/// the firmware's traps, and saved. The last byte of the file chooses what else happens.

#include "media/tape.h"
#include "media/files/cassette_files.h"
#include "media/program_outline.h"
#include "media/tape_audio.h"
#include "support/fake_host.h"
#include "support/files.h"
#include "support/machine.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

constexpr const char* NAME = "tape.cas";
constexpr const char* SAVED = "saved.cas";
constexpr size_t LONGEST_HEAD = 1024; ///< of a file that tokenized BASIC becomes

void read_all(size_t file_size) {
    for (size_t n = 0; n < file_size + LONGEST_HEAD; ++n) tape_read_one_byte();
    require(!tape_cas_is_attached() || tape_read_one_byte() == 0xFF, "FF behind the end");
}

void read_by_traps() {
    constexpr int TRAPS = 0x0D;
    for (int number = 0; number < TRAPS; ++number) trap_handle(number);
    for (int n = 0; n < 64; ++n) trap_handle(n & 1 ? 2 : 0);
}

void save(std::span<const uint8_t> bytes) {
    fake_host.save_path = SAVED;
    tape_write_case_header();
    for (const uint8_t byte : bytes.first(std::min<size_t>(bytes.size(), 64))) {
        tape_write_one_byte(byte);
        tape_read_one_byte();
    }
    tape_cas_rewind();
    tape_write_one_byte(0);
    tape_detach_cas();
}

void dump(Input input) {
    const auto number = [&] { return input.text(5); };
    const std::string start = number(), end = number(), entry = number();
    tape_dump_cas("./" + input.text(8) + ".cas", start, end, entry);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fake_host = {};
    fresh_machine();
    write_file(NAME, {data, size});
    require(tape_attach_cas(NAME) == 1, "a regular file is attached");
    char name = 0;
    const int kind = tape_cas_type(&name);
    require(kind >= TAPE_UNKNOWN && kind <= TAPE_MACHINE_CODE, "the kind has a name");
    tape_cas_skip_header();
    read_all(size);
    for (const TapeProgram& program : tape_programs({data, size})) {
        require(program.start < size && program.bytes <= size, "it lies on the tape");
        tape_seek(uint32_t(program.start));
        tape_read_one_byte();
    }
    tape_cas_rewind();
    read_by_traps();
    if (is_tokenized_bas(NAME)) {
        require(bas_to_cas_open(NAME) == 1, "it becomes a cassette");
        read_all(size);
    }
    const uint8_t choice = size ? data[size - 1] : 0;
    if (choice & 1) save({data, size});
    if (choice & 2) dump({data, size});
    tape_detach_cas();
    return 0;
}
