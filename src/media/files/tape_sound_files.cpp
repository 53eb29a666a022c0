#include "media/files/tape_sound_files.h"

#include "core/machine_events.h"
#include "files/file_identity.h"
#include "files/system_file.h"
#include "media/files/cassette_sound.h"
#include "media/tape_audio.h"
#include "sound/wav_header.h"
#include "wall/report.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

namespace {

constexpr uint32_t RECORDED_BITS = 8;
constexpr size_t HASHED_BLOCK = 1 << 20;
/// The lengths have 32 bits.
constexpr uint64_t MOST_SAMPLES = 0xFFFFFFFF - (WAV_HEADER_BYTES - WAV_RIFF_OVERHEAD);

FileHandle played;
played_wav played_file;

struct Recording {
    FileHandle file;
    uint64_t length = 0; ///< samples
};
Recording recording;

/// Returns the bytes that reached the file.
size_t write_at(uint64_t offset, const uint8_t* data, size_t bytes) {
    return write_at(recording.file.get(), offset, {data, bytes});
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

/// Of the whole file that plays; it may be too long to be read at once.
uint64_t hash_of_played() {
    std::vector<uint8_t> block(HASHED_BLOCK);
    std::array<uint64_t, 2> sums = {};
    for (uint64_t offset = 0;;) {
        const size_t count = tape_sound_read(offset, block.data(), block.size());
        if (count == 0) return sums[0];
        offset += count;
        sums[1] = content_hash(std::span(block).first(count));
        sums[0] = content_hash({reinterpret_cast<const uint8_t*>(sums.data()), sizeof sums});
    }
}

/// Puts the file that has been opened into the machine, unless there was a problem with it.
int play(const std::string& path, const wav_format& wav, const std::string& problem) {
    if (!problem.empty()) {
        report({.text = path + " cannot be played: " + problem + "."});
        return 0;
    }
    played_file = {lasting_path(path), hash_of_played()};
    machine_apply(event_kind::tape_play_wav, 0, 0, bytes_of(wav));
    return 1;
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
    if (!play(path, wav, problem)) return 0;
    print_diagnostics(wav);
    return 1;
}

int tape_play_cassette(const std::string& path, std::span<const uint8_t> tape) {
    machine_apply(event_kind::tape_close_wav);
    wav_format wav;
    const std::string problem = cassette_sound_open(tape, played, wav);
    return play(path, wav, problem);
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
    return read_at(played.get(), offset, {to, bytes});
}

int tape_sound_write(uint64_t position, const uint8_t* samples, size_t count) {
    if (!recording.file) return 0;
    const int error = write_samples(position, samples, count);
    if (error == 0) return 1;
    report({.text = std::string("The tape recording has ended: ") + std::strerror(error)});
    return 0;
}

void tape_sound_end() {
    if (recording.file) sync_contents(recording.file.get());
    recording = {};
    played.reset();
    played_file = {};
}

played_wav tape_sound_played() { return played_file; }

std::string tape_sound_follow(const played_wav& wav) {
    const bool same = played && wav.path == played_file.path && wav.hash == played_file.hash;
    if (same && !recording.file) return {};
    tape_sound_end();
    if (wav.path.empty()) return {};
    wav_format found;
    std::string problem = wav_file_open(wav.path, played, found);
    if (problem.empty() && hash_of_played() != wav.hash) {
        problem = "it holds something else than before";
    }
    if (problem.empty()) {
        played_file = wav;
    } else {
        played.reset();
    }
    return problem;
}

void tape_sound_flush() {
    if (!tape_audio.recording || !recording.file) return;
    tape_sound_write(tape_audio.position, tape_audio.pending, tape_audio.pending_count);
}
