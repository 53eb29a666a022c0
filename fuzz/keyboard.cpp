/// Keys, layouts, and text that is pasted or typed from a file.

#include "cgenie/keyboard.h"
#include "cgenie/typing/typing.h"
#include "host/key_map.h"
#include "media/files/typed_text.h"
#include "support/fake_host.h"
#include "support/files.h"
#include "support/machine.h"
#include "wall/machine_host.h"

namespace {

constexpr const char* NAME = "typed.txt";

/// As many characters as the text has, at most.
void type_text(size_t size) {
    int done = 0;
    size_t count = 0;
    for (; !done; ++count) keyboard_type_bas_file(&done);
    require(count <= size + 1, "typing comes to an end");
    keyboard_type_reset();
}

void act(Input& input) {
    HeadlessPlatform& host = fuzz_platform();
    const uint8_t action = input.byte();
    switch (action >> 5) {
    case 0: host.set_key(input.byte(), (action & 1) != 0); break;
    case 1: host_keyboard_init(); break;
    case 2: keyboard_change_mapping(action & 1); break;
    case 3: {
        HeadlessLayout& layout = host.keyboard().layout;
        layout[action % layout.size()] = KeyForCharacter{input.byte(), input.byte()};
        break;
    }
    case 4: host_keyboard_reset(); break;
    default: keyboard_read(input.byte()); break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fake_host = {};
    HeadlessPlatform& host = fuzz_platform();
    host.release_all_keys();
    host.keyboard().layout = headless_us_layout();
    host_keyboard_init();
    machine_host.read_input = read_host_keys;

    write_file(NAME, {data, size});
    require(keyboard_open_bas_file(NAME) == 1, "a text can be typed");
    type_text(size);
    host.clipboard().set_text(std::string(data, data + size));
    gui_paste_from_clipboard();
    type_text(size);
    for (Input input(data, size); !input.empty();) act(input);
    return 0;
}
