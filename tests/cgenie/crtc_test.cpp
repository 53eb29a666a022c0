#include "cgenie/crtc.h"

#include <gtest/gtest.h>

namespace {
class Crtc : public testing::Test {
protected:
    void SetUp() override {
        crtc = {};
        crtc_reset();
    }
};

TEST_F(Crtc, DerivesTheTimingFromEveryRegister) {
    struct {
        uint32_t number;
        uint8_t value;
        uint32_t crtc_state::*derived;
        uint32_t expected;
    } const cases[] = {
        {0, 0xFF, &crtc_state::horizontal_total, 256},
        {1, 0xFF, &crtc_state::horizontal_displayed, 255},
        {2, 0xFF, &crtc_state::horizontal_sync_position, 256},
        {3, 0xF5, &crtc_state::sync_widths, 0xF5},
        {4, 0xE6, &crtc_state::vertical_total, 0x66},
        {5, 0xE6, &crtc_state::vertical_total_adjust, 6},
        {6, 0x99, &crtc_state::vertical_displayed, 25},
        {7, 0xFF, &crtc_state::vertical_sync_position, 128},
        {8, 0xFE, &crtc_state::interlace_mask, 0},
        {8, 0x03, &crtc_state::interlace_mask, 0xFFFFFFFF},
        {9, 0xE7, &crtc_state::maximum_scan_line, 7},
        {9, 0xE7, &crtc_state::displayed_scan_lines, 200},
        {9, 0xE7, &crtc_state::vertical_sync_line, 1024},
        {6, 0x02, &crtc_state::displayed_scan_lines, 16},
        {7, 0x02, &crtc_state::vertical_sync_line, 24},
        {10, 0xE9, &crtc_state::cursor_mode, 0x60},
        {10, 0xE9, &crtc_state::cursor_start_line, 9},
        {11, 0xE9, &crtc_state::cursor_end_line, 9},
        {12, 0x3F, &crtc_state::start_address, 0x3F00},
        {13, 0x12, &crtc_state::start_address, 0x3F12},
        {12, 0xC5, &crtc_state::start_address, 0x0512},
        {14, 0xC4, &crtc_state::cursor_address, 0xC400},
        {15, 0xFF, &crtc_state::cursor_address, 0xC4FF},
        {14, 0x45, &crtc_state::cursor_address, 0x45FF},
    };
    for (const auto& c : cases) {
        crtc_register_select(uint8_t(0xF0 | c.number)); // only four bits are wired
        crtc_write(c.value);
        EXPECT_EQ(crtc.*c.derived, c.expected) << "R" << c.number << " = " << int(c.value);
        EXPECT_EQ(crtc_read(), c.number == 12 ? c.value & 0x3F : c.value) << "R" << c.number;
    }
    EXPECT_EQ(crtc_read_register(4), 0xE6) << "reads give all eight bits, whatever is selected";
}

TEST_F(Crtc, PictureMovesFourFifthsOfTheWayInEachFrame) {
    crtc_write_register(6, 25);
    crtc_write_register(9, 7);
    EXPECT_EQ(crtc.top_border, 88u) << "288 - 200, the sync is not there yet";
    crtc_write_register(7, 27);
    // Sync line 224, the average starts at 1: (1 + 896) / 5 = 179, (179 + 896) / 5 = 215, ...
    // From below it stays one line short, because the remainder is dropped.
    struct {
        uint32_t average, offset, border;
    } const frames[] = {{179, 0, 88}, {215, 15, 73}, {222, 22, 66}, {223, 23, 65}, {223, 23, 65}};
    for (const auto& frame : frames) {
        crtc_vblank();
        EXPECT_EQ(crtc.sync_line_average, frame.average);
        EXPECT_EQ(crtc.sync_offset, frame.offset) << frame.average;
        EXPECT_EQ(crtc.top_border, frame.border) << frame.average;
    }
    crtc_write_register(6, 24); // at once: 223 - 192 lines below, the same number above
    EXPECT_EQ(crtc.sync_offset, 31u);
    EXPECT_EQ(crtc.top_border, 65u);
    crtc_write_register(6, 40);
    EXPECT_EQ(crtc.sync_offset, 0u);
    EXPECT_EQ(crtc.top_border, 0u) << "320 lines leave no border";
}

TEST_F(Crtc, CursorBlinksByItsMode) {
    struct {
        uint8_t mode;
        bool (*lit)(int frame);
    } const modes[] = {{0x00, [](int) { return true; }},
                       {0x20, [](int) { return false; }},
                       {0x40, [](int frame) { return frame / 16 % 2 == 1; }},
                       {0x60, [](int frame) { return frame / 32 % 2 == 1; }}};
    for (const auto& mode : modes) {
        crtc_reset();
        crtc_write_register(10, mode.mode);
        for (int frame = 1; frame <= 200; ++frame) {
            crtc_vblank();
            ASSERT_EQ(crtc.cursor_visible, mode.lit(frame)) << int(mode.mode) << " " << frame;
        }
    }
}

TEST_F(Crtc, ResetForgetsThePlacementAndKeepsTheRegisters) {
    crtc_register_select(7);
    crtc_write(27);
    crtc_write_register(6, 25);
    crtc_write_register(9, 7);
    crtc_vblank();
    crtc_reset();
    EXPECT_EQ(crtc_read(), 27);
    EXPECT_EQ(crtc.vertical_displayed, 25u);
    for (const uint32_t cleared : {crtc.displayed_scan_lines, crtc.vertical_sync_line,
                                   crtc.sync_offset, crtc.top_border, crtc.frame_counter}) {
        EXPECT_EQ(cleared, 0u);
    }
    crtc_write_register(3, 0x45); // places the picture anew: only the average's one line below
    EXPECT_EQ(crtc.top_border, 287u);
    crtc_write_register(6, 30); // counts its own lines only: the sync line waits for R7 or R9
    EXPECT_EQ(crtc.displayed_scan_lines, 240u);
    EXPECT_EQ(crtc.vertical_sync_line, 0u);
    EXPECT_EQ(crtc.sync_line_average, 1u);
    EXPECT_EQ(crtc.top_border, 48u);
}
} // namespace
