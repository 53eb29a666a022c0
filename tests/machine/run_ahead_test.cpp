// Run-ahead: what it gains, and that nothing else is different with it.

#include "core/frame_driver.h"
#include "core/machine_state.h"
#include "core/pacing/pacing.h"
#include "core/pacing/run_ahead.h"
#include "host/menu.h"
#include "host/shell.h"
#include "program_run.h"
#include "support/host_files.h"
#include "support/paced_frames.h"
#include "support/program_options.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

namespace {

constexpr const char* CATCH = EXAMPLES_DIR "/catch.bas";

class RunAhead : public HostFilesTest {
protected:
    /// The whole program, and `frames` frames of it as fast as they go.
    void start(const std::string& file, bool beam, int frames) {
        HeadlessOptions options;
        options.look_ns = 0;
        options.refresh_rate = 60;
        options.keep_pictures = true;
        install_host(options);
        reset_program_options();
        host->window().create("start");
        create_menu();
        emu_init(
            {.line = read_command_line(file.empty() ? Arguments{"/h"} : Arguments{"/h", file})});
        g_bCycleBasedEngine = beam;
        do_some_frames(frames);
    }
    void TearDown() override {
        reset_program_options();
        HostFilesTest::TearDown();
    }
    /// The next picture shown. The key comes while the frame before waits for its time.
    std::vector<Colour> next_picture(int key = KEY_NONE) {
        const int64_t wait = paced_frame_step();
        if (key) host->set_key(uint8_t(key), true);
        if (wait) host->events().wait(wait);
        run_paced_frame();
        std::vector<Colour> pixels;
        for (int y = 4; y < 4 + 288; y += 2) {
            for (int x = 4; x < 4 + 384; ++x) {
                pixels.push_back(host->pane(PaneId::picture).pixel(x, y));
            }
        }
        return pixels;
    }
    /// Which picture after the key is the first that would have been another one without it.
    int pictures_to_answer(int key) {
        constexpr int BEFORE = 3, MOST = 8; // pacing begins anew with a state that is loaded
        machine_state start;
        machine_save(start);
        std::vector<std::vector<Colour>> without;
        machine_load(start);
        for (int n = -BEFORE; n < MOST; ++n) without.push_back(next_picture());
        machine_load(start);
        int answer = 0;
        for (int n = -BEFORE; n < MOST && !answer; ++n) {
            if (next_picture(n ? KEY_NONE : key) != without[size_t(n + BEFORE)]) answer = n + 1;
        }
        host->release_all_keys();
        return answer;
    }
};

TEST_F(RunAhead, ShowsWhatAKeyDoesInTheNextPicture) {
    const struct {
        const char* name;
        const char* file;
        int frames; ///< until it waits for keys
        int start;  ///< the key that starts it
        int keys[2];
        bool beam;
        int answers[3]; ///< the latest that are allowed with 0, 1 and 2 frames
    } cases[] = {
        {"BASIC", "", 200, KEY_RETURN, {'A', 'B'}, false, {2, 1, 1}},
        {"BASIC", "", 200, KEY_RETURN, {'A', 'B'}, true, {3, 2, 1}},
        {"catch", CATCH, 3000, KEY_SPACE, {KEY_OEM_COMMA, KEY_OEM_PERIOD}, false, {3, 2, 1}},
    };
    for (const auto& c : cases) {
        start(c.file, c.beam, c.frames);
        host->set_key(uint8_t(c.start), true);
        do_some_frames(5);
        host->release_all_keys();
        do_some_frames(100);
        for (frames_ahead = 0; frames_ahead < 3; ++frames_ahead) {
            std::string found;
            int latest = 0;
            for (int press = 0; press < 4; ++press) {
                for (int n = 7 + press; n > 0; --n) next_picture();
                const int answer = pictures_to_answer(c.keys[press % 2]);
                latest = std::max(latest, answer ? answer : INT_MAX);
                found += " " + std::to_string(answer);
            }
            EXPECT_EQ(latest, c.answers[frames_ahead])
                << c.name << (c.beam ? ", beam, " : ", ") << frames_ahead << " ahead:" << found;
        }
        emu_close();
    }
}

TEST(RunAheadFiles, RecordingsAndScreenshotsHaveTheTrueFrames) {
    for (const std::string beam : {"0", "1"}) {
        const Folder folder;
        for (const std::string ahead : {"0", "3"}) {
            const auto place = folder / ahead;
            std::filesystem::create_directory(place);
            std::filesystem::copy_file(CATCH, place / "catch.bas");
            run_tarvelin({"--setting", "RunAhead=" + ahead, "--setting",
                          "CycleBasedEmulation=" + beam, "--setting", "VideoCodec=rle", "/v",
                          "film.avi", "--wav", "sound.wav", "/s", "5", "/t", "6", "catch.bas"},
                         place);
        }
        for (const char* name : {"film.avi", "sound.wav", "catch0000.gif"}) {
            const std::string file = read_text(folder / "0" / name);
            EXPECT_GT(file.size(), 1000) << name;
            EXPECT_EQ(file == read_text(folder / "3" / name), true) << name << ", engine " << beam;
        }
    }
}

} // namespace
