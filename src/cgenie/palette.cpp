#include "cgenie/palette.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {
constexpr uint32_t UNSET = 0xFFFFFFFF;
constexpr display_parameters DEFAULT_PARAMETERS = {75, 50, 50, 50, 80, UNSET};
constexpr display_parameters START_PARAMETERS = {UNSET, 50, 50, 50, 80, UNSET};
} // namespace

uint8_t cgpalette[256][3];
yuv_pixel yuv_palette[256];
colour_standard palette_state;
display_parameters display_params = START_PARAMETERS;

namespace {
/// What the palettes were calculated from.
struct palette_inputs {
    uint32_t standard = UNSET;
    display_parameters parameters = {};
    bool operator==(const palette_inputs&) const = default;
};
palette_inputs calculated_from;

constexpr state_field palette_fields[] = {
    {"index", sizeof(colour_standard::index)},
};

const char* fault(const colour_standard& standard) {
    return first_fault({{"index", standard.index <= 1}});
}

constexpr int COLOURS = PALETTE_ENTRIES - 1; // the last entry is black
constexpr double BLACK_LUMINANCE = 5.0;
constexpr uint8_t UNUSED_COMPONENT = 16;
constexpr double PI = 3.14159265;

/// Phase of a colour's chroma in degrees, 0 for a colour without chroma: Southern, Northern.
constexpr double HUE[2][COLOURS] = {{0.0, 275.0, 32.5, 335.0, 152.5, 215.0, 120.0, 0.0, //
                                     0.0, 275.0, 32.5, 335.0, 152.5, 215.0, 120.0, 0.0},
                                    {0.0, 270.0, 90.0, 0.0, 152.5, 215.0, 120.0, 180.0, //
                                     335.0, 335.0, 32.5, 359.0, 0.0, 270.0, 32.5, 0.0}};
/// Luminance level that a colour switches on.
constexpr uint8_t luma[2][COLOURS] = {{1, 1, 1, 2, 3, 1, 2, 0, 1, 3, 0, 0, 1, 0, 0, 6},
                                      {0, 1, 0, 1, 1, 1, 2, 1, 0, 1, 2, 2, 2, 2, 0, 5}};
constexpr double luma_levels[8] = {3.0, 4.5, 3.5, 4.0, 4.25, 5.0, 2.4, 0.0};
constexpr double BLACK_LEVEL = 2.0;
constexpr double LEVEL_RANGE = 3.0;
constexpr double LUMINANCE_GAIN = 1.1;

struct colour_signal {
    double y, u, v;
};

colour_signal signal_of(uint32_t standard, int entry, uint32_t amplitude) {
    if (entry == COLOURS) return {BLACK_LUMINANCE, 0, 0};
    const double level = luma_levels[luma[standard][entry]];
    const double y = (level - BLACK_LEVEL) * 255.0 / LEVEL_RANGE * LUMINANCE_GAIN;
    const double hue = HUE[standard][entry];
    if (hue == 0.0) return {y, 0, 0};
    return {y, amplitude * std::cos(hue * PI / 180), amplitude * std::sin(hue * PI / 180)};
}

constexpr double NEUTRAL = 50.0; ///< of brightness, gamma and contrast
constexpr double WHITE = 255.0;
constexpr double MIDDLE = WHITE / 2;
constexpr uint32_t FULL_LIGHT = 80; ///< of the interlaced line

/// What the knobs make of a signal, the way of a television: chroma is amplified with the luminance
/// under it, so that a colour keeps its hue. At 50 every factor is 1 and every term 0, which leaves
/// each bit as it was.
colour_signal adjusted(colour_signal signal) {
    const double exponent = std::exp2((NEUTRAL - display_params.gamma) / NEUTRAL);
    const double bend = std::pow(signal.y / WHITE, exponent - 1);
    const double contrast = display_params.contrast / NEUTRAL;
    const double shift = (display_params.brightness - NEUTRAL) / NEUTRAL * MIDDLE;
    const double gain = bend * contrast;
    return {signal.y * gain + MIDDLE * (1 - contrast) + shift, signal.u * gain, signal.v * gain};
}

uint8_t dimmed(uint32_t component) {
    return uint8_t(component * std::min(display_params.interlaced_line, FULL_LIGHT) / FULL_LIGHT);
}

uint8_t to_byte(double value) { return uint8_t(std::clamp(value + 0.5, 0.0, 255.0)); }
int8_t to_signed_byte(double value) { return int8_t(std::clamp(value + 0.5, -128.0, 127.0)); }

constexpr int LumaFilterCoeff = 35; // percent of a change that a pixel falls short

/// smeared_luma[i][l]: luminance of a pixel of entry i after one that came out as l. Each pixel
/// depends on the one before, which limits the speed of the filter; a table makes that step as
/// short as it can be.
uint8_t smeared_luma[256][256];

/// U and V of an entry in one word, so that one addition adds both: V in the upper half, U in the
/// lower half. U has a bias added, so that it never borrows from V; the weights of a sum add up to
/// eight, which moves the bias out of the eleven bits of the sum of U.
uint32_t chroma_words[256];
constexpr int CHROMA_BIAS = 256;
constexpr int CHROMA_SHIFT = 3;

void build_yuv_tables() {
    for (int i = 0; i < 256; ++i) {
        const auto [y, u, v, pad] = yuv_palette[i];
        chroma_words[i] = (uint32_t(v) << 16) + uint32_t(u + CHROMA_BIAS);
        for (int l = 0; l < 256; ++l) {
            smeared_luma[i][l] = uint8_t(y - (y - l) * LumaFilterCoeff / 100);
        }
    }
}

void filter_line(const uint8_t* line, const uint8_t* below, yuv_pixel* destination, int width) {
    uint8_t level = yuv_palette[line[0]].y;
    uint32_t previous = 2 * chroma_words[line[0]]; // the first pixel stands for both lines
    for (int x = 0; x < width; x += 2) {
        const uint8_t left = line[x], right = line[x + 1];
        const uint32_t left_chroma = chroma_words[left] + chroma_words[below[x]];
        const uint32_t right_chroma = chroma_words[right] + chroma_words[below[x + 1]];
        const uint32_t sum = previous + left_chroma + 2 * right_chroma;
        previous = left_chroma;
        const auto u = int8_t(sum >> CHROMA_SHIFT), v = int8_t(sum >> (16 + CHROMA_SHIFT));
        const uint8_t left_level = smeared_luma[left][level];
        level = smeared_luma[right][left_level];
        destination[x] = {left_level, u, v, 0};
        destination[x + 1] = {level, u, v, 0};
    }
}

// Conversion to red, green and blue in 16.16 fixed point, each factor with a rounding half:
//   red   = Y + (74711 V + 32768) / 65536             (1.14)
//   green = Y + (-25863 U - 38049 V + 65536) / 65536  (0.3946, 0.5806; two factors, two halves)
//   blue  = Y + (132973 U + 32768) / 65536            (2.029)
// Whole multiples of 65536 are taken out of the factors: the rests fit 16 bits, so that the
// compiler can work on eight pixels at a time.
constexpr int16_t RED_V = 74711 - 65536;
constexpr int16_t GREEN_U = -25863;
constexpr int16_t GREEN_V = 65536 - 38049;
constexpr int16_t BLUE_U = 132973 - 2 * 65536;

/// (value x factor + 32768) / 65536, by way of the upper half of twice the product.
int rounded_share(int16_t value, int16_t factor) {
    return (((value * int16_t(2 * factor)) >> 16) + 1) >> 1;
}
int16_t sign_extended(uint8_t byte) { return int16_t((byte ^ 0x80) - 0x80); }
int16_t to_component(int value) { return std::clamp<int16_t>(int16_t(value), 0, 255); }

constexpr size_t BLOCK = 64; // pixels; a fixed count and local arrays let the compiler vectorise

/// Reads the whole block before it writes: both may be the same memory.
void convert_block(const yuv_pixel* source, uint32_t* destination) {
    uint8_t bytes[BLOCK * sizeof(yuv_pixel)];
    std::memcpy(bytes, source, sizeof bytes);
    int16_t y[BLOCK], u[BLOCK], v[BLOCK];
    for (size_t i = 0; i < BLOCK; ++i) {
        y[i] = bytes[4 * i];
        u[i] = sign_extended(bytes[4 * i + 1]);
        v[i] = sign_extended(bytes[4 * i + 2]);
    }
    uint16_t red[BLOCK], green_blue[BLOCK];
    for (size_t i = 0; i < BLOCK; ++i) {
        const int16_t r = to_component(y[i] + v[i] + rounded_share(v[i], RED_V));
        const int16_t g = to_component(y[i] - v[i] + 1 + ((u[i] * GREEN_U + v[i] * GREEN_V) >> 16));
        const int16_t b = to_component(y[i] + 2 * u[i] + rounded_share(u[i], BLUE_U));
        red[i] = uint16_t(r);
        green_blue[i] = uint16_t(g << 8 | b);
    }
    for (size_t i = 0; i < BLOCK; ++i) destination[i] = uint32_t(red[i]) << 16 | green_blue[i];
}
} // namespace

