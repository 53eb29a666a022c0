#include "media/wd1771.h"

#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "core/machine_state.h"
#include "platform/headless/headless.h"
#include "wall/machine_host.h"
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
    static std::vector<uint8_t>& insert(unsigned drive, uint32_t tracks, uint32_t sectors) {
        std::vector<uint8_t> image(size_t(tracks) * sectors * 256);
        for (size_t at = 0; at < image.size(); ++at) image[at] = uint8_t(at);
        for (size_t n = 0; n < size_t(tracks) * sectors; ++n) {
            image[n * 256] = uint8_t(n / sectors);
            image[n * 256 + 1] = uint8_t(n % sectors);
        }
        wd1771.disks[drive] = {0, tracks,     sectors, 256, 20, uint32_t(image.size()),
                               0, DISK_FIXED, 0,       0,   0};
        drive_contents[drive] = shared_bytes(image);
        return drive_contents[drive].change();
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
    wd1771_write_protect(0, true);
    EXPECT_EQ(status(), 0x64);
    wd1771_write_protect(0, false);

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
    static int told; // of drive 0
    told = 0;
    machine_host.disk_written = [](int drive) { told += drive == 0; };
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
    const uint8_t* const stored = &drive_contents[0].view()[(7 * 10 + 4) * 256];
    for (int n = 0; n < 256; ++n) ASSERT_EQ(stored[n], uint8_t(n ^ 0x5A));
    wd1771_write_reg(DATA, 0x99); // nobody asked for it
    EXPECT_EQ(stored[0], 0x5A);

    wd1771_write_reg(SECTOR, 10);
    command(0xA8);
    for (int n = 0; n < 256; ++n) wd1771_write_reg(DATA, 0);
    EXPECT_EQ(status() & 0x23, 0x20) << "write fault";
    wd1771_write_protect(0, true);
    for (const uint8_t value : {0xA8, 0xF4}) {
        command(value);
        EXPECT_NE(z80_state.irq, 0);
        EXPECT_EQ(status() & 0x43, 0x40);
    }
    wd1771_device_select(8);
    command(0xA8);
    EXPECT_NE(z80_state.irq, 0) << "no disk";
    EXPECT_EQ(told, 1);
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
    insert(0, 35, 9); // turns like one of 10
    for (const int expected : {7, 8, 4, 2, 1, 5}) EXPECT_EQ(next_sector(), expected);
}

/// What a program sends to format a track: sector n gets the byte `fill` + n, in falling order.
std::vector<uint8_t> track_bytes(int track, int sectors, int fill) {
    std::vector<uint8_t> bytes;
    const auto put = [&bytes](size_t count, int value) {
        bytes.insert(bytes.end(), count, uint8_t(value));
    };
    for (int sector = sectors - 1; sector >= 0; --sector) {
        put(12, 0xFF);
        for (const int byte : {0xFE, track, 0, sector, 1, 0xF7}) put(1, byte);
        put(11, 0x00);
        put(1, 0xFB);
        put(256, fill + sector);
        put(1, 0xF7);
    }
    return bytes;
}

TEST_F(Wd1771, FormatsATrack) {
    for (const int sectors : {10, 18}) {
        SCOPED_TRACE(sectors);
        std::vector<uint8_t> expected = insert(0, 40, uint32_t(sectors));
        const size_t begin = size_t(3 * sectors) * 256;
        for (size_t n = 0; n < size_t(sectors) * 256; ++n)
            expected[begin + n] = uint8_t(0x30 + n / 256);
        seek(3);
        command(0xF4);
        for (const uint8_t byte : track_bytes(3, sectors, 0x30)) {
            EXPECT_EQ(status() & 0x03, 0x03);
            EXPECT_EQ(z80_state.irq, 0);
            wd1771_write_reg(DATA, byte);
        }
        EXPECT_EQ(wd1771_read_irq(), 0x40);
        EXPECT_EQ(status() & 0x03, 0);
        EXPECT_EQ(wd1771_read_reg(TRACK), 3);
        EXPECT_EQ(wd1771_read_reg(SECTOR), 0) << "the last one";
        EXPECT_EQ(wd1771_disk(0).image, expected) << "the tracks around it stay";
        wd1771_write_reg(DATA, 0xFE);
        wd1771_write_reg(DATA, 0xF7);
        EXPECT_EQ(wd1771_read_reg(TRACK), 3) << "nobody asked for more";
    }
}

