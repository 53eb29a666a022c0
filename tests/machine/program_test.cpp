#include "program_run.h"

#include "cgenie/firmware_images.h"
#include "support/picture.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <set>
#include <thread>

namespace {

using Words = std::vector<std::string>;

const std::string NO_JOYSTICKS =
    "No joystick driver found.\nNumber of joysticks found: 0\nNo joysticks are plugged.\n";

/// The errors of a run that was started, without what each start says about the joysticks.
std::string complaints(const ProgramResult& result) {
    std::string text = result.errors;
    const size_t report = text.find(NO_JOYSTICKS);
    EXPECT_NE(report, std::string::npos) << text;
    return report == std::string::npos ? text : text.erase(report, NO_JOYSTICKS.size());
}

class ProgramTest : public testing::Test {
protected:
    ProgramResult run(const Words& arguments) const {
        return run_tarvelin(arguments, folder_.path());
    }
    Picture picture(const std::string& name) const { return read_gif(folder_ / name); }

    Folder folder_;
};

TEST_F(ProgramTest, TellsHowItIsUsed) {
    for (const Words& options : {Words{"--help"}, {"--no-such-option", "--help"}}) {
        const ProgramResult help = run(options);
        EXPECT_EQ(help.exit_code, 0);
        EXPECT_EQ(help.errors, "");
        for (const char* word : {"usage: tarvelin", "--headless", "--setting", "/s N", "FILE"}) {
            EXPECT_NE(help.output.find(word), std::string::npos) << word;
        }
    }
    const ProgramResult version = run({"--version"});
    EXPECT_EQ(version.exit_code, 0);
    EXPECT_EQ(version.output, "Tarvelin " TARVELIN_VERSION "\n");
}

TEST_F(ProgramTest, RefusesWhatItDoesNotUnderstandInOneLine) {
    write_text(folder_ / "text.doc", "x");
    const struct {
        Words arguments;
        std::string named; ///< in the message
    } cases[] = {
        {{"/w", "gone.cmd"}, "gone.cmd"},
        {{folder_ / "gone.cmd"}, folder_ / "gone.cmd"},
        {{"text.doc"}, "text.doc"},
        {{folder_.path()}, folder_.path()},
        {{"/w", "--setting"}, "--setting"},
        {{"/w", "--disassemble"}, "--disassemble"},
        {{"--disassemble", "0-10000"}, "--disassemble"},
        {{"--disassemble", "2-1"}, "--disassemble"},
        {{"--disassemble", "0-0x1"}, "--disassemble"},
        {{"--setting", "=1"}, "--setting"},
        {{"--source", "4000"}, "--source"},
        {{"--symbols"}, "--symbols"},
        {{"--symbols", "gone.sym"}, "gone.sym"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments));
        const ProgramResult result = run(c.arguments);
        expect_refusal(result, c.named);
        EXPECT_TRUE(result.errors.starts_with("tarvelin: ")) << result.errors;
    }
}

TEST_F(ProgramTest, PrintsRegistersAndDisassemblyAfterTheRun) {
    write_text(folder_ / "halt.cmd",
               std::string("\x01\x05\x00\x50\xF3\x76\x00", 7) + std::string("\x02\x02\x00\x50", 4));
    const ProgramResult result =
        run({"/w", "/t", "3", "--regs", "--disassemble", "FFFe-ffff", "halt.cmd"});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_NE(result.output.find(",IP:5001,R:"), std::string::npos) << result.output;
    EXPECT_TRUE(result.output.ends_with(" FFFE FF          rst 38h\n FFFF FF          rst 38h\n"));
    EXPECT_NE(result.output.find("\nTCOUNT:00000000000000000"), std::string::npos);
}

TEST_F(ProgramTest, PrintsNothingButASourceWithTheSymbolsBesideTheProgram) {
    write_text(folder_ / "halt.cmd",
               std::string("\x01\x05\x00\x50\xF3\x76\x00", 7) + std::string("\x02\x02\x00\x50", 4));
    write_text(folder_ / "halt.sym", "begin EQU 5000H\n");
    write_text(folder_ / "other.sym", "finish EQU 5001H\n");
    const std::string text = "; 5000-5001, as it is in memory\n\n        org 05000h\n";
    const auto arguments = {"/w", "/t", "3", "--source", "5000-5001", "halt.cmd"};
    EXPECT_EQ(run({arguments.begin(), arguments.end()}).output,
              text + "begin:\n        di\n        halt\n");
    EXPECT_EQ(run({"--symbols", "other.sym", "/w", "/t", "3", "--source", "5000-5001", "halt.cmd"})
                  .output,
              text + "        di\nfinish:\n        halt\n");
}