const state_record palette_record = {"palette_state", &palette_state, sizeof palette_state,
                                     palette_fields, fault_of<colour_standard, fault>};

void calculate_palette(uint32_t standard) {
    const uint32_t amplitude = palette_get_saturation() * 128 / 100;
    current_pal_index = standard;
    std::memset(cgpalette, UNUSED_COMPONENT, sizeof cgpalette);
    for (int i = 0; i < PALETTE_ENTRIES; ++i) {
        const auto [y, u, v] = adjusted(signal_of(standard, i, amplitude));
        yuv_palette[i] = {to_byte(y), to_signed_byte(u), to_signed_byte(v), 0};
        cgpalette[i][0] = to_byte(y + v / 0.877283);
        cgpalette[i][1] = to_byte(y - 0.39465 * u - 0.5806 * v);
        cgpalette[i][2] = to_byte(y + u / 0.492111);
        if (!palette_dims_lines()) continue;
        std::transform(cgpalette[i], cgpalette[i] + 3, cgpalette[PALETTE_ENTRIES + i], dimmed);
    }
    build_yuv_tables();
    calculated_from = {standard, display_params};
}

void palette_update() {
    if (calculated_from == palette_inputs{current_pal_index, display_params}) return;
    calculate_palette(current_pal_index);
}

