#pragma once
/// The samples of the WAV file that plays, which the host reads (machine_host.read_tape): PCM of 8
/// or 16 bits, mono or stereo (mixed to mono).
///
/// A part of the file is kept in memory, so that neighbouring samples need no further read.

#include <cstdint>

struct wav_format {
    uint64_t data_start = 0; ///< file offset of the first sample
    uint64_t samples = 0;    ///< of each channel
    uint32_t rate = 0;       ///< samples per second
    uint32_t bits = 0;       ///< 8 or 16
    uint32_t channels = 0;   ///< 1 or 2
    uint32_t unused = 0;
};

uint64_t wav_sample_bytes(const wav_format& wav); ///< with all its channels
/// The sample of these bytes of the file: 0 to 255 of an 8-bit file, -32768 to 32767 of a 16-bit
/// one.
int32_t wav_value(const wav_format& wav, const uint8_t* at);
/// Sample `index`: 0 to 255 of an 8-bit file, -32768 to 32767 of a 16-bit one. Behind the end it is
/// the highest value. Where the file has become unreadable or shorter, `samples` shrinks.
int32_t wav_sample(wav_format& wav, uint64_t index);
/// Forgets the part kept in memory: another file plays from now on.
void wav_forget_window();