TEST_F(ProgramTest, AScreenshotThatCannotBeWrittenIsAnError) {
    // Nobody, not even the superuser, can make files there.
    const ProgramResult result = run_tarvelin({"/w", "/s", "1", "/t", "2"}, "/proc");
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(std::ranges::count(complaints(result), '\n'), 1) << complaints(result);
    EXPECT_NE(complaints(result).find("screenshot cannot be written"), std::string::npos)
        << complaints(result);
}

TEST_F(ProgramTest, TheUsersFirmwareReplacesTheBuiltInOneOfTheSameSize) {
    const auto charset = folder_ / "data/tarvelin/firmware/charset-original.rom";
    std::filesystem::create_directories(charset.parent_path() / "basic-v1.rom");
    for (const size_t size : {0, 2047, 2048, 2049}) {
        SCOPED_TRACE(size);
        write_text(charset, std::string(size, '\xFF'));
        const ProgramResult result = run({"/w", "/s", "1", "/t", "2"});
        EXPECT_EQ(result.exit_code, 0);
        const Picture shot = picture("Tarvelin0000.gif");
        std::filesystem::remove(folder_ / "Tarvelin0000.gif");
        // All 40 x 24 cells full, but for the cursor's.
        const auto black = size_t(std::ranges::count(shot.pixels, 16));
        const bool full = black <= 384 * 288 - 320 * 192 + 64;
        EXPECT_EQ(full, size == 2048);
        EXPECT_NE(complaints(result).find("basic-v1.rom: "), std::string::npos);
        EXPECT_EQ(std::ranges::count(complaints(result), '\n'), 2);
        const std::string reason = size == 2048
                                       ? "all of its bytes are the same"
                                       : std::to_string(size) + " bytes found, 2048 bytes needed";
        EXPECT_NE(complaints(result).find(charset.string() + ": " + reason), std::string::npos)
            << complaints(result);
    }
}

TEST_F(ProgramTest, AFirmwareThatTheTrapsDoNotFitLoadsACassetteInRealTime) {
    const auto built_in = firmware_built_in(FirmwareImage::basic_v1);
    std::vector<uint8_t> rom(built_in.begin(), built_in.end());
    rom[0x0240] = 0xFE; // a leader of one byte less
    std::filesystem::create_directories(folder_ / "data/tarvelin/firmware");
    write_file(folder_ / "data/tarvelin/firmware/BASIC-V1.ROM", rom);
    std::filesystem::copy_file(EXAMPLES_DIR "/colours.cas", folder_ / "colours.cas");
    const ProgramResult result = run({"/w", "/s", "60", "/t", "61", "colours.cas"});
    EXPECT_NE(complaints(result).find("real time"), std::string::npos);
    const Picture shot = picture("Tarvelin0000.gif");
    EXPECT_EQ(std::set(shot.pixels.begin(), shot.pixels.end()).size(), 17U)
        << "the border and all colours of the example";
}

TEST_F(ProgramTest, ATerminationSignalEndsTheRunInGoodOrder) {
    using namespace std::chrono_literals;
    for (const int signal : {SIGTERM, SIGINT}) {
        Program program({TARVELIN_PROGRAM, "--headless", "/w", "/s", "0"}, folder_.path());
        for (int n = 0; n < 1000 && !std::filesystem::exists(folder_ / "Tarvelin0000.gif"); ++n) {
            std::this_thread::sleep_for(10ms);
        }
        program.send(signal);
        const ProgramResult result = program.wait();
        EXPECT_NE(result.exit_code, -1) << "by its own will";
        EXPECT_NE(result.exit_code, 0) << "but not as planned";
        EXPECT_EQ(complaints(result), "");
        EXPECT_EQ(picture("Tarvelin0000.gif").pixels.size(), 384U * 288U);
        std::filesystem::remove(folder_ / "Tarvelin0000.gif");
    }
}

} // namespace
