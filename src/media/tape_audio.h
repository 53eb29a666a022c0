#pragma once
/// The cassette recorder at the machine's port, as samples. No tape can be put in yet: the input is
/// silent and the output goes nowhere.

#include <cstdint>
#include <string>

/// The input level at processor cycle `cycles`: nonzero is high.
int tape_load_wav(int64_t cycles);
/// The output bit changed to `bit` at processor cycle `cycles`.
void tape_save_wav(int64_t cycles, int bit);
/// Shows the tape counter.
void tape_update_counter(int64_t cycles);

/// 1 on success.
int tape_open_wav(const std::string& path);
/// A new recording at `rate` samples per second; 1 on success.
int tape_create_wav(const std::string& path, int rate);
void tape_close_wav();
void tape_rewind();
/// Starts (1) or stops (0) the motor at processor cycle `cycles`.
void tape_set_motor(int on, int64_t cycles);
int tape_get_compare_level();
void tape_set_compare_level(int level);
