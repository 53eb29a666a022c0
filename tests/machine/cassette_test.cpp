#include "cgenie/keyboard.h"
#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_state.h"
#include "core/pacing/pacing.h"
#include "core/pacing/speed.h"
#include "host/autostart.h"
#include "media/files/cassette_files.h"
#include "media/files/tape_sound_files.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "media/traps.h"
#include "platform/headless/headless.h"
#include "program_run.h"
#include "support/paced_frames.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr unsigned COLUMNS = 40, TEXT = 0x4400, MARKS = TEXT + 38;
constexpr unsigned STRING_SPACE = 0x40A0, PROGRAM_START = 0x40A4, PROGRAM_END = 0x40F9;
constexpr unsigned CURSOR = 0x4020, LATCH_COPY = 0x431C, PROGRAM = 0x5801;
constexpr size_t HEADER = 44; ///< of a WAV file

std::string word(unsigned value) { return {char(value), char(value >> 8)}; }

/// A program in memory from `base` on: links, line numbers, texts.
std::string program_at(unsigned base, const std::vector<std::string>& texts) {
    std::string bytes;
    for (unsigned n = 0; n < texts.size(); ++n) {
        const unsigned next = base + unsigned(bytes.size() + texts[n].size()) + 5;
        bytes += word(next) + word(n * 256) + texts[n] + '\0';
    }
    return bytes + word(0);
}

std::string block(unsigned address, const std::string& data) {
    std::string bytes = word(address) + data;
    unsigned sum = 0;
    for (char c : bytes) sum += uint8_t(c);
    return char(0x3C) + std::string(1, char(data.size())) + bytes + char(sum);
}
std::string code_tape(const std::string& name, const std::string& blocks, unsigned entry) {
    return std::string(9, char(0xAA)) + "\x66\x55" + name + blocks + '\x78' + word(entry);
}

class Cassette : public ::testing::Test {
protected:
    Cassette() : platform_(HeadlessOptions{}) {
        install_platform(platform_);
        machine_init();
        tape_init();
        keyboard_change_mapping(0);
        boot(0);
    }
    ~Cassette() override {
        tape_close_wav();
        tape_detach_cas();
        tape_remove_traps();
        tape_set_compare_level(0);
        tape_set_signal_invert(0);
    }

    static void boot(uint32_t model) {
        memory_set_startup_pattern(0xA5);
        machine_change_cfg(machine_cfg[model], 1);
        run(30);
        EXPECT_TRUE(obey("")); // all of the memory
    }
    static void run(int frames) {
        while (frames-- > 0) paced ? run_paced_frame() : void(run_with_answers(machine_run));
    }
    static unsigned peek(unsigned address) {
        return memory[address] | unsigned(memory[address + 1]) << 8;
    }
    static void poke(unsigned address, unsigned value) {
        memory[address] = uint8_t(value);
        memory[address + 1] = uint8_t(value >> 8);
    }
    static std::string bytes_at(unsigned address, size_t count) {
        return {reinterpret_cast<const char*>(memory) + address, count};
    }
    static void put(unsigned address, const std::string& bytes) {
        std::ranges::copy(bytes, memory + address);
    }
    static void put_program(unsigned base, const std::string& bytes) {
        memory[base - 1] = 0;
        put(base, bytes);
        poke(PROGRAM_START, base);
        poke(PROGRAM_END, base + unsigned(bytes.size()));
    }
    static std::string row_above(unsigned rows) {
        const unsigned row = (peek(CURSOR) - TEXT) / COLUMNS - rows;
        const std::string text = bytes_at(TEXT + row * COLUMNS, COLUMNS);
        return text.substr(0, text.find_last_not_of(' ') + 1);
    }
    static bool waits(const std::string& prompt) {
        return memory[0x2B] != 0xED && row_above(0) == prompt;
    }
    /// Types a line and runs to the next prompt; false if that does not come in `frames`.
    static bool obey(const std::string& line, int frames = 20, const std::string& prompt = ">") {
        keyboard_open_from_buffer(line + "\r");
        memory_place_bas_trap();
        do {
            run(1);
        } while (!waits(prompt) && --frames > 0);
        return frames > 0;
    }
    void press_break(const std::string& what) {
        for (bool down : {true, false}) {
            platform_.set_key(KEY_END, down);
            run(4);
        }
        EXPECT_EQ(row_above(1), "READY") << what;
        EXPECT_NE(row_above(2), ">") << what << ": twice";
        EXPECT_TRUE(waits(">")) << what;
    }
    std::string file(const std::string& name) const { return folder_ / name; }
    std::string tape(const std::string& bytes) const {
        const std::string path = file("tape.cas");
        write_text(path, bytes);
        EXPECT_EQ(tape_attach_cas(path), 1);
        return path;
    }
    /// SYSTEM and a name, to the next question.
    static bool load_code(const std::string& name) {
        return obey("SYSTEM", 20, "*?") && obey(name, 20, "*?");
    }

