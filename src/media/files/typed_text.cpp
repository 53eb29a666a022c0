#include "media/files/typed_text.h"

#include "cgenie/typing/typing.h"
#include "files/whole_file.h"
#include "platform/platform.h"

#include <utility>

int keyboard_open_bas_file(const std::string& path, const std::string& keys_before) {
    auto text = read_whole_file(path);
    if (!text) return 0;
    text->insert(text->begin(), keys_before.begin(), keys_before.end());
    keyboard_open_from_bytes(shared_bytes(std::move(*text)));
    return 1;
}

void gui_paste_from_clipboard() {
    if (const auto text = platform().clipboard().text()) keyboard_open_from_buffer(*text);
}
