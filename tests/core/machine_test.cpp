#include "core/machine.h"

#include "cgenie/firmware_images.h"
#include "cgenie/memory/memory.h"
#include "cgenie/palette.h"
#include "cgenie/typing/typing.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/pacing/pacing.h"
#include "media/traps.h"
#include "platform/headless/headless.h"
#include "sound/beeper.h"
#include "sound/sound_core.h"
#include "sound/ym2149.h"
#include "support/fake_host.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <vector>

namespace {
class Machine : public testing::Test {
protected:
    void SetUp() override {
        install_platform(host);
        fake_host = {};
        z80_state = {};
        memory_set_startup_pattern(0);
        machine_init();
    }

    static bool holds(const uint8_t* area, FirmwareImage image) {
        return std::ranges::equal(firmware_bytes(image),
                                  std::span(area, firmware_bytes(image).size()));
    }
    static bool ram_is(uint8_t value) {
        return std::all_of(memory + 0x4000, memory + 0x10000,
                           [=](uint8_t b) { return b == value; });
    }

    /// Steps of a tone with period 254 in a second; the chip's clock is eight times as fast.
    static int tone_steps() {
        sound_update(z80_state.t_count);
        ym2149_reset(); // from no fraction of an earlier tone
        for (const auto& [reg, value] : {std::pair{0, 254}, {1, 0}, {7, 0x3E}, {8, 15}}) {
            ym2149_write_register(uint32_t(reg), uint8_t(value));
        }
        std::vector<uint16_t> samples(SOUND_RATE);
        ym2149_calc_output(samples.data(), SOUND_RATE);
        int steps = 0;
        for (size_t n = 1; n < samples.size(); ++n) steps += samples[n] != samples[n - 1];
        return steps;
    }

