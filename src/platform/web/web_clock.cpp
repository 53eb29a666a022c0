#include "platform/web/web_clock.h"

#include <emscripten/emscripten.h>

int64_t WebClock::counter() { return int64_t(emscripten_get_now() * 1e6); }
