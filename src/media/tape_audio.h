#pragma once
/// The cassette recorder at the machine's port, as samples: plays a WAV file into the input bit of
/// port FF, or records the output bit as one (8 bits, mono). While a file is in, the firmware's own
/// routines time the bits, so the traps of the ROM are out.
///
/// The tape moves only while the motor is on, and only when it is looked at: each step takes it
/// from the last one to the given cycle. A step is rounded to whole samples by itself.

#include <cstdint>
#include <string>

/// The input bit last produced, 0 or 1.
extern uint8_t tape_read_in;

/// Plays up to processor cycle `cycles` and returns the input bit; 0 without a tape that plays.
int tape_load_wav(int64_t cycles);
/// Records up to processor cycle `cycles`, where the output bit changes to `bit`. A recording that
/// cannot be written ends with a status text; what is on the disk can be played.
void tape_save_wav(int64_t cycles, int bit);
/// Moves a running tape up to `cycles` and shows the seconds from its start when they changed.
void tape_update_counter(int64_t cycles);

/// Puts in a recording to be played, for the one that is in. 1 on success; a file that cannot be
/// played is refused with a warning.
int tape_open_wav(const std::string& path);
/// A new recording at `rate` samples per second, for the one that is in; 1 on success.
int tape_create_wav(const std::string& path, int rate);
/// Completes a recording, takes the tape out and silences it.
void tape_close_wav();
/// 1 while a WAV file is in, to be played or recorded.
int tape_wav_is_open();
/// 1 while the motor runs.
int tape_is_rolling();
/// Stops the motor and rewinds the WAV file and the cassette image. Recording then starts over the
/// old samples.
void tape_rewind();
/// Starts (1) or stops (0) the motor at processor cycle `cycles`.
void tape_set_motor(int on, int64_t cycles);

/// Width of the band around the middle in which the input bit keeps its value; 0 at start.
int tape_get_compare_level();
void tape_set_compare_level(int level);
/// 1 when recordings are turned upside down. Playing is not concerned.
int tape_is_signal_inverted();
void tape_set_signal_invert(int on);
