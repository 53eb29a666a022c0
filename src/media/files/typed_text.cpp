#include "media/files/typed_text.h"

#include "core/machine_events.h"
#include "files/whole_file.h"
#include "platform/platform.h"

#include <utility>
#include <vector>

int keyboard_open_bas_file(const std::string& path, const std::string& keys_before) {
    const auto text = read_whole_file(path);
    if (!text) return 0;
    type_listing(*text, keys_before);
    return 1;
}

void type_listing(std::span<const uint8_t> bytes, const std::string& keys_before) {
    std::vector<uint8_t> text(keys_before.begin(), keys_before.end());
    text.insert(text.end(), bytes.begin(), bytes.end());
    machine_apply(event_kind::type_text, 0, 0, shared_bytes(std::move(text)));
}

void type_into_machine(const std::string& text) {
    const std::string typed = text.substr(0, text.find('\0'));
    machine_apply(event_kind::typing_trap);
    machine_apply(event_kind::type_text, 0, 0, shared_bytes({typed.begin(), typed.end()}));
}

void gui_paste_from_clipboard() {
    if (const auto text = platform().clipboard().text()) type_into_machine(*text);
}
