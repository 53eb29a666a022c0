#pragma once
/// The cassette recorder at the machine's port, as samples. No tape is in it yet: the input is
/// silent and the output goes nowhere.

#include <cstdint>

/// The input level at processor cycle `cycles`: nonzero is high.
int tape_load_wav(int64_t cycles);
/// The output bit changed to `bit` at processor cycle `cycles`.
void tape_save_wav(int64_t cycles, int bit);
/// Shows the tape counter.
void tape_update_counter(int64_t cycles);
