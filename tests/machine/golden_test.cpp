#include "program_run.h"

#include "host/recording/gif.h"
#include "support/picture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace fs = std::filesystem;

namespace {

/// Runs the program and returns its only screenshot, that after `second` seconds of machine time.
/// The last argument may be an example, behind which `keys` are typed if it is a text.
fs::path take_picture(const std::vector<std::string>& arguments, int second,
                      const std::string& keys, const Folder& folder) {
    const fs::path example = fs::path(EXAMPLES_DIR) / arguments.back();
    if (fs::exists(example)) fs::copy_file(example, folder / arguments.back());
    if (!keys.empty()) std::ofstream(folder / arguments.back(), std::ios::app) << keys;
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
        const char* keys = "";
    } runs[] = {
        // By way of the typed commands and the firmware's cassette routines.
        {"colours-cassette", {"colours.cas"}, 6},
        {"colours", {"colours.cmd"}, 4},
        {"colours-beam", {beam[0], beam[1], "colours.cmd"}, 4},
        {"bounce", {"bounce.cmd"}, 4},
        {"bounce", {beam[0], beam[1], "bounce.cmd"}, 4}, // pixel by pixel the same
        {"bootdisk",
         {"--setting", "ActiveConfig=4", "--setting", "CustomRomExpansion=0", "bootdisk.dsk"}},
        // Games and tools in BASIC, at rest; the models differ in rows and colours.
        {"raiders", {"raiders.bas"}, 60},
        {"raiders-beam", {beam[0], beam[1], "raiders.bas"}, 60},
        {"maze", {"/m3", "maze.bas"}, 30},
        {"maze-beam", {"/m3", beam[0], beam[1], "maze.bas"}, 30},
        {"prelude", {"/m2", "prelude.bas"}, 180},
        {"prelude-beam", {"/m2", beam[0], beam[1], "prelude.bas"}, 180},
        {"bell", {"bell.txt"}, 80, "w\nn\ne\ntake key\n"},
        {"bell-beam", {beam[0], beam[1], "bell.txt"}, 80, "w\nn\ne\ntake key\n"},
        {"sketch", {"/m3", "sketch.txt"}, 80, " b"},
        {"sketch-beam", {"/m3", beam[0], beam[1], "sketch.txt"}, 80, " b"},
        {"glyphs", {"glyphs.txt"}, 80, "m."},
        {"glyphs-beam", {beam[0], beam[1], "glyphs.txt"}, 80, "m."},
        {"sign-on-1", {"/m1"}},
        {"sign-on-2sn", {"/m2"}},
        {"sign-on-2", {"/m3"}},
    };
    for (const auto& run : runs) {
        SCOPED_TRACE(run.name);
        const Folder folder;
        const fs::path taken = take_picture(run.arguments, run.second, run.keys, folder);
        ASSERT_FALSE(taken.empty());
        compare(run.name, taken);
    }
}

} // namespace