    HeadlessPlatform platform_;
    Folder folder_;
    static inline bool paced = false;
};

const std::vector<std::string> LINES = {"\xB2\"HELLO\"", std::string(200, 'X'), "\x8D 10",
                                        "\xFF\x80\x01\x66\xAA\x55 \x1A"};

TEST_F(Cassette, MachineCodeGoesRoundAndRuns) {
    std::string code = "\x3E\x5A\x32"; // LD A,5A; LD (8FFF),A; RET
    code += word(0x8FFF) + '\xC9';
    for (unsigned n = 0; code.size() < 600; ++n) code += char(n * 7);
    put(0x9000, code);
    ASSERT_EQ(tape_dump_cas(file("demo.cas"), "9000", "9257", "9000"), 1);
    std::fill(memory + 0x8FFF, memory + 0x9300, 0);
    z80_cpu_set_breakpoint(0xBFFF); // for the program, which does not come there
    autostart_file(file("demo.cas"));
    EXPECT_EQ(std::exchange(z80_state.breakpoint_enabled, 0), 1);
    for (int frames = 100; frames > 0 && memory[0x8FFF] != 0x5A; --frames) run(1);
    run(5);
    EXPECT_EQ(memory[0x8FFF], 0x5A);
    EXPECT_EQ(bytes_at(0x9000, code.size()), code);
    EXPECT_EQ(row_above(1), "READY");
    EXPECT_TRUE(waits(">"));
}

TEST_F(Cassette, SystemChoosesByNameAndMarksAWrongSum) {
    std::string broken = block(0x9000, "ABC");
    broken.back() ^= 1;
    tape(code_tape("DENY  ", block(0x9000, "\x66\x55No"), 0x9000) +
         code_tape("DEMO  ", broken + block(0x9003, "DEF"), 0x1234));
    EXPECT_TRUE(load_code("DEMO"));
    EXPECT_EQ(bytes_at(0x9000, 6), "ABCDEF");
    EXPECT_EQ(memory[MARKS], 'C');
    put(0x9100, "\x3E\x77\x32\xFF\x8F\xC9");
    EXPECT_FALSE(obey("X", 10));
    press_break("not on the tape");
    ASSERT_TRUE(obey("SYSTEM", 20, "*?"));
    EXPECT_TRUE(obey("/37120"));
    EXPECT_EQ(memory[0x8FFF], 0x77);
    ASSERT_TRUE(obey("SYSTEM", 20, "*?"));
    EXPECT_TRUE(obey("/65536"));
    EXPECT_EQ(row_above(2), "?OV ERROR");
}

