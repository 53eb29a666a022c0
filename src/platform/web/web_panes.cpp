#include "platform/web/web_panes.h"

#include <emscripten/emscripten.h>

WebPanes& web_panes() {
    static WebPanes panes(web_context());
    return panes;
}

extern "C" {

/// A pane has another size, in the page's pixels, and an empty canvas.
EMSCRIPTEN_KEEPALIVE void tarvelin_pane_resized(int pane, int width, int height) {
    web_panes().pane(PaneId(pane)).resized({width, height});
    if (web_context().sink && web_context().shown) web_context().sink->paint(PaneId(pane));
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
