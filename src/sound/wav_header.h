#pragma once
/// The header of the RIFF/WAVE files that the program writes: mono, PCM. Its two lengths are
/// written again as the file grows.

#include <array>
#include <cstdint>

constexpr uint32_t WAV_HEADER_BYTES = 44;
constexpr uint32_t WAV_RIFF_LENGTH = 4; ///< offsets of the two lengths in the header
constexpr uint32_t WAV_DATA_LENGTH = 40;
constexpr uint32_t WAV_RIFF_OVERHEAD = 8; ///< bytes of the file that its length leaves out

constexpr std::array<uint8_t, 4> little_endian(uint32_t value) {
    return {uint8_t(value), uint8_t(value >> 8), uint8_t(value >> 16), uint8_t(value >> 24)};
}

/// `rate` in samples per second, `bits` 8 or 16. Both lengths are 0.
constexpr std::array<uint8_t, WAV_HEADER_BYTES> wav_header(uint32_t rate, uint32_t bits) {
    std::array<uint8_t, WAV_HEADER_BYTES> header{};
    uint32_t at = 0;
    const auto text = [&](const char* four) {
        for (int n = 0; n < 4; ++n) header[at++] = uint8_t(four[n]);
    };
    const auto number = [&](uint32_t value, uint32_t bytes) {
        for (; bytes; --bytes, value >>= 8) header[at++] = uint8_t(value);
    };
    text("RIFF");
    number(0, 4);
    text("WAVE");
    text("fmt ");
    number(16, 4);                // length of the format
    number(1, 2);                 // PCM
    number(1, 2);                 // channels
    number(rate, 4);              // samples per second
    number(rate * (bits / 8), 4); // bytes per second
    number(bits / 8, 2);          // bytes per sample
    number(bits, 2);              // bits per sample
    text("data");
    number(0, 4);
    return header;
}