TEST_F(Cassette, ProgramGoesRound) {
    const std::string program = program_at(PROGRAM, LINES);
    put_program(PROGRAM, program);
    memory[LATCH_COPY] = 0x18;
    for (const char* name : {"save.cas", "none.cas"}) { // the second dialog is cancelled
        platform_.dialogs().choices.push_back(name[0] == 's' ? std::optional(FileChoice{file(name)})
                                                             : std::nullopt);
        EXPECT_TRUE(obey("CSAVE\"A\"")) << name;
        tape_detach_cas();
    }
    EXPECT_EQ(memory[LATCH_COPY] & 0xFE, 0x18);
    EXPECT_EQ(read_text(file("save.cas")), std::string(255, char(0xAA)) + "\x66\x41" + program);

    tape(std::string(9, char(0xAA)) + "\x66" + "B" + program_at(PROGRAM, {"NO"}) +
         read_text(file("save.cas")));
    const auto load = [&](const char* line) {
        tape_cas_rewind();
        return obey(line);
    };
    EXPECT_TRUE(load("VERIFY \"A\""));
    EXPECT_EQ(row_above(1), "READY");
    EXPECT_EQ(row_above(2).substr(0, 7), ">VERIFY");
    for (size_t wrong : {size_t(2), program.size() / 2, program.size() - 1}) {
        memory[PROGRAM + wrong] ^= 1;
        EXPECT_TRUE(load("CLOAD?A"));
        EXPECT_EQ(row_above(2), "BAD") << wrong;
        memory[PROGRAM + wrong] ^= 1;
    }
    poke(PROGRAM_START, 0x6000); // another place: the links are made anew
    EXPECT_TRUE(load("CLOAD \"A\""));
    EXPECT_EQ(bytes_at(0x6000, program.size()), program_at(0x6000, LINES));
    EXPECT_EQ(peek(PROGRAM_END), 0x6000 + program.size());
    EXPECT_EQ(memory[MARKS], '*');
    EXPECT_TRUE(load("CLOAD?\"A"));
    EXPECT_EQ(row_above(1), "READY");
    EXPECT_TRUE(load("CLOAD"));
    EXPECT_EQ(bytes_at(0x6000, 9), program_at(0x6000, {"NO"})) << "the first one";
    EXPECT_EQ(peek(PROGRAM_END), 0x6009u);

    EXPECT_TRUE(obey("CSAVE"));
    EXPECT_EQ(row_above(2), "?MO ERROR");
    EXPECT_TRUE(obey("NONSENSE"));
    EXPECT_EQ(row_above(2), "?SN ERROR");
    poke(PROGRAM_START, peek(STRING_SPACE) - 200);
    EXPECT_TRUE(load("CLOAD A"));
    EXPECT_EQ(row_above(2), "?OM ERROR");
}

TEST_F(Cassette, LoadsATokenizedFile) {
    const std::string program = program_at(PROGRAM, LINES);
    // Complete, and cut short before the link that ends it.
    for (size_t missing : {0, 2}) {
        write_text(file("u.bas"), char(0xFF) + program.substr(0, program.size() - missing));
        ASSERT_EQ(bas_to_cas_open(file("u.bas")), 1);
        poke(PROGRAM_START, 0x6000);
        EXPECT_TRUE(obey("CLOAD")) << missing;
        EXPECT_EQ(bytes_at(0x6000, program.size()), program_at(0x6000, LINES)) << missing;
        EXPECT_EQ(row_above(1), "READY");
    }
}

// ---- sound -------------------------------------------------------------------------------------

struct Tape {
    unsigned rate = 44100;
    double speed = 1, wow = 0; ///< wow: swing of the speed, twice a second
    double noise = 0, hum = 0; ///< peaks, in steps of 8 bits
    int level = 0;
    bool inverted = false, spikes = false;
    int bits = 8;
    uint32_t model = 0;
};

/// A recording of 8 bits at 44100 Hz as another recorder plays it.
std::string play_back(const std::string& wav, const Tape& tape) {
    std::string data;
    uint32_t seed = 1;
    unsigned count = 0;
    const size_t last = wav.size() - 2;
    for (double place = HEADER; place < double(last); ++count) {
        const auto index = size_t(place);
        const double part = place - double(index), time = double(count) / tape.rate;
        const double from = uint8_t(wav[index]) - 128, to = uint8_t(wav[index + 1]) - 128;
        seed = seed * 1664525 + 1013904223;
        double sample = from + (to - from) * part + tape.noise * (seed / 2147483648.0 - 1) +
                        tape.hum * std::sin(2 * std::numbers::pi * 50 * time);
        if (tape.spikes && count % 397 < tape.rate / 22050) sample = -sample;
        if (tape.inverted) sample = -sample;
        const int value = int(std::lround(std::clamp(sample, -127.0, 127.0)));
        data += tape.bits == 8 ? std::string(1, char(value + 128)) : word(unsigned(value * 256));
        const double wow = tape.wow * std::sin(4 * std::numbers::pi * time);
        place += 44100.0 / tape.rate * tape.speed * (1 + wow);
    }
    const auto length = [](size_t n) { return word(unsigned(n)) + word(unsigned(n >> 16)); };
    const unsigned frame = unsigned(tape.bits / 8);
    return "RIFF" + length(data.size() + 36) + "WAVEfmt " + length(16) + word(1) + word(1) +
           length(tape.rate) + length(tape.rate * frame) + word(frame) + word(unsigned(tape.bits)) +
           "data" + length(data.size()) + data;
}

