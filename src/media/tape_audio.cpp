#include "media/tape_audio.h"

#include "cgenie/memory/memory.h"
#include "files/file_handle.h"
#include "media/tape.h"
#include "media/traps.h"
#include "media/wav_reader.h"
#include "sound/beeper.h"
#include "sound/filter.h"
#include "sound/sound_core.h"
#include "sound/wav_header.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>

uint8_t tape_read_in = 0;

namespace {

constexpr int64_t NOTHING_SHOWN = -1;

// ---- the recorder ------------------------------------------------------------------------------

bool rolling = false;       ///< the motor is on
double samples_per_clk = 0; ///< of the tape that plays
int64_t tape_last_read_cycle = 0;
int tape_compare_level = 0;
uint8_t tape_signal_inverted = 0; ///< FF turns recordings upside down
iir_filter tape_filter;
int tape_last_level = 1;     ///< the output bit last passed to the recorder
int64_t prev_save_clock = 0; ///< recorded up to this cycle
int64_t shown_counter = NOTHING_SHOWN;

WavReader wav;            ///< the tape that plays
uint64_t next_sample = 0; ///< of it

// Recorded samples: unsigned, 128 in the middle. The high-pass makes of the square wave at the
// port the decaying pulses that a real recorder leaves on the tape.
constexpr uint32_t HIGH_PASS_CUTOFF = 100;
constexpr int32_t SAMPLE_HIGH = 128;
constexpr int32_t SAMPLE_MIDDLE = 128;
constexpr uint32_t RECORDED_BITS = 8;
constexpr size_t CLOSING_SAMPLES = 32;

/// The lengths have 32 bits.
constexpr uint64_t MOST_SAMPLES = 0xFFFFFFFF - (WAV_HEADER_BYTES - WAV_RIFF_OVERHEAD);

/// Its samples stand in `pending` until that is full; the lengths in the header follow every
/// second, so that whatever ends the program leaves a file that can be played.
struct Recording {
    FileHandle file;
    uint32_t rate = 0;
    uint64_t position = 0;      ///< of the tape, in samples written
    uint64_t length = 0;        ///< more than `position` after rewinding
    uint64_t beyond_header = 0; ///< written since the header
    std::array<uint8_t, 4096> pending{};
    size_t pending_count = 0;
};
Recording recording;

/// Returns the bytes that reached the file.
size_t write_at(uint64_t offset, const uint8_t* data, size_t bytes) {
    size_t done = 0;
    while (done < bytes) {
        const ssize_t written =
            pwrite(fileno(recording.file.get()), data + done, bytes - done, off_t(offset + done));
        if (written <= 0) break;
        done += size_t(written);
    }
    return done;
}

bool write_header(uint32_t rate) {
    const auto header = wav_header(rate, RECORDED_BITS);
    return write_at(0, header.data(), header.size()) == header.size();
}

void write_lengths() {
    recording.beyond_header = 0;
    const auto length = uint32_t(recording.length);
    const uint32_t riff_length = length + WAV_HEADER_BYTES - WAV_RIFF_OVERHEAD;
    write_at(WAV_RIFF_LENGTH, little_endian(riff_length).data(), 4);
    write_at(WAV_DATA_LENGTH, little_endian(length).data(), 4);
}

bool write_pending() {
    const size_t count = recording.pending_count;
    recording.pending_count = 0;
    if (recording.position + count > MOST_SAMPLES) {
        errno = EFBIG;
        return false;
    }
    const size_t written =
        write_at(WAV_HEADER_BYTES + recording.position, recording.pending.data(), count);
    recording.position += written;
    recording.length = std::max(recording.length, recording.position);
    recording.beyond_header += written;
    if (written != count) return false;
    if (recording.beyond_header >= recording.rate) write_lengths();
    return true;
}

void tell_recording_failed(int error) {
    report({.text = std::string("The tape recording has ended: ") + std::strerror(error)});
}

/// Takes the tape out, whichever it is.
void release_tape() {
    wav_reader_close(wav);
    recording = {};
    filter_destroy(&tape_filter);
    tape_place_traps(rom_pointer());
}

void abandon_recording() {
    tell_recording_failed(errno);
    write_lengths();
    rolling = false;
    release_tape();
}

void complete_recording() {
    // The motor is off, so nothing is pending.
    std::fill_n(recording.pending.begin(), CLOSING_SAMPLES, uint8_t(SAMPLE_MIDDLE));
    recording.pending_count = CLOSING_SAMPLES;
    recording.position = recording.length;
    if (!write_pending()) tell_recording_failed(errno);
    write_lengths();
    fdatasync(fileno(recording.file.get()));
}

/// The level that held for `count` samples.
bool record(int64_t count) {
    const int32_t level = tape_last_level ? SAMPLE_HIGH : 0;
    for (; count > 0; --count) {
        const int32_t sample = filter_output(&tape_filter, level, recording.rate);
        recording.pending[recording.pending_count++] =
            uint8_t(sample - SAMPLE_MIDDLE) ^ tape_signal_inverted;
        if (recording.pending_count == recording.pending.size() && !write_pending()) return false;
    }
    return true;
}

/// Samples in `cycles`, rounded to nearest.
int64_t samples_in(int64_t cycles, uint32_t rate) {
    const auto clock = int64_t(z80_state.clock_hz);
    return (cycles * rate + clock / 2) / clock;
}

// ---- playing -----------------------------------------------------------------------------------

/// The last of the `count` samples that passed the head; the highest value behind the end.
int32_t pass_samples(int64_t count) {
    const uint64_t target = next_sample + uint64_t(count);
    const int32_t sample = wav_reader_sample(wav, target - 1);
    next_sample = std::min(target, wav.samples);
    return sample;
}

/// High samples are 0 and low ones are 1.
void compare(int32_t sample) {
    const bool is_8_bit = wav.bits == 8;
    const int32_t middle = is_8_bit ? SAMPLE_MIDDLE : 0;
    const int64_t level = tape_compare_level;
    const int64_t width = is_8_bit ? level / 2 : level * 128;
    if (sample > middle + width) {
        tape_read_in = 0;
    } else if (sample <= middle - width) {
        tape_read_in = 1;
    }
}

// ---- the counter -------------------------------------------------------------------------------

uint32_t counter_seconds() {
    const bool records = recording.file != nullptr;
    const uint64_t rate = records ? recording.rate : wav.rate;
    const uint64_t bits = records ? RECORDED_BITS : wav.bits;
    const uint64_t samples = records ? recording.position + recording.pending_count : next_sample;
    return uint32_t(((samples * bits + rate / 2) / rate + bits / 2) / bits);
}

void show_counter() {
    if (!tape_wav_is_open()) return;
    const uint32_t counter = counter_seconds();
    if (counter == shown_counter) return;
    shown_counter = counter;
    StatusBarPartText(PART_CASSETTE, "%04u", counter);
}

void print_diagnostics() {
    std::fprintf(stderr, "WAV. Resolution: %i\n", int(wav.bits));
    std::fprintf(stderr, "WAV. Samples per second: %i\n", int(wav.rate));
    std::fprintf(stderr, "WAV. Samples per clk: %f\n", samples_per_clk);
    std::fprintf(stderr, "WAV. Data offset: %u\n", unsigned(wav.data_start));
}

} // namespace

