#pragma once
/// Reads a RIFF/WAVE file of PCM samples, 8 or 16 bits, mono or stereo (mixed to mono), 1000 to
/// 768000 Hz. Chunks may stand in any order with others around them. A recording that was never
/// closed (data size 0 or FFFFFFFF) or that was cut short is read to the end of the file.
///
/// The file is read through a window in memory: reaching any sample costs the same, and neighbours
/// cost no system call.

#include "files/file_handle.h"

#include <array>
#include <cstdint>
#include <string>

struct WavReader {
    FileHandle file;
    uint32_t rate = 0;       ///< samples per second
    uint32_t bits = 0;       ///< 8 or 16
    uint32_t channels = 0;   ///< 1 or 2
    uint64_t data_start = 0; ///< file offset of the first sample
    uint64_t samples = 0;    ///< of each channel
    uint64_t window_start = 0;
    uint64_t window_bytes = 0;
    std::array<uint8_t, 16384> window{};
};

/// Opens `path`. Returns why that failed, in words for the user, or nothing; after a failure the
/// reader has no file.
std::string wav_reader_open(WavReader& reader, const std::string& path);
void wav_reader_close(WavReader& reader);

/// Sample `index`: 0 to 255 of an 8-bit file, -32768 to 32767 of a 16-bit one. Behind the end it is
/// the highest value. Where the file has become unreadable or shorter, `samples` shrinks.
int32_t wav_reader_sample(WavReader& reader, uint64_t index);
