#include "platform/web/web_clipboard.h"

#include "platform/web/web_context.h"
#include "platform/web/web_page.h"

#include <emscripten/emscripten.h>

#include <cstdint>
#include <span>

std::optional<std::string> WebClipboard::text() {
    call_page("files.paste");
    return {};
}

bool WebClipboard::set_text(const std::string& text) {
    const std::span bytes(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    return give_page("files.copy", bytes) != 0;
}

/// The text that the page was to ask for, or that the user pasted into it, in the machine's bytes.
extern "C" EMSCRIPTEN_KEEPALIVE void tarvelin_clipboard(const char* text) {
    web_context().post(Event{.kind = Event::Kind::clipboard, .text = text});
}
