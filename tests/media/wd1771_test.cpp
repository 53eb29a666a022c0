#include "media/wd1771.h"

#include "cgenie/memory.h"
#include "core/machine.h"
#include "platform/headless/headless.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

enum : uint32_t { STATUS, TRACK, SECTOR, DATA };
constexpr int64_t BUSY_CYCLES = 33000;

/// A disk in drive 0: each sector of 256 bytes holds its track, its number, and then 2, 3, 4 ...
class Wd1771 : public testing::Test {
protected:
    Wd1771() : host_(HeadlessOptions{}) {
        install_platform(host_);
        testing::internal::CaptureStderr();
        machine_init();
        insert(0, 40, 10);
        wd1771_reset();
        z80_state.irq = 0;
    }
    ~Wd1771() override {
        wd1771_init();
        testing::internal::GetCapturedStderr();
    }
    static disk_image& insert(unsigned drive, uint32_t tracks, uint32_t sectors) {
        disk_image& disk = wd1771_disk(drive);
        disk = {};
        disk.layout = DISK_FIXED;
        disk.tracks = tracks;
        disk.sectors = sectors;
        disk.bytes_per_sector = 256;
        disk.directory_track = 20;
        disk.image.resize(size_t(tracks) * sectors * 256);
        for (size_t at = 0; at < disk.image.size(); ++at) disk.image[at] = uint8_t(at);
        for (size_t n = 0; n < size_t(tracks) * sectors; ++n) {
            disk.image[n * 256] = uint8_t(n / sectors);
            disk.image[n * 256 + 1] = uint8_t(n % sectors);
        }
        return disk;
    }
    static void command(uint8_t value) { wd1771_write_reg(STATUS, value); }
    static uint8_t status() { return wd1771_read_reg(STATUS); }
    static void pass(int64_t cycles) { z80_state.t_count += cycles; }
    /// Type I, and its time.
    static void position(uint8_t value) {
        command(value);
        pass(BUSY_CYCLES + 1);
        status();
    }
    static void seek(uint8_t track) {
        wd1771_write_reg(DATA, track);
        position(0x10);
    }
    /// To 1/4 of a revolution, away from the index hole.
    static void leave_index() {
        const int64_t turn = int64_t(z80_state.clock_hz / 6);
        pass(turn - z80_state.t_count % turn + turn / 4);
    }
    HeadlessPlatform host_;
};

