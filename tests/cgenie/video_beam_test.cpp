#include "cgenie/video_beam.h"

#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "cgenie/screen_setup.h"
#include "cgenie/video.h"
#include "support/fake_host.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {
/// The counters as the circuit has them, one character clock and one pixel at a time.
struct Circuit {
    int column = 0, row = 0, scan_line = 0, adjust = 0;
    int address = 0, row_address = 0;
    int horizontal_sync = 0, vertical_sync = 0;
    bool row_blank = false, column_blank = false, row_border = true, column_border = false;
    int line = -1, top = 0, frames = 0;
    size_t place = 0;
    double missing_lines = 0;
    std::vector<uint8_t> pixels = std::vector<uint8_t>(FRAME_STORAGE);

    void black(int first, int end) {
        for (int i = first * 384; i < end * 384; ++i) pixels[size_t(i)] = 16;
    }

    void end_frame() {
        crtc_vblank();
        ++frames;
        top = missing_lines > 1.0 ? int(missing_lines) / 2 : 0;
        missing_lines += (288 - line - missing_lines) * 0.2;
        if (top > 0) {
            black(0, top);
            black(line + top, 288);
        }
        place = size_t(top) * 384;
        line = -1;
    }

    void start_rows() {
        row = adjust = 0;
        row_border = false;
        address = row_address = int(crtc.start_address);
    }

    void end_line() {
        if (scan_line == int(crtc.maximum_scan_line)) {
            scan_line = 0;
            row = (row + 1) % 128;
            if (row == int(crtc.vertical_displayed)) row_border = true;
            if (row == 0) start_rows();
        } else {
            scan_line = (scan_line + 1) % 32;
        }
        column = 0;
        column_border = false;
        if (row < int(crtc.vertical_total)) {
            address = row_address;
        } else if (adjust == int(crtc.vertical_total_adjust)) {
            scan_line = 0;
            start_rows();
        } else {
            adjust = (adjust + 1) % 32;
        }
        if (row == int(crtc.vertical_sync_position)) {
            row_blank = true;
            if (vertical_sync == 0) vertical_sync = 1;
        }
        if (vertical_sync == 0) return;
        vertical_sync = (vertical_sync + 1) % 16;
        if (vertical_sync != int(crtc.sync_widths / 16)) return;
        row_blank = false;
        vertical_sync = 0;
        if (line + 1 > 244) end_frame();
    }

    void step_sync() {
        if (column == int(crtc.horizontal_sync_position)) {
            column_blank = true;
            if (horizontal_sync == 0) horizontal_sync = 1;
        } else if (horizontal_sync > 0) {
            ++horizontal_sync;
            if (horizontal_sync == int(crtc.sync_widths % 16)) {
                column_blank = false;
            } else if (horizontal_sync == 16) {
                horizontal_sync = 0;
                if (++line > 379) return end_frame();
                place = size_t(line + top) * 384;
            }
        }
    }

    uint8_t pixel(int x) const {
        if (row_border || column_border) return video_graphic_background_selected;
        const uint8_t code = memory[0x4000 + address];
        if (video_mode) return hires_palette[(code >> (6 - x / 2 * 2)) & 3];
        bool set = video_character_pattern(code, uint32_t(scan_line)) & (0x80 >> x);
        if (crtc.cursor_visible && scan_line >= int(crtc.cursor_start_line) &&
            scan_line <= int(crtc.cursor_end_line) &&
            address == int(crtc.cursor_address) - 0x4000) {
            set = !set;
        }
        return set ? memory[0xF000 + address % 0x400] & 15 : video_graphic_background_selected;
    }

    void clock() {
        if (crtc.horizontal_total == 0) return;
        if (column == int(crtc.horizontal_total)) {
            end_line();
        } else {
            address = (address + 1) % 0x4000;
            column = (column + 1) % 256;
        }
        if (column == int(crtc.horizontal_displayed)) {
            if (scan_line == int(crtc.maximum_scan_line)) row_address = address;
            column_border = true;
        }
        step_sync();
        const bool blank = row_blank || column_blank;
        if (blank && place >= 384 * 288) return;
        for (int x = 0; x < 8; ++x) pixels[place++] = blank ? 16 : pixel(x);
        if (place == FRAME_STORAGE) end_frame();
    }
};

/// Circuit and beam as at power-on.
Circuit circuit_beside_the_beam() {
    for (uint32_t number = 0; number < 16; ++number) crtc_write_register(number, TEXT[number]);
    beam_state = {};
    video_reset();
    Circuit circuit;
    std::copy(std::begin(frame_buffer), std::end(frame_buffer), circuit.pixels.begin());
    fake_host.screen_updates = 0;
    return circuit;
}

bool same_storage(const Circuit& circuit) {
    return std::memcmp(circuit.pixels.data(), frame_buffer, FRAME_STORAGE) == 0;
}

/// Puts a program at address 0 and the processor before it.
void load_program(std::initializer_list<int> bytes) {
    std::fill_n(memory, BASIC_ROM_SIZE, uint8_t(0));
    std::copy(bytes.begin(), bytes.end(), memory);
    z80_reset();
}
} // namespace

