#include "host/command_table_keyboard.h"

#include "host/menu.h"
#include "host/screen_keyboard.h"
#include "host/shell_state.h"

#include <algorithm>

namespace {

constexpr uint32_t LAST_PLACE = uint32_t(KeyboardPlace::floating);
constexpr uint32_t WIDEST = 10000; ///< no screen is wider

bool is_at(KeyboardPlace place) { return shell_state.keyboard_place == place; }

/// Where the floating keyboard is, or was last.
template <uint32_t FloatingKeyboard::*COORDINATE>
constexpr NumberAccess floating_keyboard = {
    [] {
        remember_floating_keyboard();
        return shell_state.floating_keyboard.*COORDINATE;
    },
    [](uint32_t number) { shell_state.floating_keyboard.*COORDINATE = number; }};

Setting place_setting(const char* name, const NumberAccess& place) {
    return {.name = name,
            .place = place,
            .initial = 0,
            .read = StartStep::picture,
            .possible = [](uint32_t n) { return n > WIDEST ? 0 : n; }};
}

} // namespace

std::span<const CommandRow> keyboard_command_rows() {
    static const CommandRow rows[] = {
        {.id = COMMAND_KEYBOARD_DOCKED,
         .label = "&Below the picture",
         .tip = "Shows the machine's keyboard, for the mouse and for fingers.",
         .run = [] { toggle_screen_keyboard(KeyboardPlace::docked); },
         .marked = [] { return is_at(KeyboardPlace::docked); },
         .setting = {.name = "ScreenKeyboard",
                     .place = NumberAccess{
                         [] { return uint32_t(shell_state.keyboard_place); },
                         [](uint32_t n) { shell_state.keyboard_place = KeyboardPlace(n); }},
                     .read = StartStep::picture,
                     .possible = [](uint32_t n) { return n > LAST_PLACE ? 0 : n; }}},
        {.id = COMMAND_KEYBOARD_FLOATING,
         .label = "In a &window of its own",
         .tip = "Shows the machine's keyboard in a window that you can move and size.",
         .run = [] { toggle_screen_keyboard(KeyboardPlace::floating); },
         .marked = [] { return is_at(KeyboardPlace::floating); }},
        {.setting =
             place_setting("ScreenKeyboardLeft", floating_keyboard<&FloatingKeyboard::left>)},
        {.setting = place_setting("ScreenKeyboardTop", floating_keyboard<&FloatingKeyboard::top>)},
        {.setting =
             place_setting("ScreenKeyboardWidth", floating_keyboard<&FloatingKeyboard::width>)},
    };
    return rows;
}
