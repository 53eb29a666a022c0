#include "media/files/cassette_files.h"
#include "media/traps.h"

#include "cgenie/memory/memory.h"
#include "cgenie/roms.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_state.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "support/fake_host.h"
#include "support/host_files.h"
#include "z80/z80.h"

#include <algorithm>
#include <map>

namespace {

using Image = std::vector<uint8_t>;

class Traps : public HostFilesTest {
protected:
    void SetUp() override {
        HostFilesTest::SetUp();
        fake_host = {};
        machine_init();
        tape_init();
    }
    void TearDown() override {
        tape_detach_cas();
        tape_remove_traps();
        HostFilesTest::TearDown();
    }
    static Image working_copy() { return {memory, memory + BASIC_ROM_SIZE}; }
    static Image unpatched() { return {active_rom, active_rom + BASIC_ROM_SIZE}; }
    static Image patched() {
        Image image = unpatched();
        const std::map<size_t, uint8_t> places = {
            {0x01FB, 0}, {0x0264, 1}, {0x01EE, 2}, {0x023F, 3}, {0x0221, 4}};
        for (size_t n = 0x0221; n <= 0x023B; ++n) image[n] = 0;
        for (const auto& [address, number] : places) {
            image[address] = 0xED;
            image[address + 1] = number;
        }
        return image;
    }
    static void attach(const std::string& bytes) {
        write_text(PATH, bytes);
        ASSERT_EQ(tape_attach_cas(PATH), 1);
    }
    /// Takes the trap that is patched in at `address`.
    static void run_at(uint16_t address) {
        z80_state.af = 0x12D7;
        z80_state.bc = 0x3456;
        z80_state.pc = address;
        z80_run(0);
    }
    static int a() { return z80_state.af >> 8; }

    static constexpr const char* PATH = "traps.cas";
};

TEST_F(Traps, PatchesComeAndGo) {
    EXPECT_EQ(working_copy(), patched());
    EXPECT_EQ(cas_is_traps_installed(), 1);
    for (const uint32_t rom : {1U, 2U, 0U}) {
        memory_set_basic_rom(rom);
        EXPECT_EQ(working_copy(), patched()) << "ROM " << rom;
    }
    memory_place_bas_trap();
    tape_remove_traps();
    EXPECT_EQ(cas_is_traps_installed(), 0);
    EXPECT_EQ(memory[0x002B], 0xED) << "typing goes on";
    memory_remove_bas_trap();
    EXPECT_EQ(working_copy(), unpatched());
    memory[0x01FB] = 0x55;
    tape_remove_traps();
    EXPECT_EQ(memory[0x01FB], 0x55) << "the second time does nothing";
    memory_set_basic_rom(1);
    EXPECT_EQ(working_copy(), unpatched()) << "no patches, none placed again";

    tape_remove_traps();
    for (const bool fits : {true, false}) { // ROMs of the user's own
        std::ranges::fill(active_rom, uint8_t(0x76));
        active_rom[0x01FB] = 0xDB;
        active_rom[0x01FC] = active_rom[0x0240] = 0xFF;
        active_rom[0x023F] = fits ? 0x06 : 0x16;
        std::copy_n(active_rom, BASIC_ROM_SIZE, memory);
        attach("\x66");
        EXPECT_EQ(working_copy(), fits ? patched() : unpatched());
        EXPECT_EQ(tape_wav_is_open(), !fits) << "it plays as sound";
        memory_set_basic_rom(fits ? 1 : 0);
        EXPECT_EQ(cas_is_traps_installed(), fits);
        tape_close_wav();
        tape_remove_traps();
        EXPECT_EQ(bas_to_cas_open(PATH), 1);
        EXPECT_EQ(working_copy(), patched());
        tape_remove_traps();
    }
    tape_remove_traps();
    tape_create_cas(); // cancelled
    EXPECT_EQ(working_copy(), unpatched());
    fake_host.save_path = PATH;
    tape_create_cas();
    EXPECT_EQ(working_copy(), patched());
}

TEST_F(Traps, TheFirmwareGoesOnBehindEach) {
    const struct {
        uint16_t address, next;
        int a; ///< without a tape
        int b;
    } cases[] = {{0x01FB, 0x0219, 0x00, 0x34},
                 {0x0264, 0x0270, 0x12, 0x34},
                 {0x01EE, 0x01F8, 0x00, 0x34},
                 {0x023F, 0x0241, 0x12, 0xFF},
                 {0x0221, 0x0223, 0x12, 0x34}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.address);
        run_at(c.address);
        EXPECT_EQ(z80_state.pc, c.next);
        EXPECT_EQ(z80_state.af, c.a << 8 | 0xD7);
        EXPECT_EQ(z80_state.bc, c.b << 8 | 0x56);
    }
    EXPECT_EQ(fake_host.save_questions, 1);
    while (z80_state.pc < 0x023C) z80_run(0); // B and A unharmed through the NOPs
    EXPECT_EQ(z80_state.af, 0x12D7);
}

