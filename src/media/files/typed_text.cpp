#include "media/files/typed_text.h"

#include "core/machine_events.h"
#include "files/whole_file.h"
#include "platform/platform.h"

#include <utility>

int keyboard_open_bas_file(const std::string& path, const std::string& keys_before) {
    auto text = read_whole_file(path);
    if (!text) return 0;
    text->insert(text->begin(), keys_before.begin(), keys_before.end());
    machine_apply(event_kind::type_text, 0, 0, shared_bytes(std::move(*text)));
    return 1;
}

void type_into_machine(const std::string& text) {
    const std::string typed = text.substr(0, text.find('\0'));
    machine_apply(event_kind::typing_trap);
    machine_apply(event_kind::type_text, 0, 0, shared_bytes({typed.begin(), typed.end()}));
}

void gui_paste_from_clipboard() {
    if (const auto text = platform().clipboard().text()) type_into_machine(*text);
}
