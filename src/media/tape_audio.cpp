#include "media/tape_audio.h"

#include "cgenie/memory/memory.h"
#include "media/tape.h"
#include "media/traps.h"
#include "sound/beeper.h"
#include "sound/sound_core.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

constexpr int64_t NOTHING_SHOWN = -1;
constexpr uint64_t MS_PER_SECOND = 1000;

// Recorded samples: unsigned, 128 in the middle. The high-pass makes of the square wave at the
// port the decaying pulses that a real recorder leaves on the tape.
constexpr uint32_t HIGH_PASS_CUTOFF = 100;
constexpr int32_t SAMPLE_HIGH = 128;
constexpr int32_t SAMPLE_MIDDLE = 128;
constexpr uint32_t RECORDED_BITS = 8;
constexpr uint32_t CLOSING_SAMPLES = 32;

constexpr state_field fields[] = {
    {"samples_per_clk", sizeof(tape_audio_state::samples_per_clk)},
    {"tape_last_read_cycle", sizeof(tape_audio_state::tape_last_read_cycle)},
    {"prev_save_clock", sizeof(tape_audio_state::prev_save_clock)},
    {"wav.data_start", sizeof(wav_format::data_start)},
    {"wav.samples", sizeof(wav_format::samples)},
    {"wav.rate", sizeof(wav_format::rate)},
    {"wav.bits", sizeof(wav_format::bits)},
    {"wav.channels", sizeof(wav_format::channels)},
    {"wav.unused", sizeof(wav_format::unused)},
    {"next_sample", sizeof(tape_audio_state::next_sample)},
    {"position", sizeof(tape_audio_state::position)},
    {"length", sizeof(tape_audio_state::length)},
    {"tape_filter", sizeof(tape_audio_state::tape_filter)},
    {"rate", sizeof(tape_audio_state::rate)},
    {"pending_count", sizeof(tape_audio_state::pending_count)},
    {"tape_compare_level", sizeof(tape_audio_state::tape_compare_level)},
    {"rolling", sizeof(tape_audio_state::rolling)},
    {"playing", sizeof(tape_audio_state::playing)},
    {"recording", sizeof(tape_audio_state::recording)},
    {"tape_last_level", sizeof(tape_audio_state::tape_last_level)},
    {"tape_signal_inverted", sizeof(tape_audio_state::tape_signal_inverted)},
    {"read_in", sizeof(tape_audio_state::read_in)},
    {"unused", sizeof(tape_audio_state::unused)},
    {"shown_counter", sizeof(tape_audio_state::shown_counter), field_kind::other},
    {"pending", sizeof(tape_audio_state::pending)},
};

constexpr uint32_t HIGHEST_RATE = 1 << 20;          ///< samples per second, of any WAV file
constexpr uint64_t LONGEST_WAV = uint64_t(1) << 32; ///< bytes

bool is_rate(uint32_t rate) { return rate > 0 && rate <= HIGHEST_RATE; }

const char* fault(const tape_audio_state& tape) {
    const auto& wav = tape.wav;
    return first_fault(
        {{"samples_per_clk", tape.samples_per_clk >= 0 && tape.samples_per_clk <= HIGHEST_RATE},
         {"tape_last_read_cycle", is_cycle_count(tape.tape_last_read_cycle)},
         {"prev_save_clock", is_cycle_count(tape.prev_save_clock)},
         {"rolling", tape.rolling <= 1},
         {"playing", tape.playing <= 1},
         {"recording", tape.recording <= 1},
         {"wav.data_start", wav.data_start <= LONGEST_WAV},
         {"wav.samples", wav.samples <= LONGEST_WAV},
         {"wav.rate", !tape.playing || is_rate(wav.rate)},
         {"wav.bits", !tape.playing || wav.bits == 8 || wav.bits == 16},
         {"wav.channels", !tape.playing || wav.channels == 1 || wav.channels == 2},
         {"next_sample", tape.next_sample <= wav.samples},
         {"position", tape.position <= tape.length},
         {"length", tape.length <= LONGEST_WAV},
         {"tape_filter", filter_is_possible(tape.tape_filter)},
         {"rate", !tape.recording || is_rate(tape.rate)},
         {"pending_count", tape.pending_count < sizeof tape.pending},
         {"tape_last_level", tape.tape_last_level <= 1},
         {"tape_signal_inverted", uint8_t(tape.tape_signal_inverted + 1) <= 1},
         {"read_in", tape.read_in <= 1}});
}

// ---- recording ---------------------------------------------------------------------------------

