#pragma once
/// The cassette recorder at the machine's port, as samples: plays a WAV file into the input bit of
/// port FF, or records the output bit as one (8 bits, mono). While a file is in, the firmware's own
/// routines time the bits, so the traps of the ROM are out. media/files/tape_sound_files.h has the
/// files.
///
/// The tape moves only while the motor is on, by the cycles of the machine, and in steps: each
/// takes it from the last one to the given cycle, and is rounded to whole samples by itself, so
/// that it is up to half a sample too long or too short. Playing, a step of no sample is left to
/// the next one; recording, its cycles are gone. The input bit is that of a step's last sample. A
/// step is made where the machine reads port FF (playing) or changes its output bit (recording),
/// where a motor that is recording stops, and by tape_update_counter. Hence what each way to run it
/// promises:
///
/// - Paced frames: tape_update_counter comes after each, so the tape and the counter shown are
///   never behind by more than a frame. The cut at a frame's end moves it by at most a sample.
/// - Unpaced frames and single steps: no other step. Tape and counter stand until the machine
///   looks again, and then the tape passes in one step all that has gone by. A recording is as
///   complete as a paced one; of a tape that plays, what has passed since the last look is left
///   out when the motor stops. These two ways give the same samples.
/// - A breakpoint takes no cycles, and the frame goes on where it stood: the same samples as
///   without it. Only a frame that single steps have ended is not a paced one.

#include "media/wav_samples.h"
#include "sound/filter.h"
#include "wall/state_record.h"

#include <cstdint>

struct tape_audio_state {
    double samples_per_clk = 0; ///< of the tape that plays
    int64_t tape_last_read_cycle = 0;
    int64_t prev_save_clock = 0; ///< recorded up to this cycle
    wav_format wav;              ///< the tape that plays
    uint64_t next_sample = 0;    ///< of it
    uint64_t position = 0;       ///< of the recording, in samples that have left the machine
    uint64_t length = 0;         ///< of it: more than `position` after rewinding
    iir_filter tape_filter;
    uint32_t rate = 0; ///< of the recording, samples per second
    uint32_t pending_count = 0;
    int32_t tape_compare_level = 0;
    uint8_t rolling = 0; ///< the motor is on
    uint8_t playing = 0; ///< a WAV file is in
    uint8_t recording = 0;
    uint8_t tape_last_level = 1;      ///< the output bit last passed to the recorder
    uint8_t tape_signal_inverted = 0; ///< FF turns recordings upside down
    uint8_t read_in = 0;
    uint8_t unused[6] = {};
    int64_t shown_counter = -1; ///< seconds; -1 for none
    uint8_t pending[4096] = {}; ///< recorded samples that go out together
};
extern tape_audio_state tape_audio;
extern const state_record tape_audio_record;
/// The input bit last produced, 0 or 1.
inline constexpr auto& tape_read_in = tape_audio.read_in;

/// Plays up to processor cycle `cycles` and returns the input bit; 0 without a tape that plays.
int tape_load_wav(int64_t cycles);
/// Records up to processor cycle `cycles`, where the output bit changes to `bit`. A recording that
/// the host cannot take ends.
void tape_save_wav(int64_t cycles, int bit);
/// Moves a running tape up to `cycles` and shows the seconds from its start when they changed.
void tape_update_counter(int64_t cycles);
/// Shows the seconds of the tape that is in, changed or not; nothing without one.
void tape_show_counter_anew();

/// A WAV file is in, to be played; none was before. The host reads it (machine_host.read_tape).
void tape_play_wav(const wav_format& wav);
/// A new recording at `rate` samples per second, above 0; no WAV file was in before.
void tape_record_wav(uint32_t rate);
/// Completes a recording, takes the tape out and silences it.
void tape_close_wav();
/// 1 while a WAV file is in, to be played or recorded.
int tape_wav_is_open();
/// 1 while the motor runs.
int tape_is_rolling();
/// Stops the motor and rewinds the WAV file and the cassette image. Recording then starts over the
/// old samples.
void tape_rewind();
/// Stops the motor and winds the tape to a place, or to its end: the cassette image to that byte,
/// the WAV file to that millisecond. Recording goes on there over the old samples.
void tape_seek(uint32_t place);
/// Where the tape stands, and how long it is, in the units of tape_seek; 0 without one.
uint32_t tape_place();
uint32_t tape_length();
/// Starts (1) or stops (0) the motor at processor cycle `cycles`.
void tape_set_motor(int on, int64_t cycles);

/// Width of the band around the middle in which the input bit keeps its value; 0 at start.
int tape_get_compare_level();
void tape_set_compare_level(int level);
/// 1 when recordings are turned upside down. Playing is not concerned.
int tape_is_signal_inverted();
void tape_set_signal_invert(int on);
