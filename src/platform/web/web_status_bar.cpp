#include "platform/web/web_status_bar.h"

#include "platform/web/web_page.h"

#include <emscripten/emscripten.h>

namespace {

std::vector<StatusButton> buttons_now;

} // namespace

bool WebStatusBar::create(std::span<const int> right_edges, int drawn_part) {
    call_page("status.create", std::vector<int>(right_edges.begin(), right_edges.end()),
              drawn_part);
    return exists_ = true;
}

void WebStatusBar::destroy() {
    exists_ = false;
    call_page("status.destroy");
}

int WebStatusBar::height() { return exists_ ? int(call_page("status.height")) : 0; }

void WebStatusBar::set_text(int part, const std::string& text) {
    call_page("status.setText", part, text);
}

void WebStatusBar::set_tip(int part, const std::string& text) {
    call_page("status.setTip", part, text);
}

void WebStatusBar::set_buttons(const std::vector<StatusButton>& buttons) {
    buttons_now = buttons;
    call_page("status.setButtons", Json::array(buttons, [](const StatusButton& button) {
                  const Rectangle& area = button.area;
                  return Json::object({{"name", button.name},
                                       {"left", area.left},
                                       {"top", area.top},
                                       {"width", area.width()},
                                       {"height", area.height()}});
              }));
}

void WebStatusBar::show_over(const std::string& text) { call_page("status.showOver", text); }

void WebStatusBar::fill_rectangle(const Rectangle& area, Colour colour) {
    call_page("status.fill", area.left, area.top, area.width(), area.height(), colour);
}

Colour WebStatusBar::background_colour() { return Colour(call_page("status.background")); }

Colour WebStatusBar::shadow_colour() { return Colour(call_page("status.shadow")); }

Colour WebStatusBar::highlight_colour() { return Colour(call_page("status.highlight")); }

void WebStatusBar::redraw() {
    if (context_.sink) context_.sink->draw_status();
}

extern "C" {

/// The tip of a button, asked for when it is to be shown; gone at the next call.
EMSCRIPTEN_KEEPALIVE const char* tarvelin_status_tip(int button) {
    static std::string tip;
    tip = size_t(button) < buttons_now.size() ? buttons_now[size_t(button)].tip() : "";
    return tip.c_str();
}

EMSCRIPTEN_KEEPALIVE void tarvelin_status_button(int button) {
    web_context().post(Event::Kind::status_button, button);
}

/// What was drawn into the bar is lost, or its colours are others.
EMSCRIPTEN_KEEPALIVE void tarvelin_draw_status() {
    if (web_context().sink) web_context().sink->draw_status();
}
}
