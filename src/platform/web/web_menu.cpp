#include "platform/web/web_menu.h"

#include "platform/web/web_context.h"
#include "platform/web/web_page.h"

#include <emscripten/emscripten.h>

namespace {

Json as_json(const std::vector<MenuEntry>& entries) {
    return Json::array(entries, [](const MenuEntry& entry) {
        return Json::object({{"id", entry.id},
                             {"text", entry.text},
                             {"checked", entry.checked},
                             {"state", int(entry.state)},
                             {"children", as_json(entry.children)}});
    });
}

} // namespace

void WebMenu::set(const std::vector<MenuEntry>& menus) { call_page("menu.set", as_json(menus)); }

void WebMenu::check(int id, bool checked) { call_page("menu.check", id, checked); }

void WebMenu::set_text(int id, const std::string& text) { call_page("menu.setText", id, text); }

void WebMenu::set_state(int id, ItemState state) { call_page("menu.setState", id, int(state)); }

void WebMenu::popup(const std::vector<MenuEntry>& entries, int x, int y) {
    call_page("menu.popup", as_json(entries), x, y);
}

extern "C" {

/// A menu was opened, or the last one closed.
EMSCRIPTEN_KEEPALIVE void tarvelin_menu_loop(int begins) {
    EventSink* const sink = web_context().sink;
    if (!sink) return;
    begins ? sink->loop_begins() : sink->loop_ends();
}

EMSCRIPTEN_KEEPALIVE void tarvelin_menu_opens() {
    if (web_context().sink) web_context().sink->menu_opens();
}

EMSCRIPTEN_KEEPALIVE void tarvelin_item_highlighted(int id) {
    if (web_context().sink) web_context().sink->item_highlighted(id);
}

/// An item was chosen; its menu is closed.
EMSCRIPTEN_KEEPALIVE void tarvelin_command(int id) { web_context().post(Event::Kind::command, id); }
}
