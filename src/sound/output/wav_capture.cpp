#include "sound/output/wav_capture.h"

#include "files/system_file.h"
#include "sound/sound_core.h"
#include "sound/wav_header.h"

namespace {

constexpr uint32_t SAMPLE_BITS = 16;
constexpr uint64_t LONGEST_FILE = 0xFFFFFFFF;
constexpr uint32_t HEADER_INTERVAL = 50; ///< fragments, one second

FileHandle wav_file;
uint32_t file_length = 0; ///< header and whole fragments
uint32_t fragments = 0;   ///< since the header was written
int64_t wav_data_length = 0;

bool write_at(long offset, const uint8_t* data, uint32_t bytes) {
    return std::fseek(wav_file.get(), offset, SEEK_SET) == 0 &&
           std::fwrite(data, 1, bytes, wav_file.get()) == bytes;
}

void write_lengths() {
    fragments = 0;
    if (std::fseek(wav_file.get(), 0, SEEK_END) != 0) return;
    const auto length = uint32_t(std::ftell(wav_file.get()));
    write_at(WAV_RIFF_LENGTH, little_endian(length - WAV_RIFF_OVERHEAD).data(), 4);
    write_at(WAV_DATA_LENGTH, little_endian(length - WAV_HEADER_BYTES).data(), 4);
}

/// Cuts off the part of a fragment that still went to a full disk, so that the file ends with a
/// whole one.
bool cut_to_whole_fragments() { return set_length(wav_file.get(), file_length); }

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
    static constexpr auto header = wav_header(SOUND_RATE, SAMPLE_BITS);
    if (!write_at(0, header.data(), WAV_HEADER_BYTES)) {
        wav_file.reset();
        return 0;
    }
    file_length = WAV_HEADER_BYTES;
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
