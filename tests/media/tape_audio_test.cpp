#include "cgenie/roms.h"
#include "media/files/tape_sound_files.h"
#include "media/tape_audio.h"

#include "media/traps.h"
#include "sound/beeper.h"
#include "support/fake_host.h"
#include "support/full_disk.h"
#include "support/posix.h"
#include "support/test_files.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace {

using namespace std::string_literals;

constexpr int64_t CYCLES = 100; ///< of a sample, at 2 MHz and 20000 Hz
constexpr uint32_t RATE = 20000;

std::string number(uint64_t value, int bytes) {
    std::string text;
    for (; bytes > 0; --bytes, value >>= 8) text += char(value);
    return text;
}
std::string chunk(const std::string& name, const std::string& data) {
    return name + number(data.size(), 4) + data + std::string(data.size() & 1, '\0');
}
std::string format(uint32_t channels, uint32_t bits, uint32_t rate = RATE, uint32_t tag = 1) {
    const uint32_t block = channels * bits / 8;
    return number(tag, 2) + number(channels, 2) + number(rate, 4) + number(rate * block, 4) +
           number(block, 2) + number(bits, 2);
}
std::string riff(const std::string& chunks) { return chunk("RIFF", "WAVE" + chunks); }
std::string wav_of(uint32_t bits, const std::vector<int>& samples, uint32_t rate = RATE) {
    std::string data;
    for (const int sample : samples) data += number(uint64_t(sample), int(bits / 8));
    return riff(chunk("fmt ", format(1, bits, rate)) + chunk("data", data));
}

class TapeAudioTest : public testing::Test {
protected:
    void SetUp() override {
        z80_state.clock_hz = 2000000;
        memory_set_basic_rom(0);
        tape_init();
        fake_host = {};
    }
    void TearDown() override {
        tape_close_wav();
        tape_set_motor(0, now());
        tape_set_compare_level(0);
        tape_set_signal_invert(0);
    }
    static int64_t& now() { return z80_state.t_count; }
    std::string stored() const { return read_text(path); }
    void play(const std::string& bytes) const {
        write_text(path, bytes);
        ASSERT_EQ(tape_open_wav(path), 1);
        tape_set_motor(1, now());
    }
    static int step(int64_t cycles) { return tape_load_wav(now() += cycles); }
    void record(int rate) const {
        ASSERT_EQ(tape_create_wav(path, rate), 1);
        tape_set_motor(1, now());
        tape_save_wav(now(), 1);
    }
    static void output(int64_t cycles, int bit) { tape_save_wav(now() += cycles, bit); }
    static void run(int frames, int64_t cycles) {
        while (frames-- > 0) tape_update_counter(now() += cycles);
    }

    const Folder folder;
    const std::string path = folder / "tape.wav";
};

TEST_F(TapeAudioTest, SamplesBecomeBits) {
    const struct {
        uint32_t bits;
        int level;
        std::vector<int> samples;
        std::string expected;
    } cases[] = {
        {8, 0, {129, 128, 129, 255, 127, 0}, "010011"},
        {8, 20, {139, 138, 119, 118, 119, 138, 139}, "0001110"},
        {8, 21, {118, 138, 139, 119}, "1100"},
        {8, 239, {9, 247, 248, 10, 9}, "11001"},
        {16, 0, {1, 0, 1, 32767, -1, -32768}, "010011"},
        {16, 1, {129, 128, -127, -128, -127, 128, 129}, "0001110"},
        {16, 239, {-30592, 30592, 30593, -30591, -30592}, "11001"},
    };
    tape_set_signal_invert(1); // matters to recordings only
    for (const auto& c : cases) {
        tape_set_compare_level(c.level);
        play(wav_of(c.bits, c.samples));
        std::string bits;
        for (size_t n = 0; n < c.samples.size(); ++n) bits += char('0' + step(CYCLES));
        EXPECT_EQ(bits, c.expected) << c.bits << " bits, level " << c.level;
        tape_set_compare_level(0);
        EXPECT_EQ(step(CYCLES), 0) << "behind the end";
    }
}

