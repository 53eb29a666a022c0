#include "program_run.h"

#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "host/canvas.h"
#include "host/recording/gif.h"
#include "host/shell.h"
#include "platform/headless/headless.h"
#include "support/picture.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace fs = std::filesystem;

namespace {

// ---- pictures of whole runs --------------------------------------------------------------------

/// Runs the program and returns its only screenshot, that after `second` seconds of machine time.
fs::path take_picture(const std::vector<std::string>& arguments, int second, const Folder& folder) {
    for (const char* example : {"colours.cmd", "colours.cas", "bounce.cmd", "bootdisk.dsk"}) {
        fs::copy_file(fs::path(EXAMPLES_DIR) / example, folder / example);
    }
    std::vector<std::string> words = {"/w", "/s", std::to_string(second), "/t",
                                      std::to_string(second + 1)};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const ProgramResult result = run_tarvelin(words, folder.path());
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    for (const auto& entry : fs::directory_iterator(folder.path())) {
        if (entry.path().extension() == ".gif") return entry.path();
    }
    return {};
}

/// Compares with the stored picture, or replaces that when TARVELIN_UPDATE_GOLDEN is 1.
void compare(const std::string& name, const fs::path& taken) {
    const fs::path golden = fs::path(TEST_SOURCE_DIR "/golden") / (name + ".gif");
    constexpr auto over = fs::copy_options::overwrite_existing;
    const char* update = std::getenv("TARVELIN_UPDATE_GOLDEN");
    if (update && std::string(update) == "1") fs::copy_file(taken, golden, over);

    const Picture expected = read_gif(golden);
    const Picture actual = read_gif(taken);
    ASSERT_EQ(expected.pixels.size(), 384U * 288U) << golden;
    const size_t differences = count_differences(expected, actual);
    if (differences == 0) return;
    const std::string result = TEST_BINARY_DIR "/" + name;
    fs::copy_file(taken, result + ".actual.gif", over);
    const Picture marked = difference(expected, actual);
    gif_save((result + ".difference.gif").c_str(), marked.width, marked.height,
             marked.pixels.data(), marked.colours.data());
    ADD_FAILURE() << differences << " pixels differ; see " << result
                  << ".actual.gif and .difference.gif (red), and TARVELIN_UPDATE_GOLDEN=1";
}

TEST(GoldenPictures, AreReachedPixelByPixel) {
    const std::vector<std::string> beam = {"--setting", "CycleBasedEmulation=1"};
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        int second = 2;
    } runs[] = {
        // By way of the typed commands and the firmware's cassette routines.
        {"colours-cassette", {"colours.cas"}, 6},
        {"colours", {"colours.cmd"}, 4},
        {"colours-beam", {beam[0], beam[1], "colours.cmd"}, 4},
        {"bounce", {"bounce.cmd"}, 4},
        {"bounce", {beam[0], beam[1], "bounce.cmd"}, 4}, // pixel by pixel the same
        {"bootdisk",
         {"--setting", "ActiveConfig=4", "--setting", "CustomRomExpansion=0", "bootdisk.dsk"}},
        {"sign-on-1", {"/m1"}},
        {"sign-on-2sn", {"/m2"}},
        {"sign-on-2", {"/m3"}},
    };
    for (const auto& run : runs) {
        SCOPED_TRACE(run.name);
        const Folder folder;
        const fs::path taken = take_picture(run.arguments, run.second, folder);
        ASSERT_FALSE(taken.empty());
        compare(run.name, taken);
    }
}

// ---- changes while the beam runs ---------------------------------------------------------------

constexpr uint16_t PROGRAM = 0x9000;
constexpr uint8_t ROUNDS = 90;

