#include "media/tape.h"

#include "cgenie/memory/memory.h"
#include "media/tape_audio.h"
#include "media/traps.h"
#include "z80/z80.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace {

constexpr size_t EXPORT_LEADER_SIZE = 256;
constexpr uint32_t BLOCK_SIZE = 256;
constexpr uint8_t UPPER_CASE = 0xDF;
constexpr uint8_t PAST_THE_END = 0xFF;

constexpr std::string_view CGT_TEXT = "Colour Genie - Virtual Tape File";

// What a tokenized BASIC file becomes: a leader, sync and marks of the firmware's other format.
constexpr size_t BASIC_LEADER_SIZE = 256;
constexpr std::string_view BASIC_SYNC_AND_MARKS = "\xA5\xD3\xD3\xD3";
constexpr uint8_t BASIC_END = 0x1A;

constexpr state_field fields[] = {
    {"position", sizeof(cassette_state::position)},
    {"cas_header_size", sizeof(cassette_state::cas_header_size)},
    {"attached", sizeof(cassette_state::attached)},
    {"saving", sizeof(cassette_state::saving)},
    {"ready", sizeof(cassette_state::ready)},
    {"unused", sizeof(cassette_state::unused)},
};

const char* fault(const cassette_state& state) {
    return first_fault({{"attached", state.attached <= 1},
                        {"saving", state.saving <= state.attached},
                        {"ready", state.ready <= 1}});
}

/// Bytes one after the other, and END behind the last.
struct Bytes {
    static constexpr int END = -1;

    int next() { return at < bytes.size() ? bytes[at++] : END; }
    /// The first byte that is not `skipped`.
    int skip_run(int skipped) {
        int byte = skipped;
        while (byte == skipped) byte = next();
        return byte;
    }
    /// `wanted` when it is there from here on, `byte` counted in; else END.
    int find(int byte, int wanted) {
        while (byte != wanted && byte != END) byte = next();
        return byte;
    }

    std::span<const uint8_t> bytes;
    size_t at = 0;
};

int kind_of_tape(Bytes tape, char* name) {
    int byte = tape.next();
    if (byte == TAPE_LEADER) {
        byte = tape.skip_run(TAPE_LEADER);
    } else if (byte != TAPE_SYNC) {
        byte = tape.find(byte, 0);
        byte = tape.find(byte, TAPE_SYNC);
    }
    if (byte == 0 || byte == Bytes::END) return TAPE_UNKNOWN;
    if (tape.next() != TAPE_MACHINE_CODE_MARK) return TAPE_BASIC;
    const int first = tape.next();
    *name = char(first == Bytes::END ? PAST_THE_END : first);
    return TAPE_MACHINE_CODE;
}

void remove_image() {
    cas = {};
    cassette = {.ready = cassette.ready};
    tape_reset();
}

char upper_case(char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; }

using Tape = std::vector<uint8_t>;

void append_word(Tape& tape, uint16_t value) {
    tape.push_back(uint8_t(value));
    tape.push_back(uint8_t(value >> 8));
}

void append_name(Tape& tape, std::string_view file_name) {
    std::string name(file_name.substr(0, std::min(file_name.find('.'), TAPE_NAME_SIZE)));
    for (char& c : name) c = char(c & UPPER_CASE);
    name.resize(TAPE_NAME_SIZE, ' ');
    std::ranges::copy(name, std::back_inserter(tape));
}

void append_block(Tape& tape, uint32_t address, uint32_t count) {
    tape.push_back(TAPE_BLOCK);
    tape.push_back(uint8_t(count));
    append_word(tape, uint16_t(address));
    uint8_t sum = uint8_t(address) + uint8_t(address >> 8);
    for (uint32_t n = 0; n < count; ++n) {
        tape.push_back(mem_read(address + n));
        sum += tape.back();
    }
    tape.push_back(sum);
}

} // namespace

cassette_state cassette;
constexpr state_record cassette_record = {"cassette", &cassette, sizeof cassette, fields,
                                          fault_of<cassette_state, fault>};