bool write_pending() {
    const uint32_t count = tape_audio.pending_count;
    tape_audio.pending_count = 0;
    if (count == 0) return true;
    if (!machine_host.write(STREAM_TAPE_SOUND, tape_audio.position, tape_audio.pending, count)) {
        return false;
    }
    tape_audio.position += count;
    tape_audio.length = std::max(tape_audio.length, tape_audio.position);
    return true;
}

/// Takes the tape out, whichever it is.
void release_tape() {
    tape_audio.playing = tape_audio.recording = 0;
    tape_audio.wav = {};
    tape_audio.position = tape_audio.length = tape_audio.next_sample = 0;
    tape_audio.rate = tape_audio.pending_count = 0;
    tape_audio.tape_filter = {};
    machine_host.stream_ends(STREAM_TAPE_SOUND);
    tape_place_traps(rom_pointer());
}

void abandon_recording() {
    tape_audio.rolling = 0;
    release_tape();
}

void complete_recording() {
    // The motor is off, so nothing is pending.
    std::fill_n(tape_audio.pending, CLOSING_SAMPLES, uint8_t(SAMPLE_MIDDLE));
    tape_audio.pending_count = CLOSING_SAMPLES;
    tape_audio.position = tape_audio.length;
    write_pending();
}

/// Records a sample `count` times.
bool put(uint8_t sample, int64_t count) {
    while (count > 0) {
        const int64_t room = sizeof tape_audio.pending - tape_audio.pending_count;
        const int64_t part = std::min(count, room);
        std::fill_n(tape_audio.pending + tape_audio.pending_count, part, sample);
        tape_audio.pending_count += uint32_t(part);
        count -= part;
        if (part == room && !write_pending()) return false;
    }
    return true;
}

/// Records `count` samples of the present level.
bool record(int64_t count) {
    const int32_t level = tape_audio.tape_last_level ? SAMPLE_HIGH : 0;
    while (count > 0) {
        const double before = tape_audio.tape_filter.y;
        const int32_t sample = filter_output(&tape_audio.tape_filter, level, tape_audio.rate);
        // A filter that has come to rest stays there, and silence may be long.
        const int64_t same = tape_audio.tape_filter.y == before ? count : 1;
        const int byte = uint8_t(sample - SAMPLE_MIDDLE) ^ tape_audio.tape_signal_inverted;
        if (!put(uint8_t(byte), same)) {
            return false;
        }
        count -= same;
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
    const uint64_t target = tape_audio.next_sample + uint64_t(count);
    const int32_t sample = wav_sample(tape_audio.wav, target - 1);
    tape_audio.next_sample = std::min(target, tape_audio.wav.samples);
    return sample;
}

/// Sets the input bit from a sample: 0 for a high one, 1 for a low one, as before within the band.
void compare(int32_t sample) {
    const bool is_8_bit = tape_audio.wav.bits == 8;
    const int32_t middle = is_8_bit ? SAMPLE_MIDDLE : 0;
    const int64_t level = tape_audio.tape_compare_level;
    const int64_t width = is_8_bit ? level / 2 : level * 128;
    if (sample > middle + width) {
        tape_read_in = 0;
    } else if (sample <= middle - width) {
        tape_read_in = 1;
    }
}

// ---- the counter -------------------------------------------------------------------------------

uint64_t present_rate() { return tape_audio.recording ? tape_audio.rate : tape_audio.wav.rate; }

uint64_t samples_passed() {
    return tape_audio.recording ? tape_audio.position + tape_audio.pending_count
                                : tape_audio.next_sample;
}

uint32_t milliseconds(uint64_t samples) {
    return uint32_t(samples * MS_PER_SECOND / present_rate());
}

uint32_t counter_seconds() {
    const uint64_t rate = present_rate();
    const uint64_t bits = tape_audio.recording ? RECORDED_BITS : tape_audio.wav.bits;
    const uint64_t samples = samples_passed();
    return uint32_t(((samples * bits + rate / 2) / rate + bits / 2) / bits);
}

void show_counter() {
    if (!tape_wav_is_open()) return;
    const uint32_t counter = counter_seconds();
    if (counter == tape_audio.shown_counter) return;
    tape_audio.shown_counter = counter;
    StatusBarPartText(PART_CASSETTE, "%04u", counter);
}

} // namespace

tape_audio_state tape_audio;
constexpr state_record tape_audio_record = {"tape_audio", &tape_audio, sizeof tape_audio, fields,
                                            fault_of<tape_audio_state, fault>};

