#pragma once
#include "platform/picture_tube.h"

/// Draws by WebGL 2.
struct WebPictureTube final : public PictureTube {
    std::string start() override { return "The browser has no WebGL 2"; }
    void stop() override {}
    int64_t take_draw_time() override { return 0; }
};
