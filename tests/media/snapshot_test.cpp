#include "media/files/program_files.h"

#include "cgenie/memory/memory.h"
#include "support/test_files.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using Bytes = std::vector<uint8_t>;

/// Everything that a snapshot may or may not touch.
struct Machine {
    z80_record cpu = z80_state;
    Bytes memory_bytes{memory, memory + MEMORY_SIZE};
    Bytes port_bytes{ports, ports + 256};
};

void expect_same(const Machine& want, const std::string& name) {
    EXPECT_EQ(std::memcmp(&z80_state, &want.cpu, sizeof z80_state), 0) << name << ": processor";
    EXPECT_EQ(std::memcmp(memory, want.memory_bytes.data(), MEMORY_SIZE), 0) << name << ": memory";
    EXPECT_EQ(std::memcmp(ports, want.port_bytes.data(), 256), 0) << name << ": ports";
}

struct Snapshot : testing::Test {
    /// A machine in which no two neighbours are equal.
    void SetUp() override {
        z80_state = {};
        // AF BC DE HL, IX IY SP PC, AF' BC' DE' HL', I R IFF1 IFF2 IM
        static_cast<z80_registers&>(z80_state) = {0x0708, 0x0102, 0x0304, 0x0506, 0x2526, 0x2728,
                                                  0x2324, 0x2122, 0x1718, 0x1112, 0x1314, 0x1516,
                                                  0x77,   0x88,   1,      0,      2};
        z80_state.t_count = 123456789;
        for (size_t i = 0; i < MEMORY_SIZE; ++i) memory[i] = uint8_t(i * 5 + (i >> 8));
        for (size_t i = 0; i < 256; ++i) ports[i] = uint8_t(i + 1);
    }

    const Folder folder;
    const std::string path = folder / "machine.jzs";
};

TEST_F(Snapshot, FileHoldsTheMachineByteForByte) {
    ASSERT_EQ(snapshot_save(path.c_str(), memory_get_ram()), 1);
    const Bytes file = read_file(path);
    ASSERT_EQ(file.size(), 49702u);
    const Bytes head = {
        'J',  'Z',  '0',  '1',                          // magic
        0x02, 0x01, 0x04, 0x03, 0x06, 0x05, 0x08, 0x07, // BC DE HL AF
        0x12, 0x11, 0x14, 0x13, 0x16, 0x15, 0x18, 0x17, // the same of the other bank
        0x22, 0x21, 0x24, 0x23, 0x00, 0x00,             // PC SP reserved
        0x26, 0x25, 0x28, 0x27,                         // IX IY
        0x01, 0x41, 0x81, 0xC1,                         // out of ports 00 40 80 C0
        0xFF, 0xFF, 0xFF, 0xFF,                         // in of the same: nothing answers
    };
    EXPECT_EQ(Bytes(file.begin(), file.begin() + 38), head);
    EXPECT_EQ(std::memcmp(file.data() + 38, memory + 0x4000, 49152), 0);
    EXPECT_EQ(Bytes(file.end() - 512, file.end()), Bytes(512, 0));
}

TEST_F(Snapshot, LoadRestoresRegistersRamAndPortZeroOnly) {
    for (const size_t extra : {0, 1000}) {
        SetUp();
        Machine want;
        static_cast<z80_registers&>(want.cpu) = {0x8687, 0x8081, 0x8283, 0x8485, 0x9697, 0x9899,
                                                 0x9293, 0x9091, 0x8E8F, 0x8889, 0x8A8B, 0x8C8D,
                                                 0x77,   0x88,   1,      0,      2};
        want.port_bytes[0x00] = 0xB0;
        Bytes file = {'?', 0, 0xFF, 'x'}; // the magic does not count
        for (int value = 0x80; value <= 0x99; value += 2) {
            file.push_back(uint8_t(value + 1));
            file.push_back(uint8_t(value));
        }
        file.insert(file.end(), {0xA0, 0xA1, 0xA2, 0xA3, 0xB0, 0xB1, 0xB2, 0xB3});
        for (size_t i = 0; i < 49152; ++i) {
            want.memory_bytes[0x4000 + i] = uint8_t(i * 11 + (i >> 7));
            file.push_back(want.memory_bytes[0x4000 + i]);
        }
        file.resize(49702 + extra, 0x3C);
        write_file(path, file);
        EXPECT_EQ(snapshot_load(path.c_str(), memory_get_ram()), 1);
        expect_same(want, "extra " + std::to_string(extra));
    }
}

TEST_F(Snapshot, RefusedFilesChangeNothing) {
    Bytes file(49701, 0x55);
    std::memcpy(file.data(), "JZ01", 4);
    for (const size_t size : {49701, 49190, 38, 4, 0}) {
        file.resize(size);
        write_file(path, file);
        const Machine before;
        EXPECT_EQ(snapshot_load(path.c_str(), memory_get_ram()), 0) << size;
        expect_same(before, "size " + std::to_string(size));
    }
    const Machine before;
    EXPECT_EQ(snapshot_load((folder / "missing").string().c_str(), memory_get_ram()), 0);
    EXPECT_EQ(snapshot_load(folder.path().string().c_str(), memory_get_ram()), 0) << "a directory";
    expect_same(before, "no file");
}

TEST_F(Snapshot, SavingReportsWhatCannotBeWritten) {
    EXPECT_EQ(snapshot_save((folder / "no/such/folder.jzs").string().c_str(), memory_get_ram()), 0);
    std::FILE* full = std::fopen("/dev/full", "wb");
    if (!full) GTEST_SKIP() << "no device that is always full";
    std::fclose(full);
    EXPECT_EQ(snapshot_save("/dev/full", memory_get_ram()), 0);
}

} // namespace
