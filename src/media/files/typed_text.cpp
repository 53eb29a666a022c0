#include "media/files/typed_text.h"

#include "cgenie/typing/typing.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "files/whole_file.h"
#include "platform/platform.h"
#include "wall/report.h"

#include <utility>
#include <vector>

namespace {

constexpr uint32_t USER_ROM = 3; ///< machine_configuration::basic_rom

} // namespace

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
    const auto text = platform().clipboard().text();
    if (!text) return;
    const std::string typed = text->substr(0, text->find('\0'));
    if (lines_fit("the clipboard", std::vector<uint8_t>(typed.begin(), typed.end())))
        type_into_machine(typed);
}

bool lines_fit(const std::string& name, std::span<const uint8_t> text) {
    if (machine_cfg[active_machine_cfg].basic_rom == USER_ROM) return true;
    const long_line line = first_long_line(text);
    if (!line.number) return true;
    report({.text = "Line " + std::to_string(line.number) + " of " + name + " is too long",
            .reason = "It has " + std::to_string(line.length) + " characters, the machine takes " +
                      std::to_string(LONGEST_TYPED_LINE) + " in a line.",
            .remedy = "Nothing was typed. Make two lines of it and try again."});
    return false;
}
