// The picture tube, drawn by OpenGL where there is one: with the offscreen platform on an X server.

#include "platform/qt/qt_pixels.h"
#include "platform/qt/qt_tube.h"
#include "qt/offscreen.h"

#include <cmath>

namespace {

constexpr QSize SIZE(384, 288);
constexpr int FACTOR = 3;

class QtTubeTest : public OffscreenTest {
protected:
    void SetUp() override {
        const std::string problem = tube.start();
        if (!problem.empty()) GTEST_SKIP() << "NOT TESTED, " << problem << " without an X server";
    }
    const QImage& draw(const QImage& picture, TubeLook look) {
        tube.draw(picture, SIZE * FACTOR, {.tube = look, .lines = SIZE.height()});
        return tube.drawn();
    }
    /// The mean light of a part, with 1 for white.
    static double light(const QImage& image, const QRect& part) {
        double sum = 0;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x) {
                const QColor colour(image.pixel(x, y));
                for (const float number : {colour.redF(), colour.greenF(), colour.blueF()}) {
                    sum += std::pow(double(number), 2.2) / 3;
                }
            }
        }
        return sum / part.width() / part.height();
    }

    QtTube tube;
};

TEST_F(QtTubeTest, ShowsLinesMaskGlowAndABulgingFace) {
    const QRect middle(540, 400, 72, 72); // 24 scan lines, 24 triples of stripes
    for (const TubeLook look : {TubeLook::soft, TubeLook::strong}) {
        const double strength = look == TubeLook::soft ? 1 : 2;
        const QImage grey = draw(plain_picture(SIZE, QColor(150, 150, 150)), look);
        const double even = std::pow(150 / 255.0, 2.2);
        EXPECT_NEAR(light(grey, middle), even, even * 0.2) << "as bright as without the tube";
        EXPECT_EQ(grey.pixel(0, 0), 0xFF000000) << "beyond the tube";
        EXPECT_EQ(grey.pixel(1151, 863), 0xFF000000);
        EXPECT_NE(grey.pixel(576, 2), 0xFF000000) << "the edges' middles stay in the picture";
        const QRect row(540, 432, 72, 1); // the middle of line 144 is the row 433
        EXPECT_GT(light(grey, row.translated(0, 1)), light(grey, row) * (1 + 0.1 * strength));
        const QColor one(grey.pixel(600, 433));
        EXPECT_GT(std::abs(one.red() - one.green()) + std::abs(one.red() - one.blue()),
                  15 * strength);

        QImage spot = plain_picture(SIZE, Qt::black);
        for (int y = 140; y < 148; ++y) {
            for (int x = 180; x < 204; ++x) spot.setPixel(x, y, 0xFFFF0000);
        }
        const QColor beside(draw(spot, look).pixel(176 * FACTOR, 433));
        EXPECT_GT(beside.red(), 10 * strength) << "the glow around it, in its colour";
        EXPECT_EQ(beside.green() + beside.blue(), 0);
        EXPECT_EQ(tube.drawn().pixel(100 * FACTOR, 433), 0xFF000000) << "the black far from it";
    }
}

TEST_F(QtTubeTest, DrawsAgainOnlyWhatChangesAndAllOfThat) {
    const QImage picture = plain_picture(SIZE, QColor(90, 0, 160));
    for (const int line : {0, 1, 40, 143, 200, 287}) {
        QImage changed = picture;
        for (int x = 0; x < SIZE.width(); ++x) changed.setPixel(x, line, 0xFFFFFFFF);
        draw(picture, TubeLook::strong);
        const TubeRows rows =
            tube.draw(changed, SIZE * FACTOR, {.tube = TubeLook::strong, .lines = SIZE.height()});
        EXPECT_LT(rows.end - rows.first, 200) << line;
        const QImage in_part = tube.drawn().copy();
        tube.stop();
        tube.start();
        EXPECT_EQ(in_part, draw(changed, TubeLook::strong)) << line;
        EXPECT_GT(tube.take_draw_time(), 0);
        draw(changed, TubeLook::strong);
        EXPECT_EQ(tube.take_draw_time(), 0) << "nothing to draw";
    }
}

} // namespace
