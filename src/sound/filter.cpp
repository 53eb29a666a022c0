#include "sound/filter.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double TWO_PI = 6.283185307179586;
/// Below this a decaying output no longer reaches any sample. It becomes 0, before it turns into
/// a subnormal number, which costs the host a hundred times as much.
constexpr double INAUDIBLE = 1e-30;

/// e^(-2 pi cutoff / rate). What the machine itself has is written out: mathematical libraries
/// differ in the last bit of it.
double feedback(uint32_t cutoff, uint32_t rate) {
    if (cutoff == 50 && rate == 48000) return 0x1.fca8efdf97df7p-1;
    if (cutoff == 100 && rate == 44100) return 0x1.f8c1c7e7e4e11p-1;
    return std::exp(-TWO_PI * double(cutoff) / double(rate));
}

void use_rate(iir_filter& filter, uint32_t rate) {
    if (filter.rate == rate) return;
    filter.rate = rate;
    filter_calc_coeff(&filter);
}

void cut_tail(iir_filter& filter) {
    if (std::abs(filter.y) < INAUDIBLE) filter.y = 0;
}

int32_t step(iir_filter& filter, int32_t sample) {
    filter.y = filter.y * filter.a + sample * filter.b;
    const double lifted = filter.y + 0.5; // rounds to nearest above 0, toward 0 below
    const auto low = int32_t(lifted);
    return filter.type == FILTER_LOW_PASS ? low : int32_t(uint32_t(sample) - uint32_t(low));
}

} // namespace

bool filter_is_possible(const iir_filter& filter) {
    constexpr double LARGEST_SAMPLE = 32768;
    const bool is_fresh = filter.rate == 0 && filter.a == 0 && filter.b == 0;
    const bool is_set_up = filter.a >= 0 && filter.a <= 1 && filter.b == 1.0 - filter.a;
    return filter.type <= FILTER_LOW_PASS && (is_fresh || is_set_up) &&
           filter.y >= -LARGEST_SAMPLE && filter.y <= LARGEST_SAMPLE;
}

iir_filter filter_iir_create(uint32_t type, uint32_t cutoff) {
    iir_filter filter;
    filter.type = type;
    filter.cutoff = cutoff;
    return filter;
}

void filter_destroy(iir_filter* filter) {
    if (filter) *filter = {};
}

void filter_calc_coeff(iir_filter* filter) {
    filter->a = feedback(filter->cutoff, filter->rate);
    filter->b = 1.0 - filter->a;
}

int32_t filter_output(iir_filter* filter, int32_t sample, uint32_t rate) {
    if (!filter || filter->cutoff == 0) return sample;
    use_rate(*filter, rate);
    const int32_t result = step(*filter, sample);
    cut_tail(*filter);
    return result;
}

void filter_buffer_output(iir_filter* filter, size_t count, int16_t* samples, uint32_t rate) {
    if (!filter || filter->cutoff == 0) return;
    use_rate(*filter, rate);
    const bool silent = std::all_of(samples, samples + count, [](int16_t x) { return x == 0; });
    if (silent && filter->y == 0) return; // and stays so
    iir_filter local = *filter;           // in registers
    for (size_t i = 0; i < count; ++i) samples[i] = int16_t(step(local, samples[i]));
    cut_tail(local);
    *filter = local;
}