/// What stands behind leader and sync byte: two short intervals between changes are a one, a long
/// one is a zero.
std::string bytes_of(const std::string& wav) {
    std::string bits;
    bool high = false, middle = false;
    size_t change = HEADER;
    for (size_t place = HEADER; place <= wav.size(); ++place) {
        const int sample = place == wav.size() ? (high ? 0 : 255) : uint8_t(wav[place]);
        if (sample == 128 || (sample > 128) == high) continue;
        const size_t interval = place - change;
        change = place;
        high = !high;
        if (interval > 27) {
            bits += '0';
            middle = false;
        } else if (middle) {
            bits += '1';
            middle = false;
        } else {
            middle = true;
        }
    }
    std::string bytes;
    size_t start = bits.find("1010101001100110");
    for (start += 16; start + 8 <= bits.size(); start += 8)
        bytes += char(std::stoi(bits.substr(start, 8), nullptr, 2));
    return bytes;
}

TEST_F(Cassette, SoundGoesRound) {
    const std::string program = program_at(PROGRAM, LINES);
    put_program(PROGRAM, program);
    ASSERT_EQ(tape_create_wav(file("save.wav"), 44100), 1);
    tape_set_motor(1, z80_state.t_count);
    memory[LATCH_COPY] = 0x18;
    EXPECT_FALSE(obey("CSAVE\"A\"", 20));
    int frames = 0;
    for (; !waits(">") && frames < 300; ++frames) {
        run(1);
        ASSERT_EQ(ports[0xFF] & 0xFE, 0x18) << "only the cassette's bit changes";
    }
    EXPECT_LT(frames, 300);
    run(10);
    tape_close_wav();
    const std::string recording = read_text(file("save.wav"));
    // 257 bytes before the program: 1200 bit/s, a little less between bytes.
    const double bits = 8.0 * double(257 + program.size());
    const double seconds = double(recording.size() - HEADER) / 44100 - 0.2;
    EXPECT_NEAR(bits / seconds, 1200, 60);

    EXPECT_EQ(bytes_of(recording).substr(0, program.size() + 1), "A" + program);

    const Tape tapes[] = {{},
                          {.level = 20},
                          {.level = 100, .model = 1},
                          {.inverted = true, .model = 2},
                          {.rate = 22050},
                          {.rate = 48000, .bits = 16},
                          {.speed = 0.85},
                          {.speed = 1.15},
                          {.speed = 0.7},
                          {.speed = 1.4},
                          {.rate = 22050, .speed = 1.15, .level = 20, .bits = 16},
                          {.wow = 0.1},
                          {.noise = 40},
                          {.noise = 25, .hum = 20, .level = 20},
                          {.hum = 35, .inverted = true, .bits = 16},
                          {.speed = 0.85, .noise = 25, .hum = 20},
                          {.rate = 22050, .speed = 1.15, .noise = 25, .hum = 20},
                          {.spikes = true},
                          {.rate = 22050, .speed = 1.15, .spikes = true}};
    for (const Tape& tape : tapes) {
        SCOPED_TRACE(testing::Message()
                     << tape.rate << " Hz, speed " << tape.speed << ", wow " << tape.wow
                     << ", noise " << tape.noise << ", hum " << tape.hum << ", level " << tape.level
                     << ", inverted " << tape.inverted << ", spikes " << tape.spikes << ", "
                     << tape.bits << " bits, model " << tape.model);
        if (tape.model) boot(tape.model);
        write_text(file("play.wav"), play_back(recording, tape));
        ASSERT_EQ(tape_open_wav(file("play.wav")), 1);
        tape_set_compare_level(tape.level);
        tape_rewind();
        tape_set_motor(1, z80_state.t_count);
        poke(PROGRAM_START, PROGRAM);
        std::fill(memory + PROGRAM, memory + PROGRAM + 500, 0xEE);
        if (!obey("CLOAD", 400)) {
            ADD_FAILURE() << "does not end";
            machine_reset();
            run(10);
            continue;
        }
        EXPECT_EQ(bytes_at(PROGRAM, program.size()), program);
    }
}

