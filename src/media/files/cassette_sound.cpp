#include "media/files/cassette_sound.h"

#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "media/files/cassette_files.h"
#include "media/tape.h"

#include <cerrno>
#include <cstring>

namespace {

constexpr uint32_t RATE = 19200;
constexpr size_t HALF_BIT = RATE / 1200 / 2; ///< samples
constexpr size_t LEADER_BYTES = 6 * 1200 / 8;
constexpr uint8_t HIGH = 228;
constexpr uint8_t LOW = 28;

class Sound {
public:
    void byte(uint8_t value) {
        for (int bit = 7; bit >= 0; --bit) {
            half(true);
            half(value >> bit & 1);
        }
    }
    std::span<const uint8_t> samples() const { return samples_; }

private:
    void half(bool changes) {
        high_ ^= changes;
        samples_.insert(samples_.end(), HALF_BIT, high_ ? HIGH : LOW);
    }
    std::vector<uint8_t> samples_;
    bool high_ = false;
};

} // namespace

std::string cassette_sound_open(std::span<const uint8_t> tape, FileHandle& file, wav_format& wav) {
    Sound sound;
    uint64_t start = 0;
    cg_get_header_size(tape, &start);
    for (size_t n = 0; n < LEADER_BYTES; ++n) sound.byte(TAPE_LEADER);
    for (const uint8_t value : tape.subspan(start)) sound.byte(value);
    const auto samples = sound.samples();
    FileHandle made = open_nameless_file();
    if (!made || std::fwrite(samples.data(), 1, samples.size(), made.get()) != samples.size() ||
        std::fflush(made.get()) != 0) {
        return std::strerror(errno);
    }
    file = std::move(made);
    wav = {.data_start = 0, .samples = samples.size(), .rate = RATE, .bits = 8, .channels = 1};
    return {};
}

uint32_t cassette_sound_place(std::span<const uint8_t> tape, size_t byte) {
    constexpr uint64_t SAMPLES_PER_BYTE = 8 * 2 * HALF_BIT, MS_PER_SECOND = 1000;
    uint64_t start = 0;
    cg_get_header_size(tape, &start);
    const uint64_t bytes = LEADER_BYTES + (byte > start ? byte - start : 0);
    return uint32_t(bytes * SAMPLES_PER_BYTE * MS_PER_SECOND / RATE);
}

std::vector<uint8_t> tape_of_file(const std::string& path) {
    const std::string kind = lower_case_extension(path);
    const bool is_basic = kind == "bas";
    if (!is_basic && kind != "cas" && kind != "cgt") return {};
    auto bytes = read_whole_file(path);
    if (!bytes || (is_basic && !is_tokenized_bas(*bytes))) return {};
    return is_basic ? tape_of_basic(*bytes, path.front()) : std::move(*bytes);
}
