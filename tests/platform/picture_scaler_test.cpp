#include "platform/picture_scaler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

TEST(PictureScalerTest, WholeMultiplesAreMetOrWantedAndThenInTheMiddle) {
    const struct {
        Rectangle target;
        bool whole;
        Rectangle area;
    } cases[] = {{{0, 0, 800, 500}, true, {208, 106, 592, 394}},
                 {{0, 0, 800, 500}, false, {0, 0, 800, 500}},
                 {{10, 20, 780, 597}, false, {11, 20, 779, 596}},
                 {{0, 0, 767, 575}, true, {0, 0, 768, 576}},
                 {{0, 0, 300, 200}, true, {0, 0, 300, 200}}};
    for (const auto& [target, whole, area] : cases) {
        EXPECT_EQ(stretched_area(target, {384, 288}, whole), area) << target.right;
    }
}

/// How much of a lone white pixel is in the target's pixel `n`.
double share(int lone, int from, int n, int to, bool smooth) {
    const double factor = double(from) / to;
    if (!smooth && to >= from) {
        const double left = std::max(n * factor, double(lone));
        return std::max(std::min((n + 1) * factor, lone + 1.0) - left, 0.0) / factor;
    }
    const double place = std::clamp((n + 0.5) * factor - 0.5, 0.0, from - 1.0);
    return std::max(1 - std::abs(place - lone), 0.0);
}

TEST(PictureScalerTest, APixelIsSharedByArea) {
    constexpr Size FROM{7, 5};
    constexpr int LONE_X = 3, LONE_Y = 4;
    std::vector<uint32_t> picture(size_t(FROM.width * FROM.height), 0xFF000000);
    picture[LONE_Y * FROM.width + LONE_X] = 0xFFFFFFFF;
    PictureScaler scaler;
    for (const Size to : {Size{7, 5}, {14, 15}, {16, 13}, {40, 9}, {5, 4}}) {
        for (const bool smooth : {false, true}) {
            scaler.prepare(FROM, to, smooth);
            scaler.begin(picture.data());
            std::vector<uint32_t> row(size_t(to.width));
            for (int y = 0; y < to.height; ++y) {
                scaler.row(y, row.data());
                for (int x = 0; x < to.width; ++x) {
                    const double light = 255 * share(LONE_X, FROM.width, x, to.width, smooth) *
                                         share(LONE_Y, FROM.height, y, to.height, smooth);
                    const uint32_t pixel = row[size_t(x)];
                    ASSERT_NEAR(pixel & 0xFF, light, 4) << to.width << smooth << x << "," << y;
                    ASSERT_EQ(pixel, 0xFF000000 | (pixel & 0xFF) * 0x010101);
                }
            }
        }
    }
}

} // namespace
