#include "core/machine.h"
#include "host/autostart.h"
#include "media/files/drive_files.h"
#include "support/basic_machine.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr const char* DISK = EXAMPLES_DIR "/bootdisk.dsk";
constexpr const char* GREETING = "   HELLO FROM THE BOOT SECTOR OF A DISK";

class BootDisk : public testing::Test {
protected:
    BootDisk() {
        machine_cfg[0].expansion_rom = 0;
        machine_.boot(0);
    }
    ~BootDisk() override { diskimg_detach(0, false); }
    bool greets() {
        const auto rows = machine_.screen();
        return rows.size() > 2 && rows[2] == GREETING;
    }
    BasicMachine machine_;
};

TEST_F(BootDisk, ADiskGivenToARunningMachineWaitsForTheNextStart) {
    ASSERT_TRUE(machine_.type("10 REM\n"));
    autostart_file(DISK);
    ASSERT_TRUE(machine_.type("\n"));
    EXPECT_FALSE(greets());
    ASSERT_TRUE(machine_.type("LIST\n"));
    const auto rows = machine_.screen();
    EXPECT_NE(std::ranges::find(rows, "10 REM"), rows.end());

    machine_.platform().set_key(KEY_CONTROL, true);
    autostart_file(DISK);
    machine_.platform().release_all_keys();
    ASSERT_TRUE(machine_.type("")) << "there is no question to answer";
    EXPECT_TRUE(greets());
    ASSERT_TRUE(machine_.type("LIST\n"));
    EXPECT_TRUE(greets()) << "and BASIC goes on below it";
    EXPECT_EQ(machine_.screen().back(), ">");
}

TEST_F(BootDisk, FilesAreOpenOnDisksOfDifferentSizes) {
    const Folder folder;
    const size_t tracks[] = {35, 80};
    for (unsigned drive = 0; drive < 2; ++drive) {
        const std::string path = folder / std::to_string(drive);
        write_file(path, std::vector<uint8_t>(tracks[drive] * (drive + 1) * 10 * 256, 0xE5));
        ASSERT_EQ(diskimg_attach(drive, path), 1);
        machine_.type("FORMAT " + std::to_string(drive) + "\nY\n");
    }
    ASSERT_TRUE(machine_.type("10 OPEN\"O\",1,\"A:0\":OPEN\"O\",2,\"A:1\":FOR I=1 TO 400\n"
                              "20 PRINT#1,I:PRINT#2,-I:NEXT:CLOSE\n"
                              "30 OPEN\"I\",1,\"A:0\":OPEN\"I\",2,\"A:1\":FOR I=1 TO 400\n"
                              "40 INPUT#1,J:INPUT#2,K:IF J<>I OR K<>-I THEN STOP\n"
                              "50 NEXT:CLOSE:CLS:PRINT \"SAME\"\nRUN\n",
                              3000));
    EXPECT_EQ(machine_.screen()[0], "SAME") << machine_.screen().back();
    for (unsigned drive = 0; drive < 2; ++drive) diskimg_detach(drive, false);
}

} // namespace
