/// WAV recordings: the reader at any place, and a tape that plays and rolls, stops and is rewound
/// as the bytes of the file themselves say.

#include "media/files/sound_decoder.h"
#include "media/files/tape_sound_files.h"
#include "media/tape_audio.h"
#include "support/fake_host.h"
#include "support/files.h"
#include "support/machine.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

constexpr const char* NAME = "tape.wav";
constexpr const char* RECORDED = "recorded.wav";

void read_samples(std::span<const uint8_t> bytes) {
    wav_format wav = tape_audio.wav;
    const int32_t lowest = wav.bits == 8 ? 0 : -32768;
    const int32_t highest = wav.bits == 8 ? 255 : 32767;
    uint64_t index = 0;
    for (const uint8_t byte : bytes) {
        const int32_t sample = wav_sample(wav, index);
        require(sample >= lowest && sample <= highest, "a sample has its width");
        index = byte & 1 ? index + byte : index * 257 + byte;
    }
}

/// The bytes as the sound of a tape, in any part of it at a time.
void decode(std::span<const uint8_t> bytes) {
    SoundDecoder decoder(tape_audio.wav, bytes.back());
    for (size_t part = 1; !bytes.empty(); part = part * 3 + bytes.size() % 5) {
        part = std::min(part, bytes.size());
        decoder.take(bytes.first(part));
        bytes = bytes.subspan(part);
    }
    const size_t found = decoder.image().size();
    for (size_t n = 1; n < found; ++n) {
        require(decoder.place(n - 1) <= decoder.place(n), "bytes come one after the other");
    }
}

void roll(std::span<const uint8_t> bytes) {
    constexpr size_t MOST_ACTIONS = 256;
    constexpr int64_t LONGEST_PAUSE = 100'000; ///< cycles, 45 ms
    for (const uint8_t byte : bytes.last(std::min(bytes.size(), MOST_ACTIONS))) {
        z80_state.t_count += int64_t(byte) * (byte & 1 ? 3 : LONGEST_PAUSE / 256);
        switch (byte >> 4) {
        case 0: tape_set_motor(byte & 1, z80_state.t_count); break;
        case 1: byte & 1 ? tape_seek(byte * byte) : tape_rewind(); break;
        case 2: tape_set_compare_level(byte << 3); break;
        case 3: tape_set_signal_invert(byte & 1); break;
        case 4: tape_update_counter(z80_state.t_count); break;
        case 5:
        case 6: tape_save_wav(z80_state.t_count, byte & 1); break;
        default: tape_load_wav(z80_state.t_count); break;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fake_host = {};
    fresh_machine();
    write_file(NAME, {data, size});
    if (tape_open_wav(NAME)) {
        read_samples({data, size});
        decode({data, size});
        tape_set_motor(1, z80_state.t_count);
        roll({data, size});
    }
    tape_close_wav();
    const uint8_t choice = size ? data[size - 1] : 0;
    if ((choice & 3) == 3 && tape_create_wav(RECORDED, choice * 1000)) {
        tape_set_motor(1, z80_state.t_count);
        roll({data, size});
        tape_close_wav();
        FileHandle file;
        wav_format wav;
        require(wav_file_open(RECORDED, file, wav).empty(), "a recording can be played");
    }
    tape_set_compare_level(0);
    tape_set_signal_invert(0);
    return 0;
}
