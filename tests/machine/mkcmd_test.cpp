#include "program_run.h"

#include "cgenie/memory/memory.h"
#include "files/file_handle.h"
#include "media/files/program_files.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Words = std::vector<std::string>;

class MkcmdTest : public testing::Test {
protected:
    ProgramResult pack(Words arguments) const {
        arguments.insert(arguments.begin(), MKCMD_PROGRAM);
        return run_program(arguments, folder_.path());
    }

    /// `size` bytes that tell neighbours and blocks apart.
    std::string image(const std::string& name, size_t size) const {
        std::string bytes;
        for (size_t i = 0; i < size; ++i) bytes.push_back(char(i * 7 + i / 256 + size));
        write_text(folder_ / name, bytes);
        return bytes;
    }

    Folder folder_;
};

TEST_F(MkcmdTest, ModulesLoadBackByteForByte) {
    for (const size_t size : {1, 2, 253, 254, 255, 256, 257, 258, 511, 512, 1000}) {
        SCOPED_TRACE(size);
        const std::string low = image("low.bin", size);
        const std::string high = image("high.bin", 300);
        const ProgramResult result =
            pack({"out.cmd", "7abC", "6000", "low.bin", "BED4", "high.bin"});
        EXPECT_EQ(result.exit_code, 0);
        EXPECT_EQ(result.output + result.errors, "");

        std::fill_n(memory + RAM_START, 0x8000, uint8_t(0x5A));
        std::string expected(0x8000, 0x5A);
        expected.replace(0x2000, size, low);
        expected.replace(0x7ED4, 300, high); // up to BFFF
        const FileHandle module = open_file(folder_ / "out.cmd", "rb");
        ASSERT_NE(module, nullptr);
        uint16_t entry = 0;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        EXPECT_EQ(load_cmd(module.get(), &entry), 1);
        testing::internal::GetCapturedStdout();
        const std::string told = testing::internal::GetCapturedStderr();
        EXPECT_EQ(entry, 0x7ABC);
        EXPECT_NE(told.find("type 5"), std::string::npos) << "the name block";
        EXPECT_TRUE(std::ranges::equal(expected, std::string(memory + RAM_START, memory + 0xC000)));
        EXPECT_EQ(read_text(folder_ / "out.cmd").substr(2, 6), "OUT   ");
    }
}

TEST_F(MkcmdTest, MistakesAreNamedAndNothingIsWritten) {
    image("good.bin", 16);
    image("empty.bin", 0);
    const struct {
        Words arguments;
        std::string named;
    } cases[] = {
        {{}, "usage"},
        {{"out.cmd", "5800", "5800"}, "usage"},
        {{"out.cmd", "5800", "5800", "good.bin", "6000"}, "usage"},
        {{"out.cmd", "58g0", "5800", "good.bin"}, "\"58g0\""},
        {{"out.cmd", "0x58", "5800", "good.bin"}, "\"0x58\""},
        {{"out.cmd", "5800", "", "good.bin"}, "\"\""},
        {{"out.cmd", "5800", "5800", "good.bin", "10000", "good.bin"}, "\"10000\""},
        {{"out.cmd", "5800", "5800", "gone.bin"}, "gone.bin"},
        {{"out.cmd", "5800", "5800", "."}, "cannot read ."},
        {{"out.cmd", "5800", "5800", "empty.bin"}, "empty.bin"},
        {{"out.cmd", "5800", "FFF1", "good.bin"}, "good.bin does not fit"},
        {{"gone/out.cmd", "5800", "5800", "good.bin"}, "gone/out.cmd"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments));
        const ProgramResult result = pack(c.arguments);
        expect_refusal(result, c.named);
        EXPECT_FALSE(std::filesystem::exists(folder_ / "out.cmd"));
    }
    EXPECT_EQ(pack({"out.cmd", "0", "FFF0", "good.bin"}).exit_code, 0) << "up to FFFF";
}

} // namespace
