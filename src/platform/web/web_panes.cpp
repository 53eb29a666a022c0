#include "platform/web/web_panes.h"

#include <emscripten/emscripten.h>

WebPanes& web_panes() {
    static WebPanes panes(web_context());
    return panes;
}

extern "C" {

/// A pane has another size, and an empty canvas of so many pixels. Without `paint` the program is
/// about to draw by itself.
EMSCRIPTEN_KEEPALIVE void tarvelin_pane_resized(int pane, int width, int height, int pixel_width,
                                                int pixel_height, int paint) {
    WebPane& resized = web_panes().pane(PaneId(pane));
    resized.resized({width, height}, {pixel_width, pixel_height});
    const WebContext& context = web_context();
    if (paint && context.sink && context.shown && resized.is_shown()) {
        context.sink->paint(PaneId(pane));
    }
}

/// As Event and Pointer say.
EMSCRIPTEN_KEEPALIVE void tarvelin_pointer(int act, int pane, int x, int y, int button, int buttons,
                                           int touch, int finger, int wheel) {
    web_context().post(Event{.kind = Event::Kind::pointer,
                             .value = wheel,
                             .pointer = {.act = Pointer::Act(act),
                                         .pane = PaneId(pane),
                                         .x = x,
                                         .y = y,
                                         .button = uint8_t(button),
                                         .buttons = uint8_t(buttons),
                                         .touch = touch != 0,
                                         .finger = finger}});
}
}