TEST_F(TapeAudioTest, StepsAreRoundedToSamples) {
    std::vector<int> samples(2000, 255);
    samples[1] = samples[5] = samples[6] = samples[1006] = samples[1999] = 0;
    testing::internal::CaptureStderr();
    play(wav_of(8, samples));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "WAV. Resolution: 8\nWAV. Samples per second: 20000\n"
              "WAV. Samples per clk: 0.010000\nWAV. Data offset: 44\n");
    EXPECT_EQ(cas_is_traps_installed(), 0);
    EXPECT_EQ(tape_wav_is_open(), 1);
    const struct {
        int64_t cycles;
        int bit;
        const char* what;
    } steps[] = {
        {49, 0, "less than half a sample"},
        {50, 0, "99 since the step: sample 0"},
        {49, 0, "stays"},
        {1, 1, "half a sample: 1"},
        {49, 1, "stays"},
        {351, 1, "400: the last of 2 to 5"},
        {(int64_t(1) << 32) + CYCLES, 1, "time has 32 bits: 6"},
        {(int64_t(1) << 32) - 3 * CYCLES, 1, "backwards nothing is read"},
        {100000, 1, "the last of 7 to 1006"},
        {100 * 993, 1, "the very last"},
        {CYCLES, 0, "behind the end"},
    };
    for (const auto& s : steps) EXPECT_EQ(step(s.cycles), s.bit) << s.what;

    tape_rewind();
    EXPECT_EQ(fake_host.status[3], "Tape rewound.");
    EXPECT_EQ(step(CYCLES * 2), 0) << "the motor is off";
    tape_set_motor(1, now());
    now() += CYCLES * 2;
    EXPECT_EQ(z80_in(0xFF) & 1, 1);
    EXPECT_EQ(beeper_level(), 4096) << "the tape is heard";
    tape_close_wav();
    EXPECT_EQ(beeper_level(), 0);
    EXPECT_EQ(tape_read_in, 0);
    EXPECT_EQ(step(CYCLES * 2), 0);
    EXPECT_EQ(cas_is_traps_installed(), 1);
    now() += 1000 * CYCLES; // a motor without a tape
    ASSERT_EQ(tape_open_wav(path), 1);
    EXPECT_EQ(step(CYCLES * 2), 1) << "is at the start";
}

TEST_F(TapeAudioTest, CountsSeconds) {
    const struct {
        uint32_t bits, rate;
        int64_t samples;
        const char* shown;
    } cases[] = {
        // 8 bits: eighths of a second, rounded, are rounded to seconds. The first that counts as
        // one has 8 * 19294 + 22050 = 4 * 44100 + 2.
        {8, 44100, 19293, "0000"},  {8, 44100, 19294, "0001"}, {16, 44100, 20671, "0000"},
        {16, 44100, 20672, "0001"}, {8, 1000, 100000, "0100"}, {16, 20000, 200000, "0010"},
    };
    for (const auto& c : cases) {
        z80_state.clock_hz = c.rate; // a sample is a cycle
        tape_set_motor(0, now());
        play(wav_of(c.bits, std::vector<int>(200000), c.rate));
        tape_update_counter(now());
        EXPECT_EQ(fake_host.status[2], "0000");
        run(1, c.samples);
        EXPECT_EQ(fake_host.status[2], c.shown) << c.bits << " bits, " << c.samples;
        fake_host.status[2] = "10000";
        run(1, 0);
        EXPECT_EQ(fake_host.status[2], "10000") << "shown once";
        fake_host.status[2] = c.shown;
        run(1, 1000000);
        EXPECT_EQ(std::stol(fake_host.status[2]), std::lround(200000.0 / c.rate)) << "the end";
        tape_rewind();
        EXPECT_EQ(fake_host.status[2], "0000");
    }
}