/// Writes two values to the latch by turns, for ever, about twenty scan lines each.
void start_switching(uint8_t first, uint8_t second) {
    const uint8_t code[] = {
        0x3E, first,  0xD3, 0xFF,                         // LD A,first    OUT (FF),A
        0x01, ROUNDS, 0x00, 0x0B, 0x78, 0xB1, 0x20, 0xFB, // LD BC,ROUNDS  wait
        0x3E, second, 0xD3, 0xFF,                         // LD A,second   OUT (FF),A
        0x01, ROUNDS, 0x00, 0x0B, 0x78, 0xB1, 0x20, 0xFB, // LD BC,ROUNDS  wait
        0x18, 0xE6,                                       // JR first
    };
    std::ranges::copy(code, memory + PROGRAM);
    do_di();
    z80_state.pc = PROGRAM;
}

struct Band {
    int colour; ///< of every pixel, or MIXED
    int height;
};
constexpr int MIXED = -1;

/// What the middle of the canvas consists of, from line `first` to the one before `end`.
std::vector<Band> bands_of_lines(uint32_t first, uint32_t end) {
    std::vector<Band> bands;
    for (uint32_t y = first; y < end; ++y) {
        const auto left = canvas.pixels.begin() + y * SCREEN_WIDTH + 100;
        const bool uniform = std::count(left, left + 184, *left) == 184;
        const int colour = uniform ? *left : MIXED;
        if (bands.empty() || bands.back().colour != colour) bands.push_back({colour, 0});
        ++bands.back().height;
    }
    return bands;
}

TEST(BeamEngine, ShowsWhereAProgramSwitchedAndTheOtherEngineDoesNot) {
    const struct {
        const char* what;
        uint8_t latch[2];
        int colours[2];
    } cases[] = {
        // Both with the built-in characters, which are made blank here.
        {"background", {0x1C, 0xDC}, {10, 7}},
        // The programmable ones are full.
        {"character set", {0x00, 0x18}, {1, BLACK_INDEX}},
    };
    HeadlessPlatform host{HeadlessOptions{}};
    install_platform(host);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        emu_init({.line = read_command_line({"/m1"})});
        for (int frame = 0; frame < 30; ++frame) machine_run();
        std::fill_n(memory + 0x4400, 960, uint8_t(0x80));
        std::fill_n(memory + COLOUR_RAM_START, 960, uint8_t(1));
        std::fill_n(memory + CHARACTER_RAM_START, 8, uint8_t(0xFF));
        std::fill_n(current_charset + 0x80 * 8, 8, uint8_t(0));
        crtc_write_register(10, 0x20); // no cursor
        start_switching(c.latch[0], c.latch[1]);

        for (int frame = 0; frame < 5; ++frame) machine_run();
        update_screen(1);
        const uint32_t top = crtc.top_border;
        std::vector<Band> bands = bands_of_lines(top, top + 192);
        ASSERT_EQ(bands.size(), 1U);
        EXPECT_TRUE(bands[0].colour == c.colours[0] || bands[0].colour == c.colours[1]);

        g_bCycleBasedEngine = true;
        for (int frame = 0; frame < 30; ++frame) machine_run(); // until the picture is centred
        g_bCycleBasedEngine = false;
        // One value lasts 9 + 13 + 13 + 90 x 31 - 5 = 2820 cycles, the other one 14 more for the
        // jump: 19.9 and 20.0 lines of 142 cycles. A switch within a line leaves it mixed.
        bands = bands_of_lines(top, top + 192);
        int full_bands = 0;
        int last_colour = MIXED;
        for (size_t n = 1; n + 1 < bands.size(); ++n) { // the first and the last are cut off
            const auto [colour, height] = bands[n];
            if (colour == MIXED) {
                EXPECT_EQ(height, 1) << "band " << n;
                continue;
            }
            EXPECT_TRUE(colour == c.colours[0] || colour == c.colours[1]) << colour;
            EXPECT_NE(colour, last_colour) << "band " << n;
            EXPECT_TRUE(height == 19 || height == 20) << height << " lines in band " << n;
            last_colour = colour;
            ++full_bands;
        }
        EXPECT_GE(full_bands, 7);
    }
    emu_close();
}

} // namespace
