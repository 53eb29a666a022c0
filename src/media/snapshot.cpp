#include "media/snapshot.h"

#include "cgenie/memory/memory.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

// Layout of the file: magic, twelve register words, port bytes, RAM, reserved zeros.
constexpr char MAGIC[] = {'J', 'Z', '0', '1'};
constexpr size_t REGISTERS_OFFSET = 4;
constexpr size_t PORTS_OUT_OFFSET = 30;
constexpr size_t PORTS_IN_OFFSET = 34;
constexpr size_t RAM_OFFSET = 38;
constexpr size_t RESERVED_SIZE = 512;
static_assert(RAM_OFFSET + RAM_SIZE + RESERVED_SIZE == SNAPSHOT_SIZE);

constexpr uint8_t PORTS[4] = {0x00, 0x40, 0x80, 0xC0};

/// A register word of the file; a null register is reserved.
using Register = uint16_t z80_record::*;
constexpr Register REGISTERS[] = {&z80_record::bc,
                                  &z80_record::de,
                                  &z80_record::hl,
                                  &z80_record::af,
                                  &z80_record::bc_alt,
                                  &z80_record::de_alt,
                                  &z80_record::hl_alt,
                                  &z80_record::af_alt,
                                  &z80_record::pc,
                                  &z80_record::sp,
                                  nullptr,
                                  &z80_record::ix,
                                  &z80_record::iy};
static_assert(REGISTERS_OFFSET + 2 * std::size(REGISTERS) == PORTS_OUT_OFFSET);

using Record = std::span<uint8_t, SNAPSHOT_SIZE>;

void pack_registers(Record record) {
    size_t at = REGISTERS_OFFSET;
    for (const Register member : REGISTERS) {
        const uint16_t value = member ? z80_state.*member : uint16_t(0);
        record[at++] = uint8_t(value);
        record[at++] = uint8_t(value >> 8);
    }
}

void unpack_registers(std::span<const uint8_t> record) {
    size_t at = REGISTERS_OFFSET;
    for (const Register member : REGISTERS) {
        if (member) z80_state.*member = uint16_t(record[at] | record[at + 1] << 8);
        at += 2;
    }
}

} // namespace

uint8_t snapshot_out(uint8_t port) { return ports[port]; }

void snapshot_pack(Record record, const uint8_t* ram) {
    std::ranges::fill(record, uint8_t(0));
    std::memcpy(record.data(), MAGIC, sizeof MAGIC);
    pack_registers(record);
    for (size_t i = 0; i < std::size(PORTS); ++i) {
        record[PORTS_OUT_OFFSET + i] = snapshot_out(PORTS[i]);
        record[PORTS_IN_OFFSET + i] = z80_in(PORTS[i]);
    }
    std::memcpy(record.data() + RAM_OFFSET, ram, RAM_SIZE);
}

int snapshot_unpack(std::span<const uint8_t> record, uint8_t* ram) {
    if (record.size() < SNAPSHOT_SIZE) return 0;
    unpack_registers(record);
    // Only port 00 is restored, and the input byte goes to the same latch last.
    z80_out(PORTS[0], record[PORTS_OUT_OFFSET]);
    snapshot_in(PORTS[0], record[PORTS_IN_OFFSET]);
    std::memcpy(ram, record.data() + RAM_OFFSET, RAM_SIZE);
    return 1;
}

void snapshot_in(uint8_t port, uint8_t value) { z80_out(port, value); }