TEST_F(TapeAudioTest, RecordsTheOutput) {
    z80_state.clock_hz = 2216750;
    const std::string header = "RIFF\x44\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x44\xAC\0\0\x44\xAC\0\0"
                               "\1\0\x08\0data\x20\0\0\0"s;
    const std::string closing(32, '\x80');
    ASSERT_EQ(tape_create_wav(path, 44100), 1);
    output(100000, 1);
    run(50, 40000);
    tape_close_wav();
    EXPECT_EQ(stored(), header + closing) << "the motor was off";

    for (const int inverted : {0, 1}) {
        tape_set_signal_invert(inverted);
        record(44100);
        EXPECT_EQ(cas_is_traps_installed(), 0);
        EXPECT_EQ(tape_load_wav(now() + 5000), 0);
        for (int n = 0; n < 10; ++n) output(1108, n & 1); // 22.04 samples each
        output(1131, 0);                                  // 22.5001
        tape_close_wav();
        const std::string file = stored();
        ASSERT_EQ(file.size(), 44 + 243 + 32U);
        EXPECT_EQ(file.substr(4, 4), number(36 + 243 + 32, 4));
        EXPECT_EQ(file.substr(40, 4), number(243 + 32, 4));
        EXPECT_EQ(file.substr(44 + 243), closing);
        // 128 * (1 - a^n), a = exp (-2 pi 100 / 44100), is taken off the level.
        const std::pair<size_t, int> bytes[] = {{0, 0xFE},  {1, 0xFC},  {2, 0xFB}, {3, 0xF9},
                                                {21, 0xDE}, {22, 0x5E}, {43, 0x67}};
        for (const auto& [at, value] : bytes) {
            EXPECT_EQ(uint8_t(file[44 + at]), inverted ? 255 - value : value) << at;
        }
        EXPECT_EQ(tape_is_signal_inverted(), inverted);
        EXPECT_EQ(cas_is_traps_installed(), 1);
    }
    tape_set_signal_invert(0);
    ASSERT_EQ(tape_create_wav(path, 44100), 1);
    tape_set_motor(1, now());
    output(2216750, 0);
    tape_close_wav();
    EXPECT_EQ(stored().substr(44), std::string(44100 + 32, '\x80')) << "a stopped tape is at 0";
}

TEST_F(TapeAudioTest, RecordingsSurvive) {
    record(RATE);
    const auto data_length = [this] {
        FileHandle file;
        wav_format wav;
        EXPECT_EQ(wav_file_open(path, file, wav), "");
        return wav.samples;
    };
    run(50 * 5 + 25, 40000);
    uint32_t length = 0; // the host has the byte order of the file
    std::memcpy(&length, &stored()[40], 4);
    EXPECT_GE(length, RATE * 4) << "as if the program ended here";
    EXPECT_EQ(fake_host.status[2], "0006");
    tape_set_motor(0, now());
    EXPECT_EQ(data_length(), RATE * 11 / 2);
    tape_rewind();
    EXPECT_EQ(fake_host.status[2], "0000");
    tape_set_motor(1, now());
    run(50, 40000);
    tape_close_wav();
    EXPECT_EQ(stored().size(), 44 + RATE * 11 / 2 + 32) << "recorded over";
    EXPECT_EQ(stored()[44], '\x04') << "the level falls from high; 128 * exp (-pi / 100) is 124";

    record(RATE);
    {
        const FullDisk full(30000);
        run(100, 40000);
    }
    EXPECT_NE(fake_host.status[3].find("recording has ended: File too large"), std::string::npos);
    EXPECT_EQ(tape_wav_is_open(), 0);
    EXPECT_EQ(cas_is_traps_installed(), 1);
    fake_host.status[3].clear();
    run(100, 40000);
    tape_close_wav();
    EXPECT_EQ(fake_host.status[3], "");
    EXPECT_EQ(stored().size(), 30000U);
    EXPECT_EQ(stored().substr(40, 4), number(30000 - 44, 4));
    ASSERT_EQ(tape_create_wav(path, RATE), 1);
    run(100, 40000);
    tape_close_wav();
    EXPECT_EQ(stored().size(), 76U) << "the motor has stopped";
}

