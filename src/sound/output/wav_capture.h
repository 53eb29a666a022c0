#pragma once
/// WAV capture: appends the fragments that go to the output driver to a RIFF/WAVE file, 16 bits,
/// mono, 48000 Hz.

#include <cstdint>
#include <string>

/// Creates the file with its header; 1 when it is open.
int sound_create_wav(const std::string& path);
/// Appends `bytes` bytes of samples. 1 when appended, 0 without a file or when the disk is full.
int sound_dump_wav_data(const uint8_t* data, uint32_t bytes);
/// 1 while a file is open; `bytes`, if given, then becomes the bytes appended since program start.
int sound_is_saving(int64_t* bytes);
/// Completes the header and closes the file.
void sound_close_wav();
