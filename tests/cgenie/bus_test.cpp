#include "cgenie/bus.h"

#include "cgenie/crtc.h"
#include "cgenie/input.h"
#include "cgenie/keyboard.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "media/printer.h"
#include "media/wd1771.h"
#include "sound/beeper.h"
#include "sound/scripted_driver.h"
#include "sound/ym2149.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <vector>

namespace {
/// Differs between neighbours, between pages and between the images that are made with it.
uint8_t mark(uint32_t address, uint8_t image) {
    return uint8_t(address * 7 + (address >> 8) * 3 + image);
}

class Bus : public testing::Test {
protected:
    void SetUp() override {
        input_state = {};
        z80_state = {};
        for (uint32_t i = 0; i < 0x10000; ++i) memory[i] = mark(i, 0);
        for (uint32_t i = 0; i < EXPANSION_SIZE; ++i) current_eprom[i] = mark(i, 0x80);
        std::memset(ports, 0, sizeof ports);
        memory_set_ram_size_source(&ram_size);
        ram_size = 1;
        printer_enabled = false;
        ym2149_init(2216750);
        memory_init();
        beeper_init();
    }

    /// Wait cycles of the accesses since the last call.
    static int64_t waits() {
        const int64_t count = z80_state.t_count;
        z80_state.t_count = 0;
        return count;
    }

