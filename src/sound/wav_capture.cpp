#include "sound/wav_capture.h"

#include "platform/file_handle.h"
#include "sound/sound_core.h"

#include <unistd.h>

#include <array>

namespace {

constexpr uint32_t HEADER_BYTES = 44;
constexpr long RIFF_LENGTH = 4; ///< offsets of the two lengths in the header
constexpr long DATA_LENGTH = 40;
constexpr uint32_t RIFF_OVERHEAD = 8; ///< bytes of the file that its length leaves out
constexpr uint64_t LONGEST_FILE = 0xFFFFFFFF;
constexpr uint32_t HEADER_INTERVAL = 50; ///< fragments, one second

FileHandle wav_file;
uint32_t file_length = 0; ///< header and whole fragments
uint32_t fragments = 0;   ///< since the header was written
int64_t wav_data_length = 0;

using Length = std::array<uint8_t, 4>;
constexpr Length little_endian(uint32_t value) {
    return {uint8_t(value), uint8_t(value >> 8), uint8_t(value >> 16), uint8_t(value >> 24)};
}

constexpr std::array<uint8_t, HEADER_BYTES> make_header() {
    std::array<uint8_t, HEADER_BYTES> header{};
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
    number(16, 4);             // length of the format
    number(1, 2);              // PCM
    number(1, 2);              // channels
    number(SOUND_RATE, 4);     // samples per second
    number(SOUND_RATE * 2, 4); // bytes per second
    number(2, 2);              // bytes per sample
    number(16, 2);             // bits per sample
    text("data");
    number(0, 4);
    return header;
}

bool write_at(long offset, const uint8_t* data, uint32_t bytes) {
    return std::fseek(wav_file.get(), offset, SEEK_SET) == 0 &&
           std::fwrite(data, 1, bytes, wav_file.get()) == bytes;
}

void write_lengths() {
    fragments = 0;
    if (std::fseek(wav_file.get(), 0, SEEK_END) != 0) return;
    const auto length = uint32_t(std::ftell(wav_file.get()));
    write_at(RIFF_LENGTH, little_endian(length - RIFF_OVERHEAD).data(), 4);
    write_at(DATA_LENGTH, little_endian(length - HEADER_BYTES).data(), 4);
}

/// Takes off what a full disk has taken of a fragment: half a sample at the end is no sound.
bool cut_to_whole_fragments() { return ftruncate(fileno(wav_file.get()), file_length) == 0; }

bool append(const uint8_t* data, uint32_t bytes) {
    if (uint64_t(file_length) + bytes > LONGEST_FILE) return false;
    if (!write_at(long(file_length), data, bytes)) {
        cut_to_whole_fragments();
        return false;
    }
    file_length += bytes;
    return true;
}

} // namespace

int sound_create_wav(const std::string& path) {
    sound_close_wav();
    wav_file = open_file(path, "wb");
    if (!wav_file) return 0;
    // Unbuffered: only then does a write tell at once that the disk is full.
    std::setvbuf(wav_file.get(), nullptr, _IONBF, 0);
    static constexpr auto header = make_header();
    if (!write_at(0, header.data(), HEADER_BYTES)) {
        wav_file.reset();
        return 0;
    }
    file_length = HEADER_BYTES;
    fragments = 0;
    return 1;
}

int sound_dump_wav_data(const uint8_t* data, uint32_t bytes) {
    if (!wav_file) return 0;
    const bool appended = append(data, bytes);
    if (appended) wav_data_length += bytes;
    // Whatever ends the program, all but the last second can be played.
    if (++fragments >= HEADER_INTERVAL) write_lengths();
    return appended ? 1 : 0;
}

int sound_is_saving(int64_t* bytes) {
    if (!wav_file) return 0;
    if (bytes) *bytes = wav_data_length;
    return 1;
}

void sound_close_wav() {
    if (!wav_file) return;
    write_lengths();
    wav_file.reset();
}