TEST_F(Wd1771, PositionsTheHead) {
    const struct {
        const char* name;
        std::vector<uint8_t> commands; ///< 10 seeks to the byte behind it
        uint8_t track_register;
        int head;
    } cases[] = {
        {"step in without update", {0x00, 0x40, 0x40}, 0, 2},
        {"with update", {0x00, 0x50, 0x50}, 2, 2},
        {"the stored direction", {0x00, 0x50, 0x30, 0x70, 0x30}, 0, 0},
        {"not below 0", {0x00, 0x70}, 0, 0},
        {"seek", {0x10, 35}, 35, 35},
        {"seek behind the end", {0x10, 35, 0x10, 83}, 35, 35},
        {"one step more", {0x10, 82, 0x50, 0x50}, 83, 83},
        {"seek sets the direction", {0x10, 35, 0x10, 30, 0x30}, 29, 29},
        {"restore", {0x10, 35, 0x00}, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        wd1771_reset_all();
        for (size_t n = 0; n < c.commands.size(); ++n) {
            if (c.commands[n] == 0x10) {
                seek(c.commands[++n]);
            } else {
                position(c.commands[n]);
            }
        }
        EXPECT_EQ(wd1771_read_reg(TRACK), c.track_register);
        EXPECT_EQ(status() & 0x10, 0) << "no seek error";
        command(0xC0); // the identification field tells where the head is
        EXPECT_EQ(wd1771_read_reg(DATA), c.head);
    }
}

TEST_F(Wd1771, StatusKeepsTime) {
    wd1771_device_select(1);
    leave_index();
    command(0x00);
    EXPECT_EQ(status(), 0x25) << "busy, track 0, head loaded";
    wd1771_write_reg(SECTOR, 3);
    command(0x80);
    pass(BUSY_CYCLES);
    EXPECT_EQ(status(), 0x25) << "the command while busy was ignored";
    pass(1);
    EXPECT_EQ(status(), 0x24);
    // 2216750 / 6 = 369458 cycles a turn, the hole for the first 3694 of them.
    const int64_t turn = 369458;
    pass(turn - z80_state.t_count % turn);
    EXPECT_EQ(status(), 0x26);
    pass(3693);
    EXPECT_EQ(status(), 0x26);
    pass(1);
    EXPECT_EQ(status(), 0x24);
    wd1771_disk(0).write_protected = true;
    EXPECT_EQ(status(), 0x64);
    wd1771_disk(0).write_protected = false;

    wd1771_device_select(1);
    EXPECT_EQ(wd1771_is_active(), 0);
    pass(5098524); // 2300 ms are 5098525 cycles
    EXPECT_EQ(status() & 0xA0, 0x20);
    pass(1);
    EXPECT_EQ(status() & 0xA0, 0x80) << "not ready, head not loaded";
    EXPECT_EQ(wd1771_is_active(), -1);
    wd1771_device_select(2); // an empty drive
    EXPECT_EQ(status(), 0xFF);
    EXPECT_EQ(wd1771_is_active(), -1);
    wd1771_device_select(1);
    wd1771_device_select(2); // while the motor still turns
    EXPECT_EQ(status(), 0x24);
    command(0x00);
    EXPECT_EQ(status(), 0x25);
    wd1771_device_select(0);
    for (uint32_t n = 0; n < 4; ++n) EXPECT_EQ(wd1771_read_reg(n), 0);
    EXPECT_EQ(wd1771_read_irq(), 0);
}

TEST_F(Wd1771, ReadsSectors) {
    for (const uint8_t track : {0, 20, 39}) {
        SCOPED_TRACE(int(track));
        seek(track);
        wd1771_write_reg(SECTOR, 9);
        command(0x88);
        const int mark = track == 20 ? 0x20 : 0; // the directory's deleted-data mark
        EXPECT_EQ(status() & 0x7F, 0x03 | mark);
        for (int n = 0; n < 255; ++n) {
            const int expected = n == 0 ? track : n == 1 ? 9 : n;
            ASSERT_EQ(wd1771_read_reg(DATA), expected) << n;
        }
        EXPECT_EQ(z80_state.irq, 0);
        EXPECT_EQ(status() & 0x03, 0x03);
        EXPECT_EQ(wd1771_read_reg(DATA), 255);
        EXPECT_NE(z80_state.irq, 0);
        EXPECT_EQ(wd1771_read_irq(), 0x40);
        EXPECT_EQ(wd1771_read_irq(), 0) << "once";
        EXPECT_EQ(z80_state.irq, 0);
        EXPECT_EQ(wd1771_read_reg(DATA), 255) << "the last byte again";
        EXPECT_EQ(status() & 0x03, 0);
    }
    for (const int missing : {10, 255}) {
        wd1771_write_reg(SECTOR, uint8_t(missing));
        command(0x80);
        EXPECT_NE(z80_state.irq, 0) << missing;
        EXPECT_EQ(status() & 0x13, 0x10) << missing;
        EXPECT_EQ(z80_state.irq, 0) << "reading the status answers it";
    }
    wd1771_write_reg(SECTOR, 1);
    command(0x88);
    command(0xD0);
    EXPECT_EQ(z80_state.irq, 0);
    EXPECT_EQ(status() & 0x01, 0);
    command(0xD8);
    EXPECT_NE(z80_state.irq, 0);
    wd1771_device_select(4);
    z80_state.irq = 0;
    command(0xD8);
    EXPECT_EQ(z80_state.irq, 0) << "no disk there";
    command(0x88);
    EXPECT_NE(z80_state.irq, 0);
}

TEST_F(Wd1771, WritesSectors) {
    seek(7);
    wd1771_write_reg(SECTOR, 4);
    command(0xA8);
    for (int n = 0; n < 256; ++n) {
        ASSERT_EQ(status() & 0x03, 0x03) << n;
        wd1771_write_reg(DATA, uint8_t(n ^ 0x5A));
    }
    EXPECT_EQ(status() & 0x23, 0);
    EXPECT_EQ(z80_state.irq, 0) << "no interrupt";
    EXPECT_TRUE(wd1771_disk(0).modified);
    const uint8_t* const stored = &wd1771_disk(0).image[(7 * 10 + 4) * 256];
    for (int n = 0; n < 256; ++n) ASSERT_EQ(stored[n], uint8_t(n ^ 0x5A));
    wd1771_write_reg(DATA, 0x99); // nobody asked for it
    EXPECT_EQ(stored[0], 0x5A);

    wd1771_write_reg(SECTOR, 10);
    command(0xA8);
    for (int n = 0; n < 256; ++n) wd1771_write_reg(DATA, 0);
    EXPECT_EQ(status() & 0x23, 0x20) << "write fault";
    wd1771_disk(0).write_protected = true;
    for (const uint8_t value : {0xA8, 0xF4}) {
        command(value);
        EXPECT_NE(z80_state.irq, 0);
        EXPECT_EQ(status() & 0x43, 0x40);
    }
    wd1771_device_select(8);
    command(0xA8);
    EXPECT_NE(z80_state.irq, 0) << "no disk";
}

/// The sector that the identification read next names.
int next_sector() {
    wd1771_write_reg(STATUS, 0xC4);
    uint8_t id[6] = {};
    for (uint8_t& byte : id) byte = wd1771_read_reg(DATA);
    EXPECT_EQ(id[0], 12);
    EXPECT_EQ(id[3], 1);
    EXPECT_EQ(wd1771_read_reg(SECTOR), 12) << "as this chip does";
    EXPECT_EQ(wd1771_read_irq(), 0x40);
    return id[2];
}

TEST_F(Wd1771, SectorsPassUnderTheHead) {
    insert(0, 35, 18);
    seek(12);
    for (int n = 0; n < 19; ++n) ASSERT_EQ(next_sector(), n % 18);
    insert(0, 35, 10); // the disk before has left sector 1
    for (const int expected : {1, 5, 7, 8, 4, 2, 1, 5}) EXPECT_EQ(next_sector(), expected);
}

TEST_F(Wd1771, FormatsATrack) {
    insert(0, 40, 10);
    seek(3);
    command(0xF4);
    const auto put = [](int count, uint8_t value) {
        while (count-- > 0) wd1771_write_reg(DATA, value);
    };
    for (int sector = 0; sector < 10; ++sector) {
        EXPECT_EQ(status() & 0x03, 0x03) << sector;
        put(12, 0xFF);
        put(1, 0xFE);
        for (const int byte : {3, 0, 9 - sector, 1}) put(1, uint8_t(byte));
        put(1, 0xF7);
        put(11, 0x00);
        put(1, 0xFB);
        put(256, uint8_t(0x30 + sector));
        put(1, 0xF7);
    }
    EXPECT_NE(z80_state.irq, 0);
    EXPECT_EQ(status() & 0x03, 0);
    EXPECT_EQ(wd1771_read_reg(TRACK), 3);
    for (int n = 0; n < 10; ++n) {
        const uint8_t* const stored = &wd1771_disk(0).image[size_t(3 * 10 + n) * 256];
        EXPECT_TRUE(std::all_of(stored, stored + 256, [n](int b) { return b == 0x30 + 9 - n; }))
            << n;
    }
    EXPECT_EQ(wd1771_disk(0).image[2 * 2560], 2) << "the track before";
    EXPECT_EQ(wd1771_disk(0).image[4 * 2560], 4) << "and the one behind";
}

/// The processor reads a sector of track 1 through the memory map, waiting as a program would.
TEST_F(Wd1771, AProgramReadsThroughTheBus) {
    const std::array<uint8_t, 47> program = {
        0x3E, 0x01, 0x32, 0xE0, 0xFF,       // LD A,1     LD (FFE0),A   select drive 0
        0x32, 0xEF, 0xFF, 0x3E, 0x10,       // LD (FFEF),A  LD A,10     seek track 1
        0x32, 0xEC, 0xFF, 0x3A, 0xEC, 0xFF, // LD (FFEC),A  LD A,(FFEC)
        0x0F, 0x38, 0xFA,                   // RRCA  JR C,-6            while busy
        0x3E, 0x06, 0x32, 0xEE, 0xFF,       // LD A,6  LD (FFEE),A      sector
        0x3E, 0x88, 0x32, 0xEC, 0xFF,       // LD A,88 LD (FFEC),A      read
        0x21, 0x00, 0x91, 0x3A, 0xEC, 0xFF, // LD HL,9100  LD A,(FFEC)
        0x0F, 0x30, 0x08,                   // RRCA  JR NC,+8           until it is done
        0x3A, 0xEF, 0xFF, 0x77, 0x23,       // LD A,(FFEF)  LD (HL),A  INC HL
        0x18, 0xF3, 0xF3, 0x76,             // JR -13  DI  HALT
    };
    std::ranges::copy(program, memory + 0x9000);
    do_di();
    z80_state.pc = 0x9000;
    z80_run(400000);
    EXPECT_EQ(memory[z80_state.pc], 0x76) << "on the HALT";
    EXPECT_EQ(memory[0x9100], 1);
    EXPECT_EQ(memory[0x9101], 6);
    for (int n = 2; n < 256; ++n) ASSERT_EQ(memory[0x9100 + n], n);
    EXPECT_EQ(memory[0x9200], 0) << "no byte more";
}

} // namespace
