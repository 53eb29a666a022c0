// What is on disks and cassettes, as the user sees it before and while they are in.

#include "core/machine_events.h"
#include "host/commands.h"
#include "host/disks.h"
#include "host/media_panels.h"
#include "host/previews.h"
#include "host/whole_program.h"
#include "media/basic/basic_tokens.h"
#include "media/disk_system.h"
#include "media/files/tape_sound_files.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "sound/wav_header.h"
#include "support/posix.h"
#include "support/typed_text.h"

#include <zip.h>

namespace {

using Bytes = std::vector<uint8_t>;

class MediaPanelsTest : public WholeProgramTest {
protected:
    static Bytes program(const std::string& text) {
        BasicProblem problem;
        return basic_encode(text, problem).value_or(Bytes());
    }
    static DiskSystem disk(disk_layout layout) {
        std::string problem;
        auto image = disk_blank(layout, 40, 10, problem);
        EXPECT_TRUE(image && disk_format(*image, problem)) << problem;
        auto made = disk_mount(std::move(*image), problem);
        const Bytes basic = program("10 CLS\n");
        disk_put(*made, *disk_name("DEMO/BAS"), FILE_PROGRAM, {basic.begin() + 1, basic.end()},
                 problem);
        disk_put(*made, *disk_name("GAME/CMD"), FILE_CODE, Bytes(5000, 1), problem);
        return *made;
    }
    /// A machine-code program, a BASIC program and a record of data, one behind the other.
    static Bytes three_on_a_tape() {
        Bytes tape = tape_of_memory("GAME.cas", 0x6000, 0x612B, 0x6100);
        const Bytes basic = program("10 CLS\n20 GOTO 10\n");
        for (const Bytes& part :
             {Bytes(255, 0xAA), Bytes{0x66, 'A'}, Bytes(basic.begin() + 1, basic.end()),
              Bytes(255, 0xAA), Bytes{0x66, 'T', 'O', 'M', ',', '4', '2', 13}}) {
            tape.insert(tape.end(), part.begin(), part.end());
        }
        return tape;
    }
    /// Mono, 8 bits.
    static void write_wav(const std::string& path, uint32_t rate, const std::string& samples) {
        const auto header = wav_header(rate, 8);
        write_text(path, std::string(header.begin(), header.end()) + samples);
    }
    /// 1300 bits a second: a change of level at the start of each, and in the middle of a one.
    static std::string sound_of(const Bytes& tape, double rate) {
        std::string samples(size_t(rate), '\x80');
        double end = double(samples.size());
        bool high = false;
        for (const uint8_t byte : tape) {
            for (int half = 15; half >= 0; --half) {
                high ^= half % 2 == 1 || byte >> half / 2 & 1;
                end += rate / 2600;
                samples.resize(size_t(end), high ? '\xB0' : '\x50');
            }
        }
        return samples + std::string(100, '\x80');
    }
    static std::string preview(const std::string& path) {
        std::string text;
        for (const std::string& line : preview_of(path)) text += line + "|";
        return text;
    }
};

TEST_F(MediaPanelsTest, PreviewsTellWhatIsInAFile) {
    start();
    const Bytes tape = three_on_a_tape();
    write_file("w.dsk", disk(DISK_PLAIN).image.image);
    write_file("j.img", disk(DISK_JV3).image.image);
    write_file("other.dsk", Bytes(102400, 0xE5));
    write_file("no.dsk", Bytes(1000, 0));
    write_file("t.cas", tape);
    write_file("cut.cas", {tape.begin(), tape.begin() + 400});
    write_text("g.cgt", std::string("Colour Genie - Virtual Tape File, 1983\0\x66"
                                    "B\0\0",
                                    43));
    write_file("b.cas", tape_of_basic(program("10 CLS\n"), 'q'));
    write_file("c.cmd",
               {5, 4, 'B', 'A', 'L', 'L', 1, 4, 0, 0x60, 1, 2, 1, 3, 0, 0x50, 7, 2, 2, 0, 0x60});
    write_file("p.bas", program("10 CLS\n20 PRINT \"A\"\n"));
    write_file("bad.bas", {0xFF, 1, 2, 3});
    write_text("l.txt", "10 REM \xE4\r\n20 RUN\r\n");
    write_text("s.jzs", "short");
    write_text("n.tvs", "none");
    write_text("big.txt", std::string(LARGEST_PREVIEWED + 1, 'A'));
    write_wav("s.wav", 1000, std::string(1000, '\x80'));
    zipFile zip = zipOpen64("z.zip", APPEND_STATUS_CREATE);
    for (const char* name : {"a/b.bas", "c.dsk"}) {
        zipOpenNewFileInZip(zip, name, nullptr, nullptr, 0, nullptr, 0, nullptr, 0, 0);
        zipCloseFileInZip(zip);
    }
    zipClose(zip, nullptr);
    mkfifo("pipe.cas", 0600); // which nobody writes to
    command(COMMAND_PAUSE);
    const std::string files = "2 files, 92160 bytes free||DEMO/BAS           8  BASIC|"
                              "GAME/CMD        5000  Machine code|";
    const std::string game = "|GAME: Machine code, 300 bytes|6000-612B, start 6100|";
    const std::pair<const char*, std::string> cases[] = {
        {"w.dsk", "Disk, 102400 bytes|Plain, 40 tracks of 10 sectors|" + files},
        {"j.img", "Disk, 111104 bytes|JV3, 40 tracks of 10 sectors|" + files},
        {"other.dsk",
         "Disk, 102400 bytes|Plain, 40 tracks of 10 sectors|Without a directory of the "
         "disk ROM|"},
        {"no.dsk", "Disk, 1000 bytes|No disk image: not the size or the header of a disk image|"},
        {"t.cas", "Cassette, " + std::to_string(tape.size()) + " bytes|" + game +
                      "|A: BASIC, 17 bytes||Data, 6 bytes|"},
        {"cut.cas",
         "Cassette, 400 bytes||GAME: Machine code, 132 bytes|6000-6083|Damaged: the tape "
         "ends inside the machine-code program|"},
        {"g.cgt", "Cassette, 43 bytes||B: BASIC, 2 bytes|"},
        {"b.cas", "Cassette, 270 bytes||Q: BASIC, 8 bytes|"},
        {"c.cmd", "Load module, 21 bytes|BALL|3 bytes of machine code|5000-6001, start 6000|"},
        {"p.bas", "BASIC program, 19 bytes||10 CLS|20 PRINT \"A\"|"},
        {"bad.bas", "BASIC program, 4 bytes||"},
        {"l.txt", "Text, 18 bytes||10 REM ?|20 RUN|"},
        {"s.jzs",
         "Snapshot, 5 bytes|Registers and 48 KB of memory|Damaged: 5 bytes found, 49702 bytes "
         "needed|"},
        {"n.tvs", "State, 4 bytes|Cannot be loaded: it is not a state file|"},
        {"big.txt", "Text, 2.0 MB|Too large to look into|"},
        {"s.wav", "Sound recording, 1044 bytes|1000 Hz, 8 bits, mono|0:01 minutes|"},
        {"z.zip", "Zip file, " + std::to_string(std::filesystem::file_size("z.zip")) +
                      " bytes|2 files||a/b.bas|c.dsk|"},
        {"pipe.cas", "is not a file|"},
        {"missing.cas", "no such file|"},
        {".", ""}};
    for (const auto& [path, lines] : cases) EXPECT_EQ(preview(path), lines) << path;
    emu_close();
}

TEST_F(MediaPanelsTest, DisksAreShownAsTheyAreNow) {
    start();
    DiskSystem made = disk(DISK_PLAIN);
    write_file("w.dsk", made.image.image);
    main_disk_image_attach(1, "w.dsk");
    command(COMMAND_DISK_PANEL);
    HeadlessForm& panel = *host->forms().find("Disk directory");
    enum : int { DRIVE = 3, FILES, STATE, RUN, LOAD, COPY };
    EXPECT_EQ(panel.text(DRIVE), ":1  w.dsk");
    EXPECT_EQ(panel.text(FILES), "DEMO/BAS\t8\tBASIC");
    EXPECT_EQ(panel.text(STATE),
              "Plain, 40 tracks of 10 sectors. 2 files, 92160 bytes free. Run and "
              "Load need the disk ROM.");
    panel.activate(FILES);
    EXPECT_EQ(typed_text(), "");
    // The machine writes to its disk, and gets the disk ROM.
    std::string problem;
    ASSERT_TRUE(disk_delete(made, *disk_find(made, "DEMO/BAS"), problem));
    machine_apply(event_kind::disk_replace, 1, 0, shared_bytes(made.image.image));
    machine_apply(event_kind::restart_with_disk_rom);
    media_panels_turn(true);
    EXPECT_EQ(panel.text(FILES), "GAME/CMD\t5000\tMachine code");
    EXPECT_EQ(panel.text(STATE),
              "Plain, 40 tracks of 10 sectors, not saved yet. 1 file, 93440 bytes free.");
    panel.activate(FILES);
    EXPECT_EQ(typed_text(), "\rRUN\"GAME/CMD:1\"\r");
    panel.press(LOAD);
    EXPECT_EQ(typed_text(), "\rLOAD\"GAME/CMD:1\"\r");
    host->dialogs().choices = {{{"copy", 0}}};
    panel.press(COPY);
    EXPECT_EQ(read_file("copy.dsk"), made.image.image);
    EXPECT_NE(read_file("w.dsk"), made.image.image);
    panel.choose(DRIVE, 0);
    EXPECT_EQ(panel.text(STATE), "There is no disk in this drive.");
    EXPECT_FALSE(panel.is_enabled(RUN) || panel.is_enabled(COPY));
    host->dialogs().answers = {1};
    emu_close();
    EXPECT_EQ(host->forms().find("Disk directory"), nullptr);
}

TEST_F(MediaPanelsTest, CassettesAreWoundToTheirPrograms) {
    start();
    command(COMMAND_TAPE_PANEL);
    HeadlessForm& panel = *host->forms().find("Cassette");
    enum : int { NAME = 3, POSITION, SLIDER, PROGRAMS, GO_TO, REWIND, PLAY };
    EXPECT_EQ(panel.text(NAME), "There is no cassette in the recorder.");
    const Bytes tape = three_on_a_tape();
    write_file("t.cas", tape);
    attach_cas("t.cas");
    media_panels_turn(true);
    EXPECT_EQ(panel.text(NAME), "t.cas");
    EXPECT_EQ(panel.text(PROGRAMS), "GAME\t300\t0000\tMachine code\t6000-612B, start 6100");
    panel.choose(PROGRAMS, 1);
    EXPECT_EQ(panel.text(PROGRAMS), "A\t17\t0003\tBASIC\t");
    EXPECT_EQ(cassette.position, 0U);
    // 256 of leader, 8 with the name, blocks of 256 and 44 bytes with 5 each, 3: 577 bytes.
    machine_log log;
    machine_keep_log(&log);
    panel.activate(PROGRAMS);
    machine_keep_log(nullptr);
    EXPECT_EQ(cassette.position, 577U);
    EXPECT_EQ(panel.text(POSITION), "0003 of 0007 s, block 3 of 5");
    ASSERT_FALSE(log.events.empty());
    EXPECT_TRUE(log.events[0].kind == event_kind::tape_seek && log.events[0].a == 577);
    panel.press(REWIND);
    EXPECT_EQ(cassette.position, 0U);
    EXPECT_FALSE(panel.is_enabled(PLAY));
    panel.choose(SLIDER, 1000);
    EXPECT_EQ(cassette.position, tape.size());

    // The same as sound: six seconds of leader, and 150 bytes in each second after it.
    ASSERT_EQ(tape_play_cassette("t.cas", tape), 1);
    media_panels_turn(true);
    EXPECT_EQ(panel.text(NAME), "t.cas, as sound");
    panel.choose(PROGRAMS, 2);
    panel.press(PLAY);
    EXPECT_EQ(panel.text(PLAY), "Sto&p");
    panel.press(GO_TO);
    EXPECT_NEAR(double(tape_audio.next_sample), 19200 * (6 + (577 + 274) / 150.0), 20);
    EXPECT_EQ(panel.text(POSITION), "0011 of 0013 s");
    EXPECT_FALSE(tape_is_rolling() || is_menu_item_checked(COMMAND_PLAY_RECORD));

    // A recording is listened to, a megabyte at a time. A second passes before it begins.
    write_wav("r.wav", 44100, sound_of(tape, 44100));
    ASSERT_EQ(tape_open_wav("r.wav"), 1);
    for (int n = 0; n < 2; ++n) media_panels_turn(true);
    panel.choose(PROGRAMS, 0);
    EXPECT_EQ(panel.text(PROGRAMS), "GAME\t300\t0001\tMachine code\t6000-612B, start 6100");
    panel.choose(PROGRAMS, 2);
    EXPECT_EQ(panel.text(PROGRAMS), "\t6\t0006\tData\t");
    panel.press(GO_TO);
    EXPECT_NEAR(double(tape_audio.next_sample), 44100 * (1 + (577 + 274) * 8 / 1300.0), 300);
    command(COMMAND_CLOSE_WAV);
    emu_close();
}

} // namespace