TEST_F(TapeAudioTest, KnowsManyLayouts) {
    const std::string pcm = "\1\0\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71"s;
    const std::string extended =
        format(1, 16, RATE, 0xFFFE) + number(22, 2) + number(16, 2) + number(4, 4);
    const std::string fmt = chunk("fmt ", format(1, 8));
    const std::string list = chunk("LIST", "odd");
    const auto of = [](const std::string& f, const std::string& data = "12") {
        return riff(chunk("fmt ", f) + chunk("data", data));
    };
    const struct {
        const char* name;
        std::string bytes;
        std::vector<int32_t> samples;
        const char* problem;
    } cases[] = {
        {"chunks around", riff(list + fmt + list + chunk("data", "abc") + list), {97, 98, 99}, ""},
        {"samples first", riff(chunk("data", "abc") + fmt), {97, 98, 99}, ""},
        {"long format", of(format(1, 8) + "\0\0"s), {49, 50}, ""},
        {"extensible", of(extended + pcm, "\0\x80\1\0\xFF"s), {-32768, 1}, ""},
        {"stereo", of(format(2, 8), "\x00\xFF\x10\x20\x80"s), {127, 24}, ""},
        {"stereo 16", of(format(2, 16), "\0\x80\0\x80\xFF\x7F\1\0"s), {-32768, 16384}, ""},
        {"never closed", riff(fmt) + "data" + number(0, 4) + "xy", {120, 121}, ""},
        {"streamed", riff(fmt) + "data" + number(0xFFFFFFFF, 4) + "xy", {120, 121}, ""},
        {"cut short", riff(fmt) + "data" + number(1000, 4) + "xy", {120, 121}, ""},
        {"empty", riff(fmt) + "data" + number(0, 4), {}, ""},
        {"highest rate", of(format(1, 16, 768000)), {0x3231}, ""},
        {"lowest rate", of(format(1, 16, 1000)), {0x3231}, ""},
        {"fast", of(format(1, 8, 768001)), {}, "768001 samples per second"},
        {"slow", of(format(1, 8, 999)), {}, "999 samples per second"},
        {"three channels", of(format(3, 8)), {}, "3 channels"},
        {"no channel", of(format(0, 8)), {}, "0 channels"},
        {"24 bits", of(format(1, 24)), {}, "24 bits"},
        {"float", of(format(1, 16, RATE, 3)), {}, "not plain PCM"},
        {"extended float", of(extended + "\3" + pcm.substr(1)), {}, "not plain PCM"},
        {"short extended", of(extended), {}, "not plain PCM"},
        {"short format", of(format(1, 8).substr(0, 14)), {}, "incomplete"},
        {"no format", riff(chunk("data", "abc")), {}, "description of its samples is missing"},
        {"no data", riff(fmt + list), {}, "holds no samples"},
        {"no RIFF", "RIFX" + of(format(1, 8)).substr(4), {}, "not a WAV file"},
        {"chunks without end", riff(std::string(8 * 100000, '\0') + fmt), {}, "is missing"},
    };
    for (const auto& c : cases) {
        write_text(path, c.bytes);
        fake_host.reports.clear();
        const bool good = *c.problem == 0;
        EXPECT_EQ(tape_open_wav(path), good) << c.name;
        EXPECT_EQ(tape_wav_is_open(), good) << c.name;
        EXPECT_EQ(cas_is_traps_installed(), !good) << c.name;
        if (!good) {
            ASSERT_EQ(fake_host.reports.size(), 1U) << c.name;
            EXPECT_NE(report_line(fake_host.reports[0]).find(c.problem), std::string::npos)
                << c.name;
            continue;
        }
        wav_format wav = tape_audio.wav;
        ASSERT_EQ(wav.samples, c.samples.size()) << c.name;
        for (size_t n = c.samples.size(); n-- > 0;) {
            EXPECT_EQ(wav_sample(wav, n), c.samples[n]) << c.name << ", sample " << n;
        }
    }
    EXPECT_EQ(tape_open_wav(""), 0);
    for (const std::string& bad : {folder.path().string(), "/dev/null"s, path + ".missing"}) {
        EXPECT_EQ(tape_open_wav(bad), 0) << bad;
        const char* problem = bad == path + ".missing" ? "No such file" : "not a file";
        EXPECT_NE(report_line(fake_host.reports.back()).find(problem), std::string::npos) << bad;
    }
    EXPECT_EQ(tape_create_wav(folder.path().string(), 44100), 0);
    EXPECT_EQ(tape_create_wav("/dev/full", 44100), 0);
    EXPECT_EQ(tape_wav_is_open(), 0);
}

TEST_F(TapeAudioTest, LongFilesAreReadAsTheyAre) {
    std::vector<int> values;
    for (uint32_t n = 0, x = 1; n < 40000; ++n, x = x * 1664525 + 1013904223) {
        values.push_back(int16_t(x >> 16));
    }
    play(wav_of(16, values));
    for (size_t n = 0; n < values.size() / 2; ++n) {
        ASSERT_EQ(step(CYCLES), values[n] <= 0) << n;
    }
    std::filesystem::resize_file(path, 44 + 2 * 20100);
    EXPECT_EQ(step(4600 * CYCLES), 0) << "the file has shrunk";
    run(1, 20000 * CYCLES);
    EXPECT_EQ(fake_host.status[2], "0001") << "and the tape stands there";
    tape_rewind();
    tape_set_motor(1, now());
    EXPECT_EQ(step(10001 * CYCLES), values[10000] <= 0) << "what is left plays";
}

} // namespace