TEST(VideoBeam, RunsOfClocksEqualSingleClocks) {
    fill_with_noise(3);
    Circuit circuit = circuit_beside_the_beam();
    std::mt19937 noise(4);
    const auto random = [&noise](uint32_t range) { return noise() % range; };
    for (int step = 0; step < 6000; ++step) {
        std::string cause = "step " + std::to_string(step);
        if (random(8) == 0) latch(noise());
        if (random(8) == 0) {
            // Mostly a value near the usual one, which keeps frames coming; sometimes any.
            const uint32_t number = random(16);
            const int value = random(4) ? TEXT[number] + int(random(5)) - 2 : int(random(256));
            crtc_write_register(number, uint8_t(value));
            cause += ", R" + std::to_string(number) + " = " + std::to_string(uint8_t(value));
        }
        if (random(64) == 0) {
            for (uint32_t number = 0; number < 16; ++number) {
                crtc_write_register(number, TEXT[number]);
            }
        }
        const uint32_t clocks = random(16) ? random(12) : random(4000);
        const crtc_state before = crtc;
        video_do_cycles(clocks);
        const uint32_t frame_counter = crtc.frame_counter;
        crtc = before;
        for (uint32_t i = 0; i < clocks; ++i) circuit.clock();
        ASSERT_EQ(crtc.frame_counter, frame_counter) << cause;
        ASSERT_EQ(fake_host.screen_updates, circuit.frames) << cause;
        ASSERT_TRUE(step % 16 != 0 || same_storage(circuit)) << cause;
    }
    EXPECT_GT(circuit.frames, 20);
    latch(0);
}

TEST(VideoBeam, FillsTheStorageAndStartsAgain) {
    Circuit circuit = circuit_beside_the_beam();
    crtc_write_register(2, 200); // never a retrace
    crtc_write_register(0, 71);  // the storage is no whole number of lines
    for (int part = 0; part < 5; ++part) {
        const crtc_state before = crtc;
        video_do_cycles(100003);
        crtc = before;
        for (int i = 0; i < 100003; ++i) circuit.clock();
        ASSERT_EQ(fake_host.screen_updates, circuit.frames) << part;
        ASSERT_TRUE(same_storage(circuit)) << part;
    }
    EXPECT_GT(circuit.frames, 1);
}

// Runs the loaded program for some frames beside the circuit, clocked after every instruction.
void expect_equal_frames(const char* name) {
    fill_with_noise(5);
    Circuit circuit = circuit_beside_the_beam();
    z80_state.bc = z80_state.de = 0;
    ports[0xFF] = 0;
    latch(0);
    int64_t odd_cycle = 0;
    for (int frame = 0; frame < 12; ++frame) {
        const std::vector<uint8_t> memory_before(memory, memory + MEMORY_SIZE);
        const z80_record processor_before = z80_state;
        const crtc_state crtc_before = crtc;
        const uint8_t latch_before = ports[0xFF];
        video_run_cycles(44335);
        const int64_t end = z80_state.t_count;

        std::copy(memory_before.begin(), memory_before.end(), memory);
        z80_state = processor_before;
        crtc = crtc_before;
        latch(latch_before);
        do {
            const int64_t cycles = -z80_run(0) + odd_cycle;
            odd_cycle = cycles % 2;
            for (int64_t i = 0; i < cycles / 2; ++i) circuit.clock();
        } while (z80_state.t_count < end);
        ASSERT_EQ(z80_state.t_count, end);
        ASSERT_EQ(fake_host.screen_updates, circuit.frames) << name << frame;
        ASSERT_TRUE(same_storage(circuit)) << name << frame;
    }
}

// A program that never stops changing what the beam reads: the video RAM, the port FF latch and R0
// to R3. The same program runs beside the circuit, clocked after every instruction.
TEST(VideoBeam, FollowsTheProcessorInstructionByInstruction) {
    load_program({
        0x21, 0x00, 0x40, // 0000 LD HL,4000
        0x3C,             // 0003 INC A
        0x77,             // 0004 LD (HL),A
        0x23,             // 0005 INC HL
        0xCB, 0xB4,       // 0006 RES 6,H  stay in the video RAM
        0xCB, 0xF4,       // 0008 SET 6,H
        0xC6, 0x24,       // 000A ADD A,24
        0xE6, 0xFE,       // 000C AND FE   leave the sound alone
        0xD3, 0xFF,       // 000E OUT (FF),A
        0x14,             // 0010 INC D
        0x20, 0xF0,       // 0011 JR NZ,0003
        0x78,             // 0013 LD A,B
        0xE6, 0x03,       // 0014 AND 3
        0x04,             // 0016 INC B
        0xD3, 0xFA,       // 0017 OUT (FA),A
        0xED, 0x5F,       // 0019 LD A,R
        0xD3, 0xFB,       // 001B OUT (FB),A
        0x16, 0xF0,       // 001D LD D,F0
        0x18, 0xE2,       // 001F JR 0003
    });
    expect_equal_frames("ports ");

    // Words and single bytes all over the cells that the beam is about to show, their colours and
    // the character RAM, by the stack, by a block move and by stores.
    load_program({
        0x31, 0x00, 0x48, // 0000 LD SP,4800
        0x06, 0x00,       // 0003 LD B,0
        0xE5,             // 0005 PUSH HL
        0x24,             // 0006 INC H
        0x2C,             // 0007 INC L
        0x10, 0xFB,       // 0008 DJNZ 0005
        0x11, 0x00, 0xF0, // 000A LD DE,F000
        0x01, 0xFF, 0x07, // 000D LD BC,07FF
        0xED, 0xB0,       // 0010 LDIR
        0x22, 0x10, 0x41, // 0012 LD (4110),HL
        0x32, 0xFF, 0x43, // 0015 LD (43FF),A
        0x3D,             // 0018 DEC A
        0x20, 0xF7,       // 0019 JR NZ,0012
        0x18, 0xE3,       // 001B JR 0000
    });
    expect_equal_frames("memory ");
    latch(0);
}
