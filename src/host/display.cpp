#include "host/display.h"

#include "cgenie/video.h"
#include "cgenie/video_output.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "host/canvas.h"
#include "host/main_window.h"
#include "host/overlay.h"
#include "host/picture_tube.h"
#include "host/screen_keyboard.h"
#include "host/shell.h"
#include "host/status.h"
#include "monitor/monitor.h"
#include "platform/platform.h"
#include "sound/output/sound_ring.h"
#include "wall/machine_host.h"

#include <string>
#include <utility>

int g_iScreenX = 0;
int g_iScreenY = 0;
int cx = 0;
int cy = 0;
Rectangle g_rcScreen;
Rectangle g_rcViewport;

namespace {

constexpr int MONOCHROME = 1; ///< bits per pixel
constexpr int PALETTE = 8;
constexpr int TRUE_COLOUR = 32;
constexpr int MARGIN = 4; ///< of the client area around the canvas

constexpr bool g_bKeepAspectRatio = true; ///< nothing changes it
bool fullscreen_mode = false;
bool triggerClearBuffer = false; ///< the next stretched frame blackens the screen first
Rectangle g_BackupRect;          ///< the window while the whole screen is used
dib canvas_ahead;                ///< kept, so that its memory is used again

BitmapView view_of(const dib& bitmap) {
    return {bitmap.width, bitmap.height, bitmap.header.bits, bitmap.pixels.data(),
            bitmap.palette.empty() ? nullptr : bitmap.palette.data()};
}

Size canvas_size() { return {canvas.width, canvas.height}; }

/// Packs the frame into one bit per pixel. Every colour but black and the background becomes white,
/// so that a text of any colour can be read.
void pack_frame(uint8_t* pixels) {
    constexpr int PIXELS_PER_BYTE = 8;
    const uint8_t* source = frame_buffer;
    for (int n = 0; n < SCREEN_WIDTH * SCREEN_HEIGHT / PIXELS_PER_BYTE; ++n) {
        unsigned packed = 0;
        for (int bit = 0; bit < PIXELS_PER_BYTE; ++bit, ++source) {
            const bool white = *source != BLACK_INDEX && *source != hires_palette[0];
            packed = packed << 1 | (white ? 1u : 0u);
        }
        *pixels++ = uint8_t(packed);
    }
}

void draw_frame() {
    uint8_t* pixels = canvas.pixels.data();
    if (canvas.header.bits == MONOCHROME) {
        if (!g_bCycleBasedEngine) video_render_1bit(pixels, video_cut, video_page);
        pack_frame(pixels);
        if (g_bDblScan) video_draw_interlaced(pixels, MONOCHROME);
        return;
    }
    if (!g_bCycleBasedEngine) video_render_frame();
    video_resize_frame(pixels, video_cut, canvas.width, int(g_CompositeBlur), !g_bDblScan);
    if (g_bDblScan && !g_GiantScreen) video_draw_interlaced(pixels, PALETTE);
}

/// How a picture is drawn in an area of this size.
Scaling scaling_for(Size area) {
    Scaling how = picture_scaling();
    how.tube = tube_look_for(area);
    how.lines = SCREEN_HEIGHT;
    return how;
}

void draw_fixed(Pane& pane) {
    Scaling how = scaling_for(canvas_size());
    if (how.tube == TubeLook::off) return pane.copy_bitmap(view_of(canvas), MARGIN, MARGIN);
    how.whole = false;
    pane.stretch_bitmap(view_of(canvas),
                        {MARGIN, MARGIN, MARGIN + canvas.width, MARGIN + canvas.height}, how);
}

void draw_stretched(Pane& pane) {
    const Size room = pane.size();
    const Scaling how = scaling_for(room);
    const Rectangle area = {0, 0, room.width, room.height};
    pane.stretch_bitmap(view_of(canvas), how.whole ? area : screen_rect_recalc(area), how);
}

void dib_draw() {
    Pane& pane = platform().pane(PaneId::picture);
    window_is_sizable() ? draw_stretched(pane) : draw_fixed(pane);
    tube_picture_shown();
}

void UpdateFrameDX() {
    Surface& surface = platform().surface();
    if (!surface.exists()) return;
    surface.present(view_of(canvas), g_rcScreen,
                    scaling_for({g_rcScreen.width(), g_rcScreen.height()}), triggerClearBuffer);
    tube_picture_shown();
    triggerClearBuffer = false;
}

void ReleaseAllObjects() { platform().surface().release(); }

/// Gets the stretched presentation ready for the canvas. When that fails the user is told why.
bool InitSurfaces() {
    const std::string failure = platform().surface().create(canvas_size());
    if (failure.empty()) {
        triggerClearBuffer = true;
        return true;
    }
    ReleaseAllObjects();
    const bool fatal = failure == NO_DIRECT_DRAW;
    report(
        {.text = failure, .title = fatal ? "Fatal error!" : "Error", .icon = MessageIcon::error});
    return false;
}

void fit_whole_screen() {
    const Size screen = platform().window().screen_size();
    g_rcScreen = screen_rect_recalc({0, 0, screen.width, screen.height});
}

void enter_full_screen() {
    g_bFullScreen = 1 + (g_bUseGDI ? 1 : 0);
    if (g_bUseGDI) change_video_mode(false, false);
    ChangeCoopLevel();
    DestroyStatusBar();
    overlay_show("Alt+Enter leaves full screen");
    platform().window().invalidate();
}

void leave_full_screen() {
    g_bUseGDI = g_bFullScreen - 1 != 0;
    if (g_bUseGDI) change_video_mode(true, false);
    g_bFullScreen = 0;
    overlay_hide();
    CreateStatusBar();
    restore_status();
    machine_show_cfg();
    ChangeCoopLevel();
    // If the canvas has another size by now, the window needs one, too. The limits count what is
    // docked, which is there only now.
    window_needs_fit() ? fit_window(g_BackupRect) : limit_window_size();
    fit_screen_keyboard();
}

} // namespace

