#include "media/files/tape_sound_files.h"

#include "core/machine_events.h"
#include "media/tape_audio.h"
#include "sound/wav_header.h"
#include "wall/report.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include <unistd.h>

namespace {

constexpr uint32_t RECORDED_BITS = 8;
/// The lengths have 32 bits.
constexpr uint64_t MOST_SAMPLES = 0xFFFFFFFF - (WAV_HEADER_BYTES - WAV_RIFF_OVERHEAD);

FileHandle played;

struct Recording {
    FileHandle file;
    uint64_t length = 0; ///< samples
};
Recording recording;

/// Returns the bytes that reached the file.
size_t write_at(uint64_t offset, const uint8_t* data, size_t bytes) {
    size_t done = 0;
    while (done < bytes) {
        const ssize_t written =
            pwrite(fileno(recording.file.get()), data + done, bytes - done, off_t(offset + done));
        if (written <= 0) break;
        done += size_t(written);
    }
    return done;
}

bool write_header(uint32_t rate) {
    const auto header = wav_header(rate, RECORDED_BITS);
    return write_at(0, header.data(), header.size()) == header.size();
}

void write_lengths() {
    const auto length = uint32_t(recording.length);
    const uint32_t riff_length = length + WAV_HEADER_BYTES - WAV_RIFF_OVERHEAD;
    write_at(WAV_RIFF_LENGTH, little_endian(riff_length).data(), 4);
    write_at(WAV_DATA_LENGTH, little_endian(length).data(), 4);
}

/// Returns the error, or 0.
int write_samples(uint64_t position, const uint8_t* samples, size_t count) {
    if (position + count > MOST_SAMPLES) return EFBIG;
    const size_t written = write_at(WAV_HEADER_BYTES + position, samples, count);
    const int error = written == count ? 0 : errno;
    recording.length = std::max(recording.length, position + written);
    write_lengths();
    return error;
}

void print_diagnostics(const wav_format& wav) {
    std::fprintf(stderr, "WAV. Resolution: %i\n", int(wav.bits));
    std::fprintf(stderr, "WAV. Samples per second: %i\n", int(wav.rate));
    std::fprintf(stderr, "WAV. Samples per clk: %f\n", tape_audio.samples_per_clk);
    std::fprintf(stderr, "WAV. Data offset: %u\n", unsigned(wav.data_start));
}

} // namespace

int tape_open_wav(const std::string& path) {
    machine_apply(event_kind::tape_close_wav);
    if (path.empty()) return 0;
    wav_format wav;
    const std::string problem = wav_file_open(path, played, wav);
    if (!problem.empty()) {
        report({.text = path + " cannot be played: " + problem + "."});
        return 0;
    }
    machine_apply(event_kind::tape_play_wav, 0, 0, bytes_of(wav));
    print_diagnostics(wav);
    return 1;
}

int tape_create_wav(const std::string& path, int rate) {
    machine_apply(event_kind::tape_close_wav);
    if (path.empty() || rate <= 0) return 0;
    recording.file = open_file(path, "wb");
    if (!recording.file || !write_header(uint32_t(rate))) {
        const std::string reason = std::strerror(errno);
        recording = {};
        report({.text = path + " cannot be recorded: " + reason + "."});
        return 0;
    }
    machine_apply(event_kind::tape_record_wav, rate);
    return 1;
}

size_t tape_sound_read(uint64_t offset, uint8_t* to, size_t bytes) {
    if (!played) return 0;
    const ssize_t got = pread(fileno(played.get()), to, bytes, off_t(offset));
    return got > 0 ? size_t(got) : 0;
}

int tape_sound_write(uint64_t position, const uint8_t* samples, size_t count) {
    if (!recording.file) return 0;
    const int error = write_samples(position, samples, count);
    if (error == 0) return 1;
    report({.text = std::string("The tape recording has ended: ") + std::strerror(error)});
    return 0;
}

void tape_sound_end() {
    if (recording.file) fdatasync(fileno(recording.file.get()));
    recording = {};
    played.reset();
}
