/// The desktop's part of a frame: the canvas converted into the window's picture, and stretched
/// into the window. What the window system does with it is not in here.

#include "platform/picture_scaler.h"
#include "platform/qt/qt_pixels.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

constexpr size_t PALETTE_BYTES = 256 * 4;

void present(benchmark::State& state, int width, int height, int bits) {
    std::vector<uint8_t> pixels(size_t(width) * size_t(height) * size_t(bits) / 8);
    for (size_t n = 0; n < pixels.size(); ++n) pixels[n] = uint8_t(n / 8 * 7 % 17);
    const std::vector<uint8_t> palette(PALETTE_BYTES, 0x55);
    const BitmapView picture = {width, height, bits, pixels.data(),
                                bits == 8 ? palette.data() : nullptr};
    QImage window = plain_picture({width, height}, Qt::black);
    for (auto _ : state) {
        copy_bitmap_to(window, picture, 0, 0);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(present, single, 384, 288, 8)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(present, giant, 768, 576, 8)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(present, giant_blur, 768, 576, 32)->Unit(benchmark::kMicrosecond);

void stretch(benchmark::State& state, Size to, bool smooth) {
    constexpr Size CANVAS{384, 288};
    const std::vector<uint32_t> pixels(size_t{CANVAS.width} * CANVAS.height, 0x123456);
    std::vector<uint32_t> row(size_t(to.width));
    PictureScaler scaler;
    scaler.prepare(CANVAS, to, smooth);
    for (auto _ : state) {
        scaler.begin(pixels.data());
        for (int y = 0; y < to.height; ++y) scaler.row(y, row.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(stretch, whole, Size{1152, 864}, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(stretch, sharp, Size{1344, 1008}, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(stretch, smooth, Size{1536, 1152}, true)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