void palette_set_saturation(uint32_t percent) {
    display_params.saturation = percent;
    palette_update();
}

uint32_t palette_get_saturation() {
    uint32_t& saturation = display_params.saturation;
    if (saturation == UNSET) saturation = palette_get_default_saturation();
    return saturation;
}

uint32_t palette_get_default_saturation() { return DEFAULT_PARAMETERS.saturation; }

void palette_get_default_config(display_parameters* parameters) {
    *parameters = DEFAULT_PARAMETERS;
}

bool palette_dims_lines() { return display_params.interlaced_line < FULL_LIGHT; }

void palette_dim(uint32_t* colours, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t colour = colours[i];
        const uint32_t red = dimmed(colour >> 16 & 0xFF);
        const uint32_t green = dimmed(colour >> 8 & 0xFF);
        colours[i] = red << 16 | green << 8 | dimmed(colour & 0xFF);
    }
}

uint8_t video_get_palette_value(int entry, int component) { return cgpalette[entry][component]; }

void video_yuv_filter(const uint8_t* source, yuv_pixel* destination, int width, int height,
                      int stride) {
    for (int y = 0; y < height; ++y) {
        filter_line(source, source + width, destination, width);
        source += width;
        destination += stride;
    }
}

void yuv_to_rgb(const yuv_pixel* source, uint32_t* destination, size_t count) {
    for (; count >= BLOCK; count -= BLOCK) {
        convert_block(source, destination);
        source += BLOCK;
        destination += BLOCK;
    }
    if (count == 0) return;
    yuv_pixel rest[BLOCK] = {};
    uint32_t colours[BLOCK];
    std::copy_n(source, count, rest);
    convert_block(rest, colours);
    std::copy_n(colours, count, destination);
}
