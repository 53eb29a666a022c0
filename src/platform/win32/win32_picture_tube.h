#pragma once
#include "platform/picture_tube.h"

/// This host has none.
struct Win32PictureTube final : PictureTube {
    std::string start() override { return "There is none in the program for Windows."; }
    void stop() override {}
    int64_t take_draw_time() override { return 0; }
};
