#include "host/display.h"

#include "cgenie/video.h"
#include "cgenie/video_output.h"
#include "core/frame_driver.h"
#include "host/canvas.h"
#include "platform/host_services.h"
#include "platform/platform.h"

bool g_GiantScreen = false;
bool g_bDblScan = true;
uint32_t g_CompositeBlur = 0;

namespace {

BitmapView view_of(const dib& bitmap) {
    return {bitmap.width, bitmap.height, bitmap.header.bits, bitmap.pixels.data(),
            bitmap.palette.empty() ? nullptr : bitmap.palette.data()};
}

} // namespace

int recreate_bitmap(bool giant, int bits) {
    const int depth = g_CompositeBlur ? 32 : bits;
    if (!dib_create(canvas, video_get_windowx(giant), video_get_windowy(giant), depth)) return 0;
    if (depth == 1) {
        dib_create_monopalette(canvas, 0);
    } else {
        dib_create_rgb_palette(canvas);
    }
    return 1;
}

int host_has_canvas() { return canvas.pixels.empty() ? 0 : 1; }

void update_screen(int flag) {
    if (!flag || !host_has_canvas()) return;
    if (!g_bCycleBasedEngine) video_render_frame();
    video_resize_frame(canvas.pixels.data(), 0, canvas.width, int(g_CompositeBlur), !g_bDblScan);
    platform().window().present(view_of(canvas));
}
