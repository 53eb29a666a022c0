#include "platform/web/web_keyboard.h"

#include <emscripten/emscripten.h>

WebKeyboard& web_keyboard() {
    static WebKeyboard keyboard;
    return keyboard;
}

std::optional<KeyForCharacter> WebKeyboard::key_for(char character) {
    if (character >= 'a' && character <= 'z') return KeyForCharacter{uint8_t(character - 32), 0};
    return {};
}

std::string WebKeyboard::label(uint8_t /*key*/) { return {}; }

extern "C" EMSCRIPTEN_KEEPALIVE void tarvelin_key(int key, int down, int modifiers, int repeat) {
    web_keyboard().set(uint8_t(key), down != 0);
    web_context().post(Event{.kind = down ? Event::Kind::key_down : Event::Kind::key_up,
                             .value = key,
                             .modifiers = uint8_t(modifiers),
                             .repeat = repeat != 0});
}
