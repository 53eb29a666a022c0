#include "core/machine.h"
#include "host/autostart.h"
#include "media/files/drive_files.h"
#include "support/basic_machine.h"

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

} // namespace