int tape_load_wav(int64_t cycles) {
    if (!tape_audio.playing || !tape_audio.rolling) return 0;
    const auto elapsed = int32_t(uint32_t(cycles - tape_audio.tape_last_read_cycle));
    const double nearest = elapsed * tape_audio.samples_per_clk + 0.5;
    const auto count = int64_t(nearest);
    if (count == 0) return tape_read_in;
    tape_audio.tape_last_read_cycle = cycles;
    if (count > 0) compare(pass_samples(count));
    return tape_read_in;
}

void tape_save_wav(int64_t cycles, int bit) {
    if (!tape_wav_is_open() || !tape_audio.rolling) return;
    const int64_t since = cycles - tape_audio.prev_save_clock;
    if (tape_audio.recording && !record(samples_in(since, tape_audio.rate))) abandon_recording();
    tape_audio.tape_last_level = bit ? 1 : 0;
    tape_audio.prev_save_clock = cycles;
}

void tape_update_counter(int64_t cycles) {
    if (tape_audio.recording) tape_save_wav(cycles, tape_audio.tape_last_level);
    if (tape_audio.playing) tape_load_wav(cycles);
    show_counter();
}

void tape_show_counter_anew() {
    tape_audio.shown_counter = NOTHING_SHOWN;
    if (!tape_wav_is_open()) StatusBarPartText(PART_CASSETTE, "%s", "");
    show_counter();
}

void tape_play_wav(const wav_format& wav) {
    tape_remove_traps();
    wav_forget_window();
    tape_audio.playing = 1;
    tape_audio.wav = wav;
    tape_audio.next_sample = 0;
    tape_audio.shown_counter = NOTHING_SHOWN;
    // A motor that ran without a tape has not moved this one.
    tape_audio.tape_last_read_cycle = std::max(tape_audio.tape_last_read_cycle, z80_state.t_count);
    tape_audio.samples_per_clk = double(wav.rate) / double(z80_state.clock_hz);
}

void tape_record_wav(uint32_t rate) {
    tape_remove_traps();
    tape_audio.recording = 1;
    tape_audio.rate = rate;
    tape_audio.shown_counter = NOTHING_SHOWN;
    tape_audio.prev_save_clock = z80_state.t_count;
    tape_audio.tape_filter = filter_iir_create(FILTER_HIGH_PASS, HIGH_PASS_CUTOFF);
}

void tape_close_wav() {
    tape_read_in = 0;
    sound_update(z80_state.t_count);
    beeper_set_level(0);
    if (tape_audio.recording) {
        tape_set_motor(0, z80_state.t_count);
        if (tape_audio.recording) complete_recording();
    }
    if (tape_wav_is_open()) release_tape();
}

int tape_is_rolling() { return tape_audio.rolling; }
int tape_wav_is_open() { return tape_audio.playing | tape_audio.recording; }

void tape_rewind() {
    tape_seek(0);
    if (tape_wav_is_open()) StatusBarText("Tape rewound.");
}

void tape_seek(uint32_t place) {
    // What the running tape still has to record belongs where it stands.
    tape_set_motor(0, z80_state.t_count);
    if (tape_wav_is_open()) {
        const uint64_t sample = uint64_t(place) * present_rate() / MS_PER_SECOND;
        tape_audio.next_sample = std::min(sample, tape_audio.wav.samples);
        tape_audio.position = std::min(sample, tape_audio.length);
        show_counter();
    }
    if (cassette.attached) tape_cas_seek(place);
    tape_audio.tape_last_read_cycle = z80_state.t_count;
}

uint32_t tape_place() {
    if (!tape_wav_is_open()) return uint32_t(cassette.position);
    return milliseconds(samples_passed());
}

uint32_t tape_length() {
    if (!tape_wav_is_open()) return uint32_t(cas.size());
    return milliseconds(tape_audio.recording ? std::max(tape_audio.length, samples_passed())
                                             : tape_audio.wav.samples);
}

void tape_set_motor(int on, int64_t cycles) {
    if (on && !tape_audio.rolling) {
        tape_audio.tape_last_read_cycle = cycles;
        tape_audio.prev_save_clock = cycles;
    }
    if (!on && tape_audio.rolling && tape_audio.recording) {
        tape_save_wav(cycles, 0);
        if (tape_audio.recording && !write_pending()) abandon_recording();
    }
    tape_audio.rolling = on ? 1 : 0;
}

int tape_get_compare_level() { return tape_audio.tape_compare_level; }
void tape_set_compare_level(int level) { tape_audio.tape_compare_level = level; }
int tape_is_signal_inverted() { return tape_audio.tape_signal_inverted ? 1 : 0; }
void tape_set_signal_invert(int on) { tape_audio.tape_signal_inverted = on ? 0xFF : 0x00; }
