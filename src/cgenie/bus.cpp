#include "cgenie/bus.h"

#include "cgenie/crtc.h"
#include "cgenie/joystick.h"
#include "cgenie/keyboard.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "cgenie/video_beam.h"
#include "media/printer.h"
#include "media/tape_audio.h"
#include "media/wd1771.h"
#include "sound/beeper.h"
#include "sound/sound_core.h"
#include "sound/ym2149.h"
#include "z80/z80.h"

#include <cassert>

namespace {

// Address map: the first address of each range.
enum : uint32_t {
    RAM_UPPER = 0x8000,
    EXPANSION_ROM = 0xC000,
    OPEN_BUS = 0xE000,
    COLOUR_RAM = 0xF000,
    CHARACTER_RAM = 0xF400,
    KEYBOARD = 0xF800,
    UNUSED_RAM = 0xFC00,
    DEVICES = 0xFF00,
    DISK_SELECT = 0xFFE0,
    DISK_SELECT_END = 0xFFE4,
    DISK_REGISTERS = 0xFFEC,
    DISK_REGISTERS_END = 0xFFF0
};

constexpr uint8_t OPEN = 0xFF;
constexpr uint8_t COLOUR_UNUSED_BITS = 0xF0; ///< the colour RAM is four bits wide

// Port map.
enum : uint32_t {
    PORT_SOUND_SELECT = 0xF8,
    PORT_SOUND_DATA = 0xF9,
    PORT_CRTC_SELECT = 0xFA,
    PORT_CRTC_DATA = 0xFB,
    PORT_LATCH = 0xFF
};

// Port FF, written.
enum : uint8_t {
    LATCH_CASSETTE = 0x01,
    LATCH_BACKGROUND = 0xC4,
    LATCH_CHARSET = 0x18,
    LATCH_GRAPHICS = 0x20
};

// Port B of the sound chip while the printer is on.
enum : uint8_t { PRINTER_READY = 0x10, PRINTER_PAPER = 0x20, PRINTER_BUSY = 0x80 };

constexpr state_field bus_fields[] = {
    {"tape_level", sizeof(bus_latches::tape_level)},
};

const char* fault(const bus_latches& bus) {
    return first_fault({{"tape_level", bus.tape_level <= LATCH_CASSETTE}});
}

void add_wait_cycle() { ++z80_state.t_count; }

void store(uint32_t address, uint8_t value) {
    add_wait_cycle();
    memory[address] = value;
}

uint8_t read_device(uint32_t address) {
    if (address == DISK_SELECT) return wd1771_read_irq();
    if (address == DISK_SELECT + 1) return 0x01;
    if (address >= DISK_REGISTERS && address < DISK_REGISTERS_END) {
        return wd1771_read_reg(address & 3);
    }
    return OPEN;
}

/// A read of the controller takes its interrupt back and counts the bytes of a sector.
uint8_t peek_device(uint32_t address) {
    const wd1771_controller before = wd1771;
    const int32_t irq = z80_state.irq;
    const uint8_t value = read_device(address);
    z80_state.irq = irq;
    wd1771 = before;
    return value;
}

/// C000 and above: everything that is not plain RAM or the BASIC ROM.
[[gnu::noinline]] uint8_t read_upper(uint32_t address) {
    if (address < OPEN_BUS) return current_eprom[address & (DISK_ROM_SIZE - 1)];
    if (address < COLOUR_RAM) return OPEN;
    add_wait_cycle();
    if (address < CHARACTER_RAM) return memory[address] | COLOUR_UNUSED_BITS;
    if (address < KEYBOARD) return memory[address];
    if (address < UNUSED_RAM) return keyboard_read(uint8_t(address));
    if (address < DEVICES) return memory[address];
    return read_device(address);
}

[[gnu::noinline]] void write_upper(uint32_t address, uint8_t value) {
    if (address < COLOUR_RAM) return;
    if (address < KEYBOARD) {
        video_beam_before_write(address);
        return store(address, value);
    }
    // Above the RAM a write costs nothing, unlike a read.
    if (address >= DISK_SELECT && address < DISK_SELECT_END) wd1771_write_param_reg(value);
    if (address >= DISK_REGISTERS && address < DISK_REGISTERS_END) {
        wd1771_write_reg(address, value);
    }
}

/// Reads the cassette input. Its level goes to the beeper as well, so that a loading cassette is
/// heard.
uint8_t memory_tape_read() {
    const uint8_t level = tape_load_wav(z80_state.t_count) ? LATCH_CASSETTE : 0;
    if (level != bus_state.tape_level) {
        sound_update(z80_state.t_count);
        bus_state.tape_level = level;
        beeper_set_level(level);
    }
    return level;
}

void write_latch(uint8_t value, uint8_t previous) {
    video_beam_before_output();
    if ((value ^ previous) & LATCH_CASSETTE) {
        const uint8_t bit = value & LATCH_CASSETTE;
        sound_update(z80_state.t_count);
        beeper_set_level(bit);
        tape_save_wav(z80_state.t_count, bit);
    }
    video_graphic_background(value & LATCH_BACKGROUND);
    video_charset_select(value & LATCH_CHARSET);
    video_mode_select(value & LATCH_GRAPHICS);
}

} // namespace