shared_bytes cas;

void tape_put_in(shared_bytes image) {
    tape_make_room();
    cas = std::move(image);
    cassette.attached = 1;
    cassette.cas_header_size = cg_get_header_size(cas.view(), &cassette.position);
}

void tape_take_out() {
    if (cassette.attached) machine_host.stream_ends(STREAM_TAPE);
    remove_image();
}

void tape_make_room() {
    tape_close_wav();
    tape_take_out();
    tape_place_traps(rom_pointer());
    cassette.ready = 1;
}

int tape_cas_is_attached() { return cassette.attached; }

void tape_cas_rewind() { cassette.position = 0; }

void tape_cas_seek(uint64_t place) { cassette.position = std::min<uint64_t>(place, cas.size()); }

int tape_type(std::span<const uint8_t> image, char* name) { return kind_of_tape({image}, name); }

int tape_cas_type(char* name) {
    tape_cas_rewind();
    return tape_type(cas.view(), name);
}

uint32_t cg_get_header_size(std::span<const uint8_t> image, uint64_t* position) {
    *position = 0;
    const auto* const text = reinterpret_cast<const char*>(image.data());
    if (!std::string_view(text, image.size()).starts_with(CGT_TEXT)) return 0;
    Bytes rest = {image, CGT_TEXT.size()};
    rest.find(rest.next(), 0);
    const size_t sync = rest.at;
    const bool valid = rest.next() == TAPE_SYNC;
    *position = valid ? sync : rest.at;
    return valid ? uint32_t(sync) : 0;
}

void tape_cas_skip_header() {
    cassette.position = std::max<uint64_t>(cassette.position, cassette.cas_header_size);
}

uint8_t tape_read_one_byte() {
    if (!cassette.attached) return 0;
    return cassette.position < cas.size() ? cas.view()[cassette.position++] : PAST_THE_END;
}

save_answer tape_create_cas() {
    const save_answer answer = machine_host.save_question();
    if (answer == SAVE_REFUSED || answer == SAVE_NOT_YET) return answer;
    tape_close_wav();
    remove_image(); // the host has ended its file when it made the new one
    tape_place_traps(rom_pointer());
    if (answer == SAVE_READY) cassette.attached = cassette.saving = cassette.ready = 1;
    return answer;
}

save_answer tape_write_case_header() { return cassette.ready ? tape_create_cas() : SAVE_REFUSED; }

void tape_write_one_byte(uint8_t value) {
    if (!cassette.saving) return;
    // Behind the last one, wherever reading has left a rewound tape.
    cassette.position = cas.size();
    if (!machine_host.write(STREAM_TAPE, cassette.position, &value, 1)) {
        cassette.saving = 0;
        return;
    }
    cas.change().push_back(value);
    ++cassette.position;
}

std::vector<uint8_t> tape_of_basic(std::span<const uint8_t> file, char name) {
    Tape tape(BASIC_LEADER_SIZE);
    std::ranges::copy(BASIC_SYNC_AND_MARKS, std::back_inserter(tape));
    tape.push_back(uint8_t(upper_case(name)));
    if (!file.empty()) std::ranges::copy(file.subspan(1), std::back_inserter(tape));
    tape.push_back(BASIC_END);
    return tape;
}

std::vector<uint8_t> tape_of_no_program() {
    Tape tape(EXPORT_LEADER_SIZE, TAPE_LEADER);
    tape.push_back(TAPE_SYNC);
    tape.push_back(TAPE_MACHINE_CODE_MARK);
    return tape;
}

std::vector<uint8_t> tape_of_memory(std::string_view file_name, uint16_t first, uint16_t last,
                                    uint16_t entry) {
    Tape tape = tape_of_no_program();
    append_name(tape, file_name);
    for (uint32_t address = first; address <= last; address += BLOCK_SIZE) {
        append_block(tape, address, std::min(BLOCK_SIZE, last - address + 1));
    }
    tape.push_back(TAPE_ENTRY);
    append_word(tape, entry);
    return tape;
}