    // Stays behind for whatever test comes next in this program.
    static inline uint32_t ram_size = 1;
};

TEST_F(Bus, AddressMap) {
    enum Read { stored, expansion, open, colour, keyboard, disk_irq, one, disk_register };
    enum Write { dropped, kept };
    struct {
        uint32_t last; ///< the first is the one after the range before
        Read read;
        int read_wait;
        Write write;
        int write_wait;
    } const map[] = {
        {0x3FFF, stored, 0, dropped, 0},   {0x7FFF, stored, 1, kept, 1},
        {0xBFFF, stored, 1, kept, 1},      {0xDFFF, expansion, 0, dropped, 0},
        {0xEFFF, open, 0, dropped, 0},     {0xF3FF, colour, 1, kept, 1},
        {0xF7FF, stored, 1, kept, 1},      {0xFBFF, keyboard, 1, dropped, 0},
        {0xFEFF, stored, 1, dropped, 0},   {0xFFDF, open, 1, dropped, 0},
        {0xFFE0, disk_irq, 1, dropped, 0}, {0xFFE1, one, 1, dropped, 0},
        {0xFFEB, open, 1, dropped, 0},     {0xFFEF, disk_register, 1, dropped, 0},
        {0xFFFF, open, 1, dropped, 0},
    };
    input_state.now.positional[0] = 0x02; // A
    input_state.now.positional[6] = 0x80; // the space bar
    std::vector<uint8_t> image(memory, memory + 0x10000);
    uint32_t address = 0;
    for (const auto& range : map) {
        for (; address <= range.last; ++address) {
            SCOPED_TRACE(testing::Message() << "address " << std::hex << address);
            uint8_t expected = 0xFF;
            switch (range.read) {
            case stored: expected = image[address]; break;
            case expansion: expected = mark(address - 0xC000, 0x80); break;
            case colour: expected = image[address] | 0xF0; break;
            case keyboard:
                expected = address & 1 ? 0x02 : (address & 0x7F) == 0x40 ? 0x80 : 0;
                break;
            case disk_irq: expected = wd1771_read_irq(); break;
            case disk_register: expected = wd1771_read_reg(address - 0xFFEC); break;
            case one: expected = 0x01; break;
            case open: break;
            }
            ASSERT_EQ(mem_read(address), expected);
            ASSERT_EQ(waits(), range.read_wait) << "read";
            mem_write(address, uint8_t(~image[address]));
            ASSERT_EQ(waits(), range.write_wait) << "write";
            if (range.write == kept) image[address] = uint8_t(~image[address]);
            ASSERT_EQ(memory[address], image[address]);
        }
    }
    EXPECT_TRUE(std::equal(image.begin(), image.end(), memory)) << "a write went elsewhere";
    EXPECT_EQ(current_eprom[0], mark(0, 0x80));
}

TEST_F(Bus, SixteenKilobytesEndAt8000WhateverModelIsActive) {
    ram_size = 0;
    memory_set_active_setup(2); // what a standard model brings
    struct {
        uint32_t address;
        bool kept;
    } const cases[] = {{0x4000, true},  {0x7FFF, true}, {0x8000, false}, {0x8001, false},
                       {0xBFFF, false}, {0xF000, true}, {0xF400, true},  {0xF7FF, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.address);
        const uint8_t before = memory[c.address];
        mem_write(c.address, uint8_t(~before));
        EXPECT_EQ(waits(), c.kept ? 1 : 0);
        EXPECT_EQ(memory[c.address], c.kept ? uint8_t(~before) : before);
    }
    EXPECT_EQ(mem_read(0x8000), mark(0x8000, 0)) << "the read shows the start-up byte";
    EXPECT_EQ(waits(), 1);
    ram_size = 1;
    mem_write(0x8000, 0x12);
    EXPECT_EQ(memory[0x8000], 0x12) << "the size is looked at with every write";
}

TEST_F(Bus, EveryPortKeepsItsByteAndOnlyDevicesAnswer) {
    for (uint32_t port = 0; port < 256; ++port) z80_out(port, uint8_t(port ^ 0x5A));
    const std::map<uint32_t, uint8_t> devices = {
        {0xF8, 0xA2}, // register number as written
        {0xF9, 0xA3}, // register A2 modulo 16, through the sound chip
        {0xFA, 0xA0}, // not masked
        {0xFB, 0xA1}, // register 0 of the CRT controller
        {0xFF, 0xA4}, // bit 0 is the silent cassette
    };
    for (uint32_t port = 0; port < 256; ++port) {
        const auto device = devices.find(port);
        EXPECT_EQ(z80_in(port), device == devices.end() ? 0xFF : device->second) << port;
        EXPECT_EQ(ports[port], port ^ 0x5A) << port;
    }
    EXPECT_EQ(ym2149_peek_reg(2), 0xA3);
    EXPECT_EQ(crtc_read_register(0), 0xA1);
    EXPECT_EQ(waits(), 0) << "ports are as fast as the processor";
}

TEST_F(Bus, LatchReachesTheVideo) {
    struct {
        uint8_t value, charset, background;
        bool graphics;
    } const cases[] = {{0x00, 0x00, 16, false}, {0x08, 0x08, 16, false}, {0x10, 0x10, 16, false},
                       {0x18, 0x18, 16, false}, {0x20, 0x00, 16, true},  {0x04, 0x00, 10, false},
                       {0x44, 0x00, 13, false}, {0x84, 0x00, 6, false},  {0xC4, 0x00, 7, false},
                       {0xC0, 0x00, 16, false}, {0x03, 0x00, 16, false}, {0xFF, 0x18, 7, true}};
    for (const auto& c : cases) {
        z80_out(0xFF, c.value);
        SCOPED_TRACE(testing::Message() << std::hex << int(c.value));
        EXPECT_EQ(video_charset_selected, c.charset);
        EXPECT_EQ(video_graphic_background_selected, c.background);
        EXPECT_EQ(hires_palette[0], c.background);
        EXPECT_EQ(video_mode != 0, c.graphics);
    }
}

TEST_F(Bus, BeeperFollowsChangesOfTheCassetteBitOnly) {
    z80_out(0xFF, 0x01);
    const uint16_t high = beeper_level();
    EXPECT_GT(high, 0);
    beeper_set_level(0);
    z80_out(0xFF, 0x25);
    EXPECT_EQ(beeper_level(), 0) << "bit 0 stays high: not touched";
    EXPECT_EQ(video_graphic_background_selected, 10) << "while the video gets every write";
    z80_out(0xFF, 0x02);
    z80_out(0xFF, 0x03);
    EXPECT_EQ(beeper_level(), high);
    z80_out(0xFE, 0x00);
    EXPECT_EQ(beeper_level(), high);
    z80_out(0xFF, 0x00);
    EXPECT_EQ(beeper_level(), 0);

    start_scripted_core();
    sound_close(); // no filter
    z80_state.t_count = cycle_of_sample(sample_at(z80_state.t_count) + 100);
    z80_out(0xFF, 0x01);
    advance(860);
    ASSERT_EQ(scripted.fragments.size(), 1U);
    const auto& heard = scripted.fragments[0];
    EXPECT_EQ(heard[100] - heard[99], 4096) << "at its time";
    EXPECT_EQ(heard[959], heard[100]);
    bus_state.tape_level = 1; // of a tape that is played: it ends
    z80_state.t_count = cycle_of_sample(sample_at(z80_state.t_count) + 100);
    z80_in(0xFF);
    advance(860);
    EXPECT_EQ(scripted.fragments[1][99] - scripted.fragments[1][100], 4096) << "at its time";
    sound_null_driver_init();
}

TEST_F(Bus, SoundChipRegistersReadWhatTheChipHolds) {
    // Bits of the data sheet's registers; register 7 = FF makes both ports outputs.
    const uint8_t bits[16] = {0xFF, 0x0F, 0xFF, 0x0F, 0xFF, 0x0F, 0x1F, 0xFF,
                              0x1F, 0x1F, 0x1F, 0xFF, 0xFF, 0x0F, 0xFF, 0xFF};
    for (const uint8_t value : {0xFF, 0x55, 0xAA}) {
        for (uint8_t reg = 0; reg < 16; ++reg) {
            z80_out(0xF8, reg);
            z80_out(0xF9, reg == 7 ? value | 0xC0 : value);
        }
        for (uint8_t reg = 0; reg < 16; ++reg) {
            z80_out(0xF8, reg);
            const int stored = reg == 7 ? value | 0xC0 : value;
            EXPECT_EQ(z80_in(0xF9), stored & bits[reg]) << "register " << int(reg);
            EXPECT_EQ(ym2149_peek_reg(reg), stored) << "register " << int(reg);
        }
    }
    for (const uint8_t reg : {0x10, 0x31}) {
        z80_out(0xF8, reg);
        z80_out(0xF9, 0xFE);
        EXPECT_EQ(z80_in(0xF9), 0xFE) << "above 15 the whole byte of the register modulo 16";
    }
    EXPECT_EQ(ym2149_peek_reg(1), 0xFE);
    ym2149_reset();
    z80_out(0xF9, 0x12);
    EXPECT_EQ(ym2149_peek_reg(0), 0x12) << "a reset selects register 0";
    EXPECT_EQ(ym2149_peek_reg(1), 0xFE) << "and keeps the registers";
}

TEST_F(Bus, InterruptLineIsALevel) {
    irq_set_io(0, 0x80);
    EXPECT_EQ(z80_state.irq, 1);
    irq_set_io(0, 0);
    EXPECT_EQ(z80_state.irq, 0);
}

TEST_F(Bus, KeyboardRowsDoNotCombine) {
    machine_input& input = input_state.now;
    input.positional[0] = 0x02;
    input.positional[1] = 0x01;
    input.positional[7] = 0x10;
    input.symbolic[1][4] = 0x02; // "!"
    input.direct[7] = 0x01;
    struct {
        uint32_t address;
        uint8_t expected;
    } const cases[] = {{0xF801, 0x02}, {0xF802, 0x01}, {0xF803, 0x02}, {0xF880, 0x11},
                       {0xF8FE, 0x01}, {0xF800, 0x00}, {0xFB82, 0x01}, {0xF900, 0x00}};
    for (const auto& c : cases) EXPECT_EQ(mem_read(c.address), c.expected) << std::hex << c.address;
    keyboard_change_mapping(1);
    EXPECT_EQ(mem_read(0xF801), 0);
    EXPECT_EQ(mem_read(0xF880), 0x01) << "held directly, whatever the mapping";
    input.direct[7] = 0;
    EXPECT_EQ(mem_read(0xF810), 0x02);
    for (const int shift : {1, 1, 1, 0}) EXPECT_EQ(mem_read(0xF880), shift);
    mem_read(0xF810);
    keyboard_reset();
    for (const uint32_t row : {0xF810, 0xF880}) EXPECT_EQ(mem_read(row), 0) << "all released";
}
} // namespace