TEST_F(Wd1771, TheLatchChoosesTheDrive) {
    const struct {
        uint8_t latch;
        int drive; ///< -1: none
    } cases[] = {{0x01, 0}, {0x02, 1}, {0x0C, 2}, {0x08, 3}, {0x0F, 0}, {0xF4, 2}, {0xF0, -1}};
    for (unsigned drive = 0; drive < 4; ++drive) insert(drive, 40, 10)[256] = uint8_t(drive);
    for (const auto& c : cases) {
        SCOPED_TRACE(int(c.latch));
        wd1771_reset_all();
        wd1771_write_reg(TRACK, 0x77);
        wd1771_write_param_reg(c.latch);
        EXPECT_EQ(wd1771_is_active(), c.drive);
        wd1771_write_reg(SECTOR, 1);
        wd1771_write_reg(TRACK, 0x22);
        command(0x88);
        EXPECT_EQ(wd1771_read_reg(DATA), c.drive < 0 ? 0 : c.drive);
        EXPECT_EQ(wd1771_read_reg(SECTOR), c.drive < 0 ? 0 : 1);
        wd1771_write_param_reg(1);
        EXPECT_EQ(wd1771_read_reg(TRACK), c.drive < 0 ? 0x77 : 0x22);
    }
    // Each drive has a head and a place in its turn of its own.
    wd1771_reset_all();
    for (const uint8_t drive : {0, 1, 2, 3}) {
        wd1771_write_param_reg(uint8_t(1 << drive));
        seek(uint8_t(20 + drive));
        for (int n = 0; n < drive; ++n) command(0xC0), command(0xD0);
    }
    wd1771_reset();
    for (const uint8_t drive : {0, 1, 2, 3}) {
        wd1771_write_param_reg(uint8_t(1 << drive));
        command(0xC0);
        EXPECT_EQ(wd1771_read_reg(DATA), 20 + drive);
        command(0xD0);
    }
    // An empty drive: a seek does nothing, a step moves the head.
    wd1771_reset_all();
    wd1771_detach(0);
    seek(5);
    EXPECT_EQ(wd1771_read_reg(TRACK), 0);
    command(0xD0); // no look at an empty drive ends the command
    position(0x50);
    EXPECT_EQ(wd1771_read_reg(TRACK), 1);
}

TEST_F(Wd1771, InterruptsAndTheirAcknowledgement) {
    const struct {
        const char* name;
        uint8_t command;
        bool disk, interrupt;
    } cases[] = {
        {"restore", 0x00, true, false},          {"force", 0xD0, true, false},
        {"force, ready", 0xD1, true, true},      {"force, not ready", 0xD2, true, true},
        {"force, index", 0xD4, true, true},      {"force, at once", 0xD8, true, true},
        {"force, no disk", 0xDF, false, false},  {"read address", 0xC4, true, false},
        {"address, no disk", 0xC4, false, true}, {"read, no disk", 0x80, false, true},
        {"write, no disk", 0xA0, false, true},   {"format, no disk", 0xF0, false, true},
        {"read track", 0xE4, true, false},       {"write", 0xA0, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (const bool by_status : {false, true}) {
            wd1771_init();
            insert(0, 40, 10);
            wd1771_set_irq(0);
            wd1771_device_select(c.disk ? 1 : 2);
            command(c.command);
            EXPECT_EQ(z80_state.irq != 0, c.interrupt);
            if (by_status) status();
            // The status of an empty drive answers nothing.
            const bool answered = by_status && c.disk;
            EXPECT_EQ(z80_state.irq != 0, c.interrupt && !answered);
            EXPECT_EQ(wd1771_read_irq(), c.interrupt && !answered ? 0x40 : 0);
            EXPECT_EQ(z80_state.irq, 0);
            EXPECT_EQ(wd1771_read_irq(), 0);
        }
    }
    command(0xD8);
    command(0x00);
    EXPECT_EQ(wd1771_read_irq(), 0) << "a command takes the request back";
    EXPECT_NE(z80_state.irq, 0) << "but not the processor's line";
    status();
    EXPECT_EQ(z80_state.irq, 0);
    testing::internal::GetCapturedStderr();
    testing::internal::CaptureStderr();
    pass(BUSY_CYCLES + 1);
    status();
    wd1771_device_select(1);
    command(0xE4);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "FDC(0). Unhandled command: E4.\n");
    testing::internal::CaptureStderr();
}

TEST_F(Wd1771, SectorsOfOtherSizes) {
    for (const uint32_t size : {128U, 512U}) {
        SCOPED_TRACE(size);
        std::vector<uint8_t> expected = insert(0, 40, 10);
        wd1771.disks[0].bytes_per_sector = size;
        const size_t at = size_t(12) * size; // track 1, sector 2
        seek(1);
        wd1771_write_reg(SECTOR, 2);
        command(0x80);
        for (size_t n = 0; n < size; ++n) {
            ASSERT_EQ(status() & 0x03, 0x03) << n;
            ASSERT_EQ(wd1771_read_reg(DATA), expected[at + n]) << n;
        }
        EXPECT_EQ(status() & 0x03, 0);
        command(0xA0); // takes 256 bytes, whatever the size
        for (int n = 0; n < 256; ++n) {
            ASSERT_EQ(status() & 0x03, 0x03) << n;
            wd1771_write_reg(DATA, 0xA5);
        }
        EXPECT_EQ(status() & 0x23, 0);
        std::fill_n(expected.begin() + long(at), std::min(size, 256U), uint8_t(0xA5));
        EXPECT_EQ(wd1771_disk(0).image, expected)
            << "the rest of a long sector is what was read before";
        wd1771_write_reg(SECTOR, 2);
        command(0xC0);
        for (int n = 0; n < 6; ++n) {
            ASSERT_EQ(status() & 0x03, 0x02) << n;
            wd1771_read_reg(DATA);
        }
        EXPECT_EQ(status() & 0x03, 0);
    }
}

} // namespace