    static inline HeadlessPlatform host{HeadlessOptions{}};
};

TEST_F(Machine, StandardModelsAndTheCustomSlot) {
    struct {
        uint32_t slot;
        const char* name;
        uint32_t basic, palette;
    } const cases[] = {
        {0, "CG NZ1", 0, 0}, {1, "CG NZ2", 2, 0}, {2, "CG EUR", 1, 1}, {4, "Custom", 2, 0}};
    for (const auto& c : cases) {
        const machine_configuration& slot = machine_cfg[c.slot];
        EXPECT_STREQ(slot.name, c.name);
        EXPECT_EQ(slot.basic_rom, c.basic) << c.name;
        EXPECT_EQ(slot.palette, c.palette) << c.name;
        EXPECT_EQ(slot.expansion_rom, 1u) << c.name;
        EXPECT_EQ(slot.character_rom, 0u) << c.name;
        EXPECT_EQ(slot.ram_size, 2u) << c.name;
        EXPECT_EQ(slot.cpu_clock, 2216750u) << c.name;
        EXPECT_EQ(slot.screen_frequency, 50u) << c.name;
        EXPECT_EQ(slot.psg_divider, 1u) << c.name;
    }
    for (uint32_t index = 0; index < 100; ++index) {
        EXPECT_EQ(machine_is_valid_cfg(index), index < 3 || index == 4) << index;
    }
    EXPECT_FALSE(machine_is_valid_cfg(0xFFFFFFFF));
}

TEST_F(Machine, PowerOn) {
    EXPECT_EQ(active_machine_cfg, 0u);
    EXPECT_EQ(fake_host.status[0], "CG NZ1");
    EXPECT_TRUE(holds(memory, FirmwareImage::basic_v1));
    EXPECT_TRUE(ram_is(0));
    EXPECT_EQ(mem_read(0xC000), 0xFF);
    EXPECT_EQ(mem_read(0xDFFF), 0xFF);
    EXPECT_TRUE(holds(current_charset, FirmwareImage::charset_original));
    EXPECT_EQ(current_pal_index, 0u);
    EXPECT_EQ(z80_state.clock_hz, 2216750u);
    EXPECT_EQ(z80_state.cycles_per_line, 141u); // 2216750 / 15625 = 141.87
    EXPECT_EQ(z80_state.pc, 0);
    EXPECT_EQ(z80_state.sp, 0xFFFF);
    EXPECT_NEAR(tone_steps(), 2216750 / 8 / 254, 2);
    ym2149_write_register(7, 0);
    ym2149_register_select(15);
    EXPECT_EQ(ym2149_read(), 0xFF) << "port B: joysticks at rest, level 0";

    // Power-on starts from any state, but time goes on.
    machine_cfg[0].cpu_clock = machine_cfg[4].ram_size = 0;
    active_machine_cfg = 4;
    z80_state.t_count = 5'000'000'000;
    z80_state.pc = 0x1234;
    machine_init();
    EXPECT_EQ(active_machine_cfg, 0u);
    EXPECT_EQ(frame_budget(), 44335);
    EXPECT_EQ(machine_cfg[4].ram_size, 2u);
    EXPECT_EQ(z80_state.pc, 0);
    EXPECT_EQ(z80_state.t_count, 5'000'000'000);
}

TEST_F(Machine, CharacterSetAndPaletteChangeInTheRunningMachine) {
    memory[0x5000] = 0xAA;
    memory[0x0100] = 0x55; // a patch
    z80_state.pc = 0x5000;
    const machine_configuration changed = {1, 0, 1, 0, 4'000'000, 60, 3, 1, "other"};
    machine_change_cfg(changed, 0);
    EXPECT_TRUE(holds(current_charset, FirmwareImage::charset_german));
    EXPECT_EQ(current_pal_index, 1u) << "bit 0 of the palette counts";
    EXPECT_EQ(memory[0x5000], 0xAA);
    EXPECT_EQ(memory[0x0100], 0x55);
    EXPECT_EQ(mem_read(0xC000), 0xFF);
    EXPECT_EQ(z80_state.pc, 0x5000);
    EXPECT_EQ(z80_state.clock_hz, 2216750u);
    EXPECT_EQ(fake_host.status[0], "CG NZ1") << "the active model's name";
}

TEST_F(Machine, FullChangeRestartsTheMachine) {
    memory[0x5000] = 0xAA;
    z80_state.pc = 0x5000;
    z80_state.bc = 0x1234;
    z80_state.nmi = 1;
    z80_state.t_count = 77;
    z80_out(0x42, 0x24);
    memory_set_startup_pattern(32);
    active_machine_cfg = CUSTOM_CONFIGURATION;
    machine_cfg[4] = {1, 0, 2, 0, 4'000'000, 60, 1, 1, "Custom"};
    machine_change_cfg(machine_cfg[4], 1);
    EXPECT_TRUE(holds(memory, FirmwareImage::basic_v2));
    EXPECT_TRUE(holds(active_rom, FirmwareImage::basic_v2));
    EXPECT_TRUE(holds(current_eprom, FirmwareImage::disk));
    EXPECT_TRUE(holds(current_charset, FirmwareImage::charset_emulator));
    EXPECT_EQ(current_pal_index, 1u);
    EXPECT_TRUE(ram_is(32));
    EXPECT_EQ(z80_state.pc, 0);
    EXPECT_EQ(z80_state.nmi, 0);
    EXPECT_EQ(z80_state.bc, 0x1234);
    EXPECT_EQ(z80_state.t_count, 77);
    EXPECT_EQ(z80_state.clock_hz, 4'000'000u);
    EXPECT_EQ(z80_state.cycles_per_line, 141u) << "as at power-on";
    EXPECT_EQ(frame_budget(), 66666);
    EXPECT_NEAR(tone_steps(), 4'000'000 / 8 / 254, 2);
    EXPECT_EQ(ports[0x42], 0x24);
    EXPECT_EQ(fake_host.status[0], "Custom");

    // The custom slot's 16 KB bind the standard models as well.
    active_machine_cfg = 1;
    machine_change_cfg(machine_cfg[1], 1);
    EXPECT_TRUE(holds(memory, FirmwareImage::basic_v2sn));
    mem_write(0x7FFF, 1);
    mem_write(0x8000, 1);
    EXPECT_EQ(memory[0x7FFF], 1);
    EXPECT_EQ(memory[0x8000], 32);
    EXPECT_EQ(fake_host.status[0], "CG NZ2");
}

TEST_F(Machine, ResetKeyIsOneNmi) {
    memory[0x0066] = memory[0x0067] = 0; // NOPs, also at 4000
    z80_state.pc = 0x4000;
    z80_state.sp = 0x5000;
    z80_state.hl = 0x1234;
    z80_state.iff1 = z80_state.iff2 = 1;
    z80_state.irq = 1;
    memory[0x6000] = 0x77;
    z80_out(0xFF, 0x21);
    frame_buffer[5] = 3;
    keyboard_open_from_buffer("RUN");
    memory_place_bas_trap();
    z80_out(0xF8, 3);
    z80_out(0xF9, 9);
    last_file_name = "game";
    machine_reset();
    EXPECT_EQ(last_file_name, "");
    EXPECT_EQ(beeper_level(), 0);
    EXPECT_EQ(frame_buffer[5], 16) << "black";
    EXPECT_NE(memory[0x2B], 0xED) << "nothing is typed any more";
    EXPECT_EQ(z80_state.irq, 0) << "the request is gone";
    EXPECT_EQ(z80_state.pc, 0x4000) << "taken by the processor, not here";
    EXPECT_EQ(ym2149_peek_reg(3), 9);
    z80_out(0xF9, 1);
    EXPECT_EQ(ym2149_peek_reg(0), 1) << "the sound chip selects register 0";
    EXPECT_NE(video_mode, 0) << "the latch stays";

    // NOP in RAM 4 + 1, NMI 11 + 2 for the stack in RAM; then a NOP in ROM.
    EXPECT_EQ(z80_run(0), -18);
    EXPECT_EQ(z80_state.pc, 0x0066);
    EXPECT_EQ(z80_state.sp, 0x4FFE);
    EXPECT_EQ(mem_read_word(0x4FFE), 0x4001);
    EXPECT_EQ(z80_state.hl, 0x1234);
    EXPECT_EQ(z80_state.iff1, 0);
    EXPECT_EQ(z80_state.iff2, 1);
    EXPECT_EQ(memory[0x6000], 0x77);
    EXPECT_EQ(z80_run(0), -4) << "no second NMI";
    EXPECT_EQ(z80_state.pc, 0x0067);

    machine_reset();
    EXPECT_EQ(z80_run(0), -17) << "the next press, a NOP in ROM";
    EXPECT_EQ(mem_read_word(0x4FFC), 0x0068);
}
} // namespace
