#pragma once
/// Sound core: brings the sound sources up to date. No source is fitted yet, so there is nothing
/// to render; the calls stand where the machine has to make them.

#include <cstdint>
#include <string>

/// Renders the sound up to the given processor cycle. Call it before a source changes its state.
void sound_update(int64_t cycles);
/// The same, at the end of a frame.
void sound_flush(int64_t cycles);
void sound_init();
void sound_close();
/// Silence while the program stands still.
void sound_pause();
void sound_resume();
/// Starts recording to a WAV file; 1 on success.
int sound_create_wav(const std::string& path);
void sound_close_wav();
/// Bytes recorded so far; 0 while nothing is.
int64_t sound_is_saving();
/// Every source back to its power-on state.
void sound_reset();
