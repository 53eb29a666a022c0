/// Video capture: what one frame costs with each codec, written to a file included. Half of the
/// frames stand still, as on a screen that a person looks at; every other one has text that moves.

#include "host/recording/avi_writer.h"
#include "host/recording/video_codec.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

namespace {

constexpr size_t SOUND_BYTES = 1920;
constexpr int FRAMES = 300;

std::vector<uint8_t> text_like(size_t bytes, size_t row_bytes, size_t moved) {
    std::vector<uint8_t> picture(bytes);
    for (size_t n = 0; n < bytes; ++n) {
        const size_t x = (n % row_bytes + moved) / 2, y = n / row_bytes / 2;
        const bool lit = y % 12 < 8 && (x * 7 + y * 5 + x / 8 * y / 12) % 11 < 3;
        picture[n] = lit ? uint8_t(1 + x / 8 % 15) : 0;
    }
    return picture;
}

void frame(benchmark::State& state, const video_codec_kind& kind, int width, int height, int bits) {
    avi_video_format format;
    format.header.width = width;
    format.header.height = height;
    format.header.bits = uint16_t(bits);
    format.header.colours_used = bits == 8 ? 256 : 1;
    for (uint32_t n = 0; n < format.header.colours_used * 4; ++n) {
        format.extra.push_back(n % 4 == 3 ? 0 : uint8_t(n / 4 * 37 + n % 4 * 91));
    }
    const auto codec = kind.start(format);
    AviWriter writer;
    if (!codec || !writer.open(FileHandle(std::tmpfile()), codec->format, true)) std::abort();
    const size_t row_bytes = size_t(width) * size_t(bits) / 8;
    const std::vector<uint8_t> pictures[] = {text_like(row_bytes * size_t(height), row_bytes, 0),
                                             text_like(row_bytes * size_t(height), row_bytes, 5)};
    const std::vector<uint8_t> sound(SOUND_BYTES);
    size_t bytes = 0, frames = 0;
    for (auto _ : state) {
        const auto encoded = codec->encode(pictures[frames++ / 2 % 2]);
        if (!encoded || !writer.write(encoded->data, encoded->key_frame, sound)) std::abort();
        bytes += encoded->data.size();
    }
    state.counters["bytes/frame"] = double(bytes) / double(frames);
}

/// One benchmark per codec and canvas; the single canvas, and the giant one with blur and without.
const bool registered = [] {
    constexpr struct {
        int width, height, bits;
    } CANVASES[] = {{384, 288, 8}, {768, 576, 8}, {768, 576, 32}};
    for (const video_codec_kind& kind : video_codecs()) {
        for (const auto& [width, height, bits] : CANVASES) {
            bitmap_header header;
            header.bits = uint16_t(bits);
            if (!kind.can_do(header)) continue;
            const std::string title = std::string("frame/") + kind.name + "/" +
                                      std::to_string(width) + "/" + std::to_string(bits);
            benchmark::RegisterBenchmark(title.c_str(), frame, kind, width, height, bits)
                ->Unit(benchmark::kMicrosecond)
                ->Iterations(FRAMES);
        }
    }
    return true;
}();

} // namespace

BENCHMARK_MAIN();
