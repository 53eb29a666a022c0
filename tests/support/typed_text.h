#pragma once
/// The text that the machine is about to be given as if it were typed.

#include "cgenie/typing/typing.h"

#include <string>

/// Takes all of it, as the firmware does.
inline std::string typed_text() {
    std::string text;
    for (int done = 0;;) {
        const uint8_t character = keyboard_type_bas_file(&done);
        if (done) return character ? "not 0 at the end" : text;
        text += char(character);
    }
}
