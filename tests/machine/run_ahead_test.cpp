// Run-ahead: what it gains, and that nothing else is different with it.

#include "core/machine_state.h"
#include "core/pacing/run_ahead.h"
#include "host/whole_program.h"
#include "program_run.h"

#include <algorithm>

namespace {

constexpr const char* CATCH = EXAMPLES_DIR "/catch.bas";

class RunAhead : public WholeProgramTest {
protected:
    /// The next picture shown. The key comes while the frame before waits for its time.
    std::vector<Colour> next_picture(int key = KEY_NONE) {
        const int64_t wait = paced_frame_step();
        if (key) host->set_key(uint8_t(key), true);
        if (wait) host->events().wait(wait);
        run_paced_frame();
        std::vector<Colour> pixels;
        for (int n = 0; n < 384 * 288; ++n)
            pixels.push_back(host->pane(PaneId::picture).pixel(4 + n % 384, 4 + n / 384));
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
        int n = -BEFORE;
        while (n < MOST && next_picture(n ? KEY_NONE : key) == without[size_t(n + BEFORE)]) ++n;
        host->release_all_keys();
        return n + 1;
    }
};

TEST_F(RunAhead, ShowsWhatAKeyDoesInTheNextPicture) {
    keep_pictures = true;
    const struct {
        const char* file;
        int frames; ///< until it waits for keys
        int start;  ///< the key that starts it
        int keys[2];
        bool beam;
        int latest[3]; ///< answers with 0, 1 and 2 frames
    } cases[] = {
        {"/w", 200, KEY_RETURN, {'A', 'B'}, false, {2, 1, 1}}, // BASIC
        {"/w", 200, KEY_RETURN, {'A', 'B'}, true, {3, 2, 1}},
        {CATCH, 3000, KEY_SPACE, {KEY_OEM_COMMA, KEY_OEM_PERIOD}, false, {3, 2, 1}},
    };
    for (const auto& c : cases) {
        start({"/h", c.file});
        g_Timer = true;
        g_bCycleBasedEngine = c.beam;
        do_some_frames(c.frames);
        host->set_key(uint8_t(c.start), true);
        do_some_frames(5);
        host->release_all_keys();
        do_some_frames(100);
        for (frames_ahead = 0; frames_ahead < 3; ++frames_ahead) {
            int latest = 0;
            for (int press = 0; press < 4; ++press) {
                for (int n = 7 + press; n > 0; --n) next_picture();
                latest = std::max(latest, pictures_to_answer(c.keys[press % 2]));
            }
            EXPECT_EQ(latest, c.latest[frames_ahead]) << c.file << ", " << frames_ahead << " ahead";
        }
        emu_close();
    }
}

TEST(RunAheadFiles, AreThoseOfTheTrueFrames) {
    for (const std::string beam : {"0", "1"}) {
        const Folder folder;
        std::string printed[2];
        for (const std::string ahead : {"0", "3"}) {
            const auto place = folder / ahead;
            std::filesystem::create_directory(place);
            write_text(place / "all.bas", "10 LPRINT A:PLAY(1,4,1+A,9):A=A+1 AND 7:PRINT A;\n"
                                          "20 IF A=5 THEN CSAVE\"A\"\n30 GOTO 10\nRUN\n");
            const auto run = run_tarvelin(
                {"--setting", "RunAhead=" + ahead, "--setting", "EnablePrinter=1", "--setting",
                 "CycleBasedEmulation=" + beam, "--setting", "VideoCodec=rle", "/v", "film.avi",
                 "--wav", "sound.wav", "--regs", "/s", "7", "/t", "8", "all.bas"},
                place);
            printed[ahead == "3"] = run.output;
        }
        EXPECT_EQ(printed[0], printed[1]);
        for (const char* name :
             {"film.avi", "sound.wav", "all0000.gif", "data/tarvelin/printer.txt"}) {
            const std::string file = read_text(folder / "0" / name);
            EXPECT_GT(file.size(), 50) << name;
            EXPECT_EQ(file == read_text(folder / "3" / name), true) << name << ", engine " << beam;
        }
    }
}

} // namespace
