#include "media/wav_samples.h"

#include "wall/machine_host.h"

namespace {

constexpr int32_t HIGHEST_8_BIT = 0xFF;
constexpr int32_t HIGHEST_16_BIT = 0x7FFF;

/// A copy of part of the file: no state.
struct sample_window {
    uint64_t start = 0; ///< offset in the file
    uint64_t bytes = 0;
    uint8_t contents[16384] = {};
};
sample_window window;

/// Moves the window to the sample at `offset`; false when the file does not hold it.
bool move_window(const wav_format& wav, uint64_t offset) {
    window.start = offset;
    window.bytes = machine_host.read_tape(offset, window.contents, sizeof window.contents);
    return window.bytes >= wav_sample_bytes(wav);
}

uint32_t word(const uint8_t* at) { return at[0] | uint32_t(at[1]) << 8; }

} // namespace

uint64_t wav_sample_bytes(const wav_format& wav) { return wav.channels * wav.bits / 8; }

int32_t wav_value(const wav_format& wav, const uint8_t* at) {
    if (wav.bits == 8) return wav.channels == 1 ? at[0] : (at[0] + at[1]) / 2;
    const auto left = int16_t(word(at));
    return wav.channels == 1 ? left : (left + int16_t(word(at + 2))) / 2;
}

int32_t wav_sample(wav_format& wav, uint64_t index) {
    const int32_t behind_end = wav.bits == 8 ? HIGHEST_8_BIT : HIGHEST_16_BIT;
    if (index >= wav.samples) return behind_end;
    const uint64_t size = wav_sample_bytes(wav);
    const uint64_t offset = wav.data_start + index * size;
    const bool is_in_window =
        offset >= window.start && offset + size <= window.start + window.bytes;
    if (!is_in_window && !move_window(wav, offset)) {
        wav.samples = index;
        return behind_end;
    }
    return wav_value(wav, &window.contents[offset - window.start]);
}

void wav_forget_window() { window.bytes = 0; }