int recreate_bitmap(bool giant, int bits) {
    const int depth = g_CompositeBlur ? TRUE_COLOUR : bits;
    const int created =
        dib_create(canvas, video_get_windowx(giant), video_get_windowy(giant), depth);
    g_iScreenX = canvas.width;
    g_iScreenY = canvas.height;
    if (!created) return 0;
    if (depth == MONOCHROME) {
        dib_create_monopalette(canvas, 0);
    } else {
        dib_create_rgb_palette(canvas);
    }
    return 1;
}

int canvas_bits() { return g_1bitDisplay && !g_GiantScreen ? MONOCHROME : PALETTE; }

void calc_cxcy(int width, int height) {
    const int client_width = width + 2 * MARGIN;
    const Size outer = platform().window().outer_size(
        {client_width, height + 2 * MARGIN + docked_height(client_width)});
    cx = outer.width;
    cy = outer.height;
}

void set_screen_params(bool giant, int bits) {
    recreate_bitmap(giant, bits);
    if (!fullscreen_mode) return fit_window(platform().window().outer_rectangle());
    // The window keeps the whole screen, and is fitted when it comes back.
    g_rcViewport = {0, 0, canvas.width, canvas.height};
    if (platform().surface().exists()) g_bUseGDI = !InitSurfaces();
}

void show_palette() {
    dib_create_rgb_palette(canvas);
    if (!g_bActive) platform().window().invalidate();
}

int host_has_canvas() { return canvas.pixels.empty() ? 0 : 1; }

void show_frame(int flag) {
    if (g_bDebug) return monitor_update();
    if (!flag || !host_has_canvas()) return;
    const PictureUse use = use_of_picture();
    if (use == PictureUse::dropped) return;
    draw_frame();
    if (use == PictureUse::shown) show_canvas();
}

void show_frame_ahead() {
    if (g_bDebug || !host_has_canvas()) return;
    canvas_ahead = canvas; // a picture may leave lines as they were
    std::swap(canvas, canvas_ahead);
    draw_frame();
    show_canvas();
    std::swap(canvas, canvas_ahead);
}

void show_canvas() {
    if (!host_has_canvas()) return;
    if (g_bUseGDI && !g_bFullScreen) return dib_draw();
    UpdateFrameDX();
}

void change_video_mode(bool use_gdi, bool /*resize*/) {
    g_bUseGDI = use_gdi || !InitSurfaces();
    if (use_gdi) ReleaseAllObjects();
    platform().window().invalidate();
    ResizeWindow(canvas.width, canvas.height, g_bKeepAspectRatio);
    limit_window_size();
}

void ChangeCoopLevel() {
    Window& window = platform().window();
    fullscreen_mode = !fullscreen_mode;
    if (fullscreen_mode) {
        g_BackupRect = window.outer_rectangle();
        fit_whole_screen();
    }
    window.set_full_screen(fullscreen_mode);
    if (!fullscreen_mode) g_rcScreen = screen_rect_recalc(window.client_on_screen());
    window.invalidate();
    window.show_cursor(!fullscreen_mode);
}

void ResizeWindow(int width, int height, bool keep_aspect) {
    const Rectangle client = platform().window().client_on_screen();
    const Size room = platform().pane(PaneId::picture).size();
    Rectangle target = {0, 0, room.width, room.height};
    if (keep_aspect) target = screen_rect_recalc(target);
    g_rcViewport = {0, 0, width, height};
    g_rcScreen = {client.left + target.left, client.top + target.top, client.left + target.right,
                  client.top + target.bottom};
}

void toggle_full_screen() {
    sound_pause();
    if (g_bFullScreen) {
        leave_full_screen();
    } else {
        enter_full_screen();
    }
    // A machine that stands still stays silent.
    if (g_bActive) sound_resume();
    reset_timer();
}

Rectangle screen_rect_recalc(const Rectangle& area) {
    const int width = area.width();
    const int height = area.height();
    const int width_43 = (4 * height + 1) / 3;
    const int height_43 = (3 * width + 2) / 4;
    Rectangle fitted = area;
    if (width_43 < width) {
        fitted.left = (width - width_43 + 1) / 2;
        fitted.right = fitted.left + width_43;
    } else if (height_43 < height) {
        fitted.top = (height - height_43 + 1) / 2;
        fitted.bottom = fitted.top + height_43;
    }
    return fitted;
}