TEST_F(Traps, BytesComeFromTheTape) {
    attach(std::string("Colour Genie - Virtual Tape File 123456\0\x66\x41\x42", 43));
    run_at(0x01FB);
    EXPECT_EQ(a(), 0x66) << "the sync byte at once";
    tape_cas_rewind();
    for (const int byte : {0x43, 0x66, 0x41}) { // the search goes on past the text
        run_at(0x01FB);
        EXPECT_EQ(a(), byte);
    }
    for (const int byte : {0x42, 0xFF, 0xFF}) {
        run_at(0x01EE);
        EXPECT_EQ(a(), byte);
    }
    tape_cas_rewind();
    run_at(0x01EE);
    run_at(0x01EE);
    EXPECT_EQ(a(), 'o') << "the byte routine does not skip";
}

TEST_F(Traps, ASaveWaitsForItsAnswer) {
    fake_host.save_path = PATH;
    for (const int engine : {0, 1}) {
        for (const char* how : {"frames", "steps", "up to a breakpoint"}) {
            for (const uint16_t place : {0x023F, 0x5000}) { // ROM, and RAM with its wait cycles
                SCOPED_TRACE(testing::Message() << how << ", engine " << engine << ", " << place);
                const auto run = [how] {
                    int end = MACHINE_STANDS;
                    while (end == MACHINE_STANDS)
                        end = *how == 's' ? machine_step() : machine_run();
                    return end;
                };
                machine_init();
                g_bCycleBasedEngine = engine != 0;
                z80_state.breakpoint_enabled = *how == 'u'; // which does not come
                memory[0x5000] = 0xED;
                memory[0x5001] = 3;
                z80_state.pc = place;
                z80_state.r = 0x80;
                z80_state.iff1 = 1;
                z80_state.irq = 1; // is due behind the trap
                const int64_t start = z80_state.t_count;
                machine_state before, waiting, later, asked, at_once;
                machine_save(before);
                fake_host.save_waits = true;
                EXPECT_EQ(run(), MACHINE_WAITS);
                machine_save(waiting);
                EXPECT_EQ(run(), MACHINE_WAITS);
                machine_save(later);
                EXPECT_EQ(machine_difference(waiting, later), "");
                EXPECT_EQ(z80_state.pc, place);
                EXPECT_EQ(z80_state.r, 0x80);
                EXPECT_EQ(z80_state.t_count, start);
                fake_host.save_waits = false;
                EXPECT_EQ(run(), MACHINE_FRAME);
                machine_save(asked);
                machine_load(before);
                EXPECT_EQ(run(), MACHINE_FRAME);
                machine_save(at_once);
                EXPECT_EQ(machine_difference(asked, at_once), "");
                EXPECT_EQ(cassette.saving, 1);
                machine_load(waiting);
                machine_reset();
                EXPECT_EQ(z80_state.pc, 0x0241) << "the reset key is a no";
                EXPECT_EQ(z80_state.waits | cassette.saving, 0);
            }
        }
    }
}

/// The machine's own ROM never does this; a file that was loaded as one may.
TEST_F(Traps, OneThatLeadsToItselfLetsTheFrameEnd) {
    constexpr uint16_t BEHIND_READ_BYTE = 0x01F8;
    memory[BEHIND_READ_BYTE] = 0xED;
    memory[BEHIND_READ_BYTE + 1] = 2;
    z80_state.pc = BEHIND_READ_BYTE;
    const int64_t start = z80_state.t_count;
    for (int n = 0; n < 1000; ++n) z80_run(0);
    EXPECT_GE(z80_state.t_count - start, frame_budget());
    EXPECT_EQ(z80_state.pc, BEHIND_READ_BYTE);
}

TEST_F(Traps, ResetClearsTheInputBitOnceReady) {
    for (const bool ready : {false, true}) {
        for (void (*reset)() : {tape_reset, machine_reset}) {
            tape_ready = ready;
            tape_read_in = 1;
            reset();
            EXPECT_EQ(tape_read_in, ready ? 0 : 1);
        }
    }
}

} // namespace
