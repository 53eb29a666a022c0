#include "files/system_file.h"
#include "media/files/cassette_sound.h"
#include "media/files/tape_sound_files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr uint64_t FIRST_CHUNK = 12; ///< behind "RIFF", the length and "WAVE"
constexpr uint64_t CHUNK_HEADER = 8;
/// A file of nothing but empty chunks must not keep the program busy.
constexpr int MOST_CHUNKS = 1024;

// The fields of the format chunk.
enum : uint32_t { FORMAT_TAG = 0, FORMAT_CHANNELS = 2, FORMAT_RATE = 4, FORMAT_BITS = 14 };
constexpr uint32_t FORMAT_SIZE = 16;
constexpr uint32_t FORMAT_SUBFORMAT = 24;
constexpr uint32_t EXTENSIBLE_SIZE = 40;
enum : uint32_t { TAG_PCM = 0x0001, TAG_EXTENSIBLE = 0xFFFE };
constexpr std::array<uint8_t, 16> SUBFORMAT_PCM = {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00,
                                                   0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

constexpr uint32_t LOWEST_RATE = 1000;
constexpr uint32_t HIGHEST_RATE = 768000;

uint32_t word(const uint8_t* at) { return at[0] | uint32_t(at[1]) << 8; }
uint32_t dword(const uint8_t* at) { return word(at) | word(at + 2) << 16; }

struct Source {
    FileHandle file;
    wav_format wav;
};

/// Bytes read at `offset`; 0 at the end of the file and after an error.
uint64_t read_at(const Source& source, uint64_t offset, uint8_t* to, uint64_t bytes) {
    return read_at(source.file.get(), offset, {to, size_t(bytes)});
}

/// A file of the disk: nothing that a read could wait for, and nothing without a length.
std::string open_regular(Source& source, const std::string& path, uint64_t* length) {
    source.file = open_without_waiting(path, "rb");
    const auto facts = source.file ? facts_of(source.file.get()) : std::nullopt;
    if (!facts) return std::strerror(errno);
    if (facts->kind != SystemFileFacts::Kind::regular) return "not a file";
    *length = facts->size;
    return {};
}

std::string read_format(Source& source, uint64_t offset, uint32_t size) {
    std::array<uint8_t, EXTENSIBLE_SIZE> format{};
    const uint64_t wanted = std::min(size, EXTENSIBLE_SIZE);
    if (wanted < FORMAT_SIZE || read_at(source, offset, format.data(), wanted) != wanted) {
        return "the description of its samples is incomplete";
    }
    const uint32_t tag = word(&format[FORMAT_TAG]);
    const bool is_extended_pcm =
        tag == TAG_EXTENSIBLE &&
        std::equal(SUBFORMAT_PCM.begin(), SUBFORMAT_PCM.end(), &format[FORMAT_SUBFORMAT]);
    if (tag != TAG_PCM && !is_extended_pcm) return "its samples are not plain PCM";

    source.wav.channels = word(&format[FORMAT_CHANNELS]);
    source.wav.rate = dword(&format[FORMAT_RATE]);
    source.wav.bits = word(&format[FORMAT_BITS]);
    const auto number = [](uint32_t value) { return std::to_string(value); };
    if (source.wav.channels != 1 && source.wav.channels != 2) {
        return number(source.wav.channels) + " channels; 1 or 2 can be played";
    }
    if (source.wav.bits != 8 && source.wav.bits != 16) {
        return number(source.wav.bits) + " bits per sample; 8 or 16 can be played";
    }
    if (source.wav.rate < LOWEST_RATE || source.wav.rate > HIGHEST_RATE) {
        return number(source.wav.rate) + " samples per second; 1000 to 768000 can be played";
    }
    return {};
}

std::string find_samples(Source& source, uint64_t length) {
    std::array<uint8_t, FIRST_CHUNK> head{};
    const auto is = [](const uint8_t* at, const char* name) {
        return std::memcmp(at, name, 4) == 0;
    };
    if (read_at(source, 0, head.data(), head.size()) != head.size() || !is(&head[0], "RIFF") ||
        !is(&head[8], "WAVE")) {
        return "not a WAV file";
    }
    uint64_t data_bytes = 0;
    uint64_t at = FIRST_CHUNK;
    for (int n = 0; n < MOST_CHUNKS && !(source.wav.channels && source.wav.data_start); ++n) {
        std::array<uint8_t, CHUNK_HEADER> chunk{};
        if (read_at(source, at, chunk.data(), chunk.size()) != chunk.size()) break;
        const uint32_t size = dword(&chunk[4]);
        at += CHUNK_HEADER;
        if (is(&chunk[0], "fmt ") && !source.wav.channels) {
            std::string problem = read_format(source, at, size);
            if (!problem.empty()) return problem;
        }
        if (is(&chunk[0], "data") && !source.wav.data_start) {
            source.wav.data_start = at;
            data_bytes = length - std::min(length, at);
            if (size != 0) data_bytes = std::min<uint64_t>(data_bytes, size);
        }
        at += uint64_t(size) + (size & 1); // chunks start at even offsets
    }
    if (!source.wav.channels) return "the description of its samples is missing";
    if (!source.wav.data_start) return "it holds no samples";
    source.wav.samples = data_bytes / (source.wav.channels * source.wav.bits / 8);
    return {};
}

} // namespace

std::string wav_file_open(const std::string& path, FileHandle& file, wav_format& wav) {
    const auto tape = tape_of_file(path);
    if (!tape.empty()) return cassette_sound_open(tape, file, wav);
    Source source = {{}, {}};
    uint64_t length = 0;
    std::string problem = open_regular(source, path, &length);
    if (problem.empty()) problem = find_samples(source, length);
    if (!problem.empty()) return problem;
    file = std::move(source.file);
    wav = source.wav;
    return {};
}