bus_latches bus_state;
const state_record bus_record = {"bus_state", &bus_state, sizeof bus_state, bus_fields,
                                 fault_of<bus_latches, fault>};

uint8_t mem_read(uint32_t address) {
    assert(address < 0x10000);
    if (address >= EXPANSION_ROM) return read_upper(address);
    z80_state.t_count += address >= RAM_START;
    return memory[address];
}

uint8_t mem_peek(uint32_t address) {
    assert(address < 0x10000);
    if (address < EXPANSION_ROM) return memory[address];
    if (address < OPEN_BUS) return current_eprom[address & (DISK_ROM_SIZE - 1)];
    if (address < COLOUR_RAM) return OPEN;
    if (address >= DEVICES) return peek_device(address);
    if (address < CHARACTER_RAM) return memory[address] | COLOUR_UNUSED_BITS;
    if (address >= KEYBOARD && address < UNUSED_RAM) return keyboard_peek(uint8_t(address));
    return memory[address];
}

void mem_write(uint32_t address, uint8_t value) {
    assert(address < 0x10000);
    if (address >= EXPANSION_ROM) return write_upper(address, value);
    if (address < RAM_START) return;
    if (address < RAM_UPPER) {
        video_beam_before_write(address);
    } else if (memory_is_16k()) {
        return;
    }
    store(address, value);
}

// Kept out of line: the run loop inlines whatever it calls, and with the devices in every port
// instruction it would be many times as large and take minutes to link.

[[gnu::noinline]] uint8_t z80_in(uint32_t port) {
    assert(port < 0x100);
    switch (port) {
    case PORT_SOUND_SELECT: return ports[port];
    case PORT_SOUND_DATA: return ym2149_read();
    case PORT_CRTC_SELECT: return ports[port];
    case PORT_CRTC_DATA: return crtc_read();
    case PORT_LATCH: return uint8_t((ports[port] & ~LATCH_CASSETTE) | memory_tape_read());
    default: return OPEN;
    }
}

[[gnu::noinline]] void z80_out(uint32_t port, uint8_t value) {
    assert(port < 0x100);
    const uint8_t previous = ports[port];
    ports[port] = value;
    switch (port) {
    case PORT_SOUND_SELECT: ym2149_register_select(value); break;
    case PORT_SOUND_DATA: ym2149_write(value); break;
    case PORT_CRTC_SELECT: crtc_register_select(value); break;
    case PORT_CRTC_DATA:
        video_beam_before_output();
        crtc_write(value);
        break;
    case PORT_LATCH: write_latch(value, previous); break;
    default: break;
    }
}

void memory_init() {
    ym2149_set_port_write_callback(0, print_byte);
    ym2149_set_port_write_callback(1, nullptr);
    ym2149_set_port_read_callback(0, nullptr);
    ym2149_set_port_read_callback(1, memory_read_port_b);
}

uint8_t memory_read_port_b() {
    const uint8_t sticks = joystick_get_state();
    if (!printer_enabled) return sticks;
    return uint8_t((sticks & 0x0F) | (printer_is_ready() ? PRINTER_READY : 0) | PRINTER_PAPER |
                   (printer_is_busy() ? PRINTER_BUSY : 0));
}

uint8_t memory_read_port_a() { return OPEN; }

void irq_set_io(int /*line*/, int level) { z80_state.irq = level ? 1 : 0; }