int tape_load_wav(int64_t cycles) {
    if (!wav.file || !rolling) return 0;
    const auto elapsed = int32_t(uint32_t(cycles - tape_last_read_cycle));
    const double nearest = elapsed * samples_per_clk + 0.5;
    const auto count = int64_t(nearest);
    if (count == 0) return tape_read_in;
    tape_last_read_cycle = cycles;
    if (count > 0) compare(pass_samples(count));
    return tape_read_in;
}

void tape_save_wav(int64_t cycles, int bit) {
    if (!tape_wav_is_open() || !rolling) return;
    const int64_t since = cycles - prev_save_clock;
    if (recording.file && !record(samples_in(since, recording.rate))) abandon_recording();
    tape_last_level = bit;
    prev_save_clock = cycles;
}

void tape_update_counter(int64_t cycles) {
    if (rolling && recording.file) tape_save_wav(cycles, tape_last_level);
    if (rolling && wav.file) tape_load_wav(cycles);
    show_counter();
}

int tape_open_wav(const std::string& path) {
    tape_close_wav();
    if (path.empty()) return 0;
    const std::string problem = wav_reader_open(wav, path);
    if (!problem.empty()) {
        report({.text = path + " cannot be played: " + problem + "."});
        return 0;
    }
    tape_remove_traps();
    next_sample = 0;
    shown_counter = NOTHING_SHOWN;
    // A motor that ran without a tape has not moved this one.
    tape_last_read_cycle = std::max(tape_last_read_cycle, z80_state.t_count);
    samples_per_clk = double(wav.rate) / double(z80_state.clock_hz);
    print_diagnostics();
    return 1;
}

int tape_create_wav(const std::string& path, int rate) {
    tape_close_wav();
    if (path.empty() || rate <= 0) return 0;
    recording.file = open_file(path, "wb");
    if (!recording.file || !write_header(uint32_t(rate))) {
        const std::string reason = std::strerror(errno);
        recording = {};
        report({.text = path + " cannot be recorded: " + reason + "."});
        return 0;
    }
    tape_remove_traps();
    recording.rate = uint32_t(rate);
    shown_counter = NOTHING_SHOWN;
    prev_save_clock = z80_state.t_count;
    if (!tape_filter.cutoff) tape_filter = filter_iir_create(FILTER_HIGH_PASS, HIGH_PASS_CUTOFF);
    return 1;
}

void tape_close_wav() {
    tape_read_in = 0;
    sound_update(z80_state.t_count);
    beeper_set_level(0);
    if (recording.file) {
        tape_set_motor(0, z80_state.t_count);
        if (recording.file) complete_recording();
    }
    if (tape_wav_is_open()) release_tape();
}

int tape_is_rolling() { return rolling ? 1 : 0; }
int tape_wav_is_open() { return wav.file || recording.file ? 1 : 0; }

void tape_rewind() {
    // What the running tape still has to record belongs where it stands.
    tape_set_motor(0, z80_state.t_count);
    if (tape_wav_is_open()) {
        next_sample = 0;
        recording.position = 0;
        show_counter();
        StatusBarText("Tape rewound.");
    }
    tape_cas_rewind();
    tape_last_read_cycle = z80_state.t_count;
}

void tape_set_motor(int on, int64_t cycles) {
    if (on && !rolling) {
        tape_last_read_cycle = cycles;
        prev_save_clock = cycles;
    }
    if (!on && rolling && recording.file) {
        tape_save_wav(cycles, 0);
        if (recording.file && !write_pending()) abandon_recording();
        if (recording.file) write_lengths();
    }
    rolling = on != 0;
}

int tape_get_compare_level() { return tape_compare_level; }
void tape_set_compare_level(int level) { tape_compare_level = level; }
int tape_is_signal_inverted() { return tape_signal_inverted ? 1 : 0; }
void tape_set_signal_invert(int on) { tape_signal_inverted = on ? 0xFF : 0x00; }
