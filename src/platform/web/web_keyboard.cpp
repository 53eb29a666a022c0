#include "platform/web/web_keyboard.h"

#include <emscripten/emscripten.h>

#include <algorithm>
#include <utility>

WebKeyboard& web_keyboard() {
    static WebKeyboard keyboard(web_context());
    return keyboard;
}

/// The shell does so for each layout. One that has been learned is no other: the key that told it
/// is still held.
void WebKeyboard::release_all() {
    if (learning_ > 0) {
        --learning_;
    } else {
        pressed_.release_all();
    }
}

bool WebKeyboard::claims(uint8_t key, uint8_t modifiers) const {
    return std::ranges::any_of(claimed_, [=](const KeyChord& chord) {
        return chord.key == key && chord.modifiers == modifiers;
    });
}

bool WebKeyboard::key(uint8_t place, bool down, uint8_t modifiers, bool repeat, bool alt_gr) {
    const uint8_t key = layout_.host_key(place);
    if (!down) {
        const auto held = held_.extract(place);
        pressed_.release(place);
        send(Event::Kind::key_up, held ? held.mapped() : key, modifiers, false);
        return false;
    }
    const bool claimed = claims(key, modifiers);
    if (!repeat) held_[place] = key;
    // A command's key is not the machine's, not even when its Alt goes up first.
    if (!repeat && !claimed) pressed_.press(place, key, alt_gr);
    send(Event::Kind::key_down, key, modifiers, repeat);
    return claimed;
}

void WebKeyboard::learn(uint8_t place, LearnedLayout::Level level, uint32_t character, bool dead) {
    if (!layout_.learn(place, level, character, dead)) return;
    ++learning_;
    context_.post(Event::Kind::layout_changed, 0);
}

void WebKeyboard::let_go() {
    control_ = false;
    pressed_.release_all();
    for (const auto& [place, key] : std::exchange(held_, {})) {
        send(Event::Kind::key_up, key, 0, false);
    }
}

void WebKeyboard::send(Event::Kind kind, uint8_t key, uint8_t modifiers, bool repeat) {
    if (key == KEY_NONE) return;
    context_.post(Event{.kind = kind, .value = key, .modifiers = modifiers, .repeat = repeat});
}

extern "C" {

/// A key in the program's hands; `modifiers` are Modifier bits. 1 when the press is a command's.
EMSCRIPTEN_KEEPALIVE int tarvelin_key(int place, int down, int modifiers, int repeat, int alt_gr) {
    const bool claimed =
        web_keyboard().key(uint8_t(place), down != 0, uint8_t(modifiers), repeat != 0, alt_gr != 0);
    return claimed ? 1 : 0;
}

/// 1 when a command has this HostKey with these Modifier bits.
EMSCRIPTEN_KEEPALIVE int tarvelin_claims(int key, int modifiers) {
    return web_keyboard().claims(uint8_t(key), uint8_t(modifiers)) ? 1 : 0;
}

EMSCRIPTEN_KEEPALIVE int tarvelin_host_key(int place) {
    return web_keyboard().host_key(uint8_t(place));
}

/// With the modifiers of a LearnedLayout::Level, the key gives that code point.
EMSCRIPTEN_KEEPALIVE void tarvelin_learn(int place, int level, int character, int dead) {
    web_keyboard().learn(uint8_t(place), LearnedLayout::Level(level), uint32_t(character),
                         dead != 0);
}

/// Control is held, whoever has the keys.
EMSCRIPTEN_KEEPALIVE void tarvelin_control(int held) { web_keyboard().set_control(held != 0); }

EMSCRIPTEN_KEEPALIVE void tarvelin_let_go() { web_keyboard().let_go(); }

/// A byte of the machine's that was typed without a key.
EMSCRIPTEN_KEEPALIVE void tarvelin_type(int byte) {
    auto& queue = web_context().queue;
    if (queue.empty() || queue.back().kind != Event::Kind::clipboard) {
        web_context().post(Event::Kind::clipboard);
    }
    queue.back().text += char(byte);
}
}