TEST_F(Cassette, DataGoesRound) {
    for (const uint32_t model : {0, 1, 2}) {
        const bool sound = model == 1;
        tape_close_wav();
        boot(model);
        for (const char* line :
             {"10 PRINT#-1,-.25,\"TOM\",CHR$(34)+\"A,B:C\"+CHR$(34):Q=EXP(SIN(1))",
              "20 FOR I=1 TO 2:PRINT#-1,I*1000;:NEXT:PRINT#-1,\"NO\":END",
              "30 INPUT#-1,A,A$,B$:INPUT#-1,X:ON ERROR GOTO 60:INPUT#-1,Y,Z:INPUT#-1,Z",
              "40 PRINT A;A$;B$;X;Y:INPUT#-1,X", "60 PRINT ERR/2+1;:RESUME NEXT"})
            obey(line);
        if (sound) {
            ASSERT_EQ(tape_create_wav(file("data.wav"), 44100), 1);
            tape_set_motor(1, z80_state.t_count);
        } else {
            platform_.dialogs().choices.push_back(FileChoice{file("data.cas")}); // asks once
        }
        EXPECT_TRUE(obey("RUN", 600));
        if (sound) {
            tape_close_wav();
            ASSERT_EQ(tape_open_wav(file("data.wav")), 1);
            tape_set_motor(1, z80_state.t_count);
        } else {
            const std::string leader = std::string(255, char(0xAA)) + '\x66';
            EXPECT_EQ(read_text(file("data.cas")), leader + "-.25 ,TOM,\"A,B:C\"\r\r" + leader +
                                                       " 1000 \r" + leader + " 2000 \r" + leader +
                                                       "NO\r\r");
            tape_cas_rewind();
        }
        EXPECT_FALSE(obey("RUN 30", 600)) << "there is no fifth record";
        press_break("INPUT#-1");
        EXPECT_EQ(row_above(3), " 4  22 -.25 TOMA,B:C 1000  2000") << model;
        EXPECT_EQ(row_above(2), "BREAK IN 40");
    }
}

TEST_F(Cassette, FastTapesLoadTheSameInNoTime) {
    constexpr int FRAMES = 200;
    put_program(PROGRAM, program_at(PROGRAM, LINES));
    ASSERT_EQ(tape_create_wav(file("save.wav"), 44100), 1);
    tape_set_motor(1, z80_state.t_count);
    EXPECT_TRUE(obey("CSAVE\"A\"", 300));
    run(500); // and nothing for a while
    tape_close_wav();
    ASSERT_EQ(tape_open_wav(file("save.wav")), 1);
    tape_set_motor(1, z80_state.t_count);
    init_timers();
    machine_state before, loaded[2];
    machine_save(before);
    paced = true;
    for (const bool fast : {false, true}) {
        machine_load(before);
        speed_choices.fast_tapes = fast;
        std::fill(memory + PROGRAM, memory + PROGRAM + 500, 0xEE);
        run(10);
        const int64_t slept = platform_.slept_ms();
        ASSERT_TRUE(obey("CLOAD", 400));
        EXPECT_EQ(platform_.slept_ms() - slept < FRAMES / 10, fast);
        machine_save(loaded[fast]);
        run(30); // until it is clear that nobody listens any more
        const int64_t loading = platform_.slept_ms();
        run(FRAMES);
        EXPECT_GT(platform_.slept_ms() - loading, FRAMES / 2) << "the tape still runs";
    }
    EXPECT_EQ(machine_difference(loaded[0], loaded[1]), "");
    paced = speed_choices.fast_tapes = false;
}

TEST_F(Cassette, BreakEndsEverySearch) {
    write_text(file("silence.wav"), play_back(std::string(50000, char(0x80)), {}));
    write_text(file("noise.wav"), play_back(std::string(50000, char(0x80)), {.noise = 90}));
    for (const std::string sound : {"", "silence.wav", "noise.wav"}) {
        if (!sound.empty()) {
            ASSERT_EQ(tape_open_wav(file(sound)), 1);
            tape_set_motor(1, z80_state.t_count);
        }
        EXPECT_FALSE(obey("CLOAD", 50));
        press_break(sound + " CLOAD");
        ASSERT_TRUE(obey("SYSTEM", 20, "*?"));
        EXPECT_FALSE(obey("", 50));
        press_break(sound + " SYSTEM");
    }
}

} // namespace
