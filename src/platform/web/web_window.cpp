#include "platform/web/web_window.h"

#include "platform/utf8.h"
#include "platform/web/web_keyboard.h"
#include "platform/web/web_page.h"

#include <emscripten/emscripten.h>

namespace {

std::function<ReadableText()> readable_text;
Rectangle floating_keyboard;

} // namespace

bool WebWindow::create(const std::string& title) {
    set_title(title);
    return true;
}

void WebWindow::show() {
    context_.shown = true;
    call_page("window.show");
}

void WebWindow::destroy() { context_.shown = false; }

void WebWindow::set_title(const std::string& title) {
    title_ = title;
    call_page("window.setTitle", title);
}

void WebWindow::set_full_screen(bool on) { call_page("window.setFullScreen", on); }

void WebWindow::show_cursor(bool on) { call_page("window.showCursor", on); }

void WebWindow::claim_keys(std::span<const KeyChord> chords) { web_keyboard().claim(chords); }

void WebWindow::place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed) {
    if (place != KeyboardPlace::floating) floating_keyboard = {};
    call_page("window.placeKeyboard", int(place), wanted.left, wanted.top, wanted.width(),
              wanted.height(), closed);
}

Rectangle WebWindow::keyboard_rectangle() { return floating_keyboard; }

void WebWindow::set_readable(const std::string& name, std::function<ReadableText()> text) {
    readable_text = std::move(text);
    call_page("window.setReadable", name);
}

extern "C" {

/// The client area has this size, at this scale.
EMSCRIPTEN_KEEPALIVE void tarvelin_resized(int width, int height, double ratio) {
    WebContext& context = web_context();
    context.client = {width, height};
    context.ratio = ratio;
    if (context.shown) context.post_once(Event::Kind::resized);
}

/// The floating keyboard lies there.
EMSCRIPTEN_KEEPALIVE void tarvelin_keyboard_placed(int left, int top, int right, int bottom) {
    floating_keyboard = {left, top, right, bottom};
}

/// The text on the screen, with an end of each line; gone at the next call.
EMSCRIPTEN_KEEPALIVE const char* tarvelin_readable_text() {
    static std::string text;
    text.clear();
    if (!readable_text) return "";
    for (const char letter : readable_text().text) text += utf8_of(uint8_t(letter)); // ISO 8859-1
    return text.c_str();
}
}
