#include "sound/filter.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace {
constexpr uint32_t RATE = 48000;

// b = 1 - exp(-2 pi 50 / 48000) = 0.0065236
TEST(Filter, FirstSampleRoundsTowardZeroBelowNothing) {
    struct {
        int32_t sample, low;
    } const cases[] = {{0, 0},     {76, 0},       // 0.4958 + 0.5
                       {77, 1},    {300, 2},      // 0.5023 + 0.5, 1.9571 + 0.5
                       {-200, 0},  {-229, 0},     // -1.3047 + 0.5, -1.4939 + 0.5
                       {-230, -1}, {-300, -1},    // -1.5004 + 0.5, -1.9571 + 0.5
                       {-400, -2}, {32767, 214}}; // -2.6094 + 0.5, 213.76 + 0.5
    for (const auto& c : cases) {
        auto low = filter_iir_create(FILTER_LOW_PASS, 50);
        auto high = filter_iir_create(FILTER_HIGH_PASS, 50);
        EXPECT_EQ(filter_output(&low, c.sample, RATE), c.low) << c.sample;
        EXPECT_EQ(filter_output(&high, c.sample, RATE), c.sample - c.low) << c.sample;
    }
}

TEST(Filter, StepResponseIsTheExponential) {
    for (const auto& [cutoff, rate] : {std::pair(50U, 48000U), {100U, 44100U}, {3000U, 48000U}}) {
        auto low = filter_iir_create(FILTER_LOW_PASS, cutoff);
        auto high = filter_iir_create(FILTER_HIGH_PASS, cutoff);
        for (int n = 1; n <= 12000; ++n) {
            const double rest = 20000 * std::exp(-6.283185307179586 * cutoff * n / rate);
            ASSERT_NEAR(filter_output(&low, 20000, rate), 20000 - rest, 0.51) << n;
            ASSERT_NEAR(filter_output(&high, 20000, rate), rest, 0.51) << n;
        }
    }
}

TEST(Filter, FollowsTheSampleRate) {
    auto filter = filter_iir_create(FILTER_LOW_PASS, 100);
    filter_output(&filter, 0, RATE);
    // 1 - exp(-2 pi 100 / 8000) = 0.0755: 755.4; then 755.4 x exp(-2 pi 100 / 48000) = 745.6
    EXPECT_EQ(filter_output(&filter, 10000, 8000), 755);
    EXPECT_EQ(filter_output(&filter, 0, RATE), 746);
}

TEST(Filter, ResultsBeyond16BitsWrap) {
    auto block = filter_iir_create(FILTER_HIGH_PASS, 50);
    // 32767 after a long time at -32768
    for (int i = 0; i < 50000; ++i) filter_output(&block, -32768, RATE);
    int16_t top = 32767;
    filter_buffer_output(&block, 1, &top, RATE);
    EXPECT_EQ(top, int16_t(32767 + 32339)); // y = -32768 + 65535 b = -32340.5, rounded to -32339
}

TEST(Filter, SilenceEndsWithoutSubnormalNumbers) {
    auto filter = filter_iir_create(FILTER_HIGH_PASS, 50);
    std::array<int16_t, 960> samples;
    samples.fill(20000);
    for (int fragment = 0; fragment < 200; ++fragment) { // 4 s, a decay by e^1250
        filter_buffer_output(&filter, samples.size(), samples.data(), RATE);
        samples.fill(0);
        EXPECT_NE(std::fpclassify(filter.y), FP_SUBNORMAL) << fragment;
    }
    filter_buffer_output(&filter, samples.size(), samples.data(), RATE);
    EXPECT_EQ(samples, (std::array<int16_t, 960>{}));
}

TEST(Filter, NoneIsTransparent) {
    auto filter = filter_iir_create(FILTER_LOW_PASS, 50);
    filter_destroy(&filter);
    filter_destroy(nullptr);
    for (iir_filter* const none : {&filter, static_cast<iir_filter*>(nullptr)}) {
        int16_t sample = -1234;
        EXPECT_EQ(filter_output(none, -70000, RATE), -70000);
        filter_buffer_output(none, 1, &sample, RATE);
        EXPECT_EQ(sample, -1234);
    }
}
} // namespace
